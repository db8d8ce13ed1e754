// Who asks, told from the head of a request.
//
// A page of another origin can send a browser's requests to any address. It cannot choose their Host, which
// tells the name that the user's browser believes it is talking to (a name that has been pointed at this
// machine gives itself away), nor hide their Origin.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "http/address.h"

namespace http {

/// Whether Host is this computer by a name that nobody can point elsewhere: localhost or a number, and the
/// port.
[[nodiscard]] bool IsOwnHost(std::string_view host, uint16_t port);
/// An address as numbers; IPv6 in its brackets. No name ends in a number, so what looks like an address
/// cannot be pointed elsewhere.
[[nodiscard]] bool IsNumeric(std::string_view name);
/// Whether an Origin, if there is one, is another than that of Host.
[[nodiscard]] bool IsForeign(std::string_view origin, std::string_view host);

/// Takes as long for a good beginning as for none.
[[nodiscard]] bool IsSame(std::string_view left, std::string_view right);
/// Whether an Authorization holds a token, and whether it is this one.
[[nodiscard]] bool IsBearer(std::string_view authorization);
[[nodiscard]] bool BearsToken(std::string_view authorization, std::string_view token);

/// How a program is told where to listen and what visitors must know, for its errors: "--web".
struct TokenOptions final {
    std::string_view address;
    std::string_view token;
};
/// The token in `file`; empty without a file, which only an address of this computer alone may be. Throws a
/// UserError.
[[nodiscard]] std::string LoadToken(const Address& address, const std::string& file,
                                    const TokenOptions& options);

}  // namespace http
