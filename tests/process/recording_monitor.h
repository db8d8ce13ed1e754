// A language monitor that writes down every request and answers with what it is given.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "channel_puppet.h"
#include "installed_printer.h"

// Memory behind an output that must stay as it was.
template <typename Record, size_t n>
struct Guarded {
    Record records[n];
    uint8_t guard[16];

    Guarded() { std::memset(static_cast<void*>(this), 0xA5, sizeof(*this)); }
    ~Guarded() {
        for (const uint8_t byte : guard)
            EXPECT_EQ(0xA5, byte);
    }
};

using Requests = std::vector<std::string>;

class RecordingMonitor final {
  public:
    RecordingMonitor() {
        puppet_.Do(std::string("open server ") + kChannelName + " 65791");
        server_ = std::thread([this] { Serve(); });
    }
    ~RecordingMonitor() {
        stop_ = true;
        server_.join();
    }

    void Answer(const std::string& reply) {
        const std::lock_guard guard(lock_);
        reply_ = reply;
    }
    // Requests that hold `fragment` get this reply, the last fragment told of that fits; others the one
    // above.
    void AnswerTo(const std::string& fragment, const std::string& reply) {
        const std::lock_guard guard(lock_);
        replies_.emplace(replies_.begin(), fragment, reply);
    }
    // Milliseconds before each reply.
    void SetDelay(uint32_t delay) { delay_ = delay; }
    // Requests since the last call.
    Requests TakeRequests() {
        const std::lock_guard guard(lock_);
        return std::exchange(requests_, {});
    }

  private:
    void Serve() {
        while (!stop_) {
            const std::string request = puppet_.Do("receive 100").text;
            if (request.empty()) continue;
            std::string reply;
            {
                const std::lock_guard guard(lock_);
                requests_.push_back(request);
                reply = ReplyTo(request);
            }
            Sleep(delay_);
            puppet_.Do("send " + AsWord(reply) + " 1000");
        }
    }
    const std::string& ReplyTo(const std::string& request) const {
        for (const auto& [fragment, reply] : replies_)
            if (request.find(fragment) != std::string::npos) return reply;
        return reply_;
    }

    ChannelPuppet puppet_;
    std::mutex lock_;
    Requests requests_;
    std::vector<std::pair<std::string, std::string>> replies_;
    std::string reply_ = "0000,X=1;";
    std::atomic<uint32_t> delay_{0};
    std::atomic<bool> stop_{false};
    std::thread server_;
};

// The language monitor that answers what the test says, with the printer selected and nothing to announce.
class Wire : public InstalledPrinter {
  protected:
    Wire() {
        uint8_t value = 0;
        EXPECT_TRUE(SelectPrinter(kPrinter)) << GetLastError();
        EXPECT_TRUE(GetFaxRedials(&value, kLong)) << GetLastError();
        monitor_.TakeRequests();
    }
    // The requests but for announcements: each of the shrinking time-outs of a list has one.
    Requests Sent() {
        Requests sent = monitor_.TakeRequests();
        std::erase_if(sent, [](const std::string& text) { return text.starts_with("ZRTimeoutParam"); });
        return sent;
    }

    RecordingMonitor monitor_;
};
