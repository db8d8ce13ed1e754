// The number by which a printer knows the computer that set its clock last.
#pragma once

#include <cstdint>

namespace host {

/// Reads the identity from the registry. One that is not there, or has another form, is made at random and
/// stored; where it cannot be stored it is another one at each call. False, with 0, when none can be made.
/// Two processes that make one at the same moment each go on with their own for that call.
[[nodiscard]] bool GetHostId(uint64_t& identity);

}  // namespace host
