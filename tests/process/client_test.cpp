// The command-line client as its users meet it: results, refusals, exit codes.
#include "commands.h"
#include "installed_status_monitor.h"

namespace {

using Client = InstalledStatusMonitor;

const Words kOnP = {"-p", "P"};

TEST_F(Client, Exit_codes_have_one_meaning_each) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Quality?","garbage":"hello"},
                     {"match":"DeviceSettings.Copy.Preview?","noReply":true}])");
    ExpectCommands("Exit codes", kOnP);
    EXPECT_EQ(3, RunClient({"-p", "Nobody", "get", "fax.redials"}).code);
    EXPECT_EQ(4, RunProgram({KESTREL_VPRINTER, "--port", "USB001"}).code) << "one port, one printer";
    EXPECT_EQ(2, RunProgram({KESTREL_VPRINTER, "--port", "USB002", "--state", "/"}).code) << "a folder";
    EndPrinter();
    EXPECT_EQ(4, RunClient(kOnP, {"--timeout", "200ms", "get", "fax.redials"}).code);
}

TEST_F(Client, A_lock_keeps_other_programs_out_until_it_is_given_back_or_its_holder_dies) {
    StartPrinter();
    for (const bool isKilled : {false, true}) {
        ChildProcess holder({KESTREL_CLIENT, "-p", "P", "--json", "lock"});
        int code = 0;
        for (int i = 0; i < 50 && code != 5; ++i) {
            Sleep(100);
            code = RunClient(kOnP, {"set", "fax.redials", "4"}).code;
        }
        EXPECT_EQ(5, code);
        if (isKilled) {
            holder.Kill();
        } else {
            holder.WriteLine("");
            EXPECT_THAT(holder.ReadAll(), HasSubstr("\"endedBy\": \"enter\""));
        }
        holder.Wait();
        WithPrinter([] { EXPECT_EQ(kDone, Ended(SetFaxRedials(4, kLong))); });
    }
}

TEST_F(Client, Secrets_are_masked_in_lists_and_shown_when_asked_for) {
    StartPrinter();
    ExpectCommands("Secrets", kOnP);
}

TEST_F(Client, Every_family_of_the_library_has_its_commands) {
    StartMonitor();
    Write("book.csv", "1,fax,\"Smith, Al\",0301\n2,email,Eva,eva@example.org\n");
    Write("new.fw", "ZRFW 1 9900.7.1\n");
    StartPrinter("[]",
                 {"--control", Write("control.json", R"({"*":{"search.seconds":1,"upgrade.seconds":1}})")});
    ExpectCommands("Every family", kOnP);
    const std::string asked = EndMonitor();
    for (const char* part : {"ShoM  shows the maintenance window \"P\": done",
                             "SFWU  makes room for a firmware upgrade \"P\": done"})
        EXPECT_THAT(asked, HasSubstr(part));
}

}  // namespace
