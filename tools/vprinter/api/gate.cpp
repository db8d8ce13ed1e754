// Checks in the order in which a stranger would fail them.
#include "vprinter/api/gate.h"

#include <fmt/core.h>

#include <algorithm>

#include "shared/json.h"

namespace vprinter::api {
namespace {

constexpr std::string_view kCookie = "kestrel-panel=";
constexpr std::string_view kBearer = "Bearer ";
constexpr std::string_view kApi = "/api/";
constexpr std::string_view kSession = "/api/session";

/// Takes as long for a good beginning as for none.
bool IsSame(std::string_view left, std::string_view right) {
    unsigned difference = left.size() == right.size() ? 0 : 1;
    for (size_t i = 0; i < left.size(); ++i)
        difference |= static_cast<unsigned char>(left[i]) ^
                      static_cast<unsigned char>(right.empty() ? 0 : right[i % right.size()]);
    return difference == 0;
}

/// The host's name or address without its port; IPv6 in its brackets.
std::string_view NameOf(std::string_view host) {
    if (host.starts_with('[')) return host.substr(0, std::min(host.find(']'), host.size() - 1) + 1);
    return host.substr(0, host.find(':'));
}

// No name ends in a number, so what looks like an address cannot be pointed elsewhere.
bool IsAddress(std::string_view name) {
    if (name.starts_with('[')) return name.ends_with(']');
    return !name.empty() && name.find_first_not_of("0123456789.") == std::string_view::npos;
}

bool IsChange(std::string_view method) {
    return method != "GET" && method != "HEAD";
}

std::string_view CookieOf(std::string_view cookies) {
    const size_t at = cookies.find(kCookie);
    if (at == std::string_view::npos) return {};
    const std::string_view rest = cookies.substr(at + kCookie.size());
    return rest.substr(0, rest.find(';'));
}

}  // namespace

std::optional<Refusal> Gate::Judge(const RequestHead& head) const {
    if (!IsOwnHost(head.host)) {
        return Refusal(403, "the request is for another host",
                       fmt::format("open the panel by its address, such as http://127.0.0.1:{}", port_));
    }
    const bool foreign = !head.origin.empty() && head.origin != fmt::format("http://{}", head.host);
    const bool crossed =
        !head.fetchSite.empty() && head.fetchSite != "same-origin" && head.fetchSite != "none";
    const bool isApi = head.target.starts_with(kApi);
    if (foreign || (crossed && isApi))
        return Refusal(403, "the request comes from another page", "open the panel itself");
    const bool noLength = IsChange(head.method) && head.contentLength.empty();
    if (noLength || !head.transferEncoding.empty() || !head.contentEncoding.empty())
        return Refusal(411, "the body is sent in pieces or packed", "send it plain, with its length");
    if (IsChange(head.method) && head.contentType.substr(0, head.contentType.find(';')) != "application/json")
        return Refusal(415, "the body is not declared as JSON", "send Content-Type: application/json");
    if (isApi && head.target != kSession && !IsKnown(head))
        return Refusal(401, "this panel asks for its token", "send Authorization: Bearer and the token");
    return {};
}

std::optional<std::string> Gate::CookieFor(std::string_view token) const {
    if (token_.empty() || !IsSame(token, token_)) return {};
    return fmt::format("{}{}; HttpOnly; SameSite=Strict; Path=/", kCookie, session_);
}

bool Gate::IsOwnHost(std::string_view host) const {
    const std::string_view name = NameOf(host);
    if (name != "localhost" && !IsAddress(name)) return false;
    // A browser leaves the port of http out.
    return host.substr(name.size()) == fmt::format(":{}", port_) || (port_ == 80 && host == name);
}

bool Gate::IsKnown(const RequestHead& head) const {
    if (token_.empty()) return true;
    if (head.authorization.starts_with(kBearer))
        return IsSame(head.authorization.substr(kBearer.size()), token_);
    return IsSame(CookieOf(head.cookie), session_);
}

std::string TokenOf(std::string_view body) {
    try {
        return tools::Json::Parse(body).At("token").Text();
    } catch (const tools::JsonError&) {
        return {};
    }
}

bool IsLoopback(std::string_view address) {
    return address == "localhost" || address == "::1" || (address.starts_with("127.") && IsAddress(address));
}

}  // namespace vprinter::api
