// What belongs to the client and is used by programs alone.
#pragma once

#include <filesystem>
#include <string_view>

namespace cli {

// Beside this client, or in the folder of the programs that are started by programs. Empty when there is
// none.
[[nodiscard]] std::filesystem::path FindHelper(std::string_view name);

}  // namespace cli
