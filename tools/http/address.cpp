// Host and port, told apart at the last colon.
#include "http/address.h"

#include <fmt/core.h>

#include <charconv>

#include "http/visitor.h"

namespace http {

std::string Address::Text() const {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return fmt::format(fmt::runtime(isIpv6 ? "[{}]:{}" : "{}:{}"), host, port);
}

std::optional<Address> ReadAddress(std::string_view text) {
    const size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) return {};
    std::string_view host = text.substr(0, colon);
    const bool inBrackets = host.starts_with('[') && host.ends_with(']');
    if (inBrackets) host = host.substr(1, host.size() - 2);
    if (host.empty() || inBrackets != (host.find(':') != std::string_view::npos)) return {};
    Address address{std::string(host)};
    const std::string_view digits = text.substr(colon + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    if (error != std::errc() || end != digits.data() + digits.size()) return {};
    return address;
}

bool IsLoopback(std::string_view host) {
    return host == "localhost" || host == "::1" || (host.starts_with("127.") && IsNumeric(host));
}

}  // namespace http
