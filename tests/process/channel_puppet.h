// A counterpart in another process that does with a channel what the test tells it.
#pragma once

#include <sstream>

#include "child_process.h"

struct PuppetAnswer {
    uint32_t number = 0;
    uint32_t error = 0;
    std::string text;

    bool operator==(const PuppetAnswer&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const PuppetAnswer& answer) {
        return out << answer.number << ' ' << answer.error << ' ' << answer.text;
    }
};

class ChannelPuppet final {
  public:
    ChannelPuppet() : process_({CHANNEL_PUPPET}) {}

    // Tells the puppet something and waits until it is done.
    PuppetAnswer Do(const std::string& command) {
        Begin(command);
        return End();
    }

    // The same in two steps, for what ends only when the test has done its part.
    void Begin(const std::string& command) { process_.WriteLine(command); }
    PuppetAnswer End() {
        std::istringstream line(process_.ReadLine().value_or("0 4294967295 no-answer"));
        PuppetAnswer answer;
        line >> answer.number >> answer.error >> answer.text;
        return answer;
    }

    ChildProcess& Process() { return process_; }

  private:
    ChildProcess process_;
};
