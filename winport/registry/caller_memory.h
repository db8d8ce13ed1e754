// Memory that a caller points to, which need not be there: the kernel reads it, to whom that is an error and
// no signal.
#pragma once

#include <cstddef>
#include <optional>

namespace winport {

// False when some of it cannot be read. A kernel that does not read for us gives true.
bool IsReadable(const void* address, std::size_t size);

// One UTF-16 unit; nothing when it cannot be read.
std::optional<char16_t> UnitAt(const void* address);

}  // namespace winport
