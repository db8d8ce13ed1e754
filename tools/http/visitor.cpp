// Fields of a head, and the one secret.
#include "http/visitor.h"

#include <fmt/core.h>

#include <algorithm>

#include "shared/file.h"
#include "shared/user_error.h"

namespace http {
namespace {

constexpr std::string_view kBearer = "Bearer ";
constexpr size_t kShortestToken = 16;

/// The host's name or address without its port; IPv6 in its brackets.
std::string_view NameOf(std::string_view host) {
    if (host.starts_with('[')) return host.substr(0, std::min(host.find(']'), host.size() - 1) + 1);
    return host.substr(0, host.find(':'));
}

}  // namespace

bool IsOwnHost(std::string_view host, uint16_t port) {
    const std::string_view name = NameOf(host);
    if (name != "localhost" && !IsNumeric(name)) return false;
    // A browser leaves the port of http out.
    return host.substr(name.size()) == fmt::format(":{}", port) || (port == 80 && host == name);
}

bool IsNumeric(std::string_view name) {
    if (name.starts_with('[')) return name.ends_with(']');
    return !name.empty() && name.find_first_not_of("0123456789.") == std::string_view::npos;
}

bool IsForeign(std::string_view origin, std::string_view host) {
    return !origin.empty() && origin != fmt::format("http://{}", host);
}

bool IsSame(std::string_view left, std::string_view right) {
    unsigned difference = left.size() == right.size() ? 0 : 1;
    for (size_t i = 0; i < left.size(); ++i)
        difference |= static_cast<unsigned char>(left[i]) ^
                      static_cast<unsigned char>(right.empty() ? 0 : right[i % right.size()]);
    return difference == 0;
}

bool IsBearer(std::string_view authorization) {
    return authorization.starts_with(kBearer);
}

bool BearsToken(std::string_view authorization, std::string_view token) {
    return IsBearer(authorization) && IsSame(authorization.substr(kBearer.size()), token);
}

std::string LoadToken(const Address& address, const std::string& file, const TokenOptions& options) {
    if (file.empty()) {
        if (IsLoopback(address.host)) return {};
        throw tools::UserError(
            fmt::format("{} {}: others reach this address; give {} FILE, or choose 127.0.0.1",
                        options.address, address.Text(), options.token));
    }
    std::string token = tools::ReadFile(file).value_or("");
    token.erase(token.find_last_not_of(" \r\n") + 1);
    if (token.size() >= kShortestToken) return token;
    throw tools::UserError(
        fmt::format("{}: expected a token of at least {} characters; make one, for instance "
                    "with `openssl rand -hex 16`",
                    file, kShortestToken));
}

}  // namespace http
