// The pages of the panel, made by the build from panel/.
#pragma once

#include <span>
#include <string_view>

namespace vprinter::web {

struct PanelFile {
    std::string_view path;  // of the request
    std::string_view type;
    std::string_view text;
};

[[nodiscard]] std::span<const PanelFile> PanelFiles();

}  // namespace vprinter::web
