// Opened by its bytes.
#include <fcntl.h>
#include <unistd.h>

#include "shared/line_file.h"

namespace tools {

bool LineFile::Open(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0) return false;
    Take(::fdopen(file, "a"));
    if (!file_) {
        ::close(file);
        return false;
    }
    // A buffer would go to the file in pieces.
    return std::setvbuf(file_.get(), nullptr, _IONBF, 0) == 0;
}

}  // namespace tools
