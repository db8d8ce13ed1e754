// The status query, the windows of the status monitor and the ordering of supplies, from the library to both
// of its counterparts.
#include <tuple>

#include "installed_status_monitor.h"
#include "named_objects.h"
#include "recording_monitor.h"
#include "registry_value.h"

namespace {

constexpr uint32_t kNotKnownYet = 100000;

// The language monitor's block: a pattern, with the state and the first character of the text set.
std::string BlockReply(uint32_t state, char text) {
    std::string block;
    while (block.size() < 1316)
        block.push_back(static_cast<char>(block.size() % 251));
    std::memcpy(block.data() + 8, &state, sizeof(state));
    block[760] = text;
    block[761] = 0;
    return "0000,Status#1316=" + block + ";";
}

// Status queries since the last call.
size_t QueriesTaken(RecordingMonitor& language) {
    return static_cast<size_t>(std::ranges::count(language.TakeRequests(), "ZRGetStatus?"));
}

class Status : public InstalledStatusMonitor {
  protected:
    Status() { EXPECT_TRUE(SelectPrinter(kPrinter)) << GetLastError(); }
};

TEST_F(Status, Comes_from_the_language_monitor_once_the_status_monitor_is_started_and_told) {
    Configure();
    RecordingMonitor language;
    language.Answer(BlockReply(5, 0));
    Guarded<DeviceStatusRecord, 1> out;
    EXPECT_EQ(kDone, Ended(GetStatus(out.records, sizeof(out.records))));
    EXPECT_EQ(5u, out.records[0].state);
    EXPECT_EQ(1051 % 251, reinterpret_cast<const uint8_t*>(out.records)[1051]);
    EXPECT_EQ(87u, Ended(GetStatus(out.records, 1051)));
    EXPECT_EQ(kDone, Ended(ShowAboutBox())) << "no answer is left from before";
    EXPECT_EQ(1u, Count(Log(), "Ping")) << Log();
    EXPECT_EQ(1u, Count(Log(), "UpSt")) << Log();
    EXPECT_EQ(0, StopMonitor());
}

TEST_F(Status, Is_asked_for_every_two_seconds_until_it_is_known) {
    StartMonitor();
    RecordingMonitor language;
    language.Answer(BlockReply(kNotKnownYet, 0));
    size_t asked = 0;
    std::thread printer([&] {
        // Two blocks that say nothing, then one with a text.
        for (int i = 0; i < 200 && asked < 2; ++i, asked += QueriesTaken(language))
            Sleep(50);
        language.Answer(BlockReply(kNotKnownYet, 'x'));
    });
    Guarded<DeviceStatusRecord, 1> out;
    const auto start = Clock::now();
    EXPECT_EQ(kDone, Ended(GetStatus(out.records, sizeof(out.records))));
    EXPECT_GE(Clock::now() - start, milliseconds(4000));
    EXPECT_EQ('x', out.records[0].text[0]);
    printer.join();
    EXPECT_EQ(3u, asked + QueriesTaken(language));
    EXPECT_THAT(monitor_.ReadLine().value_or(""), HasSubstr("UpSt")) << "one that runs was pinged";
}

TEST_F(Status, A_reply_without_a_block_fails_eight_times_and_clears_the_record) {
    StartMonitor();
    RecordingMonitor language;
    language.Answer("0000,Status=1;");
    Guarded<DeviceStatusRecord, 1> out;
    EXPECT_EQ(kBadReply, Ended(GetStatus(out.records, sizeof(out.records))));
    EXPECT_EQ(8u, QueriesTaken(language));
    const DeviceStatusRecord zeros = {};
    EXPECT_EQ(0, std::memcmp(&zeros, out.records, sizeof(zeros)));
}

TEST_F(Status, One_that_stays_unknown_is_delivered_with_the_eighth_answer) {
    StartMonitor();
    StartPrinter(R"([{"match":"ZRGetStatus?","times":7,"garbage":"?"},{"match":"ZRGetStatus?",
        "garbage":"hex:30 2C 58 23 31 32 3D 00 00 00 00 00 00 00 00 A0 86 01 00 3B"}])");
    Guarded<DeviceStatusRecord, 1> out;
    EXPECT_EQ(kDone, Ended(GetStatus(out.records, sizeof(out.records))));
    EXPECT_EQ(kNotKnownYet, out.records[0].state);
}

using Windows = Status;

