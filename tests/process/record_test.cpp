// Exchanges that the library keeps, the virtual printer that answers from them, and their page.
#include <regex>

#include "installed_printer.h"
#include "shared/exchange_log.h"

namespace {

class Record : public InstalledPrinter {
  protected:
    ProgramResult Recorded(const char* name, const Words& words) const {
        return RunClient({"record", Path(name), "--", KESTREL_CLIENT, "-p", "P", "--timeout", "300ms"},
                         words);
    }
    tools::ExchangeLog Log(const char* name) const { return tools::LoadExchangeLog(Path(name)); }
};

std::string Told(const tools::LoggedExchange& exchange) {
    return exchange.request + " " + exchange.reply.value_or("nothing") + " " + std::to_string(exchange.error);
}

TEST_F(Record, A_thousand_exchanges_are_replayed_without_a_difference) {
    constexpr int kLists = 13;
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","times":2,"responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Preview?","times":1,"noReply":true},
                     {"match":"DeviceSettings.Copy.Quality?","times":3,"garbage":"hex:00 FF 3B"}])");
    for (int i = 0; i < kLists; ++i)
        Recorded("first.jsonl", {"list"});
    EndPrinter();
    StartPrinter("[]", {"--replay", Path("first.jsonl"), "--once"});
    for (int i = 0; i < kLists; ++i)
        Recorded("second.jsonl", {"list"});
    EXPECT_EQ(0, printer_.Wait()) << "ends by itself, without a departure";
    const tools::ExchangeLog first = Log("first.jsonl");
    const tools::ExchangeLog second = Log("second.jsonl");
    EXPECT_LE(1000u, first.exchanges.size());
    EXPECT_TRUE(std::ranges::equal(first.exchanges, second.exchanges, {}, Told, Told));
}

TEST_F(Record, A_client_that_departs_is_told) {
    StartPrinter();
    EXPECT_EQ(0, Recorded("r.jsonl", {"get", "fax.redials"}).code);
    EndPrinter();
    StartPrinter("[]", {"--replay", Path("r.jsonl"), "--trace", "json", "--trace-file", Path("trace.jsonl")});
    EXPECT_NE(0, RunClient({"-p", "P", "get", "fax.rings"}).code);
    EXPECT_EQ("3\n", RunClient({"-p", "P", "get", "fax.redials"}).output);
    EXPECT_EQ(1, printer_.Wait());
    printer_ = ChildProcess();
    EXPECT_THAT(FileText(Path("trace.jsonl")), HasSubstr("seen \\\"DeviceSettings.Fax.Rings?\\\""));
}

TEST_F(Record, Secrets_are_left_out_unless_asked_for_and_failures_are_events) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","noReply":true}])");
    EXPECT_EQ(0, Recorded("r.jsonl", {"set", "wireless.pass-phrase", "open sesame"}).code);
    EXPECT_EQ(4, Recorded("r.jsonl", {"get", "fax.rings"}).code) << "the program's own exit code";
    EXPECT_EQ(0, RunClient({"record", Path("s.jsonl"), "--secrets", "--", KESTREL_CLIENT, "-p", "P", "set",
                            "wireless.pass-phrase", "open sesame"})
                     .code);
    EXPECT_THAT(FileText(Path("r.jsonl")), Not(HasSubstr("open sesame")));
    EXPECT_THAT(FileText(Path("s.jsonl")), HasSubstr("PassPhrase=open sesame;"));
    EXPECT_EQ(
        0u,
        FileText(Path("r.jsonl")).rfind(R"({"format":"kestrel-record","version":1,"secrets":"left out"})"))
        << "once, at its head";
    EXPECT_TRUE(Log("s.jsonl").hasSecrets);
    const tools::LoggedExchange last = Log("r.jsonl").exchanges.back();
    EXPECT_EQ(kNoReply, last.error);
    EXPECT_FALSE(last.reply);
    EXPECT_LT(200, last.ms);
    EXPECT_EQ(2, RunClient({"record", Path("r.jsonl"), "--", "no-such-program"}).code);
}

TEST_F(Record, A_line_says_when_who_asked_what_and_how_it_ended) {
    using namespace std::chrono;
    AddPrinter("Q", "USB 2");
    const auto before = floor<milliseconds>(system_clock::now());
    RunClient({"record", Path("q.jsonl"), "--", KESTREL_CLIENT, "-p", "Q", "--timeout", "50ms", "get",
               "fax.rings"});
    static const std::regex kPing(
        R"re(.*\n\{"time":"(\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)\.(\d{3})Z","client":\d+,)re"
        R"re("printer":"USB 2","timeoutMs":1000,"request":"ZRPing\?",)re"
        R"re("ms":\d{4}\.\d{3},"error":3758096386\}\n.*\n)re");
    const std::string text = FileText(Path("q.jsonl"));
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(text, parts, kPing)) << text;
    const auto number = [&](size_t i) { return std::stoi(parts[i]); };
    const auto time = sys_days(year(number(1)) / number(2) / number(3)) + hours(number(4)) +
                      minutes(number(5)) + seconds(number(6)) + milliseconds(number(7));
    EXPECT_LE(before, time);
    EXPECT_LE(time, system_clock::now());
}

TEST_F(Record, Programs_may_share_a_file_and_its_page_has_all_of_them) {
    StartPrinter("[]", {"--trace", "json", "--trace-file", Path("trace.jsonl")});
    std::vector<ChildProcess> programs;
    for (int i = 0; i < 8; ++i)
        programs.emplace_back(std::vector<std::string>{KESTREL_CLIENT, "record", Path("r.jsonl"), "--",
                                                       KESTREL_CLIENT, "-p", "P", "list", "fax"});
    for (ChildProcess& program : programs)
        EXPECT_EQ(0, program.Wait());
    EndPrinter();
    for (const char* const name : {"r.jsonl", "trace.jsonl"}) {
        const size_t lines = Log(name).exchanges.size();
        EXPECT_LT(120u, lines);
        const std::string page = RunClient({"log", Path(name)}).output;
        EXPECT_THAT(page, HasSubstr("\"count\":" + std::to_string(lines) + ",")) << name;
        EXPECT_EQ(lines, Count(page, "{\"time\":")) << name;
    }
    EXPECT_EQ(2, RunClient({"log", Path("faults.json")}).code);
}

}  // namespace
