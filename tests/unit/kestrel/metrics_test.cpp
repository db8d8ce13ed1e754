// The text of the metrics: what every reader of it relies on.
#include <sstream>

#include "kestrel/metrics/printer_metrics.h"
#include "sections.h"

namespace cli::metrics {
namespace {

constexpr Clock::time_point kNow{std::chrono::seconds(1000)};

Snapshot Answering(const std::string& name) {
    Snapshot snapshot;
    snapshot.printer = {name, "USB001", "Workgroup", true};
    Reading& reading = snapshot.reading.emplace();
    reading.status = {
        2, "paper-jam", {}, true, StatusDetails{{}, {{"black", 7, "low"}}, 80, 100, true, false}};
    reading.firmware = FirmwareVersions{417, 2209, "9900.2209"};
    reading.seconds = {0.25, 0.5};
    reading.at = kNow - std::chrono::seconds(3);
    snapshot.responses.Add(0.25);
    snapshot.responses.Add(7);
    return snapshot;
}

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

void ExpectLine(const std::string& text, const std::string& line) {
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\n" + line + "\n", text);
}

void ExpectLines(const std::string& text, const std::string& title) {
    for (const std::string& line : CasesOf(UNIT_TESTS "/kestrel/metrics.txt", title))
        ExpectLine(text, line);
}

TEST(Metrics, Names_of_people_stay_inside_of_their_quotes) {
    EXPECT_EQ(LabelText("printer", "a\"b\\c\nd \xC3\xBC"), "printer=\"a\\\"b\\\\c\\nd \xC3\xBC\"");
    const std::string text = MetricsText(Format::Prometheus, {Answering("x\"} 1\nevil{a=\"")}, {}, {}, kNow);
    EXPECT_EQ(text.find("\nevil"), std::string::npos);
}

TEST(Metrics, A_printer_that_answers_tells_its_state_inks_trays_and_firmware) {
    const std::string text =
        MetricsText(Format::Prometheus, {Answering("A")}, {"1.0.0", 5, "/lib"}, {}, kNow);
    ExpectLines(text, "State inks trays and firmware");
    // A program that asks once has nothing to add up.
    EXPECT_EQ(text.find("_total"), std::string::npos);
    EXPECT_EQ(text.find("_bucket"), std::string::npos);
}

TEST(Metrics, A_printer_that_does_not_answer_is_down_and_tells_the_reason_alone) {
    Snapshot dead;
    dead.printer = {"B", "NET1", "Workgroup", true};
    dead.reason = ReasonOf({ExitCode::NoAnswer, {}, {}, 0xE0000002, {}, {}});
    ++dead.errors[*dead.reason];
    const std::string text =
        MetricsText(Format::Prometheus, {dead}, {}, ProgramFigures{3, 1.5, 4096, 9}, kNow);
    std::vector<std::string> ofPrinter;
    for (const std::string& line : Lines(text)) {
        if (line.find("printer=\"B\"") != std::string::npos && line.find("_exchange_") == std::string::npos)
            ofPrinter.push_back(line);
    }
    const std::string labels = R"({printer="B",port="NET1",model="Workgroup")";
    const std::string why = labels + R"(,code="0xE0000002",reason="no-answer"} 1)";
    EXPECT_EQ(ofPrinter,
              (std::vector<std::string>{"kestrel_up" + labels + "} 0", "kestrel_last_error_info" + why,
                                        "kestrel_errors_total" + why}));
    ExpectLine(text, "kestrel_scrapes_total 3");
    EXPECT_EQ(ReasonOf({ExitCode::BadReply, {}, {}, {}, {}, {}}), (Reason{"none", "bad-reply"}));
}

// Its device is switched off, and the language monitor says so.
TEST(Metrics, An_offline_printer_is_down_though_its_state_is_told) {
    Snapshot offline = Answering("C");
    offline.reading->status.word = "offline";
    offline.reading->status.details.reset();
    offline.reading->firmware.reset();
    const std::string text = MetricsText(Format::Prometheus, {offline}, {}, {}, kNow);
    ExpectLine(text, R"(kestrel_up{printer="C",port="USB001",model="Workgroup"} 0)");
    ExpectLine(text, R"(kestrel_state{printer="C",port="USB001",model="Workgroup",state="offline"} 1)");
    EXPECT_EQ(text.find("kestrel_ink_ratio{"), std::string::npos);
}

TEST(Metrics, Buckets_add_up_and_the_last_one_holds_all) {
    Responses responses;
    for (const double seconds : {0.0001, 0.00011, 5.0, 6.0})
        responses.Add(seconds);
    EXPECT_EQ(responses.counts.front(), 1u);
    EXPECT_EQ(responses.counts[1], 1u);
    EXPECT_EQ(responses.counts[responses.counts.size() - 2], 1u);
    EXPECT_EQ(responses.counts.back(), 1u);
    const std::string text = MetricsText(Format::OpenMetrics, {Answering("A")}, {}, ProgramFigures{}, kNow);
    ExpectLines(text, "Buckets");
}

TEST(Metrics, Formats_differ_in_headings_and_end) {
    const std::vector<Snapshot> printers = {Answering("A")};
    const std::string plain = MetricsText(Format::Prometheus, printers, {}, ProgramFigures{}, kNow);
    const std::string open = MetricsText(Format::OpenMetrics, printers, {}, ProgramFigures{}, kNow);
    ExpectLine(plain, "# TYPE kestrel_errors_total counter");
    ExpectLine(open, "# TYPE kestrel_errors counter");
    ExpectLine(plain, "# TYPE kestrel_build_info gauge");
    ExpectLine(open, "# TYPE kestrel_build info");
    EXPECT_TRUE(open.ends_with("\n# EOF\n"));
    EXPECT_EQ(plain.find("# EOF"), std::string::npos);
    const auto samples = [](const std::string& text) {
        std::vector<std::string> lines = Lines(text);
        std::erase_if(lines, [](const std::string& line) { return line.starts_with('#'); });
        return lines;
    };
    EXPECT_EQ(samples(plain), samples(open));
}

}  // namespace
}  // namespace cli::metrics
