// The channel protocol, step by step, with the other side in another process.
#include <array>
#include <cstring>

#include "channel_puppet.h"
#include "ipc/late_reply.h"
#include "ipc/opl_channel.h"
#include "ipc/remote_control_channel.h"
#include "named_objects.h"
#include "precompiled.h"
#include "widened.h"

namespace {

using Clock = std::chrono::steady_clock;
using ipc::ChannelRole;
using std::chrono::milliseconds;

constexpr uint32_t kBrief = 100;
constexpr uint32_t kPatience = 5000;

struct Received {
    std::string text;
    uint32_t error = 0;

    bool operator==(const Received&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Received& received) {
    return out << '"' << received.text << "\", error " << received.error;
}

class Channel : public testing::Test {
  protected:
    bool Open(ipc::OPLChannel& channel, uint32_t capacity) {
        return channel.Open(ChannelRole::Client, Widened(name_).c_str(), capacity);
    }
    void OpenBoth(uint32_t capacity = 200) {
        ASSERT_EQ(1u, server_.Do("open server " + name_ + ' ' + std::to_string(capacity)).number);
        ASSERT_TRUE(Open(client_, capacity));
    }

    uint32_t Send(const std::string& text, uint32_t timeout = kPatience) {
        return client_.Send(text.data(), static_cast<uint32_t>(text.size()), timeout);
    }
    uint32_t ErrorOfSend(const std::string& text, uint32_t timeout = kPatience) {
        EXPECT_EQ(0u, Send(text, timeout));
        return GetLastError();
    }
    Received Receive(uint32_t timeout = kPatience, uint32_t size = 300) {
        std::string buffer(size, '\0');
        const uint32_t bytes = client_.Receive(buffer.data(), size, timeout);
        return {buffer.substr(0, bytes), GetLastError()};
    }

    [[nodiscard]] WideText Global(const WCHAR* ending) const {
        return TEXT("Global\\") + Widened(name_) + ending;
    }
    // Another process at the channel.
    [[nodiscard]] ChannelPuppet OtherClient() const {
        ChannelPuppet other;
        other.Do("open client " + name_ + " 200");
        return other;
    }

    // Posts a request that the server does not read until it is continued.
    void SendUnread(const std::string& request) {
        server_.Begin("receive 5000");
        const Handle idle = NamedEvent(TEXT("Global\\") + client_.GetName() + TEXT("ServerIdleEvent"));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(idle.get(), kPatience));
        Sleep(50);  // until it sleeps: whoever closes an object needs a lock that it takes before
        server_.Process().Stop();
        EXPECT_EQ(request.size(), Send(request));
    }
    // Posts a request, which the server takes and does not answer yet.
    void Ask(const std::string& request) {
        server_.Begin("receive 5000");
        ASSERT_EQ(request.size(), Send(request));
        ASSERT_EQ(request, server_.End().text);
    }
    // In no process.
    void ExpectNoSection() {
        for (const WCHAR* ending : {TEXT("Cmd"), TEXT("Resp")}) {
            const Handle section = NamedSection(Global(ending), 100);
            EXPECT_EQ(0u, GetLastError()) << "it is a new one";
        }
    }
    // One whole exchange whose reply is `reply`.
    void ExpectExchange(const std::string& request, const std::string& reply) {
        Ask(request);
        ASSERT_EQ(reply.size(), server_.Do("send " + reply + " 1000").number);
        EXPECT_EQ((Received{reply, 0}), Receive());
    }

