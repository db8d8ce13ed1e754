// The new file has a name that nobody else gives, and its writer holds a lock on it: one without is what a
// killed writer has left.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "shared/file.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".new";
constexpr std::string_view kUnique = ".XXXXXX";

// What is done with it leaves errno as the reason of a failure.
class OpenFile final {
  public:
    explicit OpenFile(int number) : number_(number) {}
    OpenFile(OpenFile&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    OpenFile& operator=(OpenFile&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~OpenFile() {
        const int reason = errno;
        if (number_ >= 0) ::close(number_);
        errno = reason;
    }

    [[nodiscard]] bool IsOpen() const { return number_ >= 0; }
    [[nodiscard]] bool Lock() const { return ::flock(number_, LOCK_EX | LOCK_NB) == 0; }
    [[nodiscard]] bool HasName() const {
        struct stat status = {};
        return ::fstat(number_, &status) == 0 && status.st_nlink > 0;
    }
    [[nodiscard]] bool Write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = ::write(number_, text.data(), text.size());
            if (count < 0 && errno != EINTR) return false;
            if (count > 0) text.remove_prefix(static_cast<size_t>(count));
        }
        return true;
    }
    [[nodiscard]] bool LetRead(Readers readers) const {
        return readers == Readers::Owner || ::fchmod(number_, 0644) == 0;
    }
    // Some file systems cannot, and say so.
    [[nodiscard]] bool Sync() const { return ::fsync(number_) == 0 || errno == EINVAL || errno == ENOTSUP; }

  private:
    int number_;
};

std::error_code Reason() {
    return {errno, std::generic_category()};
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : ".";
}

void SweepLeftovers(const fs::path& path) {
    const std::string name = path.filename().string();
    std::error_code error;
    for (fs::directory_iterator each(FolderOf(path), error), end; !error && each != end;
         each.increment(error)) {
        const std::string other = each->path().filename().string();
        const bool isAlike = other.size() == name.size() + kUnique.size() + kEnding.size() &&
                             other.starts_with(name + '.') && other.ends_with(kEnding);
        if (!isAlike) continue;
        const OpenFile file(::open(each->path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file.IsOpen() && file.Lock()) ::unlink(each->path().c_str());
    }
}

// One that another writer has swept away before it was locked is made again.
OpenFile MakeBeside(const fs::path& path, std::string& name) {
    for (;;) {
        name = path.string() + std::string(kUnique) + std::string(kEnding);
        OpenFile file(::mkostemps(name.data(), static_cast<int>(kEnding.size()), O_CLOEXEC));
        if (!file.IsOpen() || (file.Lock() && file.HasName())) return file;
    }
}

std::error_code WriteStraight(const fs::path& path, std::string_view text) {
    const OpenFile file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return file.IsOpen() && file.Write(text) ? std::error_code() : Reason();
}

}  // namespace

std::error_code RewriteFile(const fs::path& path, std::string_view text, Readers readers) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) return WriteStraight(path, text);

    SweepLeftovers(path);
    std::string name;
    const OpenFile file = MakeBeside(path, name);
    if (!file.IsOpen()) return Reason();
    if (!file.LetRead(readers) || !file.Write(text) || !file.Sync() ||
        ::rename(name.c_str(), path.c_str()) != 0) {
        error = Reason();
        ::unlink(name.c_str());
        return error;
    }
    // The name lasts with its folder; one that may be written to and not be read is not asked.
    const OpenFile folder(::open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return !folder.IsOpen() || folder.Sync() ? std::error_code() : Reason();
}

}  // namespace tools
