// CRC-64/WE: polynomial 0x42F0E1EBA9EA3693, most significant bit first, all ones at both ends.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace host {

inline constexpr auto kCrc64Table = [] {
    constexpr uint64_t kPolynomial = 0x42F0E1EBA9EA3693;
    std::array<uint64_t, 256> table = {};
    for (uint64_t byte = 0; byte < table.size(); ++byte) {
        uint64_t rest = byte << 56;
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest >> 63) != 0 ? (rest << 1) ^ kPolynomial : rest << 1;
        table[byte] = rest;
    }
    return table;
}();

[[nodiscard]] constexpr uint64_t Crc64(std::string_view bytes) {
    uint64_t crc = ~uint64_t{0};
    for (const char byte : bytes)
        crc = (crc << 8) ^ kCrc64Table[(crc >> 56) ^ static_cast<uint8_t>(byte)];
    return ~crc;
}
static_assert(Crc64("123456789") == 0x62EC59E3F1A4F00A);

}  // namespace host
