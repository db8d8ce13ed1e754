// A process that does with a channel what it is told, one line a command, and answers each with one line
// "<number> <last error> <text>". So a test decides step by step what its counterpart does.
//
//   open server|client NAME CAPACITY     send TEXT TIMEOUT           receive TIMEOUT
//   sendto PROCESS ABORTED TEXT TIMEOUT  broadcast TEXT TIMEOUT      cancel
//   dispatch (echoes on its own thread)  close                       quit
//
// TEXT, and the text of the answer, may be any bytes, written as line_text.h says.
#include <windows.h>

#include <iostream>
#include <sstream>
#include <string>

#include "ipc/opl_channel.h"
#include "line_text.h"

namespace {

class PuppetChannel final : public OPLChannel {
  public:
    void OnMessage(const void* data, size_t length) override {
        Send(data, static_cast<uint32_t>(length), 1000);
    }
};

struct Answer {
    uint32_t number = 0;
    std::string text;
};

WideText Widened(const std::string& text) {
    return WideText(text.begin(), text.end());
}

uint32_t Length(const std::string& text) {
    return static_cast<uint32_t>(text.size());
}

Answer Receive(PuppetChannel& channel, uint32_t timeout) {
    std::string buffer(kMaxOplMessage, '\0');
    const uint32_t bytes = channel.Receive(buffer.data(), Length(buffer), timeout);
    return {bytes, buffer.substr(0, bytes)};
}

Answer Obey(PuppetChannel& channel, std::istringstream& line) {
    std::string verb;
    std::string text;
    uint32_t timeout = 0;
    line >> verb;
    if (verb == "open") {
        std::string role;
        uint32_t capacity = 0;
        line >> role >> text >> capacity;
        const auto chosen = role == "server" ? kwt::ChannelRole::Server : kwt::ChannelRole::Client;
        return {channel.Open(chosen, Widened(text).c_str(), capacity), {}};
    }
    if (verb == "receive") {
        line >> timeout;
        return Receive(channel, timeout);
    }
    if (verb == "send") {
        line >> text >> timeout;
        text = FromWord(text);
        return {channel.Send(text.data(), Length(text), timeout), {}};
    }
    if (verb == "sendto") {
        uint32_t process = 0;
        bool aborted = false;
        line >> process >> aborted >> text >> timeout;
        text = FromWord(text);
        return {channel.SendTo(process, aborted, text.data(), Length(text), timeout), {}};
    }
    if (verb == "broadcast") {
        line >> text >> timeout;
        text = FromWord(text);
        return {channel.Broadcast(text.data(), Length(text), timeout), {}};
    }
    if (verb == "dispatch") return {channel.StartServerThread(), {}};
    if (verb == "cancel") channel.Cancel();
    if (verb == "close") channel.Close();
    return {};
}

}  // namespace

int main() {
    PuppetChannel channel;
    for (std::string line; std::getline(std::cin, line) && line != "quit";) {
        std::istringstream words(line);
        const Answer answer = Obey(channel, words);
        const uint32_t error = GetLastError();
        std::cout << answer.number << ' ' << error << ' ' << AsWord(answer.text) << std::endl;
    }
}
