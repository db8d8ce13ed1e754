// The status query, the windows of the status monitor and the ordering of supplies, from the library to both
// of its counterparts.
#include <kestrel/sdk.h>
#include <windows.h>

#include <cstring>
#include <optional>

#include "installed_status_monitor.h"
#include "recording_monitor.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t kNotKnownYet = 100000;
constexpr uint32_t kSendIncomplete = 0xE0000002;
constexpr uint32_t kNoReply = 0xE0000003;
constexpr uint32_t kBadReply = 0xE0000011;

// The language monitor's block: a pattern, with the state and the first character of the text set.
std::string BlockReply(uint32_t state, char text) {
    std::string block(1316, '\0');
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<char>(i % 251);
    std::memcpy(block.data() + 8, &state, sizeof(state));
    block[760] = text;
    block[761] = 0;
    return "0000,Status#1316=" + block + ";";
}

using Status = InstalledStatusMonitor;

TEST_F(Status, Comes_from_the_language_monitor_once_the_status_monitor_is_told) {
    StartMonitor();
    RecordingMonitor language;
    language.Answer(BlockReply(5, 0));
    WithPrinter([&] {
        Guarded<DeviceStatusRecord, 1> out;
        EXPECT_TRUE(GetStatus(out.records, sizeof(out.records))) << GetLastError();
        const auto* bytes = reinterpret_cast<const uint8_t*>(out.records);
        EXPECT_EQ(5u, out.records[0].state);
        EXPECT_EQ(1051 % 251, bytes[1051]);
        EXPECT_FALSE(GetStatus(out.records, 1051));
        EXPECT_EQ(87u, GetLastError());
    });
    EXPECT_NE(std::string::npos, monitor_.ReadLine().value_or("").find("UpSt")) << "pinged, or not told";
}

TEST_F(Status, Is_asked_for_every_two_seconds_until_it_is_known) {
    StartMonitor();
    RecordingMonitor language;
    language.Answer(BlockReply(kNotKnownYet, 0));
    WithPrinter([&] {
        std::thread printer([&] {
            Sleep(3000);  // two blocks that say nothing, then one with a text
            language.Answer(BlockReply(kNotKnownYet, 'x'));
        });
        Guarded<DeviceStatusRecord, 1> out;
        const auto start = Clock::now();
        EXPECT_TRUE(GetStatus(out.records, sizeof(out.records)));
        EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(4000));
        EXPECT_EQ('x', out.records[0].text[0]);
        printer.join();
        size_t asked = 0;
        for (const std::string& request : language.Requests())
            asked += Count(request, "ZRGetStatus?");
        EXPECT_EQ(3u, asked);
    });
}

TEST_F(Status, A_reply_without_a_block_fails_eight_times_and_clears_the_record) {
    StartMonitor();
    RecordingMonitor language;
    language.Answer("0000,Status=1;");
    WithPrinter([&] {
        Guarded<DeviceStatusRecord, 1> out;
        EXPECT_FALSE(GetStatus(out.records, sizeof(out.records)));
        EXPECT_EQ(kBadReply, GetLastError());
        const DeviceStatusRecord zeros = {};
        EXPECT_EQ(0, std::memcmp(&zeros, out.records, sizeof(zeros)));
    });
}

TEST_F(Status, Starts_the_status_monitor_of_the_driver_folder) {
    Configure();
    RecordingMonitor language;
    language.Answer(BlockReply(5, 0));
    WithPrinter([] {
        Guarded<DeviceStatusRecord, 1> out;
        EXPECT_TRUE(GetStatus(out.records, sizeof(out.records))) << GetLastError();
    });
    EXPECT_EQ(1u, Count(Log(), "Ping")) << Log();
    EXPECT_EQ(1u, Count(Log(), "UpSt")) << Log();
    EXPECT_EQ(0, StopMonitor());
}

using Windows = Status;

TEST_F(Windows, Open_on_a_status_monitor_that_answers_and_fail_by_reason_on_others) {
    struct Case {
        std::vector<std::string> options;
        uint32_t error;  // of the three, 0 for a success
    };
    const Case cases[] = {
        {{}, 0},
        {{"--refuse", "ShoW,ShoM,ShoA"}, 31},
        {{"--slow", "ShoW=300,ShoM=300,ShoA=300"}, 0},
    };
    for (const Case& row : cases) {
        StartMonitor(row.options);
        WithPrinter([&] {
            for (const auto show : {ShowStatusMonitor, ShowMaintenance, ShowAboutBox}) {
                EXPECT_EQ(row.error == 0, show() != 0);
                EXPECT_EQ(row.error, GetLastError());
            }
        });
        EXPECT_EQ(0, StopMonitor());
        std::string lines = monitor_.ReadAll();
        EXPECT_EQ(2u, Count(lines, "Ping")) << "the about box is opened unasked";
        EXPECT_EQ(0, monitor_.Wait());
    }
    StartMonitor({"--refuse", "Ping"});
    WithPrinter([] {
        EXPECT_FALSE(ShowStatusMonitor());
        EXPECT_EQ(kNoReply, GetLastError());
    });
    EXPECT_EQ(0, StopMonitor());
    StartMonitor({"--silent", "ShoW"});
    WithPrinter([] {
        const auto start = Clock::now();
        EXPECT_FALSE(ShowStatusMonitor());
        EXPECT_EQ(kNoReply, GetLastError());
        EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(4900));
    });
}

