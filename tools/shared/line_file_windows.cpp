// Opened by its name in UTF-16: the narrow call takes the bytes for text of the ANSI code page.
#include "shared/line_file.h"
#include "shared/text.h"

namespace tools {

bool LineFile::Open(const std::string& path) {
    const std::optional<WideText> wide = WideFromUtf8(path);
    Take(wide ? _wfopen(wide->c_str(), L"a") : nullptr);
    return file_ != nullptr;
}

}  // namespace tools
