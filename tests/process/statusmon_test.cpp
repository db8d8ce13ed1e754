// The status monitor program as its channel, its kernel objects and its exit codes show it.
#include <windows.h>

#include <optional>
#include <tuple>

#include "installed_status_monitor.h"
#include "ipc/remote_control_channel.h"
#include "named_objects.h"

namespace {

const WCHAR* const kRemoteName = TEXT("ZRIJ9900StatMonClass-01042005RemoteControlChannel");
constexpr int kKilled = 128 + 9;
constexpr uint32_t kPing = 0x50696E67;
constexpr uint32_t kShoA = 0x53686F41;
constexpr uint32_t kShoW = 0x53686F57;

class StatusMonitor : public InstalledStatusMonitor {
  protected:
    StatusMonitor() { EXPECT_TRUE(channel_.Open(ipc::ChannelRole::Client, kRemoteName, 65536)); }

    std::optional<uint32_t> Ask(uint32_t code, const std::u16string& text = {}, uint32_t timeout = kLong) {
        const auto bytes = static_cast<uint32_t>(text.empty() ? 0 : 2 * (text.size() + 1));
        uint32_t value = 77;
        if (!channel_.SendCommand(static_cast<ipc::RemoteCode>(code), bytes, text.c_str(), timeout) ||
            !channel_.ReceiveReply(value, timeout))
            return std::nullopt;
        return value;
    }
    static bool IsRunning() { return IsSignaled(NamedEvent(TEXT("ZRIJ9900StatMonClass-01042005"))); }

    ipc::RemoteControlChannel channel_;
};

TEST_F(StatusMonitor, Answers_the_seven_requests_and_tells_each_in_a_line) {
    StartMonitor();
    const std::tuple<uint32_t, std::u16string, uint32_t, const char*> rows[] = {
        {kPing, u"", 1, "Ping  says that it is there: done"},
        {0x55705374, u"P", 1, "UpSt  brings its status up to date \"P\": done"},
        {kShoW, u"B\u00FCro 2", 1, "ShoW  shows the status window \"B\u00FCro 2\": done"},
        {0x53686F4D, u"P", 1, "ShoM  shows the maintenance window \"P\": done"},
        {kShoA, u"", 1, "ShoA  shows the about box: done"},
        {0x534F4953, u"Unknown", 1, "SOIS  orders supplies \"Unknown\": done"},
        {0x53465755, u"P", 1, "SFWU  makes room for a firmware upgrade \"P\": done"},
        {0x58585858, u"", 0, "58585858  is a request that nobody knows: refused"},
    };
    for (const auto& [code, text, answer, line] : rows) {
        SCOPED_TRACE(line);
        EXPECT_EQ(answer, Ask(code, text));
        EXPECT_THAT(monitor_.ReadLine().value_or(""), HasSubstr(line));
    }
    // Its length says more than is sent.
    const uint32_t lying[] = {kShoW, 0xFFFFFFFF, 'P'};
    EXPECT_EQ(sizeof(lying), channel_.Send(lying, sizeof(lying), kLong));
    uint32_t value = 0;
    EXPECT_TRUE(channel_.ReceiveReply(value, kLong));
}

TEST_F(StatusMonitor, Misbehaves_as_it_is_told_and_leaves_room_for_the_next_one) {
    // What it answers to ShoA, after how many milliseconds at least, and how it ends; 0 when asked to.
    const std::tuple<std::vector<std::string>, std::optional<uint32_t>, int, int> rows[] = {
        {{"--refuse", "Ping,ShoA"}, 0, 0, 0},         {{"--silent", "ShoA"}, std::nullopt, 0, 0},
        {{"--slow", "Ping=900,ShoA=300"}, 1, 300, 0}, {{"--die", "ShoA"}, std::nullopt, 0, kKilled},
        {{"--die-after", "ShoA"}, 1, 0, kKilled},
    };
    for (const auto& [options, answer, leastMs, exitCode] : rows) {
        SCOPED_TRACE(options[0]);
        StartMonitor(options);
        const auto start = Clock::now();
        EXPECT_EQ(answer, Ask(kShoA, {}, answer ? kLong : 1000));
        EXPECT_GE(Clock::now() - start, milliseconds(leastMs));
        if (exitCode == 0) {
            EXPECT_EQ(0, StopMonitor());
        }
        EXPECT_EQ(exitCode, monitor_.Wait());
        EXPECT_FALSE(IsRunning());
    }
}

TEST_F(StatusMonitor, Runs_once_and_ends_when_asked_or_left_alone) {
    EXPECT_FALSE(IsRunning());
    EXPECT_EQ(3, StopMonitor());
    StartMonitor();
    EXPECT_TRUE(IsRunning());
    EXPECT_EQ(4, Launch({}).Wait());
    EXPECT_EQ(1u, Ask(kPing)) << "the second one disturbed the first";
    monitor_.Kill();
    EXPECT_EQ(kKilled, monitor_.Wait());
    EXPECT_FALSE(IsRunning());

    StartMonitor({"--slow", "ShoA=60000"});
    EXPECT_FALSE(Ask(kShoA, {}, 100));
    EXPECT_EQ(0, StopMonitor()) << "an answer that is due does not keep it";
    EXPECT_EQ(0, monitor_.Wait());

    StartMonitor();
    monitor_.Terminate();
    EXPECT_EQ(0, monitor_.Wait());

    StartMonitor({"--exit-after", "2000"});
    for (int i = 0; i < 12; ++i) {
        Sleep(250);
        EXPECT_EQ(1u, Ask(kPing)) << "the request before did not count";
    }
    EXPECT_EQ(0, monitor_.Wait());
}

TEST_F(StatusMonitor, Takes_its_settings_from_the_file_beside_it_unless_they_are_wrong) {
    std::ofstream(SettingsFile()) << R"({"refuse": ["ShoA"], "slow": {"Ping": 50}})";
    StartMonitor();
    EXPECT_EQ(0u, Ask(kShoA));
    EXPECT_EQ(0, StopMonitor());
    for (const char* wrong :
         {"{", "[]", R"({"refuse": ["Show"]})", R"({"slow": {"Ping": -1}})", R"({"x": 1})"}) {
        std::ofstream(SettingsFile()) << wrong;
        EXPECT_EQ(2, Launch({}).Wait()) << wrong;
    }
    std::filesystem::remove(SettingsFile());
}

}  // namespace
