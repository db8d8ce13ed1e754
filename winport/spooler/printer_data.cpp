// Data values of a printer. The result is the error; the last-error value stays as it is.
#include <windows.h>
#include <winspool.h>

#include <cstring>
#include <optional>

#include "winport/registry/last_error_keeper.h"
#include "winport/spooler/printer_handles.h"
#include "winport/spooler/spool_session.h"

namespace winport {

namespace {

using Purpose = RegistrySession::Purpose;

constexpr std::u16string_view kDataKey = u"PrinterDriverData";

// The printer behind a handle that allows `access`; the spooler itself has no data here.
DWORD Resolve(HANDLE handle, DWORD access, SpoolSession& session, KeyId& printer) {
    const auto opened = FindPrinterHandle(handle);
    if (!opened || opened->key == 0) return ERROR_INVALID_HANDLE;
    if ((opened->access & access) != access) return ERROR_ACCESS_DENIED;
    if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    printer = opened->key;
    return session.Registry().Exists(printer) ? ERROR_SUCCESS : ERROR_PRINTER_DELETED;
}

}  // namespace

}  // namespace winport

using namespace winport;

DWORD GetPrinterDataW(HANDLE printer, LPWSTR valueName, LPDWORD type, LPBYTE data, DWORD size,
                      LPDWORD needed) {
    const LastErrorKeeper keeper;
    if (valueName == nullptr || needed == nullptr || (data == nullptr && size != 0))
        return ERROR_INVALID_PARAMETER;
    *needed = 0;
    std::optional<RegistryValue> value;
    {
        SpoolSession session(Purpose::Read);
        KeyId key = 0;
        if (const DWORD refused = Resolve(printer, 0, session, key); refused != ERROR_SUCCESS) return refused;
        const KeyId values = session.Registry().Find(key, kDataKey);
        if (values != 0) value = session.Registry().Read(values, valueName);
        if (const DWORD failure = session.Error(); failure != ERROR_SUCCESS) return failure;
    }
    if (!value) return ERROR_FILE_NOT_FOUND;
    *needed = static_cast<DWORD>(value->bytes.size());
    if (type != nullptr) *type = value->type;
    if (size < *needed) return ERROR_MORE_DATA;
    if (*needed != 0) std::memcpy(data, value->bytes.data(), *needed);
    return ERROR_SUCCESS;
}

DWORD SetPrinterDataW(HANDLE printer, LPWSTR valueName, DWORD type, LPBYTE data, DWORD size) {
    const LastErrorKeeper keeper;
    if (valueName == nullptr || (data == nullptr && size != 0)) return ERROR_INVALID_PARAMETER;
    SpoolSession session(Purpose::Write);
    KeyId key = 0;
    const DWORD refused = Resolve(printer, PRINTER_ACCESS_ADMINISTER, session, key);
    if (refused != ERROR_SUCCESS) return refused;
    bool created = false;
    const KeyId values = session.Registry().Create(key, kDataKey, created);
    session.Registry().Write(values, valueName, type, {reinterpret_cast<const char*>(data), size});
    return session.Commit();
}

DWORD DeletePrinterDataW(HANDLE printer, LPWSTR valueName) {
    const LastErrorKeeper keeper;
    if (valueName == nullptr) return ERROR_INVALID_PARAMETER;
    SpoolSession session(Purpose::Write);
    KeyId key = 0;
    const DWORD refused = Resolve(printer, PRINTER_ACCESS_ADMINISTER, session, key);
    if (refused != ERROR_SUCCESS) return refused;
    const KeyId values = session.Registry().Find(key, kDataKey);
    if (values == 0 || !session.Registry().DeleteValue(values, valueName)) {
        return session.Error() != ERROR_SUCCESS ? session.Error() : ERROR_FILE_NOT_FOUND;
    }
    return session.Commit();
}
