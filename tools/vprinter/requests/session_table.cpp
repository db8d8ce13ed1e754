#include "vprinter/requests/session_table.h"

#include <algorithm>

namespace vprinter {

void SessionTable::Announce(uint32_t processId, int32_t announcedMs) {
    auto place = std::ranges::find(sessions_, processId, &Session::processId);
    if (place == sessions_.end()) place = std::ranges::min_element(sessions_, {}, &Session::order);
    *place = {processId, announcedMs, nextOrder_++};
}

bool SessionTable::HasGivenUp(uint32_t processId, uint64_t elapsedMs) const {
    if (elapsedMs == 0) return false;
    const auto session = std::ranges::find(sessions_, processId, &Session::processId);
    if (session == sessions_.end() || session->announcedMs < 0) return false;
    return static_cast<double>(elapsedMs) > session->announcedMs / 0.95;
}

}  // namespace vprinter
