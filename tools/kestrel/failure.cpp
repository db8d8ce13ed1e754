#include "kestrel/failure.h"

#include <fmt/format.h>
#include <kestrel/sdk_errors.h>
#include <windows.h>

#include <algorithm>
#include <iterator>

namespace cli {
namespace {

struct KnownText {
    const char* name;
    std::uint32_t code;
    const char* text;
    const char* advice;
};

// The library's own words for its codes and those of the system that it passes on.
#define ERROR_ROW(name, code, text, advice) {name, code, text, advice},
constexpr KnownText kLibraryTexts[] = {KESTREL_SDK_ERRORS(ERROR_ROW)};
#undef ERROR_ROW

// Codes that only this program meets, of the loader and of the spooler's printer management; and those of the
// library's for which a person at the command line needs other words than a programmer.
constexpr KnownText kOwnTexts[] = {
    {"SDK_ERROR_SEND_INCOMPLETE", SDK_ERROR_SEND_INCOMPLETE, "no language monitor took the request in time",
     "check that the printer's language monitor runs and is not busy with another program, or allow more "
     "time "
     "with --timeout"},
    {"SDK_ERROR_BAD_REPLY", SDK_ERROR_BAD_REPLY, "the reply does not hold the value that was asked for",
     "the printer may not support this setting"},
    {"SDK_ERROR_UNEXPECTED_REPLY", SDK_ERROR_UNEXPECTED_REPLY,
     "the reply is incomplete or has another form than expected",
     "repeat the command; if it fails again, `kestrel raw` shows what the device sends"},
    {"ERROR_GEN_FAILURE", ERROR_GEN_FAILURE, "the device refused the request",
     "the reply and its response number give the device's reason"},
    {"ERROR_MOD_NOT_FOUND", ERROR_MOD_NOT_FOUND, "the file, or a library that it needs, is not there",
     "install the product again"},
    {"ERROR_UNKNOWN_PORT", ERROR_UNKNOWN_PORT, "the spooler knows no such port", "check the port's name"},
    {"ERROR_UNKNOWN_PRINTER_DRIVER", ERROR_UNKNOWN_PRINTER_DRIVER, "the driver is not installed",
     "run `kestrel setup`, with --driver for a driver of another name"},
    {"ERROR_PRINTER_ALREADY_EXISTS", ERROR_PRINTER_ALREADY_EXISTS,
     "a printer of this name is installed already", "choose another name, or remove that printer first"},
};

struct CodeExit {
    std::uint32_t code;
    ExitCode exit;
};

constexpr std::uint32_t kDeviceNotAvailable = 4319;

// A code that is not here is a fault of this installation.
constexpr CodeExit kExits[] = {
    {SDK_ERROR_CHANNEL_NOT_OPEN, ExitCode::kOwnFault},
    {SDK_ERROR_SEND_INCOMPLETE, ExitCode::kNoAnswer},
    {SDK_ERROR_NO_REPLY, ExitCode::kNoAnswer},
    {SDK_ERROR_BAD_REPLY, ExitCode::kBadReply},
    {SDK_ERROR_UNEXPECTED_REPLY, ExitCode::kBadReply},
    {SDK_ERROR_BIDI_DISABLED, ExitCode::kNoPrinter},
    {SDK_ERROR_NETWORK_PRINTER_NAME, ExitCode::kNoPrinter},
    {SDK_ERROR_PORT_LIST, ExitCode::kNoPrinter},
    {ERROR_FILE_NOT_FOUND, ExitCode::kDeviceRefused},
    {ERROR_BAD_COMMAND, ExitCode::kDeviceRefused},
    {ERROR_CRC, ExitCode::kDeviceRefused},
    {ERROR_GEN_FAILURE, ExitCode::kDeviceRefused},
    {ERROR_NOT_SUPPORTED, ExitCode::kDeviceRefused},
    {ERROR_FILE_CORRUPT, ExitCode::kDeviceRefused},
    {ERROR_INVALID_PARAMETER, ExitCode::kValueRefused},
    {ERROR_BUSY, ExitCode::kLocked},
    {ERROR_LOCKED, ExitCode::kLocked},
    {ERROR_TIMEOUT, ExitCode::kNoAnswer},
    {kDeviceNotAvailable, ExitCode::kNoAnswer},
    {ERROR_INVALID_PRINTER_NAME, ExitCode::kNoPrinter},
    {ERROR_UNKNOWN_PORT, ExitCode::kValueRefused},
    {ERROR_UNKNOWN_PRINTER_DRIVER, ExitCode::kValueRefused},
    {ERROR_PRINTER_ALREADY_EXISTS, ExitCode::kValueRefused},
};

template <typename Row, std::size_t count>
const Row* FindCode(const Row (&rows)[count], std::uint32_t code) {
    const Row* const found =
        std::find_if(std::begin(rows), std::end(rows), [code](const Row& row) { return row.code == code; });
    return found == std::end(rows) ? nullptr : found;
}

}  // namespace

std::string CodeText(std::uint32_t code) {
    constexpr std::uint32_t kLibraryCodes = 0xE0000000;
    return code >= kLibraryCodes ? fmt::format("0x{:08X}", code) : fmt::format("{}", code);
}

Failure FailureFromCode(std::uint32_t code, const std::string& attempt, Exchange direction) {
    const KnownText* known = FindCode(kOwnTexts, code);
    if (known == nullptr) known = FindCode(kLibraryTexts, code);
    const CodeExit* const exit = FindCode(kExits, code);

    Failure failure;
    failure.exit = exit != nullptr ? exit->exit : ExitCode::kOwnFault;
    failure.text = fmt::format("{}: {}", attempt, known != nullptr ? known->text : "unexpected error");
    failure.advice = known != nullptr ? known->advice : "report this together with the command line";
    failure.code = code;
    if (code == ERROR_INVALID_PARAMETER && direction == Exchange::kRead) {
        failure.exit = ExitCode::kBadReply;
        failure.text = attempt + ": the device answers with a word that is not in the table of this setting";
        failure.advice = "install the library that belongs to the device's firmware";
    }
    return failure;
}

Failure UsageFailure(std::string text, std::string advice) {
    return {ExitCode::kUsage, std::move(text), std::move(advice), {}, {}, {}};
}

Failure ValueFailure(std::string text, std::string advice) {
    return {ExitCode::kValueRefused, std::move(text), std::move(advice), {}, {}, {}};
}

}  // namespace cli
