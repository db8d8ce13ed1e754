// The block of bytes in which the language monitor tells the printer's status. It comes from another process
// and may be of any size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "kestrel/sdk_types.h"

namespace session {

class StatusBlock final {
  public:
    explicit StatusBlock(std::span<const uint8_t> sent) {
        std::copy_n(sent.begin(), std::min(sent.size(), kBlockBytes), bytes_);
    }

    void CopyTo(DeviceStatusRecord* record) const { std::memcpy(record, bytes_, sizeof(*record)); }
    [[nodiscard]] bool IsKnown() const {
        uint32_t state = 0;
        std::memcpy(&state, bytes_ + kStateOffset, sizeof(state));
        return state != kStateNotKnownYet || bytes_[kTextOffset] != 0 || bytes_[kTextOffset + 1] != 0;
    }
    [[nodiscard]] int32_t ConnectionKind() const { return bytes_[kConnectionOffset] != 0 ? 0 : 1; }

  private:
    static constexpr size_t kBlockBytes = 1316;  // what the language monitor sends
    static_assert(sizeof(DeviceStatusRecord) == 1052 && sizeof(DeviceStatusRecord) <= kBlockBytes);

    // What this library reads of the block; everything else belongs to the programs that show it.
    static constexpr size_t kStateOffset = 8;
    static constexpr size_t kConnectionOffset = 740;
    static constexpr size_t kTextOffset = 760;
    static constexpr uint32_t kStateNotKnownYet = 100000;

    uint8_t bytes_[kBlockBytes] = {};
};

}  // namespace session
