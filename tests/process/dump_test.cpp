// A printer kept as a file, and the virtual printer that is made from it.
#include "installed_printer.h"

namespace {

class Dump : public InstalledPrinter {
  protected:
    static ProgramResult Run(const Words& words) {
        return RunClient({"-p", "P", "--timeout", "300ms"}, words);
    }
    // The file, and its text.
    std::string Kept(const std::string& name, const Words& extra = {}) {
        EXPECT_EQ(0, RunClient({"-p", "P", "--timeout", "300ms", "dump", "-o", Path(name)}, extra).code);
        return FileText(Path(name));
    }
    void Become(const std::string& name) {
        EndPrinter();
        StartPrinter("[]", {"--from", Path(name)});
    }
};

TEST_F(Dump, A_printer_made_from_a_dump_is_dumped_as_the_same_bytes) {
    const std::string control =
        Write("now.json", R"({"USB001": {"ink.black": 5, "status.error": "Paper_Jam", "clock.offset": -7200,
        "clock.host": "00000000000000AB", "search.seconds": 0, "DeviceSettings.Fax.UserInfo.Name": "J\u00f6rg = x;y",
        "network.hosts": "a.local", "DeviceStatus.Printer.PhotoTrayEngaged": true}})");
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Quality?","garbage":"hello"},
                     {"match":"DeviceSettings.Copy.Preview?","noReply":true},
                     {"match":"DeviceSettings.System.Time?","reply":"0000,X=1;"},
                     {"match":"DeviceNetwork.WiFiSettings.Mac_Configuration.Security.Key0?","responseNumber":1001},
                     {"match":"DeviceSettings.Photo.Mode?","reply":"0000,DeviceSettings.Photo.Mode=Strange;"}])",
                 {"--control", control});
    EXPECT_EQ(0, Run({"addressbook", "set", "3", "fax", "Al", "030123"}).code);
    EXPECT_EQ(0, Run({"set", "wireless.pass-phrase", "open sesame"}).code);
    EXPECT_EQ(0, Run({"wifi", "scan", "--wait", "1s"}).code);
    const std::string masked = Kept("masked.json");
    const std::string whole = Kept("whole.json", {"--secrets"});
    EXPECT_THAT(masked, Not(HasSubstr("open sesame")));
    EXPECT_THAT(masked, HasSubstr("left out"));
    EXPECT_THAT(whole, HasSubstr("open sesame"));
    const tools::Json document = tools::Json::Parse(masked);
    EXPECT_EQ("J\u00f6rg = x;y", document.At("settings").At("fax.senders-name").Text());
    EXPECT_EQ(1001, document.At("settings").At("fax.rings").At("error").At("responseNumber"));
    EXPECT_EQ(4u, document.At("accessPoints").Items().size());
    Become("masked.json");
    EXPECT_EQ(masked, Kept("again.json"));
    EXPECT_THAT(Run({"supplies"}).output, HasSubstr("black      5 % low"));
    Become("whole.json");
    EXPECT_EQ(whole, Kept("again.json", {"--secrets"}));
    const std::string half = Write("half.json", whole.substr(0, whole.size() / 2));
    EXPECT_EQ(2, RunProgram({KESTREL_VPRINTER, "--port", "USB002", "--from", half}).code);
}

TEST_F(Dump, A_printer_that_has_stopped_answering_is_not_asked_to_the_end) {
    StartPrinter(
        R"([{"match":"DeviceSettings.Fax.*","noReply":true},{"match":"DeviceSettings.U*","noReply":true}])");
    const auto begin = Clock::now();
    const std::string text = Kept("p.json");
    EXPECT_LT(Clock::now() - begin, milliseconds(10000));
    EXPECT_THAT(text, HasSubstr("not asked"));
    Become("p.json");
    EXPECT_EQ(text, Kept("again.json"));
    EndPrinter();
    EXPECT_EQ(4, Run({"dump"}).code);
}

}  // namespace
