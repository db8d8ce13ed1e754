// The exit code of each error code, and its words as the public header has them.
#include "kestrel/failure.h"

#include <fmt/core.h>
#include <kestrel/sdk_text.h>
#include <windows.h>

#include <algorithm>
#include <iterator>

namespace cli {
namespace {

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

ExitCode ExitOf(uint32_t code) {
    const CodeExit* const found = std::find_if(std::begin(kExits), std::end(kExits),
                                               [code](const CodeExit& row) { return row.code == code; });
    return found == std::end(kExits) ? ExitCode::OwnFault : found->exit;
}

}  // namespace

std::string CodeText(uint32_t code) {
    constexpr uint32_t kLibraryCodes = 0xE0000000;
    return code >= kLibraryCodes ? fmt::format("0x{:08X}", code) : fmt::format("{}", code);
}

Failure FailureFromCode(uint32_t code, const std::string& attempt, Exchange direction) {
    const KestrelErrorText* const known = KestrelFindError(code);

    Failure failure;
    failure.exit = ExitOf(code);
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

bool IsHopeless(const Failure& failure) {
    return failure.exit == ExitCode::NoAnswer || failure.exit == ExitCode::OwnFault;
}

Failure UsageFailure(std::string text, std::string advice) {
    return {ExitCode::Usage, std::move(text), std::move(advice), {}, {}, {}};
}

Failure ValueFailure(std::string text, std::string advice) {
    return {ExitCode::ValueRefused, std::move(text), std::move(advice), {}, {}, {}};
}

}  // namespace cli
