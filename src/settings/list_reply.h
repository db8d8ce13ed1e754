// Lists that come as one reply: response number 101 and one item per field, each key with an index.
#pragma once

#include <string_view>

#include "session/kestrel_sdk.h"

namespace settings {

/// Asks for the list `key` and sets `items` to what the reply holds, valid until the next request. False
/// with SDK_ERROR_BAD_REPLY when the reply has no response number, with SDK_ERROR_UNEXPECTED_REPLY when it
/// has another than that of a list.
bool QueryList(session::KestrelSDK& sdk, opl::Key key, opl::ListItems& items, uint32_t timeoutMs);

/// The record that an item belongs to. False, with SDK_ERROR_UNEXPECTED_REPLY, when it has none below
/// `limit`.
bool ReadItemIndex(std::string_view item, uint32_t limit, uint32_t& index);

}  // namespace settings
