// Who may come in to the panel: decided from the head of a request alone, before its body is read
// (http/visitor.h has the reasons).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vprinter/api/refusal.h"

namespace vprinter::api {

/// Fields that are not there are empty.
struct RequestHead {
    std::string_view method;
    std::string_view target;  // path and query, as sent
    std::string_view host;
    std::string_view origin;
    std::string_view fetchSite;  // Sec-Fetch-Site
    std::string_view contentType;
    std::string_view contentLength;
    std::string_view contentEncoding;
    std::string_view transferEncoding;
    std::string_view authorization;
    std::string_view cookie;
};

class Gate final {
  public:
    /// `token`: what whoever asks must know; empty for none. `session` stands for it in the browser's cookie.
    Gate(uint16_t port, std::string token, std::string session)
        : port_(port), token_(std::move(token)), session_(std::move(session)) {}

    /// Nothing for a request that may come in. The pages themselves need no token: they hold no data.
    [[nodiscard]] std::optional<Refusal> Judge(const RequestHead& head) const;

    /// The cookie's text for whoever has told the token; nothing for a wrong one.
    [[nodiscard]] std::optional<std::string> CookieFor(std::string_view token) const;
    [[nodiscard]] bool NeedsToken() const { return !token_.empty(); }

  private:
    [[nodiscard]] bool IsKnown(const RequestHead& head) const;

    uint16_t port_;
    std::string token_;
    std::string session_;
};

/// What {"token": "..."} tells; empty for anything else.
[[nodiscard]] std::string TokenOf(std::string_view body);

}  // namespace vprinter::api
