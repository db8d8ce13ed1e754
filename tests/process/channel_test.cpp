// The channel protocol, step by step, with the other side in another process.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "channel_puppet.h"
#include "ipc/opl_channel.h"

namespace {

using Clock = std::chrono::steady_clock;
using kwt::ChannelRole;
using std::chrono::milliseconds;

constexpr uint32_t kShort = 100;
constexpr uint32_t kLong = 5000;

struct Received {
    std::string text;
    uint32_t error = 0;
};

WideText Widened(const std::string& text) {
    return WideText(text.begin(), text.end());
}

class Channel : public testing::Test {
  protected:
    Channel() {
        static std::atomic<int> count{0};
        name_ = "Channel" + std::to_string(++count);
    }

    void OpenBoth(uint32_t capacity = 200) {
        const std::string rest = name_ + ' ' + std::to_string(capacity);
        ASSERT_EQ(1u, server_.Do("open server " + rest).number);
        ASSERT_TRUE(client_.Open(ChannelRole::Client, Widened(name_).c_str(), capacity));
    }

    uint32_t Send(const std::string& text, uint32_t timeout = kLong) {
        return client_.Send(text.data(), static_cast<uint32_t>(text.size()), timeout);
    }

    Received Receive(uint32_t timeout = kLong, uint32_t size = 300) {
        std::string buffer(size, '\0');
        const uint32_t bytes = client_.Receive(buffer.data(), size, timeout);
        return {buffer.substr(0, bytes), GetLastError()};
    }

    // The server's process has begun to receive.
    void WaitUntilServed() {
        const WideText name = TEXT("Global\\") + Widened(name_) + TEXT("ServerIdleEvent");
        HANDLE idle = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(idle, kLong));
        CloseHandle(idle);
    }

    // Posts a request, which the server takes and does not answer yet.
    void Ask(const std::string& request) {
        server_.Begin("receive 5000");
        ASSERT_EQ(request.size(), Send(request));
        ASSERT_EQ(request, server_.End().text);
    }

    // One whole exchange whose reply is `reply`.
    void ExpectExchange(const std::string& request, const std::string& reply) {
        Ask(request);
        ASSERT_EQ(reply.size(), server_.Do("send " + reply + " 1000").number);
        const Received received = Receive();
        EXPECT_EQ(reply, received.text);
        EXPECT_EQ(0u, received.error);
    }

    std::string name_;
    ChannelPuppet server_;
    OPLChannel client_;
};

TEST_F(Channel, An_exchange_goes_through_and_the_next_one_too) {
    OpenBoth();
    ExpectExchange("first", "one");
    ExpectExchange("second", "two");
}

TEST_F(Channel, A_request_of_the_capacity_goes_whole_and_a_longer_one_is_cut) {
    OpenBoth(200);
    ExpectExchange(std::string(200, 'x'), "whole");
    server_.Begin("receive 5000");
    EXPECT_EQ(200u, Send(std::string(201, 'y')));
    EXPECT_EQ(std::string(200, 'y'), server_.End().text);
}

TEST_F(Channel, Nobody_serves_gives_1460_after_the_time_out_and_frees_the_transaction) {
    ASSERT_TRUE(client_.Open(ChannelRole::Client, Widened(name_).c_str(), 200));
    const auto start = Clock::now();
    EXPECT_EQ(0u, Send("x", kShort));
    EXPECT_EQ(1460u, GetLastError());
    EXPECT_GE(Clock::now() - start, milliseconds(kShort));
    EXPECT_EQ(1u, server_.Do("open server " + name_ + " 200").number);
    ExpectExchange("now", "served");
}

TEST_F(Channel, A_closed_channel_gives_110) {
    EXPECT_EQ(0u, Send("x", kShort));
    EXPECT_EQ(110u, GetLastError());
    EXPECT_EQ(110u, Receive(kShort).error);
    client_.Cancel();
    EXPECT_EQ(110u, GetLastError());
}

TEST_F(Channel, A_second_send_without_receive_gives_776_and_the_third_works) {
    OpenBoth();
    Ask("a");
    EXPECT_EQ(0u, Send("b"));
    EXPECT_EQ(776u, GetLastError());
    ExpectExchange("c", "done");
}

TEST_F(Channel, A_reply_of_another_process_is_left_and_the_receive_gives_up_with_1460) {
    OpenBoth();
    Ask("question");
    EXPECT_EQ(5u, server_.Do("sendto 4194303 0 alien 1000").number);
    EXPECT_EQ(1460u, Receive(200).error);
    EXPECT_EQ(1u, server_.Do("send x 200").number) << "the message of a process that is gone is overwritten";
}

