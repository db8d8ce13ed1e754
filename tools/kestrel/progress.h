#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// A bar on standard error while many settings are read; silent when nobody watches.
class Progress final {
  public:
    Progress(std::size_t total, bool wanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // `what` is about to be done.
    void Step(std::string_view what);

  private:
    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_;
};

}  // namespace cli
