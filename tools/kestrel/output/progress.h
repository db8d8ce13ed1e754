// How far something is, for whoever watches the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// One line of standard error, which is a terminal: a bar, how many are done and what is next.
void DrawBar(size_t done, size_t total, std::string_view what);
void EraseBar();

// A bar on standard error while many settings are read; silent when nobody watches.
class Progress final {
  public:
    Progress(size_t total, bool wanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // `what` is about to be done.
    void Step(std::string_view what);

  private:
    size_t total_;
    size_t done_ = 0;
    bool shown_;
};

// A line on standard error while something is waited for: seconds passed and how far it is. Silent when
// nobody watches.
class WaitLine final {
  public:
    WaitLine(std::string what, bool wanted);
    ~WaitLine();
    WaitLine(const WaitLine&) = delete;
    WaitLine& operator=(const WaitLine&) = delete;

    void Show(std::string_view state) const;

  private:
    std::string what_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    bool shown_;
};

}  // namespace cli
