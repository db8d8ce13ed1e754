#include "vprinter/replay/replay.h"

#include <utility>

#include "refusal.h"

namespace vprinter {
namespace {

constexpr std::string_view kRecordHeading = R"({"format":"kestrel-record","version":1,"secrets":"left out"})";

std::string RecordLine(const std::string& request, const std::string& reply,
                       const std::string& printer = "USB001") {
    return R"({"time":"2026-11-25T18:30:05.250Z","client":7,"printer":")" + printer + R"(","request":")" +
           request + '"' + (reply.empty() ? "" : R"(,"reply":")" + reply + '"') + R"(,"ms":12.5,"error":0})" +
           '\n';
}

Replay ReplayOf(const std::string& lines, Pace pace = Pace::Fast, bool loops = false) {
    return {tools::ParseExchangeLog(std::string(kRecordHeading) + '\n' + lines, "r.jsonl"), "r.jsonl",
            "USB001", pace, loops};
}

TEST(VprinterReplay, What_was_answered_is_answered_again_silence_and_bytes_included) {
    Replay replay = ReplayOf(
        RecordLine("A?", R"(0000,A#2=\\xFF\\.;)") + RecordLine("B?", "") +
            RecordLine("DeviceNetwork.WiFiSettings.Mac_Configuration.Security.PassPhrase=*****;", "0000,;"),
        Pace::Real);
    const Replay::Answer first = replay.Next("A?");
    EXPECT_EQ("0000,A#2=\xFF\x1C;", first.reply);
    EXPECT_EQ(12u, first.delayMs);
    EXPECT_EQ("", replay.Next("B?").reply);
    EXPECT_EQ(
        "", replay.Next("DeviceNetwork.WiFiSettings.Mac_Configuration.Security.PassPhrase=other;").departure);
    EXPECT_TRUE(replay.IsOver());
    EXPECT_EQ(0u, replay.Departures());
    EXPECT_EQ("exchange 4: expected the end of the record, seen \"A?\"", replay.Next("A?").departure);
}

TEST(VprinterReplay, A_departure_is_told_and_the_replay_goes_on_where_the_request_stands) {
    Replay replay =
        ReplayOf(RecordLine("A?", "0000,a;") + RecordLine("B?", "0000,b;") + RecordLine("C?", "0000,c;"),
                 Pace::Fast, true);
    EXPECT_EQ("3400,Not in the record;", replay.Next("X=1;").reply);
    const Replay::Answer skipped = replay.Next("B?");
    EXPECT_EQ("exchange 1: expected \"A?\", seen \"B?\"; 1 left out", skipped.departure);
    EXPECT_EQ("0000,b;", skipped.reply);
    EXPECT_EQ("0000,a;", replay.Next("A?").reply) << "out of turn";
    EXPECT_EQ("", replay.Next("C?").departure);
    EXPECT_EQ("0000,a;", replay.Next("A?").reply) << "a loop";
    EXPECT_FALSE(replay.IsOver());
    EXPECT_EQ(3u, replay.Departures());
}

TEST(VprinterReplay, A_file_that_is_no_record_of_this_printer_is_refused) {
    const std::string heading = std::string(kRecordHeading) + '\n';
    const std::pair<std::string, const char*> cases[] = {
        {heading + RecordLine("A?", "", "USB009"), "no complaint"},  // it is the only printer
        // Whoever wrote it was killed.
        {heading + heading + RecordLine("A?", "") + R"({"time":"2026)", "no complaint"},
        {RecordLine("A?", ""), "no record"},
        {heading + RecordLine("A?", "", "U2") + RecordLine("A?", "", "U3"), "printers \"U2 U3\""},
        {heading + RecordLine("A?", R"(\\q)"), "exchange 1 is not in the readable form"},
        {heading + "hello\n", "r.jsonl:2: "},
        {heading + R"({"time":"x"})" + '\n', "r.jsonl:2: expected \"printer\""},
        {R"({"format":"kestrel-record","version":2})", "version 2"},
    };
    for (const auto& [text, complaint] : cases) {
        SCOPED_TRACE(text);
        ExpectComplaint(complaint, [&text = text] {
            Replay(tools::ParseExchangeLog(text, "r.jsonl"), "r.jsonl", "USB001", Pace::Fast, false);
        });
    }
}

}  // namespace
}  // namespace vprinter
