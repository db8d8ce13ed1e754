// The words and the exit code of each error code.
#include "kestrel/failure.h"

#include <fmt/core.h>
#include <kestrel/sdk_errors.h>
#include <windows.h>

#include <algorithm>
#include <iterator>

namespace cli {
namespace {

struct KnownText {
    const char* name;
    uint32_t code;
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
    uint32_t code;
    ExitCode exit;
};

constexpr uint32_t kDeviceNotAvailable = 4319;

// A code that is not here is a fault of this installation.
constexpr CodeExit kExits[] = {
    {SDK_ERROR_CHANNEL_NOT_OPEN, ExitCode::OwnFault},
    {SDK_ERROR_SEND_INCOMPLETE, ExitCode::NoAnswer},
    {SDK_ERROR_NO_REPLY, ExitCode::NoAnswer},
    {SDK_ERROR_BAD_REPLY, ExitCode::BadReply},
    {SDK_ERROR_UNEXPECTED_REPLY, ExitCode::BadReply},
    {SDK_ERROR_BIDI_DISABLED, ExitCode::NoPrinter},
    {SDK_ERROR_NETWORK_PRINTER_NAME, ExitCode::NoPrinter},
    {SDK_ERROR_PORT_LIST, ExitCode::NoPrinter},
    {ERROR_FILE_NOT_FOUND, ExitCode::DeviceRefused},
    {ERROR_BAD_COMMAND, ExitCode::DeviceRefused},
    {ERROR_CRC, ExitCode::DeviceRefused},
    {ERROR_GEN_FAILURE, ExitCode::DeviceRefused},
    {ERROR_NOT_SUPPORTED, ExitCode::DeviceRefused},
    {ERROR_FILE_CORRUPT, ExitCode::DeviceRefused},
    {ERROR_INVALID_PARAMETER, ExitCode::ValueRefused},
    {ERROR_BUSY, ExitCode::Locked},
    {ERROR_LOCKED, ExitCode::Locked},
    {ERROR_TIMEOUT, ExitCode::NoAnswer},
    {kDeviceNotAvailable, ExitCode::NoAnswer},
    {ERROR_INVALID_PRINTER_NAME, ExitCode::NoPrinter},
    {ERROR_UNKNOWN_PORT, ExitCode::ValueRefused},
    {ERROR_UNKNOWN_PRINTER_DRIVER, ExitCode::ValueRefused},
    {ERROR_PRINTER_ALREADY_EXISTS, ExitCode::ValueRefused},
};

template <typename Row, size_t count>
const Row* FindCode(const Row (&rows)[count], uint32_t code) {
    const Row* const found =
        std::find_if(std::begin(rows), std::end(rows), [code](const Row& row) { return row.code == code; });
    return found == std::end(rows) ? nullptr : found;
}

}  // namespace

std::string CodeText(uint32_t code) {
    constexpr uint32_t kLibraryCodes = 0xE0000000;
    return code >= kLibraryCodes ? fmt::format("0x{:08X}", code) : fmt::format("{}", code);
}

Failure FailureFromCode(uint32_t code, const std::string& attempt, Exchange direction) {
    const KnownText* known = FindCode(kOwnTexts, code);
    if (known == nullptr) known = FindCode(kLibraryTexts, code);
    const CodeExit* const exit = FindCode(kExits, code);

    Failure failure;
    failure.exit = exit != nullptr ? exit->exit : ExitCode::OwnFault;
    failure.text = fmt::format("{}: {}", attempt, known != nullptr ? known->text : "unexpected error");
    failure.advice = known != nullptr ? known->advice : "report this together with the command line";
    failure.code = code;
    if (code == ERROR_INVALID_PARAMETER && direction == Exchange::Read) {
        failure.exit = ExitCode::BadReply;
        failure.text = attempt + ": the device answers with a word that is not in the table of this setting";
        failure.advice = "install the library that belongs to the device's firmware";
    }
    return failure;
}

Failure UsageFailure(std::string text, std::string advice) {
    return {ExitCode::Usage, std::move(text), std::move(advice), {}, {}, {}};
}

Failure ValueFailure(std::string text, std::string advice) {
    return {ExitCode::ValueRefused, std::move(text), std::move(advice), {}, {}, {}};
}

}  // namespace cli
