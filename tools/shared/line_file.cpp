// One write and one flush a line, so that a program that is killed leaves whole lines.
#include "shared/line_file.h"

namespace tools {

void LineFile::Write(std::string_view line) {
    const std::lock_guard guard(lock_);
    std::FILE* const file = file_ ? file_.get() : stream_;
    std::fwrite(line.data(), 1, line.size(), file);
    std::fflush(file);
}

}  // namespace tools
