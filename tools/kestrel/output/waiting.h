#pragma once

#include <string>
#include <thread>

namespace cli {

// A line on standard error that shows how long something takes; silent when nobody watches.
class Waiting final {
  public:
    Waiting(std::string what, bool wanted);
    ~Waiting();
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

  private:
    void Show(const std::stop_token& stop) const;

    const std::string what_;
    std::jthread thread_;  // last: it uses the text
};

}  // namespace cli
