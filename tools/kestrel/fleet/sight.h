// What is seen of a printer again and again, and what has changed since.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

struct Sight final {
    bool answers = false;
    std::string reason;                                      // why it does not answer
    std::vector<std::pair<std::string, std::string>> facts;  // by their keys, as people read them
};

// One thing that has changed. Without a key: whether the printer answers; `now` is the reason when it does
// not.
struct SightEvent final {
    std::string key;
    std::string old;
    std::string now;
    bool answers = true;
};

// What is known of a printer, from one sight to the next.
class KnownPrinter final {
  public:
    // Nothing is told of the first sight but a printer that does not answer. One that answers again is told
    // with what has changed meanwhile.
    [[nodiscard]] std::vector<SightEvent> Learn(const Sight& now);

  private:
    bool wasSeen_ = false;
    Sight last_;  // the facts: those of the last answer
};

}  // namespace cli