TEST_F(Channel, A_reply_of_another_living_process_blocks_the_section_with_32_until_it_is_cancelled) {
    OpenBoth();
    ChannelPuppet other;
    Ask("question");
    const std::string late = "sendto " + std::to_string(other.Id()) + " 0 late 1000";
    EXPECT_EQ(4u, server_.Do(late).number);
    for (int i = 0; i < 2; ++i) {
        const PuppetAnswer refused = server_.Do("send answer 500");
        EXPECT_EQ(0u, refused.number);
        EXPECT_EQ(32u, refused.error);
    }
    server_.Do("cancel");
    EXPECT_EQ(6u, server_.Do("send answer 500").number);
    EXPECT_EQ("answer", Receive().text);
}

TEST_F(Channel, An_aborted_message_is_delivered_with_995) {
    OpenBoth();
    Ask("question");
    server_.Do("sendto " + std::to_string(GetCurrentProcessId()) + " 1 partly 1000");
    const Received received = Receive();
    EXPECT_EQ("partly", received.text);
    EXPECT_EQ(995u, received.error);
}

TEST_F(Channel, A_broadcast_is_not_taken_by_a_waiting_client_and_does_not_block_the_reply) {
    OpenBoth();
    Ask("question");
    EXPECT_EQ(4u, server_.Do("broadcast news 1000").number);
    EXPECT_EQ(6u, server_.Do("send answer 1000").number);
    EXPECT_EQ("answer", Receive().text);
}

TEST_F(Channel, Cancel_of_another_thread_ends_a_waiting_receive_with_995) {
    OpenBoth();
    Ask("question");
    std::thread canceller([this] {
        Sleep(100);
        client_.Cancel();
    });
    EXPECT_EQ(995u, Receive().error);
    canceller.join();
    ExpectExchange("again", "fine");
}

TEST_F(Channel, A_cancel_without_a_waiting_receive_ends_the_next_one_once) {
    OpenBoth();
    Ask("question");
    client_.Cancel();
    Ask("next");
    server_.Do("send answer 1000");
    EXPECT_EQ(995u, Receive().error);
    ExpectExchange("last", "fine");
}

TEST_F(Channel, Cancel_withdraws_an_unread_request_of_whoever_posted_it) {
    OpenBoth();
    server_.Begin("receive 5000");
    WaitUntilServed();
    server_.Process().Stop();
    EXPECT_EQ(6u, Send("unread"));
    ChannelPuppet other;
    other.Do("open client " + name_ + " 200");  // opening closes first, but a closed channel cancels nothing
    other.Do("cancel");
    server_.Process().Continue();
    EXPECT_EQ("", server_.End().text);
}

TEST_F(Channel, A_late_reply_before_the_next_request_is_not_taken_for_its_answer) {
    OpenBoth();
    Ask("given-up");
    EXPECT_EQ(1460u, Receive(kShort).error);
    server_.Do("send late 1000");
    ExpectExchange("next", "right");
}

TEST_F(Channel, A_late_reply_after_the_next_request_is_taken_for_its_answer) {
    // The protocol has no sequence numbers; this is why a counterpart drops what was given up.
    OpenBoth();
    Ask("given-up");
    EXPECT_EQ(1460u, Receive(kShort).error);
    Ask("next");
    server_.Do("send late 1000");
    EXPECT_EQ("late", Receive().text);
}

TEST_F(Channel, A_receive_buffer_that_is_too_small_gets_the_beginning) {
    OpenBoth();
    Ask("question");
    server_.Do("send abcdef 1000");
    EXPECT_EQ("abc", Receive(kLong, 3).text);
}

TEST_F(Channel, The_dispatch_thread_serves_and_others_are_refused_with_32) {
    OpenBoth();
    EXPECT_EQ(1u, server_.Do("dispatch").number);
    for (const char* text : {"one", "two", "three"}) {
        ASSERT_EQ(std::strlen(text), Send(text));
        EXPECT_EQ(text, Receive().text);
    }
    EXPECT_EQ(32u, server_.Do("receive 100").error);
    server_.Do("close");
    EXPECT_EQ(0u, Send("gone", kShort));
    EXPECT_EQ(1460u, GetLastError());
}

TEST_F(Channel, A_client_that_waits_for_a_killed_ones_turn_gets_it_within_100_ms_and_735) {
    OpenBoth();
    ChannelPuppet victim;
    victim.Do("open client " + name_ + " 200");
    server_.Begin("receive 5000");
    victim.Do("send dying 1000");
    server_.End();
    Clock::time_point killed;
    std::thread killer([&] {
        Sleep(200);
        victim.Process().Kill();
        killed = Clock::now();
    });
    EXPECT_EQ(0u, Send("waiting"));
    EXPECT_EQ(735u, GetLastError());
    const auto end = Clock::now();
    killer.join();
    EXPECT_LT(end - killed, milliseconds(100));
    ExpectExchange("next", "fine");
}

