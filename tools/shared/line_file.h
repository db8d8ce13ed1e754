// Where a program appends lines for whoever reads them: one of its streams, or a file.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace tools {

/// May be used from several threads. A line is on its way to the reader when Write returns.
class LineFile final {
  public:
    /// Lines go to one of the program's own streams, until a file is opened.
    explicit LineFile(std::FILE* stream) : stream_(stream) {}

    /// Goes on at the end of a file instead; false when it cannot be opened. Any number of programs may open
    /// the same new file at the same time. A new file is its owner's alone.
    [[nodiscard]] bool Open(const std::string& path);
    /// Goes on in an open file, which it closes in the end.
    void Take(std::FILE* file) { file_.reset(file); }

    /// `line` with its line feed.
    void Write(std::string_view line);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::FILE* stream_;
    std::unique_ptr<std::FILE, Close> file_;
    std::mutex lock_;
};

}  // namespace tools
