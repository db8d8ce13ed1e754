// The commands of the session with the language monitor: the printer's lock, cancelling and its cache.
#include "kestrel/sdk_errors.h"
#include "session/kestrel_sdk.h"
#include "session/remaining_time.h"
#include "session/timing_table.h"

namespace session {
namespace {

constexpr uint32_t kTimeoutMs = 5000;
constexpr uint32_t kLocked = 2;
constexpr uint32_t kUnlocked = 3;
constexpr uint32_t kCacheSwitched = 101;

}  // namespace

bool KestrelSDK::Lock(uint32_t timeoutMs) {
    std::string_view reply;
    if (!Query(opl::Word::LockPrinter, reply, timeoutMs) || !TakeResponseNumber(reply)) return false;
    if (lastResponseNum != kLocked) {
        SetLastError(SDK_ERROR_UNEXPECTED_REPLY);
        return false;
    }
    printerLocked = true;
    return true;
}

bool KestrelSDK::Unlock(uint32_t timeoutMs) {
    const bool unlocked = AskToUnlock(timeoutMs);
    printerLocked = false;
    return unlocked;
}

bool KestrelSDK::AskToUnlock(uint32_t timeoutMs) {
    const RemainingTime time(timeoutMs);
    if (!oplChannel.IsOpen()) {
        SetLastError(SDK_ERROR_CHANNEL_NOT_OPEN);
        return false;
    }
    std::string_view reply;
    while (Query(opl::Word::UnlockPrinter, reply, timeoutMs)) {
        uint32_t number = 0;
        if (parser.GetResponseNumber(reply, number) && number == kUnlocked) {
            lastResponseNum = number;
            return true;
        }
        if (time.Milliseconds() == 0) {
            SetLastError(ERROR_TIMEOUT);
            return false;
        }
        Sleep(PauseOf(Timing::UnlockRetry, connectionKind));
    }
    // What keeps the printer from being unlocked may be a job of this thread.
    if (printerLocked) Cancel();
    return false;
}

bool KestrelSDK::Cancel() {
    std::string_view reply;
    return Query(opl::Word::Cancel, reply, kTimeoutMs);
}

bool KestrelSDK::EnableCache(bool enable) {
    std::string& request = NewRequest();
    builder.AppendSetBool(request, opl::Key::Cache, enable);
    std::string_view reply;
    if (!Query(request, reply, kTimeoutMs)) return false;
    uint32_t number = 0;
    if (!parser.GetResponseNumber(reply, number)) number = 0;
    lastResponseNum = number;
    return number == kCacheSwitched;
}

}  // namespace session