TEST_F(Windows, Open_on_a_status_monitor_that_answers_and_fail_by_reason_on_others) {
    // How the two windows and the about box end, and how many milliseconds the first one takes at least.
    const std::tuple<std::vector<std::string>, uint32_t, uint32_t, int> rows[] = {
        {{}, kDone, kDone, 0},
        {{"--refuse", "ShoW,ShoM,ShoA"}, 31, 31, 0},
        {{"--slow", "ShoW=300,ShoM=300,ShoA=300"}, kDone, kDone, 300},
        {{"--refuse", "Ping"}, kNoReply, kDone, 0},  // the about box is opened unasked
        {{"--silent", "ShoW,ShoM"}, kNoReply, kDone, 4900},
    };
    for (const auto& [options, windows, about, leastMs] : rows) {
        SCOPED_TRACE(testing::PrintToString(options));
        StartMonitor(options);
        const auto start = Clock::now();
        EXPECT_EQ(windows, Ended(ShowStatusMonitor()));
        EXPECT_GE(Clock::now() - start, milliseconds(leastMs));
        EXPECT_EQ(windows, Ended(ShowMaintenance()));
        EXPECT_EQ(about, Ended(ShowAboutBox()));
        EXPECT_EQ(2u, Count(EndMonitor(), "Ping"));
    }
}

TEST_F(Windows, A_status_monitor_that_is_not_there_fails_them) {
    EXPECT_EQ(kSendIncomplete, Ended(ShowAboutBox()));
    EXPECT_EQ(3, StopMonitor()) << "the about box started one";
    std::filesystem::remove(program_);
    EXPECT_EQ(1460u, Ended(ShowStatusMonitor()));
}

TEST_F(Windows, Leave_the_start_of_a_status_monitor_to_the_process_that_is_at_it) {
    RecordingMonitor language;
    const Handle starting = NamedMutex(TEXT("ZRIJ9900StatMonClass-01042005SMStartingMutex"), true);
    WithPrinter([] { EXPECT_EQ(1460u, Ended(ShowStatusMonitor())); });  // this thread has the mutex
    EXPECT_EQ(3, StopMonitor()) << "another one was started";
    ReleaseMutex(starting.get());
    std::filesystem::remove(program_);
    DeviceStatusRecord record;
    EXPECT_EQ(6u, Ended(GetStatus(&record, sizeof(record)))) << "no program";
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

// A process that has selected a printer knows its configuration.
using DisplayMode = InstalledStatusMonitor;

TEST_F(DisplayMode, Is_kept_for_the_user_where_the_configuration_says) {
    const WCHAR* const value = TEXT("AlwaysShowStatus");
    const WCHAR* const kept = TEXT("Software\\ZRIJ9900\\Status Monitor");
    // An earlier run's choices live on where the registry is the system's.
    RegDeleteTreeW(HKEY_CURRENT_USER, TEXT("Software\\ZRIJ9900"));
    RegDeleteValueW(HKEY_CURRENT_USER, value);
    // Without a configuration it is the root of the user's hive.
    EXPECT_TRUE(GetStatusMonitorDisplayMode());
    EXPECT_TRUE(SetStatusMonitorDisplayMode(2));
    EXPECT_EQ(0, RegistryNumber(HKEY_CURRENT_USER, TEXT(""), value));
    EXPECT_FALSE(GetStatusMonitorDisplayMode());
    WithPrinter([&] {
        EXPECT_TRUE(GetStatusMonitorDisplayMode()) << "nothing is stored there yet";
        for (const int mode : {-1, 1}) {
            EXPECT_TRUE(SetStatusMonitorDisplayMode(mode));
            EXPECT_EQ(mode == 1, RegistryNumber(HKEY_CURRENT_USER, kept, value));
        }
        EXPECT_TRUE(GetStatusMonitorDisplayMode());
    });
}

using Supplies = Status;

TEST_F(Supplies, Are_ordered_by_the_printer_when_it_can_be_asked) {
    StartMonitor();
    RecordingMonitor language;
    for (const auto& [answer, ends] : {std::pair("TRUE", kDone), {"FALSE", 31}, {"perhaps", kBadReply}}) {
        language.Answer(std::string("0000,OrderInk=") + answer + ";");
        EXPECT_EQ(ends, Ended(OrderSupplies())) << answer;
    }
    EXPECT_EQ("", EndMonitor()) << "the status monitor was asked";
}

TEST_F(Supplies, Are_ordered_by_the_status_monitor_when_the_printer_is_gone) {
    for (const char* refused : {"SOIS", "ShoA"}) {
        StartMonitor({"--refuse", refused});
        EXPECT_EQ(refused == std::string("ShoA"), OrderSupplies() != 0);
        EXPECT_THAT(EndMonitor(), HasSubstr("\"Unknown\""));
    }
}

}  // namespace
