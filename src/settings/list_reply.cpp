// A list is recognised by its response number before anything is read from it.
#include "settings/list_reply.h"

#include "kestrel/sdk_errors.h"

namespace settings {
namespace {
constexpr uint32_t kList = 101;
}

bool QueryList(session::KestrelSDK& sdk, opl::Key key, opl::ListItems& items, uint32_t timeoutMs) {
    std::string_view reply;
    if (!sdk.Query(key, reply, timeoutMs) || !sdk.TakeResponseNumber(reply)) return false;
    if (sdk.lastResponseNum != kList) {
        SetLastError(SDK_ERROR_UNEXPECTED_REPLY);
        return false;
    }
    static_cast<void>(sdk.parser.SplitList(reply, items));  // a list without items is a list
    return true;
}

bool ReadItemIndex(std::string_view item, uint32_t limit, uint32_t& index) {
    if (opl::OPLParser::GetIndex(item, index) && index < limit) return true;
    SetLastError(SDK_ERROR_UNEXPECTED_REPLY);
    return false;
}

}  // namespace settings
