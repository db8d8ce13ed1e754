// A process that does with a channel what it is told, one line a command, and answers each with one line
// "<number> <last error> <text>". So a test decides step by step what its counterpart does.
//
//   open server|client NAME CAPACITY     send TEXT TIMEOUT           receive TIMEOUT
//   sendto PROCESS ABORTED TEXT TIMEOUT  broadcast TEXT TIMEOUT      cancel
//   dispatch (echoes on its own thread)  close
//
// TEXT is one word, and so is what is received.
#include <windows.h>

#include <iostream>
#include <sstream>
#include <string>

#include "ipc/opl_channel.h"
#include "widened.h"

namespace {

class PuppetChannel final : public ipc::OPLChannel {
  public:
    void OnMessage(const void* data, size_t length) override {
        Send(data, static_cast<uint32_t>(length), 1000);
    }
};

struct Answer {
    uint32_t number = 0;
    std::string text;
};

std::string NextWord(std::istream& line) {
    std::string word;
    line >> word;
    return word;
}

uint32_t NextNumber(std::istream& line) {
    uint32_t number = 0;
    line >> number;
    return number;
}

Answer Obey(PuppetChannel& channel, std::istream& line) {
    const std::string verb = NextWord(line);
    if (verb == "open") {
        const bool isServer = NextWord(line) == "server";
        const WideText name = Widened(NextWord(line));
        const auto role = isServer ? ipc::ChannelRole::Server : ipc::ChannelRole::Client;
        return {channel.Open(role, name.c_str(), NextNumber(line)), {}};
    }
    if (verb == "receive") {
        std::string buffer(ipc::kMaxOplMessage, '\0');
        const uint32_t bytes = channel.Receive(buffer.data(), ipc::kMaxOplMessage, NextNumber(line));
        return {bytes, buffer.substr(0, bytes)};
    }
    if (verb == "dispatch") return {channel.StartServerThread(), {}};
    if (verb == "cancel") channel.Cancel();
    if (verb == "close") channel.Close();
    if (verb != "send" && verb != "sendto" && verb != "broadcast") return {};

    const uint32_t process = verb == "sendto" ? NextNumber(line) : 0;
    const bool isAborted = verb == "sendto" && NextNumber(line) != 0;
    const std::string text = NextWord(line);
    const auto length = static_cast<uint32_t>(text.size());
    const uint32_t timeout = NextNumber(line);
    if (verb == "send") return {channel.Send(text.data(), length, timeout), {}};
    if (verb == "broadcast") return {channel.Broadcast(text.data(), length, timeout), {}};
    return {channel.SendTo(process, isAborted, text.data(), length, timeout), {}};
}

}  // namespace

int main() {
    PuppetChannel channel;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        const Answer answer = Obey(channel, words);
        const uint32_t error = GetLastError();
        std::cout << answer.number << ' ' << error << ' ' << answer.text << std::endl;
    }
}