TEST_F(Windows, A_status_monitor_that_is_not_there_fails_them) {
    WithPrinter([this] {
        EXPECT_FALSE(ShowAboutBox());
        EXPECT_EQ(kSendIncomplete, GetLastError());
        EXPECT_EQ(3, StopMonitor()) << "the about box started one";
        std::filesystem::remove(program_);
        EXPECT_FALSE(ShowStatusMonitor());
        EXPECT_EQ(1460u, GetLastError());
    });
}

TEST_F(Windows, Wanted_by_several_processes_at_once_start_one_status_monitor) {
    Configure();
    std::vector<ChildProcess> clients;
    for (int i = 0; i < 4; ++i)
        clients.push_back(ChildProcess({KESTREL_CLIENT, "-p", "P", "monitor", "show"}));
    for (ChildProcess& client : clients)
        EXPECT_EQ(0, client.Wait());
    EXPECT_EQ(4u, Count(Log(), "ShoW  shows the status window \"P\": done")) << Log();
    EXPECT_EQ(0, StopMonitor());
    EXPECT_EQ(3, StopMonitor()) << "another one runs";
}

TEST_F(Windows, The_display_mode_is_kept_for_the_user_where_the_configuration_says) {
    // An earlier run's choices live on where the registry is the system's.
    RegDeleteTreeW(HKEY_CURRENT_USER, TEXT("Software\\ZRIJ9900"));
    RegDeleteValueW(HKEY_CURRENT_USER, TEXT("AlwaysShowStatus"));
    // Without a configuration it is the root of the user's hive.
    const auto stored = [](const WCHAR* path) {
        DWORD value = 77;
        DWORD size = sizeof(value);
        HKEY key = nullptr;
        if (RegOpenKeyW(HKEY_CURRENT_USER, path, &key) == ERROR_SUCCESS) {
            RegQueryValueExW(key, TEXT("AlwaysShowStatus"), nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                             &size);
            RegCloseKey(key);
        }
        return value;
    };
    EXPECT_TRUE(GetStatusMonitorDisplayMode());
    EXPECT_TRUE(SetStatusMonitorDisplayMode(2));
    EXPECT_EQ(0u, stored(TEXT("")));
    EXPECT_FALSE(GetStatusMonitorDisplayMode());
    WithPrinter([&] {
        const WCHAR* const key = TEXT("Software\\ZRIJ9900\\Status Monitor");
        EXPECT_TRUE(GetStatusMonitorDisplayMode()) << "nothing is stored there yet";
        EXPECT_TRUE(SetStatusMonitorDisplayMode(-1));
        EXPECT_EQ(0u, stored(key));
        EXPECT_TRUE(SetStatusMonitorDisplayMode(1));
        EXPECT_EQ(1u, stored(key));
        EXPECT_TRUE(GetStatusMonitorDisplayMode());
    });
}

using Supplies = Status;

TEST_F(Supplies, Are_ordered_by_the_printer_when_it_can_be_asked) {
    StartMonitor();
    RecordingMonitor language;
    struct Case {
        const char* reply;
        bool ordered;
        uint32_t error;
    };
    const Case cases[] = {{"0000,OrderInk=TRUE;", true, 0},
                          {"0000,OrderInk=FALSE;", false, 31},
                          {"0000,OrderInk=perhaps;", false, kBadReply}};
    WithPrinter([&] {
        for (const Case& row : cases) {
            language.Answer(row.reply);
            EXPECT_EQ(row.ordered, OrderSupplies() != 0) << row.reply;
            EXPECT_EQ(row.error, GetLastError()) << row.reply;
        }
    });
    EXPECT_EQ(0, StopMonitor());
    EXPECT_EQ("", monitor_.ReadAll()) << "the status monitor was asked";
}

TEST_F(Supplies, Are_ordered_by_the_status_monitor_when_the_printer_is_gone) {
    for (const bool refused : {false, true}) {
        StartMonitor(refused ? std::vector<std::string>{"--refuse", "SOIS"} : std::vector<std::string>{});
        WithPrinter([&] { EXPECT_EQ(!refused, OrderSupplies() != 0); });
        EXPECT_EQ(0, StopMonitor());
        EXPECT_NE(std::string::npos, monitor_.ReadAll().find("\"Unknown\""));
        EXPECT_EQ(0, monitor_.Wait());
    }
}

}  // namespace