TEST_F(Channel, A_server_killed_before_or_after_reading_costs_one_time_out) {
    for (const bool reads : {false, true}) {
        SCOPED_TRACE(reads);
        ChannelPuppet server;
        ASSERT_EQ(1u, server.Do("open server " + name_ + " 200").number);
        ASSERT_TRUE(client_.Open(ChannelRole::Client, Widened(name_).c_str(), 200));
        server.Begin("receive 5000");
        while (Send("x", 50) == 0) {
        }
        if (reads) server.End();
        server.Process().Kill();
        server.Process().Wait();
        EXPECT_EQ(1460u, Receive(200).error);
        client_.Cancel();
    }
    OpenBoth();
    // The cancels above found nobody waiting: each leaves at most one cancelled receive behind.
    Ask("x");
    server_.Do("send y 1000");
    Receive();
    ExpectExchange("again", "fine");
}

TEST_F(Channel, Names_are_cleaned_of_what_object_names_do_not_take) {
    name_ += "a*b/c:d<e>f?g\\h|i";
    OpenBoth();
    EXPECT_EQ(Widened(name_.substr(0, name_.find('a', 1))), client_.GetName().substr(0, name_.find('a', 1)));
    EXPECT_NE(WideText::npos, client_.GetName().find(TEXT("aAbFcCdLeGfQgBhPi")));
    ExpectExchange("clean", "names");
}

// What both sides share, against numbers: a change here breaks every other module of the product.
TEST_F(Channel, The_eight_objects_have_the_names_sizes_and_offsets_that_the_product_knows) {
    name_ = "Wire" + name_;
    OpenBoth(65791);
    server_.Begin("receive 5000");
    WaitUntilServed();
    server_.Process().Stop();
    EXPECT_EQ(3u, Send("abc"));
    const WideText base = TEXT("Global\\") + Widened(name_);
    const auto existing = [&](HANDLE handle) {
        EXPECT_EQ(183u, GetLastError());
        EXPECT_NE(nullptr, handle);
        return handle;
    };
    for (const WCHAR* ending : {TEXT("CmdNotifyEvent"), TEXT("CmdCancelEvent"), TEXT("RespNotifyEvent"),
                                TEXT("RespCancelEvent"), TEXT("ServerIdleEvent")})
        CloseHandle(existing(CreateEventW(nullptr, FALSE, FALSE, (base + ending).c_str())));
    CloseHandle(existing(CreateMutexW(nullptr, FALSE, (base + TEXT("TransactionMutex")).c_str())));
    for (const WCHAR* ending : {TEXT("Cmd"), TEXT("Resp")}) {
        HANDLE section = existing(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 65803,
                                                     (base + ending).c_str()));
        const auto* block = static_cast<const uint8_t*>(MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0));
        MEMORY_BASIC_INFORMATION info;
        VirtualQuery(block, &info, sizeof(info));
        EXPECT_EQ(69632u, info.RegionSize);
        if (ending == WideView(TEXT("Cmd"))) {
            uint32_t fields[2];
            std::memcpy(fields, block, sizeof(fields));
            EXPECT_EQ(GetCurrentProcessId(), fields[0]);
            EXPECT_EQ(3u, fields[1]);
            EXPECT_EQ(0, block[8] | block[9] | block[10] | block[11]);
            EXPECT_EQ(0, std::memcmp(block + 12, "abc", 3));
        }
        UnmapViewOfFile(block);
        CloseHandle(section);
    }
    server_.Process().Continue();
    EXPECT_EQ("abc", server_.End().text);
}

TEST_F(Channel, An_object_of_another_kind_or_size_fails_the_opening_cleanly) {
    const WideText base = TEXT("Global\\") + Widened(name_);
    for (const WCHAR* ending :
         {TEXT("Cmd"), TEXT("CmdNotifyEvent"), TEXT("Resp"), TEXT("TransactionMutex")}) {
        OPLChannel channel;  // a closed channel keeps its events, so each try has its own
        HANDLE squatter =
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 20, (base + ending).c_str());
        ASSERT_NE(nullptr, squatter) << GetLastError();
        EXPECT_FALSE(channel.Open(ChannelRole::Client, Widened(name_).c_str(), 65791));
        EXPECT_FALSE(channel.IsOpen());
        CloseHandle(squatter);
    }
    EXPECT_TRUE(client_.Open(ChannelRole::Client, Widened(name_).c_str(), 65791));
}

}  // namespace
