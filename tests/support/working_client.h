// Clients of a channel at work in another process.
#pragma once

#include <gtest/gtest.h>

#include <sstream>

#include "child_process.h"
#include "exchange_counts.h"

class WorkingClient final {
  public:
    WorkingClient() = default;
    // They have opened the channel and wait.
    WorkingClient(const std::string& channel, int threads, int timeoutMs, int pauseMs = 0)
        : process_({CHANNEL_CLIENT, channel, std::to_string(threads), std::to_string(timeoutMs),
                    std::to_string(pauseMs)}) {
        EXPECT_EQ("ready", process_.ReadLine());
    }
    void Begin() { process_.WriteLine("begin"); }
    // What they have done since then, once they were served at least once.
    ExchangeCounts Counts() {
        process_.WriteLine("end");
        std::istringstream line(process_.ReadLine(std::chrono::minutes(1)).value_or(""));
        ExchangeCounts counts;
        EXPECT_TRUE(line >> counts);
        return counts;
    }
    void Close() {
        process_.WriteLine("close");
        EXPECT_EQ(0, process_.Wait());
    }
    // What a single one does until it is served.
    static ExchangeCounts Served(const std::string& channel, int timeoutMs, int pauseMs) {
        WorkingClient client(channel, 1, timeoutMs, pauseMs);
        client.Begin();
        const ExchangeCounts counts = client.Counts();
        client.Close();
        return counts;
    }
    ChildProcess& Process() { return process_; }

  private:
    ChildProcess process_;
};
