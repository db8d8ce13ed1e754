// Opened by its bytes.
#include "shared/line_file.h"

namespace tools {

bool LineFile::Open(const std::string& path) {
    Take(std::fopen(path.c_str(), "a"));
    return file_ != nullptr;
}

}  // namespace tools
