// The spooler's part of the registry. Printers, their data and drivers lie where Windows keeps them, below
// HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Print:
//   Printers\<name>                                         one printer, see printer_record.h
//   Printers\<name>\PrinterDriverData                       its data values
//   Environments\<environment>\Drivers\Version-3\<driver>   one driver
//   Monitors\Standard TCP/IP Port\Ports\<port>             one network port
//   value "Stopped" (DWORD), not 0                          the spooler does not run: calls fail with 1722,
//   or
//                                                           with the value when it is not 1
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "winport/registry/store.h"

namespace winport {

// One call's look at the spooler, or its change: a registry session that knows where the spooler's keys are.
class SpoolSession final {
  public:
    explicit SpoolSession(RegistrySession::Purpose purpose);

    // 0, why the spooler is stopped, else the registry's failure.
    [[nodiscard]] DWORD Error() const;
    [[nodiscard]] DWORD Commit();
    [[nodiscard]] RegistrySession& Registry() { return registry_; }

    // The key that holds a key per printer; 0 when there never was one.
    [[nodiscard]] KeyId Printers();
    // 0 for an unknown printer. Names are compared without case.
    [[nodiscard]] KeyId FindPrinter(std::u16string_view name);
    [[nodiscard]] bool HasDriver(std::u16string_view name);
    // A key below the spooler's own; 0 when there is none.
    [[nodiscard]] KeyId FindKey(std::u16string_view path);
    // The same, made when it is missing.
    KeyId CreateKey(std::u16string_view path);

  private:
    RegistrySession registry_;
    KeyId root_ = 0;
    DWORD stopped_ = ERROR_SUCCESS;
};

// A name that can be one key: not empty, without "\", not too long.
bool IsKeyName(std::u16string_view name);

// The key of this environment's drivers, relative to the spooler's own.
std::u16string DriversPath(std::u16string_view environment);

}  // namespace winport
