// A language monitor that writes down every request and answers with what it is given.
#pragma once

#include <atomic>
#include <cstring>
#include <mutex>

#include "installed_printer.h"
#include "ipc/opl_channel.h"

// Memory behind an output that must stay as it was.
template <typename Record, size_t n>
struct Guarded {
    Record records[n];
    uint8_t guard[16];

    Guarded() { std::memset(static_cast<void*>(this), 0xA5, sizeof(*this)); }
    ~Guarded() { EXPECT_THAT(guard, testing::Each(0xA5)); }
};

using Requests = std::vector<std::string>;

class RecordingMonitor final : public ipc::OPLChannel {
  public:
    RecordingMonitor() {
        EXPECT_TRUE(Open(ipc::ChannelRole::Server, TEXT("ZRIJ9900StatMonClass-01042005OPLChannelUSB001")));
        EXPECT_TRUE(StartServerThread());
    }
    ~RecordingMonitor() override { Close(); }

    void Answer(const std::string& reply) {
        const std::lock_guard guard(lock_);
        replies_.back().second = reply;
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

    void OnMessage(const void* data, size_t length) override {
        const std::string reply = Recorded({static_cast<const char*>(data), length});
        Sleep(delay_);
        Send(reply.data(), static_cast<uint32_t>(reply.size()), 1000);
    }

  private:
    // And what it is to be answered.
    std::string Recorded(const std::string& request) {
        const std::lock_guard guard(lock_);
        requests_.push_back(request);
        const auto fits = [&](const auto& row) { return request.find(row.first) != std::string::npos; };
        return std::ranges::find_if(replies_, fits)->second;
    }

    std::mutex lock_;
    Requests requests_;
    std::vector<std::pair<std::string, std::string>> replies_ = {{"", "0000,X=1;"}};
    std::atomic<uint32_t> delay_{0};
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
