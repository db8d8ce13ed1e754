// Where a server listens.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace http {

struct Address {
    std::string host;   // an IPv6 address without its brackets
    uint16_t port = 0;  // 0: one that is free

    [[nodiscard]] std::string Text() const;
};

/// Of "127.0.0.1:8631", "localhost:0" or "[::1]:8631"; nothing for another text.
[[nodiscard]] std::optional<Address> ReadAddress(std::string_view text);

/// Whether a host is this computer alone.
[[nodiscard]] bool IsLoopback(std::string_view host);

}  // namespace http
