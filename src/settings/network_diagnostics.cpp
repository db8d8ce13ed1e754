// A ping is set up in one request; the hosts come as a list.
#include "settings/network_diagnostics.h"

#include <algorithm>

#include "kwt/strings.h"
#include "settings/list_reply.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

static_assert(sizeof(KestrelHost) == 512);

bool ReadItem(std::string_view item, KestrelHost* hosts) {
    uint32_t index = 0;
    if (!ReadItemIndex(item, KESTREL_MAX_HOSTS, index)) return false;
    std::string name;
    if (opl::OPLParser::GetValue(item, name) && name != "(null)")
        kwt::AsciiToWideBuffer(hosts[index].name, name.c_str(), sizeof(hosts[index].name));
    return true;
}

}  // namespace

bool SetPing(session::KestrelSDK& sdk, uint32_t address, uint8_t count, uint8_t pingTimeout,
             uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetAddress(request, opl::Key::PingAddress, address);
    sdk.builder.AppendSetInt(request, opl::Key::PingCount, count);
    sdk.builder.AppendSetInt(request, opl::Key::PingTimeout, pingTimeout);
    return SetValue(sdk, request, timeoutMs);
}

bool GetMDNSHostList(session::KestrelSDK& sdk, KestrelHost* hosts, uint32_t timeoutMs) {
    std::fill_n(hosts, KESTREL_MAX_HOSTS, KestrelHost{});
    opl::ListItems items;
    if (!QueryList(sdk, opl::Key::MDNSHostList, items, timeoutMs)) return false;
    return std::ranges::all_of(items.views, [&](std::string_view item) { return ReadItem(item, hosts); });
}

}  // namespace settings
