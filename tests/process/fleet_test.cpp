// One command for several printers, one of which does not answer; wanted states and differences.
#include "installed_printer.h"

namespace {

constexpr int kDifferent = 9;

class Fleet : public InstalledPrinter {
  protected:
    Fleet() {
        AddPrinter("Q", "USB002");
        AddPrinter("Dead", "USB009");
    }
    std::string File(const char* name, const std::string& text) const {
        const std::string path = (home_ / name).string();
        std::ofstream(path) << text;
        return path;
    }
    static tools::Json Document(std::vector<std::string> words) {
        words.emplace_back("--json");
        return tools::Json::Parse(RunClient(words).output);
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
    const std::string wanted = File("w.txt", "fax.redials = 5\nfax.rings = 4\n[Q]\nfax.redials = 6\n");
    const std::vector<std::string> apply = {"-p", "P", "-p", "Q", "apply", wanted};
    std::vector<std::string> dry = apply;
    dry.emplace_back("--dry-run");
    EXPECT_EQ(kDifferent, RunClient(dry).code);
    std::vector<std::string> withDead = {"-p", "Dead", "--timeout", "200ms"};
    withDead.insert(withDead.begin(), dry.begin(), dry.end());
    EXPECT_EQ(4, RunClient(withDead).code) << "differences elsewhere do not hide it";
    EXPECT_EQ("3\n", Value("P", "fax.redials")) << "nothing was changed";
    const ProgramResult first = RunClient(apply);
    EXPECT_EQ(0, first.code);
    EXPECT_NE(std::string::npos, first.output.find("Q:\n  fax.redials: 3 -> 6\n  1 changed, 1 as wanted\n"));
    EXPECT_EQ("5\n", Value("P", "fax.redials"));
    EXPECT_EQ("P: 0 changed, 2 as wanted\nQ: 0 changed, 2 as wanted\n", RunClient(apply).output);
    EXPECT_EQ(0, RunClient(dry).code);
    EXPECT_EQ("0 changed, 2 as wanted\n", RunClient({"apply", wanted}).output) << "its heading names Q";

    const std::string wrong = File("wrong.txt", "fax.redials = 7\n[Q]\nfax.redials = 999\n");
    EXPECT_EQ(6, RunClient({"-p", "P", "apply", wrong}).code);
    EXPECT_EQ("5\n", Value("P", "fax.redials")) << "one wrong value, and none is sent";
}

TEST_F(Fleet, A_refused_value_ends_the_work_for_its_printer_and_can_take_the_others_back) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings=*","responseNumber":1001}])");
    const std::string wanted =
        File("w.json", R"({"settings":{"fax.redials":5,"fax.rings":2,"fax.backup":true}})");
    const tools::Json left = Document({"-p", "P", "apply", wanted});
    EXPECT_EQ(1, left.At("exitCode"));
    EXPECT_EQ(1u, left.At("changes").Items().size());
    EXPECT_NE(std::string::npos, left.At("error").At("text").Text().find("left so: fax.redials"));
    EXPECT_EQ("5\n", Value("P", "fax.redials"));
    for (const char* const key : {"fax.redials", "fax.rings"})
        RunClient({"-p", "P", "set", key, "3"});

    // The setting that is refused is put back too: it may have come half the way. This printer refuses that
    // as well.
    const tools::Json back = Document({"-p", "P", "apply", wanted, "--rollback"});
    EXPECT_EQ(1, back.At("exitCode"));
    EXPECT_EQ("fax.redials", back.At("putBack").Items().front().Text());
    EXPECT_NE(std::string::npos, back.At("error").At("text").Text().find("could not be put back: fax.rings"));
    EXPECT_EQ("3\n", Value("P", "fax.redials"));
}

TEST_F(Fleet, A_printer_that_falls_silent_is_not_asked_to_put_back_each_setting) {
    StartPrinter(R"([{"match":"DeviceSettings.*=*","skip":2,"lost":true}])");
    const std::string wanted =
        File("w.txt", "fax.redials = 5\nfax.rings = 2\nfax.backup = no\nfax.mode = Fine_Color\n");
    const std::string record = (home_ / "r.jsonl").string();
    const ProgramResult result = RunClient({"record", record, "--", KESTREL_CLIENT, "-p", "P", "--timeout",
                                            "300ms", "--json", "apply", wanted, "--rollback"});
    EXPECT_EQ(4, result.code);
    const tools::Json document = tools::Json::Parse(result.output);
    EXPECT_EQ(nullptr, document.Find("putBack"));
    EXPECT_NE(std::string::npos, document.At("error").At("text").Text().find(
                                     "could not be put back: fax.backup, fax.rings, fax.redials"));
    std::istringstream lines(FileText(record));
    std::vector<std::string> sent;
    for (std::string line; std::getline(lines, line);) {
        const tools::Json exchange = tools::Json::Parse(line);
        const tools::Json* const request = exchange.Find("request");
        if (request != nullptr && request->Text().starts_with("DeviceSettings.") &&
            request->Text().find('=') != std::string::npos)
            sent.push_back(request->Text());
    }
    EXPECT_EQ(4u, sent.size()) << "two that were made, one that was lost, and once to put it back";
}

TEST_F(Fleet, Differences_are_told_between_printers_dumps_and_wanted_files) {
    StartPrinter("[]", {"--port", "USB002"});
    RunClient({"-p", "Q", "set", "fax.redials", "6"});
    RunClient({"-p", "Q", "set", "wireless.pass-phrase", "open sesame"});
    const std::string dump = (home_ / "p.json").string();
    EXPECT_EQ(0, RunClient({"-p", "P", "dump", "-o", dump}).code);
    const std::string wanted = File("w.txt", "fax.redials = 6\n");

    const tools::Json printers = Document({"diff", "P", "Q"});
    EXPECT_EQ(9, printers.At("exitCode"));
    EXPECT_EQ(2u, printers.At("differences").Items().size());
    EXPECT_EQ(std::string::npos, printers.Dump().find("sesame"));
    EXPECT_EQ(0, RunClient({"diff", dump, "P"}).code);
    EXPECT_EQ(kDifferent, RunClient({"diff", dump, wanted}).code);
    EXPECT_EQ("no difference in 1 settings\n", RunClient({"diff", wanted, "Q"}).output);
    EXPECT_EQ(4, RunClient({"--timeout", "200ms", "diff", "P", "Dead"}).code);
    EXPECT_EQ(0, RunClient({"-p", "Q", "apply", dump}).code) << "as the other printer was";
    EXPECT_EQ(0, RunClient({"diff", dump, "Q"}).code);
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

    printer_.Kill();
    printer_.Wait();
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
