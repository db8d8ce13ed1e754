#include "rundll32/refusal.h"

#include <fmt/format.h>
#include <windows.h>

namespace printui {

namespace {

struct Advice {
    DWORD code;
    const char* reason;
    const char* advice;
};

constexpr Advice kAdvice[] = {
    {ERROR_ACCESS_DENIED, "access is denied", "Run it from the account that owns the printers' folder."},
    {ERROR_INVALID_PRINTER_NAME, "there is no printer of that name, or the name cannot be one",
     "Give the name of a printer, without \",\", \"!\" and \"\\\"."},
    {ERROR_PRINTER_ALREADY_EXISTS, "there is a printer of that name already",
     "Choose another name with /b, or remove that printer first."},
    {RPC_S_SERVER_UNAVAILABLE, "the print spooler does not run", "Start the print spooler and try again."},
};

}  // namespace

Refusal RefusalFromLastError(const std::string& attempt) {
    const DWORD code = GetLastError();
    for (const Advice& row : kAdvice)
        if (row.code == code) return {fmt::format("{}: {}.", attempt, row.reason), row.advice};
    return {fmt::format("{}: the spooler reports error {}.", attempt, code),
            "Look that number up among the system error codes."};
}

}  // namespace printui
