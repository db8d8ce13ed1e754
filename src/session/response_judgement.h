// Which response numbers of the device are good, and which error codes the bad ones stand for.
#pragma once

#include <cstdint>

namespace session {

/// 0 when a reply with this response number is good, else the last-error value that it stands for.
[[nodiscard]] uint32_t ErrorOfResponse(uint32_t number);

}  // namespace session
