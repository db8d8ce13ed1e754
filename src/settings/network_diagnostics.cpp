#include "settings/network_diagnostics.h"

#include <algorithm>

#include "kwt/strings.h"
#include "settings/list_reply.h"
#include "settings/typed_queries.h"

namespace {

static_assert(sizeof(KestrelHost) == 512);

bool ReadItem(const std::string& item, KestrelHost* hosts) {
    uint32_t index = 0;
    if (!ReadItemIndex(item, KESTREL_MAX_HOSTS, index)) return false;
    std::string name;
    if (OPLParser::GetValue(item, name) && name != "(null)")
        kwt::AsciiToWideBuffer(hosts[index].name, name.c_str(), sizeof(hosts[index].name));
    return true;
}

}  // namespace

bool SetPing(KestrelSDK& sdk, uint32_t address, uint8_t count, uint8_t pingTimeout, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetAddress(request, OplKey::PingAddress, address);
    sdk.builder.AppendSetInt(request, OplKey::PingCount, count);
    sdk.builder.AppendSetInt(request, OplKey::PingTimeout, pingTimeout);
    return SetValue(sdk, request, timeoutMs);
}

bool GetMDNSHostList(KestrelSDK& sdk, KestrelHost* hosts, uint32_t timeoutMs) {
    std::fill_n(hosts, KESTREL_MAX_HOSTS, KestrelHost{});
    std::vector<std::string> items;
    if (!QueryList(sdk, OplKey::MDNSHostList, items, timeoutMs)) return false;
    return std::ranges::all_of(items, [&](const std::string& item) { return ReadItem(item, hosts); });
}
