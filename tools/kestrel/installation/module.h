// Parts of the client that it loads only where they are wanted, as modules beside it.
#pragma once

#include <string>

namespace cli {

// The exported function of a module that belongs to this client; a module stays loaded. Throws a Failure when
// the installation lacks it. `library`: Debian's package with which a build makes it.
[[nodiscard]] void* FindInModule(const std::string& module, const char* function, const std::string& library);

}  // namespace cli
