// The command-line client as its users meet it: results, refusals, exit codes.
#include <nlohmann/json.hpp>

#include "installed_printer.h"

namespace {

class Client : public InstalledPrinter {
  protected:
    static CommandResult Run(std::vector<std::string> words) {
        words.insert(words.begin(), {"-p", "P"});
        return RunClient(words);
    }
};

TEST_F(Client, Exit_codes_have_one_meaning_each) {
    StartPrinter(R"([{"match":"DeviceSettings.Fax.Rings?","responseNumber":1001},
                     {"match":"DeviceSettings.Copy.Quality?","garbage":"hello"},
                     {"match":"DeviceSettings.Copy.Preview?","noReply":true}])");
    struct Case {
        std::vector<std::string> words;
        int code;
        std::string output;
    };
    const Case cases[] = {
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
        {{"get", "fax.rings"}, 1, ""},
        {{"get", "copy.quality"}, 7, ""},
        {{"--timeout", "200ms", "get", "copy.preview"}, 4, ""},
        {{"raw", "DeviceSettings.Fax.Redials?"}, 0, "0000,DeviceSettings.Fax.Redials=7;\n"},
        {{"maintenance", "check-nozzles"}, 0, ""},
    };
    for (const Case& row : cases) {
        const CommandResult result = Run(row.words);
        EXPECT_EQ(row.code, result.code) << row.words.back();
        EXPECT_EQ(row.output, row.output.empty() ? row.output : result.output);
    }
    EXPECT_EQ(3, RunClient({"-p", "Nobody", "get", "fax.redials"}).code);
    printer_.Terminate();
    EXPECT_EQ(0, printer_.Wait());
    EXPECT_EQ(4, Run({"--timeout", "200ms", "get", "fax.redials"}).code);
}

TEST_F(Client, Json_is_one_document_with_the_exit_code_inside) {
    StartPrinter();
    const auto good = nlohmann::json::parse(Run({"--json", "get", "fax.redials"}).output);
    EXPECT_EQ(1, good.at("version"));
    EXPECT_EQ(0, good.at("exitCode"));
    EXPECT_NE(std::string::npos, good.dump().find(":3"));
    const CommandResult refused = Run({"--json", "set", "photo.quality", "Splendid"});
    EXPECT_EQ(6, refused.code);
    EXPECT_EQ(6, nlohmann::json::parse(refused.output).at("exitCode"));
}

TEST_F(Client, Secrets_are_masked_in_lists_and_shown_when_asked_for) {
    StartPrinter();
    EXPECT_EQ(0, Run({"set", "wireless.pass-phrase", "open sesame"}).code);
    EXPECT_EQ(std::string::npos, Run({"list"}).output.find("open sesame"));
    EXPECT_EQ(std::string::npos, Run({"--json", "list"}).output.find("open sesame"));
    EXPECT_EQ("open sesame\n", Run({"get", "wireless.pass-phrase"}).output);
}

}  // namespace
