#include <sys/stat.h>
#include <windows.h>
#include <winspool.h>

#include <cstring>
#include <string>
#include <vector>

#include "winport/files/error_map.h"
#include "winport/files/home.h"
#include "winport/files/host_file.h"
#include "winport/spooler/arguments.h"
#include "winport/spooler/environment.h"
#include "winport/spooler/packed_records.h"
#include "winport/spooler/spool_session.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

using Purpose = RegistrySession::Purpose;

constexpr DWORD kDriverVersion = 3;

struct DriverText {
    const char16_t* value;
    LPWSTR DRIVER_INFO_3W::*member;
    bool required;
};

constexpr DriverText kDriverTexts[] = {
    {u"Driver", &DRIVER_INFO_3W::pDriverPath, true},
    {u"Data File", &DRIVER_INFO_3W::pDataFile, true},
    {u"Configuration File", &DRIVER_INFO_3W::pConfigFile, true},
    {u"Help File", &DRIVER_INFO_3W::pHelpFile, false},
    {u"Monitor", &DRIVER_INFO_3W::pMonitorName, false},
    {u"Datatype", &DRIVER_INFO_3W::pDefaultDataType, false},
};

DWORD CheckDriver(const DRIVER_INFO_3W& info) {
    if (info.cVersion != kDriverVersion || IsEmpty(info.pName) || !IsKeyName(info.pName)) {
        return ERROR_INVALID_PARAMETER;
    }
    for (const DriverText& field : kDriverTexts) {
        if (field.required && IsEmpty(info.*field.member)) return ERROR_INVALID_PARAMETER;
    }
    return FindEnvironment(info.pEnvironment) != nullptr ? ERROR_SUCCESS : ERROR_INVALID_ENVIRONMENT;
}

// The bytes of texts one after another, up to and with the empty one that ends them.
std::string_view MultiText(LPCWSTR texts) {
    LPCWSTR end = texts;
    while (*end != u'\0')
        end += std::char_traits<WCHAR>::length(end) + 1;
    return {reinterpret_cast<const char*>(texts), static_cast<std::size_t>(end + 1 - texts) * sizeof(WCHAR)};
}

DWORD RecordDriver(const DRIVER_INFO_3W& info) {
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    const std::u16string drivers = DriversPath(FindEnvironment(info.pEnvironment)->name);
    const KeyId driver = session.CreateKey(drivers + u'\\' + info.pName);
    // A second installation replaces the first whole.
    session.Registry().Clear(driver);
    WriteNumber(session.Registry(), driver, u"Version", info.cVersion);
    for (const DriverText& field : kDriverTexts) {
        if (!IsEmpty(info.*field.member))
            WriteText(session.Registry(), driver, field.value, info.*field.member);
    }
    if (!IsEmpty(info.pDependentFiles)) {
        session.Registry().Write(driver, u"Dependent Files", REG_MULTI_SZ, MultiText(info.pDependentFiles));
    }
    return session.Commit();
}

// Makes the folder of an environment's drivers with the subfolder "3" of this driver model. Empty on failure.
std::string DriverFolder(const Environment& environment, DWORD& error) {
    const std::string& state = StateDirectory();
    if (state.empty()) {
        error = GetLastError();
        return {};
    }
    const std::string folder = state + "/spool/drivers/" + ToUtf8(environment.folder);
    struct stat status = {};
    const int failure =
        ::stat(state.c_str(), &status) != 0 ? errno : MakeFolders(folder + "/3", status.st_mode & 07777);
    error = ErrorFromErrno(failure);
    return failure == 0 ? folder : std::string();
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL GetPrinterDriverDirectoryW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE buffer, DWORD size,
                                LPDWORD needed) {
    if (needed == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *needed = 0;
    if (level != 1) return Report(ERROR_INVALID_LEVEL);
    if (!IsEmpty(server)) return Report(ERROR_INVALID_NAME);
    const Environment* wanted = FindEnvironment(environment);
    if (wanted == nullptr) return Report(ERROR_INVALID_ENVIRONMENT);
    DWORD error = SpoolSession(Purpose::Read).Error();
    if (error != ERROR_SUCCESS) return Report(error);
    const std::u16string folder = FromUtf8(DriverFolder(*wanted, error));
    if (error != ERROR_SUCCESS) return Report(error);
    *needed = static_cast<DWORD>((folder.size() + 1) * sizeof(WCHAR));
    if (size < *needed) return Report(ERROR_INSUFFICIENT_BUFFER);
    if (buffer == nullptr) return Report(ERROR_INVALID_PARAMETER);
    std::memcpy(buffer, folder.c_str(), *needed);
    return Report(ERROR_SUCCESS);
}

BOOL AddPrinterDriverExW(LPWSTR server, DWORD level, LPBYTE info, DWORD flags) {
    if (!IsEmpty(server)) return Report(ERROR_INVALID_NAME);
    if (level != 3) return Report(ERROR_INVALID_LEVEL);
    if (info == nullptr || (flags & ~DWORD{APD_COPY_FROM_DIRECTORY}) != APD_COPY_NEW_FILES) {
        return Report(ERROR_INVALID_PARAMETER);
    }
    const auto& driver = *reinterpret_cast<const DRIVER_INFO_3W*>(info);
    if (const DWORD refused = CheckDriver(driver); refused != ERROR_SUCCESS) return Report(refused);
    return Report(RecordDriver(driver));
}

BOOL EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE buffer, DWORD size,
                         LPDWORD needed, LPDWORD returned) {
    if (needed == nullptr || returned == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *needed = 0;
    *returned = 0;
    if (!IsEmpty(server)) return Report(ERROR_INVALID_NAME);
    if (level != 1) return Report(ERROR_INVALID_LEVEL);
    const Environment* wanted = FindEnvironment(environment);
    if (wanted == nullptr) return Report(ERROR_INVALID_ENVIRONMENT);
    std::vector<std::u16string> names;
    {
        SpoolSession session(Purpose::Read);
        names = session.Registry().ChildNames(session.FindKey(DriversPath(wanted->name)));
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
    }
    return Report(PackNames<DRIVER_INFO_1W>(names, buffer, size, *needed, *returned));
}
