// The account's default printer: "name,winspool,port" where Windows keeps it.
#include <windows.h>
#include <winspool.h>

#include <string>

#include "winport/spooler/arguments.h"
#include "winport/spooler/spool_session.h"

namespace winport {

namespace {

using Purpose = RegistrySession::Purpose;

constexpr std::u16string_view kKey = u"Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";
constexpr std::u16string_view kValue = u"Device";

// The printer's own name in its own letters; "" for none.
std::u16string DefaultPrinter(SpoolSession& session) {
    const KeyId key = session.Registry().Find(kCurrentUser, kKey);
    if (key == 0) return {};
    const std::u16string device = ReadText(session.Registry(), key, kValue);
    const KeyId printer = session.FindPrinter(std::u16string_view(device).substr(0, device.find(u',')));
    return printer != 0 ? session.Registry().Name(printer).value_or(u"") : u"";
}

DWORD ChooseDefault(LPCWSTR name) {
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    const KeyId printer = session.FindPrinter(name);
    if (printer == 0) return ERROR_INVALID_PRINTER_NAME;
    std::u16string device = session.Registry().Name(printer).value_or(name);
    device.append(u",winspool,").append(ReadText(session.Registry(), printer, u"Port"));
    bool created = false;
    const KeyId key = session.Registry().Create(kCurrentUser, kKey, created);
    WriteText(session.Registry(), key, kValue, device);
    return session.Commit();
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL SetDefaultPrinterW(LPCWSTR name) {
    return Report(IsEmpty(name) ? ERROR_INVALID_PRINTER_NAME : ChooseDefault(name));
}

BOOL GetDefaultPrinterW(LPWSTR buffer, LPDWORD size) {
    if (size == nullptr) return Report(ERROR_INVALID_PARAMETER);
    std::u16string name;
    {
        SpoolSession session(Purpose::Read);
        name = DefaultPrinter(session);
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
    }
    if (name.empty()) return Report(ERROR_FILE_NOT_FOUND);
    const bool fits = buffer != nullptr && *size > name.size();
    *size = static_cast<DWORD>(name.size() + 1);
    if (!fits) return Report(ERROR_INSUFFICIENT_BUFFER);
    name.copy(buffer, name.size());
    buffer[name.size()] = u'\0';
    return Report(ERROR_SUCCESS);
}
