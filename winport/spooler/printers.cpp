#include <windows.h>
#include <winspool.h>

#include <string>
#include <string_view>
#include <vector>

#include "winport/spooler/arguments.h"
#include "winport/spooler/ports.h"
#include "winport/spooler/printer_handles.h"
#include "winport/spooler/printer_record.h"
#include "winport/spooler/spool_session.h"
#include "winport/text/case_fold.h"

namespace winport {

namespace {

using Purpose = RegistrySession::Purpose;

constexpr DWORD kKnownRights = SERVER_ALL_ACCESS | PRINTER_ALL_ACCESS;

// The printer behind a handle, when it is there and the handle allows `access`. Else the error.
DWORD Resolve(HANDLE handle, DWORD access, KeyId& key) {
    const auto opened = FindPrinterHandle(handle);
    if (!opened || opened->key == 0) return ERROR_INVALID_HANDLE;
    key = opened->key;
    return (opened->access & access) == access ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

template <typename Info>
DWORD EnumerateInto(PackedRecord<Info> (*load)(RegistrySession&, KeyId), LPBYTE buffer, DWORD size,
                    DWORD& needed, DWORD& returned) {
    std::vector<PackedRecord<Info>> records;
    {
        SpoolSession session(Purpose::Read);
        const KeyId printers = session.Printers();
        for (const std::u16string& name : session.Registry().ChildNames(printers)) {
            records.push_back(load(session.Registry(), session.FindPrinter(name)));
        }
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    }
    const DWORD error = Pack(records, buffer, size, needed);
    if (error == ERROR_SUCCESS) returned = static_cast<DWORD>(records.size());
    return error;
}

DWORD CheckStopped() {
    return SpoolSession(Purpose::Read).Error();
}

// What AddPrinterW and SetPrinterW refuse in a level-2 record.
DWORD CheckPrinter(SpoolSession& session, const PRINTER_INFO_2W& info) {
    if (!IsEmpty(info.pDriverName) && !session.HasDriver(info.pDriverName))
        return ERROR_UNKNOWN_PRINTER_DRIVER;
    if (!IsEmpty(info.pDatatype) && !EqualsWithoutCase(info.pDatatype, u"RAW")) return ERROR_INVALID_DATATYPE;
    return ERROR_SUCCESS;
}

// A comma would make the name that of a part of a printer, "!" and "\" that of another computer's.
bool IsPrinterName(LPCWSTR name) {
    return !IsEmpty(name) && IsKeyName(name) &&
           std::u16string_view(name).find_first_of(u",!") == std::u16string_view::npos;
}

DWORD AddNewPrinter(const PRINTER_INFO_2W& wanted, KeyId& printer) {
    if (!IsPrinterName(wanted.pPrinterName)) return ERROR_INVALID_PRINTER_NAME;
    if (IsEmpty(wanted.pPortName)) return ERROR_UNKNOWN_PORT;
    if (IsEmpty(wanted.pDriverName)) return ERROR_UNKNOWN_PRINTER_DRIVER;
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    if (const DWORD refused = CheckPrinter(session, wanted); refused != ERROR_SUCCESS) return refused;
    if (session.FindPrinter(wanted.pPrinterName) != 0) return ERROR_PRINTER_ALREADY_EXISTS;
    printer = session.CreateKey(std::u16string(u"Printers\\") + wanted.pPrinterName);
    for (const auto& [value, text] : {std::pair{u"Print Processor", u"WinPrint"}, {u"Datatype", u"RAW"}}) {
        WriteText(session.Registry(), printer, value, text);
    }
    SavePrinter(session.Registry(), printer, wanted);
    return session.Commit();
}

DWORD ChangePrinter(KeyId printer, const PRINTER_INFO_2W& wanted) {
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    const auto name = session.Registry().Name(printer);
    if (!name) return ERROR_PRINTER_DELETED;
    // Printers are not renamed.
    if (!IsEmpty(wanted.pPrinterName) && !EqualsWithoutCase(wanted.pPrinterName, *name))
        return ERROR_NOT_SUPPORTED;
    if (const DWORD refused = CheckPrinter(session, wanted); refused != ERROR_SUCCESS) return refused;
    SavePrinter(session.Registry(), printer, wanted);
    return session.Commit();
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed,
                   LPDWORD returned) {
    constexpr DWORD kHonoured = PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS;
    if (needed == nullptr || returned == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *needed = 0;
    *returned = 0;
    if ((flags & kHonoured) == 0 || (flags & ~kHonoured) != 0) return Report(ERROR_INVALID_PARAMETER);
    if (!IsEmpty(name)) return Report(ERROR_INVALID_NAME);
    if (level != 1 && level != 2) return Report(ERROR_INVALID_LEVEL);
    // There are no connections to other computers' printers.
    if ((flags & PRINTER_ENUM_LOCAL) == 0) return Report(CheckStopped());
    if (level == 1) return Report(EnumerateInto(LoadPrinterSummary, buffer, size, *needed, *returned));
    return Report(EnumerateInto(LoadPrinter, buffer, size, *needed, *returned));
}

BOOL OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults) {
    if (printer == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *printer = nullptr;
    if (name != nullptr && name[0] == u'\0') return Report(ERROR_INVALID_PARAMETER);
    if (defaults != nullptr && (defaults->DesiredAccess & ~kKnownRights) != 0)
        return Report(ERROR_ACCESS_DENIED);
    const std::u16string_view wanted = name != nullptr ? name : std::u16string_view();
    const bool datatypeAsked = defaults != nullptr && !IsEmpty(defaults->pDatatype);
    if (datatypeAsked && !EqualsWithoutCase(defaults->pDatatype, u"RAW"))
        return Report(ERROR_INVALID_DATATYPE);

    OpenPrinter opened;
    opened.access =
        defaults != nullptr && defaults->DesiredAccess != 0 ? defaults->DesiredAccess : PRINTER_ACCESS_USE;
    {
        SpoolSession session(Purpose::Read);
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
        if (wanted.starts_with(u",Xcv")) {
            opened.isPortMonitor = EqualsWithoutCase(wanted, kPortMonitorName);
            if (!opened.isPortMonitor) return Report(ERROR_UNKNOWN_PORT);
        } else if (name != nullptr) {
            opened.key = session.FindPrinter(wanted);
            if (opened.key == 0) return Report(ERROR_INVALID_PRINTER_NAME);
        }
    }
    *printer = AddPrinterHandle(opened);
    return Report(*printer != nullptr ? ERROR_SUCCESS : ERROR_NO_SYSTEM_RESOURCES);
}

// Works while the spooler is stopped too: the handle is this process's own.
BOOL ClosePrinter(HANDLE printer) {
    if (RemovePrinterHandle(printer)) return TRUE;
    return Report(ERROR_INVALID_HANDLE);
}

BOOL GetPrinterW(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed) {
    if (needed == nullptr) return Report(ERROR_INVALID_PARAMETER);
    *needed = 0;
    KeyId key = 0;
    if (const DWORD refused = Resolve(printer, 0, key); refused != ERROR_SUCCESS) return Report(refused);
    if (level != 2) return Report(ERROR_INVALID_LEVEL);
    std::vector<PackedRecord<PRINTER_INFO_2W>> records;
    {
        SpoolSession session(Purpose::Read);
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
        if (!session.Registry().Exists(key)) return Report(ERROR_PRINTER_DELETED);
        records.push_back(LoadPrinter(session.Registry(), key));
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
    }
    return Report(Pack(records, buffer, size, *needed));
}

BOOL SetPrinterW(HANDLE printer, DWORD level, LPBYTE info, DWORD command) {
    KeyId key = 0;
    const DWORD refused = Resolve(printer, PRINTER_ACCESS_ADMINISTER, key);
    if (refused != ERROR_SUCCESS) return Report(refused);
    if (level != 2) return Report(ERROR_INVALID_LEVEL);
    if (info == nullptr || command != 0) return Report(ERROR_INVALID_PARAMETER);
    return Report(ChangePrinter(key, *reinterpret_cast<const PRINTER_INFO_2W*>(info)));
}

HANDLE AddPrinterW(LPWSTR server, DWORD level, LPBYTE info) {
    DWORD error = ERROR_SUCCESS;
    if (!IsEmpty(server)) error = ERROR_INVALID_NAME;
    if (level != 2) error = ERROR_INVALID_LEVEL;
    if (info == nullptr) error = ERROR_INVALID_PARAMETER;
    OpenPrinter added{0, PRINTER_ALL_ACCESS, false};
    if (error == ERROR_SUCCESS)
        error = AddNewPrinter(*reinterpret_cast<const PRINTER_INFO_2W*>(info), added.key);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return nullptr;
    }
    const HANDLE handle = AddPrinterHandle(added);
    SetLastError(handle != nullptr ? ERROR_SUCCESS : ERROR_NO_SYSTEM_RESOURCES);
    return handle;
}

BOOL DeletePrinter(HANDLE printer) {
    KeyId key = 0;
    const DWORD refused = Resolve(printer, PRINTER_ACCESS_ADMINISTER, key);
    if (refused != ERROR_SUCCESS) return Report(refused);
    SpoolSession session(Purpose::Write);
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return Report(failure);
    if (!session.Registry().Exists(key)) return Report(ERROR_PRINTER_DELETED);
    session.Registry().DeleteTree(key);
    return Report(session.Commit());
}
