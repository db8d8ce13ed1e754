// The scripts that tie a shell's completion to `kestrel complete`; the files beside this one.
#pragma once

#include <array>
#include <string_view>

namespace cli {

struct ShellScript final {
    std::string_view shell;
    std::string_view text;
};
extern const std::array<ShellScript, 3> kShellScripts;

}  // namespace cli
