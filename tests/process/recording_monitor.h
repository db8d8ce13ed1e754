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
    // Requests that hold `fragment` get this reply, the first fragment told of that fits; others the one
    // above.
    void AnswerTo(const std::string& fragment, const std::string& reply) {
        const std::lock_guard guard(lock_);
        replies_.emplace_back(fragment, reply);
    }
    // Milliseconds before each reply.
    void SetDelay(uint32_t delay) { delay_ = delay; }
    // Requests since the last call.
    std::vector<std::string> Requests() {
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
    std::vector<std::string> requests_;
    std::vector<std::pair<std::string, std::string>> replies_;
    std::string reply_ = "0000,X=1;";
    std::atomic<uint32_t> delay_{0};
    std::atomic<bool> stop_{false};
    std::thread server_;
};
