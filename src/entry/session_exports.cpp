// The exported functions of the library itself, of printer selection, of raw access and of the
// session with the printer.
#include <algorithm>

#include "entry/export_call.h"
#include "entry/library.h"
#include "host/product_config.h"
#include "kestrel/sdk.h"
#include "kwt/last_error_keeper.h"
#include "kwt/strings.h"

using namespace entry;

namespace {

constexpr uint32_t kVersion = 10;
constexpr uint32_t kNoObject = 100001;

}  // namespace

uint32_t GetSDKVersion() {
    return kVersion;
}

kestrel_bool SelectPrinter(const kestrel_char* printerName) {
    return WithoutExceptions(kFailure, [&]() -> kestrel_bool {
        if (!host::CProductConfig::Instance().LoadForModule(LibraryModule())) return kFailure;
        return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return sdk.SelectPrinter(printerName); });
    });
}

kestrel_bool SendCmd(const void* request, uint32_t requestLength, void* replyBuffer, uint32_t replyBufferSize,
                     uint32_t* replyLength, uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        return sdk.SendCmd(request, requestLength, replyBuffer, replyBufferSize, replyLength, timeoutMs);
    });
}

kestrel_bool Lock(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return sdk.Lock(timeoutMs); });
}

kestrel_bool Unlock(uint32_t timeoutMs) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return sdk.Unlock(timeoutMs); });
}

kestrel_bool Cancel() {
    return OnThreadSDK(kFailure, [](KestrelSDK& sdk) { return sdk.Cancel(); });
}

kestrel_bool EnableCache(kestrel_bool enable) {
    return OnThreadSDK(kFailure, [&](KestrelSDK& sdk) { return sdk.EnableCache(enable != 0); });
}

kestrel_bool GetStatus(DeviceStatusRecord* record, uint32_t size) {
    const void* const whole = size >= sizeof(*record) ? record : nullptr;
    return WithPointers({whole}, [&](KestrelSDK& sdk) { return sdk.GetStatus(record); });
}

void GetLastBadResponse(kestrel_char* buffer, uint32_t capacity) {
    const kwt::LastErrorKeeper keeper;
    if (buffer == nullptr || capacity == 0) return;
    buffer[0] = 0;
    OnThreadSDK(kFailure, [&](KestrelSDK& sdk) {
        // No text is longer, and the size in bytes of a larger capacity need not be a size_t any more.
        const size_t characters = std::min<size_t>(capacity, ipc::kMaxOplMessage + 1);
        kwt::AsciiToWideBuffer(buffer, sdk.lastBadResponse.c_str(), characters * sizeof(*buffer));
        return true;
    });
}

uint32_t GetLastResponseNum() {
    const DWORD error = GetLastError();
    return OnThreadSDK(kNoObject, [&](KestrelSDK& sdk) {
        SetLastError(error);
        return sdk.lastResponseNum;
    });
}
