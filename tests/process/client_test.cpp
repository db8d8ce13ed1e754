// The command-line client as its users meet it: results, refusals, exit codes.
#include <iomanip>
#include <regex>

#include "installed_status_monitor.h"
#include "sections.h"

namespace {

class Client : public InstalledStatusMonitor {
  protected:
    static ProgramResult Run(std::vector<std::string> words) {
        words.insert(words.begin(), {"-p", "P"});
        return RunClient(words);
    }
    // The cases of this title in commands.txt.
    void ExpectAll(const std::string& title) {
        for (const std::string& line : CasesOf(COMMANDS, title))
            Expect(std::regex_replace(line, std::regex("HOME"), home_.string()));
    }
    static void Expect(const std::string& line) {
        const auto [command, expected] = CaseIn(line);
        std::istringstream in(command);
        std::vector<std::string> words;
        for (std::string word; in >> std::quoted(word);)
            words.push_back(word);
        const ProgramResult result = Run(words);
        size_t codeEnd = 0;
        EXPECT_EQ(std::stoi(expected, &codeEnd), result.code) << line;
        const std::string written = expected.substr(std::min(codeEnd + 1, expected.size()));
        const std::string output = std::regex_replace(written, std::regex(R"(\\n)"), "\n");
        EXPECT_NE(std::string::npos, result.output.find(output)) << line << '\n' << result.output;
    }
};

TEST_F(Client, Exit_codes_have_one_meaning_each) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Quality?","garbage":"hello"},
                     {"match":"DeviceSettings.Copy.Preview?","noReply":true}])");
    ExpectAll("Exit codes");
    EXPECT_EQ(3, RunClient({"-p", "Nobody", "get", "fax.redials"}).code);
    EXPECT_EQ(4, RunProgram({KESTREL_VPRINTER, "--port", "USB001"}).code) << "one port, one printer";
    EXPECT_EQ(2, RunProgram({KESTREL_VPRINTER, "--port", "USB002", "--state", "/"}).code) << "a folder";
    printer_.Terminate();
    EXPECT_EQ(0, printer_.Wait());
    EXPECT_EQ(4, Run({"--timeout", "200ms", "get", "fax.redials"}).code);
}

TEST_F(Client, A_lock_keeps_other_programs_out_until_it_is_given_back_or_its_holder_dies) {
    StartPrinter();
    for (const bool isKilled : {false, true}) {
        ChildProcess holder({KESTREL_CLIENT, "-p", "P", "--json", "lock"});
        int code = 0;
        for (int i = 0; i < 50 && code != 5; ++i) {
            Sleep(100);
            code = RunClient({"-p", "P", "set", "fax.redials", "4"}).code;
        }
        EXPECT_EQ(5, code);
        if (isKilled) {
            holder.Kill();
        } else {
            holder.WriteLine("");
            EXPECT_NE(std::string::npos, holder.ReadAll().find("\"endedBy\": \"enter\""));
        }
        holder.Wait();
        WithPrinter([] { EXPECT_EQ(kDone, Ended(SetFaxRedials(4, kLong))); });
    }
}

TEST_F(Client, Json_is_one_document_with_the_exit_code_inside) {
    StartPrinter();
    const auto good = tools::Json::Parse(Run({"--json", "get", "fax.redials"}).output);
    EXPECT_EQ(1, good.At("version"));
    EXPECT_EQ(0, good.At("exitCode"));
    EXPECT_NE(std::string::npos, good.Dump().find(":3"));
    const ProgramResult bad = Run({"--json", "set", "photo.quality", "Splendid"});
    EXPECT_EQ(6, bad.code);
    EXPECT_EQ(6, tools::Json::Parse(bad.output).At("exitCode"));
}

TEST_F(Client, Secrets_are_masked_in_lists_and_shown_when_asked_for) {
    StartPrinter();
    EXPECT_EQ(0, Run({"set", "wireless.pass-phrase", "open sesame"}).code);
    EXPECT_EQ(std::string::npos, Run({"list"}).output.find("open sesame"));
    EXPECT_EQ(std::string::npos, Run({"--json", "list"}).output.find("open sesame"));
    EXPECT_EQ("open sesame\n", Run({"get", "wireless.pass-phrase"}).output);
}

TEST_F(Client, Every_family_of_the_library_has_its_commands) {
    StartMonitor();
    std::ofstream(home_ / "book.csv") << "1,fax,\"Smith, Al\",0301\n2,email,Eva,eva@example.org\n";
    std::ofstream(home_ / "new.fw") << "ZRFW 1 9900.7.1\n";
    std::ofstream(home_ / "control.json") << R"({"*":{"search.seconds":1,"upgrade.seconds":1}})";
    StartPrinter("[]", {"--control", (home_ / "control.json").string()});
    ExpectAll("Every family");
    EXPECT_EQ(0, StopMonitor());
    const std::string asked = monitor_.ReadAll();
    for (const char* part : {"ShoM  shows the maintenance window \"P\": done",
                             "SFWU  makes room for a firmware upgrade \"P\": done"})
        EXPECT_NE(std::string::npos, asked.find(part)) << asked;
}

}  // namespace
