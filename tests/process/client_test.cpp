// The command-line client as its users meet it: results, refusals, exit codes.
#include "installed_status_monitor.h"

namespace {

struct Case {
    std::vector<std::string> words;
    int code;
    const char* output;  // a part of it
};

class Client : public InstalledStatusMonitor {
  protected:
    static ProgramResult Run(std::vector<std::string> words) {
        words.insert(words.begin(), {"-p", "P"});
        return RunClient(words);
    }
    static void ExpectAll(const std::vector<Case>& cases) {
        for (const Case& row : cases) {
            const ProgramResult result = Run(row.words);
            EXPECT_EQ(row.code, result.code) << row.words.front() << ' ' << row.words.back();
            EXPECT_NE(std::string::npos, result.output.find(row.output)) << result.output;
        }
    }
};

TEST_F(Client, Exit_codes_have_one_meaning_each) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Quality?","garbage":"hello"},
                     {"match":"DeviceSettings.Copy.Preview?","noReply":true}])");
    ExpectAll({
        {{"get", "fax.redials"}, 0, "3\n"},
        {{"set", "fax.redials", "7"}, 0, ""},
        {{"get", "fax.redials"}, 0, "7\n"},
        {{"set", "--verify", "fax.senders-name", "a;b&c"}, 0, ""},
        {{"get", "fax.senders-name"}, 0, "a;b&c\n"},
        {{"set", "fax.redials", "200"}, 1, ""},
        {{"set", "fax.redials", "300"}, 6, ""},
        {{"set", "fax.redials", "many"}, 6, ""},
        {{"set", "photo.quality", "Splendid"}, 6, ""},
        {{"get", "fax.redial"}, 2, ""},
        {{"fly"}, 2, ""},
        {{"addressbook", "import", "/"}, 6, ""},
        {{"get", "fax.rings"}, 1, ""},
        {{"get", "copy.quality"}, 7, ""},
        {{"--timeout", "200ms", "get", "copy.preview"}, 4, ""},
        {{"raw", "DeviceSettings.Fax.Redials?"}, 0, "0000,DeviceSettings.Fax.Redials=7;\n"},
        {{"maintenance", "check-nozzles"}, 0, ""},
    });
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
    const std::filesystem::path book = home_ / "book.csv";
    const std::filesystem::path upgrade = home_ / "new.fw";
    std::ofstream(book) << "1,fax,\"Smith, Al\",0301\n2,email,Eva,eva@example.org\n";
    std::ofstream(upgrade) << "ZRFW 1 9900.7.1\n";
    std::ofstream(home_ / "control.json") << R"({"*":{"search.seconds":1,"upgrade.seconds":1}})";
    StartPrinter("[]", {"--control", (home_ / "control.json").string()});

    ExpectAll({
        {{"status"}, 0, "ink         black     75 % enough\n"},
        {{"--json", "status", "--watch", "--interval", "10ms", "--for", "50ms"}, 0, "\"afterMs\""},
        {{"status", "--for", "1s"}, 2, ""},
        {{"addressbook", "show"}, 0, "the address book is empty\n"},
        {{"addressbook", "import", book.string()}, 0, "wrote 2 records of the speed-dial list\n"},
        {{"addressbook", "set", "--list", "one-touch", "4", "fax", "Office", "12"}, 0, ""},
        {{"addressbook", "set", "60", "fax", "Office", "12"}, 6, ""},
        {{"addressbook", "show"}, 0, "one-touch   4       fax    Office"},
        {{"addressbook", "export"}, 0, "\n2,email,Eva,eva@example.org"},
        {{"addressbook", "import", "/nowhere/book.csv"}, 6, ""},
        {{"wifi", "show"}, 0, "wireless.state           Connected\n"},
        {{"wifi", "scan"}, 0, "guests 2.4 GHz"},
        {{"wifi", "set", "--ssid", "Office", "--security", "WPA2PSK_AES"}, 0, ""},
        {{"wifi", "set", "--security", "Splendid", "--ssid", "Other"}, 6, ""},
        {{"get", "wireless.ssid"}, 0, "Office\n"},
        {{"ping", "--count", "2", "--wait", "1", "10.0.0.1"}, 0, "10.0.0.1: 2 pings sent, 2 answered\n"},
        {{"ping", "10.0.0"}, 6, ""},
        {{"hosts"}, 0, "kestrel-9900.local\nworkshop-pc.local\n"},
        {{"clock", "set", "2020-02-29 12:00"}, 0, ""},
        {{"clock", "show"}, 0, "2020-02-29 12:0"},
        {{"clock", "set", "2021-13-01 00:00"}, 1, ""},
        {{"clock", "set", "tomorrow"}, 6, ""},
        {{"clock", "sync"}, 0, ""},
        {{"firmware", "show"}, 0, "9900.2209.417"},
        {{"firmware", "upgrade", book.string()}, 1, ""},
        {{"firmware", "upgrade", "/nowhere/new.fw"}, 1, ""},
        {{"firmware", "upgrade", upgrade.string()}, 0, "the printer has taken the file"},
        {{"firmware", "refresh"}, 0, ""},
        {{"capabilities"}, 0, "firmware upgrade   yes\n"},
        {{"identity"}, 0, "USB vendor   FFF0\nUSB product  26AC\n"},
        {{"supplies", "order"}, 0, ""},
        {{"monitor", "show"}, 0, ""},
        {{"monitor", "about"}, 0, ""},
        {{"cache", "off"}, 0, ""},
        {{"cancel"}, 0, ""},
        {{"lock", "--hold", "10ms"}, 0, "unlocked\n"},
    });
}

}  // namespace
