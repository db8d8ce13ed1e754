// One command for several printers, one of which does not answer; wanted states and differences.
#include "commands.h"
#include "shared/exchange_log.h"

namespace {

class Fleet : public InstalledPrinter {
  protected:
    Fleet() {
        AddPrinter("Q", "USB002");
        AddPrinter("Dead", "USB009");
    }
    static tools::Json Document(const Words& words) {
        return tools::Json::Parse(RunClient(words, {"--json"}).output);
    }
    static std::string Value(const char* printer, const char* key) {
        return RunClient({"-p", printer, "get", key}).output;
    }
};

TEST_F(Fleet, Answers_in_the_order_of_the_printers_and_a_dead_one_costs_its_time_alone) {
    StartPrinter("[]", {"--port", "USB002"});
    const Clock::time_point start = Clock::now();
    const tools::Json all =
        Document({"-p", "Q", "-p", "Dead", "-p", "P", "--timeout", "1s", "get", "fax.redials"});
    EXPECT_GT(milliseconds(3500), Clock::now() - start);
    EXPECT_EQ(4, all.At("exitCode"));
    const auto& printers = all.At("printers").Items();
    ASSERT_EQ(3u, printers.size());
    const char* const names[] = {"Q", "Dead", "P"};
    for (size_t i = 0; i < printers.size(); ++i) {
        const bool isDead = i == 1;
        EXPECT_EQ(names[i], printers[i].At("printer").Text());
        EXPECT_EQ(isDead ? 4 : 0, printers[i].At("exitCode"));
        EXPECT_EQ(isDead, printers[i].Find("error") != nullptr);
        if (!isDead) {
            EXPECT_EQ(3, printers[i].At("values").At("fax.redials"));
        }
    }
    EXPECT_EQ("P: 3\nQ: 3\n", RunClient({"-p", "?", "get", "fax.redials"}).output);
    EXPECT_EQ(3, RunClient({"-p", "X*", "get", "fax.redials"}).code);
    EXPECT_EQ(2, RunClient({"--all", "lock"}).code) << "is for one printer";
}

TEST_F(Fleet, Is_brought_to_a_wanted_state_once) {
    StartPrinter("[]", {"--port", "USB002"});
    Write("w.txt", "fax.redials = 5\nfax.rings = 4\n[Q]\nfax.redials = 6\n");
    Write("wrong.txt", "fax.redials = 7\n[Q]\nfax.redials = 999\n");
    ExpectCommands("Wanted states");
}

TEST_F(Fleet, A_refused_value_ends_the_work_for_its_printer_and_can_take_the_others_back) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings=*","responseNumber":1001}])");
    const std::string wanted =
        Write("w.json", R"({"settings":{"fax.redials":5,"fax.rings":2,"fax.backup":true}})");
    const tools::Json left = Document({"-p", "P", "apply", wanted});
    EXPECT_EQ(1, left.At("exitCode"));
    EXPECT_EQ(1u, left.At("changes").Items().size());
    EXPECT_THAT(left.At("error").At("text").Text(), HasSubstr("left so: fax.redials"));
    EXPECT_EQ("5\n", Value("P", "fax.redials"));
    for (const char* const key : {"fax.redials", "fax.rings"})
        RunClient({"-p", "P", "set", key, "3"});

    // The setting that is refused is put back too: it may have come half the way. This printer refuses that
    // as well.
    const tools::Json back = Document({"-p", "P", "apply", wanted, "--rollback"});
    EXPECT_EQ(1, back.At("exitCode"));
    EXPECT_EQ("fax.redials", back.At("putBack").Items().front().Text());
    EXPECT_THAT(back.At("error").At("text").Text(), HasSubstr("could not be put back: fax.rings"));
    EXPECT_EQ("3\n", Value("P", "fax.redials"));
}

TEST_F(Fleet, A_printer_that_falls_silent_is_not_asked_to_put_back_each_setting) {
    StartPrinter(R"([{"match":"DeviceSettings.*=*","skip":2,"lost":true}])");
    const std::string wanted =
        Write("w.txt", "fax.redials = 5\nfax.rings = 2\nfax.backup = no\nfax.mode = Fine_Color\n");
    const std::string record = Path("r.jsonl");
    const ProgramResult result = RunClient({"record", record, "--", KESTREL_CLIENT, "-p", "P", "--timeout",
                                            "300ms", "--json", "apply", wanted, "--rollback"});
    EXPECT_EQ(4, result.code);
    const tools::Json document = tools::Json::Parse(result.output);
    EXPECT_EQ(nullptr, document.Find("putBack"));
    EXPECT_THAT(document.At("error").At("text").Text(),
                HasSubstr("could not be put back: fax.backup, fax.rings, fax.redials"));
    const auto sent =
        std::ranges::count_if(tools::LoadExchangeLog(record).exchanges, [](const auto& exchange) {
            return exchange.request.starts_with("DeviceSettings.") &&
                   exchange.request.find('=') != std::string::npos;
        });
    EXPECT_EQ(4, sent) << "two that were made, one that was lost, and once to put it back";
}

TEST_F(Fleet, Differences_are_told_between_printers_dumps_and_wanted_files) {
    StartPrinter("[]", {"--port", "USB002"});
    Write("w.txt", "fax.redials = 6\n");
    ExpectCommands("Differences");
}

TEST_F(Fleet, Changes_are_told_as_they_come_and_once_that_a_printer_is_gone_or_back) {
    StartPrinter("[]", {"--port", "USB002"});
    ChildProcess watch({KESTREL_CLIENT, "--json", "-p", "P", "-p", "Q", "--timeout", "300ms", "watch",
                        "fax.redials", "--interval", "50ms", "--for", "1m"});
    const auto next = [&watch] { return tools::Json::Parse(watch.ReadLine().value_or("{}")); };
    // The first change is seen only by who has looked before.
    std::string seen;
    for (int value = 4; value < 60 && seen.empty(); ++value) {
        RunClient({"-p", "P", "set", "fax.redials", std::to_string(value)});
        seen = watch.ReadLine(milliseconds(200)).value_or("");
    }
    const tools::Json change = tools::Json::Parse(seen);
    EXPECT_EQ("P", change.At("printer").Text());
    EXPECT_EQ("fax.redials", change.At("key").Text());

    printer_ = ChildProcess();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(false, next().At("answers"));
    StartPrinter("[]", {"--port", "USB002"});
    int back = 0;
    while (back < 2) {
        const tools::Json line = next();
        ASSERT_NE(nullptr, line.Find("printer"));
        back += line.Find("answers") != nullptr ? 1 : 0;
    }
    RunClient({"-p", "Q", "set", "fax.redials", "9"});
    tools::Json last = next();
    while (last.Find("new") != nullptr && last.At("printer").Text() != "Q")
        last = next();
    EXPECT_EQ("9", last.At("new").Text());
}

}  // namespace
