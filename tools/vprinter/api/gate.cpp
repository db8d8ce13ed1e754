// Checks in the order in which a stranger would fail them.
#include "vprinter/api/gate.h"

#include <fmt/core.h>

#include "http/visitor.h"
#include "shared/json.h"

namespace vprinter::api {
namespace {

constexpr std::string_view kCookie = "kestrel-panel=";
constexpr std::string_view kApi = "/api/";
constexpr std::string_view kSession = "/api/session";

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
    if (!http::IsOwnHost(head.host, port_)) {
        return Refusal(403, "the request is for another host",
                       fmt::format("open the panel by its address, such as http://127.0.0.1:{}", port_));
    }
    const bool foreign = http::IsForeign(head.origin, head.host);
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
    if (token_.empty() || !http::IsSame(token, token_)) return {};
    return fmt::format("{}{}; HttpOnly; SameSite=Strict; Path=/", kCookie, session_);
}

bool Gate::IsKnown(const RequestHead& head) const {
    if (token_.empty()) return true;
    if (http::IsBearer(head.authorization)) return http::BearsToken(head.authorization, token_);
    return http::IsSame(CookieOf(head.cookie), session_);
}

std::string TokenOf(std::string_view body) {
    try {
        return tools::Json::Parse(body).At("token").Text();
    } catch (const tools::JsonError&) {
        return {};
    }
}

}  // namespace vprinter::api