    std::string name_ = testing::UnitTest::GetInstance()->current_test_info()->name();
    ChannelPuppet server_;
    ipc::OPLChannel client_;
};

class OpenChannel : public Channel {
  protected:
    OpenChannel() { OpenBoth(); }
};

TEST_F(OpenChannel, A_request_of_the_capacity_goes_whole_and_a_longer_one_is_cut) {
    ExpectExchange(std::string(200, 'x'), "whole");
    server_.Begin("receive 5000");
    EXPECT_EQ(200u, Send(std::string(201, 'y')));
    EXPECT_EQ(std::string(200, 'y'), server_.End().text);
}

TEST_F(Channel, Nobody_serves_gives_1460_after_the_time_out_and_frees_the_transaction) {
    ASSERT_TRUE(Open(client_, 200));
    const auto start = Clock::now();
    EXPECT_EQ(1460u, ErrorOfSend("x", kBrief));
    EXPECT_GE(Clock::now() - start, milliseconds(kBrief));
    std::thread sender([this] { EXPECT_EQ(1460u, ErrorOfSend("x", 3 * kBrief)); });
    Sleep(kBrief);
    EXPECT_EQ(1460u, ErrorOfSend("y", kBrief)) << "not before the other thread has sent";
    sender.join();
    OpenBoth();
    ExpectExchange("now", "served");
}

TEST_F(Channel, A_closed_channel_gives_110_and_remembers_nothing) {
    const auto expectClosed = [this] {
        SetLastError(ERROR_ACCESS_DENIED);
        client_.Close();
        EXPECT_EQ(0u, GetLastError());
        EXPECT_FALSE(client_.IsOpen());
        EXPECT_EQ(TEXT(""), client_.GetName());
        EXPECT_TRUE(client_.IsServer());
        EXPECT_EQ(0u, client_.LastClientProcessId());
        EXPECT_FALSE(client_.StartServerThread());
        EXPECT_EQ(110u, ErrorOfSend("x", kBrief));
        EXPECT_EQ((Received{"", 110}), Receive(kBrief));
        client_.Cancel();
        EXPECT_EQ(110u, GetLastError());
    };
    expectClosed();
    OpenBoth();
    EXPECT_FALSE(client_.StartServerThread());
    expectClosed();
    server_.Do("close");
    ExpectNoSection();
    name_ += "Again";  // the events stay, and with them what the closings cancelled
    ASSERT_TRUE(client_.Open(ChannelRole::Server, Widened(name_).c_str(), 200));
    ChannelPuppet other = OtherClient();
    other.Begin("send x 5000");
    EXPECT_EQ("x", Receive().text);
    EXPECT_EQ(other.Process().Id(), client_.LastClientProcessId());
    expectClosed();
}

TEST_F(Channel, An_opening_keeps_what_lies_there_and_a_server_s_takes_back_old_signals) {
    OpenBoth();
    SendUnread("question");
    const ChannelPuppet early = OtherClient();
    server_.Process().Continue();
    EXPECT_EQ("question", server_.End().text);
    server_.Do("send answer 1000");
    const ChannelPuppet late = OtherClient();
    EXPECT_EQ("answer", Receive().text);
    server_.Do("close");
    for (const WCHAR* ending : {TEXT("CmdNotifyEvent"), TEXT("RespNotifyEvent")}) {
        const Handle stale = NamedEvent(Global(ending));
        SetEvent(stale.get());
        const auto start = Clock::now();
        EXPECT_EQ(1u, server_.Do("open server " + name_ + " 200").number);
        EXPECT_GE(Clock::now() - start, milliseconds(100)) << "old signals may be on their way";
        EXPECT_FALSE(IsSignaled(stale));
    }
}

TEST_F(OpenChannel, A_second_send_without_receive_gives_776_and_the_third_works) {
    ChannelPuppet other = OtherClient();
    server_.Begin("receive 5000");
    for (const char* text : {"", "a"}) {
        EXPECT_EQ(std::strlen(text), Send(text));
        EXPECT_EQ(1460u, other.Do("send x 100").error) << "while the transaction lasts";
        EXPECT_EQ(776u, ErrorOfSend("b"));
        EXPECT_EQ(text, server_.End().text);
        server_.Begin("receive 5000");
    }
    Send("c");
    EXPECT_EQ("c", server_.End().text);
}

TEST_F(OpenChannel, A_receive_takes_what_is_for_its_process_as_far_as_its_buffer_reaches) {
    const std::string self = std::to_string(GetCurrentProcessId());
    const std::pair<std::vector<std::string>, Received> rows[] = {
        {{"send abcdefgh 1000"}, {"abcdef", 0}},
        {{"sendto " + self + " 1 partly 1000"}, {"partly", 995}},
        {{"broadcast news 1000", "send answer 1000"}, {"answer", 0}},
        {{"sendto 4194303 0 alien 1000"}, {"", 1460}},
    };
    for (const auto& [replies, received] : rows) {
        SCOPED_TRACE(replies[0]);
        Ask("question");
        for (const std::string& reply : replies)
            EXPECT_LT(0u, server_.Do(reply).number);
        EXPECT_EQ(received, Receive(200, 6));
    }
    EXPECT_EQ(1u, server_.Do("send x 200").number) << "the message of a process that is gone is overwritten";
}

TEST_F(OpenChannel, A_foreign_reply_costs_a_pause_and_all_of_them_the_time_out) {
    const auto receive = [this](uint32_t timeout, int more, DWORD every, const char* last) {
        const std::string foreign = "sendto 4194303 0 alien 1000";
        Ask("question");
        server_.Do(foreign);
        std::thread replies([&] {
            for (int i = 0; i < more; ++i, server_.Do(foreign))
                Sleep(every);
            Sleep(every);
            server_.Do(last);
        });
        const auto start = Clock::now();
        const Received received = Receive(timeout);
        const auto took = Clock::now() - start;
        replies.join();
        return std::pair(received, took);
    };
    const Received none = {"", 1460};
    const auto [answer, untilAnswer] = receive(kPatience, 0, 300, "send answer 1000");
    EXPECT_EQ((Received{"answer", 0}), answer) << "it comes when the pause is over";
    const auto [early, untilPause] = receive(10, 0, 0, "idle");
    EXPECT_EQ(none, early);
    EXPECT_GE(untilPause, milliseconds(50));
    const auto [late, untilTimeout] = receive(kBrief, 30, 40, "idle");
    EXPECT_EQ(none, late);
    EXPECT_LT(untilTimeout, milliseconds(1000));
}

TEST_F(Channel, A_late_reply_in_the_way_is_taken_back_and_the_next_one_sent_after_a_pause) {
    ASSERT_TRUE(client_.Open(ChannelRole::Server, Widened(name_).c_str(), 200));
    const auto sendTo = [this](uint32_t process) { return client_.SendTo(process, false, "x", 1, kBrief); };
    const auto noPause = [](uint32_t) { FAIL(); };
    std::vector<uint32_t> pauses;
    const auto pause = [&](uint32_t milliseconds) {
        pauses.push_back(milliseconds);
        EXPECT_EQ(1u, sendTo(GetCurrentProcessId())) << "the late one is gone";
    };
    const auto sent = [&](uint32_t process) { return [=] { return sendTo(process) != 0; }; };
    EXPECT_EQ(ipc::ReplySent::AtOnce, SendPastLateReply(client_, sent(server_.Process().Id()), noPause));
    EXPECT_EQ(ipc::ReplySent::PastLateReply, SendPastLateReply(client_, sent(GetCurrentProcessId()), pause));
    EXPECT_EQ(ipc::ReplySent::Never, SendPastLateReply(client_, sent(server_.Process().Id()), pause));
    EXPECT_EQ(32u, GetLastError());
    EXPECT_EQ((std::vector<uint32_t>{75, 75}), pauses);
    client_.Close();
    EXPECT_EQ(ipc::ReplySent::Never, SendPastLateReply(client_, sent(GetCurrentProcessId()), noPause));
    EXPECT_EQ(110u, GetLastError());
}

TEST_F(OpenChannel, A_cancel_ends_the_receive_that_waits_or_else_the_next_one_with_995_and_once) {
    Ask("question");
    std::thread canceller([this] {
        Sleep(100);
        client_.Cancel();
    });
    EXPECT_EQ(995u, Receive().error);
    canceller.join();
    ExpectExchange("again", "fine");
    Ask("question");
    client_.Cancel();
    Ask("next");
    server_.Do("send answer 1000");
    EXPECT_EQ(995u, Receive().error);
    ExpectExchange("last", "fine");
}

TEST_F(OpenChannel, Cancel_withdraws_an_unread_request_of_whoever_posted_it) {
    ChannelPuppet other = OtherClient();  // opening closes first, but a closed channel cancels nothing
    const std::function<void()> ways[] = {[&] { other.Do("cancel"); }, [&] { other.Do("close"); },
                                          [&] {
                                              ipc::OPLChannel destroyed;
                                              Open(destroyed, 200);
                                          }};
    for (const auto& cancel : ways) {
        SendUnread("unread");
        cancel();
        server_.Process().Continue();
        EXPECT_EQ("", server_.End().text);
        client_.Cancel();
    }
}

TEST_F(OpenChannel, A_late_reply_is_taken_for_an_answer_once_the_next_request_is_out) {
    // The protocol has no sequence numbers; this is why a counterpart drops what was given up.
    Ask("given-up");
    EXPECT_EQ(1460u, Receive(kBrief).error);
    server_.Do("send early 1000");
    ExpectExchange("next", "right");
    Ask("given-up");
    EXPECT_EQ(1460u, Receive(kBrief).error);
    Ask("next");
    server_.Do("send late 1000");
    EXPECT_EQ("late", Receive().text);
}

TEST_F(OpenChannel, The_dispatch_thread_serves_and_others_are_refused_with_32) {
    for (const char* text : {"one", "two", "3"}) {
        EXPECT_EQ(1u, server_.Do("dispatch").number) << "in place of the one before";
        ASSERT_EQ(std::strlen(text), Send(text));
        EXPECT_EQ(text, Receive().text);
    }
    EXPECT_EQ(0u, Send(""));
    EXPECT_EQ(1460u, Receive(kBrief).error) << "nothing is no message";
    EXPECT_EQ((PuppetAnswer{0, 32, ""}), server_.Do("receive 100"));
    server_.Do("close");
    EXPECT_EQ(1460u, ErrorOfSend("gone", kBrief));
    server_.Do("open server " + name_ + " 200");
    EXPECT_NE(32u, server_.Do("receive 100").error) << "now anybody may";
}

// What both sides share, against numbers: a change here breaks every other module of the product.
TEST_F(Channel, The_eight_objects_have_the_names_sizes_and_offsets_that_the_product_knows) {
    const WideText base = TEXT("Global\\Wire") + Widened(name_) + TEXT("AbFcCdLeGfQgBhPi");
    name_ = "Wire" + name_ + "*b/c:d<e>f?g\\h|i";
    OpenBoth(65791);
    ExpectExchange("known", "client");
    const auto existing = [](Handle handle) {
        EXPECT_EQ(183u, GetLastError());
        return handle;
    };
    const auto event = [&](const WCHAR* ending) { return existing(NamedEvent(base + ending)); };
    const auto view = [&](const WCHAR* ending) {
        const Handle section = existing(NamedSection(base + ending, 65803));
        return static_cast<char*>(MapViewOfFile(section.get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    };
    const auto expectBlock = [&](const WCHAR* ending, const std::array<uint32_t, 3>& header,
                                 const char* text) {
        const char* const block = view(ending);
        MEMORY_BASIC_INFORMATION info;
        VirtualQuery(block, &info, sizeof(info));
        EXPECT_EQ(69632u, info.RegionSize);
        EXPECT_EQ(0, std::memcmp(header.data(), block, sizeof(header)));
        EXPECT_EQ(text, std::string(block + sizeof(header), std::strlen(text)));
        UnmapViewOfFile(block);
    };
    const Handle replied = event(TEXT("RespNotifyEvent"));
    SetEvent(replied.get());
    SendUnread("abc");
    EXPECT_FALSE(IsSignaled(replied)) << "a request takes back what was signalled before";
    expectBlock(TEXT("Cmd"), {GetCurrentProcessId(), 3, 0}, "abc");
    const Handle asked = event(TEXT("CmdNotifyEvent"));
    const Handle idle = event(TEXT("ServerIdleEvent"));
    event(TEXT("CmdCancelEvent"));
    event(TEXT("RespCancelEvent"));
    existing(NamedMutex(base + TEXT("TransactionMutex")));
    char* const request = view(TEXT("Cmd"));
    std::memset(request, 0, 4);
    UnmapViewOfFile(request);
    server_.Process().Continue();
    EXPECT_EQ("abc", server_.End().text);
    server_.Do("send reply 1000");
    expectBlock(TEXT("Resp"), {GetCurrentProcessId(), 5, 0}, "reply");  // the request was nobody's
    server_.Do("cancel");
    SetEvent(asked.get());
    server_.Do("broadcast news 1000");
    expectBlock(TEXT("Resp"), {0, 4, 0x0100}, "news");
    server_.Do("sendto 4194303 1 gone 1000");
    expectBlock(TEXT("Resp"), {4194303, 4, 1}, "gone");
    SetEvent(idle.get());
    server_.Do("cancel");
    for (const Handle& takenBack : {asked, replied, idle})
        EXPECT_FALSE(IsSignaled(takenBack));
}

TEST_F(Channel, An_opening_that_fails_leaves_none_of_its_objects) {
    Handle squatter = NamedMutex(Global(TEXT("ServerIdleEvent")));
    EXPECT_FALSE(Open(client_, 200));
    EXPECT_EQ(6u, GetLastError());
    ExpectNoSection();
    squatter = {};
    EXPECT_TRUE(Open(client_, 200));
}

TEST_F(Channel, A_command_travels_with_its_data_whole_or_not_at_all) {
    const auto server = std::make_unique<ipc::RemoteControlChannel>();
    const auto client = std::make_unique<ipc::RemoteControlChannel>();
    const auto command = std::make_unique<ipc::RemoteCommand>();
    const WideText name = Widened(name_);
    ASSERT_TRUE(server->Open(ChannelRole::Server, name.c_str(), ipc::kMaxRemoteMessage));
    ASSERT_TRUE(client->Open(ChannelRole::Client, name.c_str(), ipc::kMaxRemoteMessage));
    EXPECT_FALSE(client->ReceiveCommand(*command));
    const std::string data(ipc::kMaxRemoteData + 1, 'd');
    for (const uint32_t length : {0u, 1u, ipc::kMaxRemoteData}) {
        *command = {};
        std::thread serving([&] {
            EXPECT_TRUE(server->ReceiveCommand(*command));
            EXPECT_TRUE(server->SendReply(length, kPatience));
        });
        EXPECT_TRUE(client->SendCommand(ipc::RemoteCode::UpSt, length, data.data(), kPatience));
        uint32_t reply = 7;
        EXPECT_TRUE(client->ReceiveReply(reply, kPatience));
        serving.join();
        EXPECT_EQ(length, reply);
        EXPECT_EQ(0x55705374u, command->code);
        EXPECT_EQ(length, command->length);
        EXPECT_EQ(0, std::memcmp(data.data(), command->data, length));
    }
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_FALSE(client->SendCommand(ipc::RemoteCode::UpSt, ipc::kMaxRemoteData + 1, data.data(), kBrief));
    EXPECT_FALSE(server->SendCommand(ipc::RemoteCode::UpSt, 0, nullptr, kBrief));
    EXPECT_EQ(5u, GetLastError());
    std::thread serving([&] { EXPECT_FALSE(server->ReceiveCommand(*command)) << "shorter than its head"; });
    EXPECT_EQ(7u, client->Send("1234567", 7, kPatience));
    serving.join();
}

}  // namespace
