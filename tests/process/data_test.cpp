// The test files of tests/data and the example of their document, run against the virtual printer; and how a
// run tells of failures.
#include "installed_status_monitor.h"

namespace {

namespace fs = std::filesystem;

class Data : public InstalledStatusMonitor {
  protected:
    Data() : control_(Path("control.json")) {
        StartMonitor();
        StartPrinter("[]", {"--control", control_});
    }
    [[nodiscard]] ProgramResult Run(const std::string& file, const Words& options = {}) const {
        return RunClient({"-p", "P", "run", file, "--control", control_}, options);
    }

    std::string control_;
};

class Cases : public Data, public testing::WithParamInterface<fs::path> {};

TEST_P(Cases, Pass) {
    const ProgramResult result = Run(GetParam().string());
    EXPECT_EQ(0, result.code) << result.output;
}

std::vector<fs::path> TestFiles() {
    std::vector<fs::path> files(fs::directory_iterator(TEST_DATA), {});
    std::ranges::sort(files);
    return files;
}

INSTANTIATE_TEST_SUITE_P(Data, Cases, testing::ValuesIn(TestFiles()),
                         [](const auto& file) { return file.param.stem().string(); });

TEST_F(Data, The_example_of_the_document_passes) {
    const std::string page = FileText(TESTING_DOCUMENT);
    const size_t begin = page.find("    {\n", page.find("## A complete example"));
    const std::string example =
        Write("test.json", page.substr(begin, page.find("\n    }\n", begin) + 7 - begin));
    const ProgramResult result = Run(example);
    EXPECT_EQ(0, result.code) << result.output;
    EXPECT_NE(0, Run(example, {"--set", "redials=12"}).code) << "what is given stands above the file";
}

TEST_F(Data, A_failed_case_is_told_in_each_form_and_takes_its_faults_with_it) {
    const std::string file = Write("test.json", R"({"cases": [
        {"name": "wrong <1> & \"2\" #3", "faults": [{"match": "*", "delay": 1}], "get": "fax.rings", "value": 9},
        {"name": "slow", "faults": [{"match": "*Rings?", "delay": 300}], "get": "fax.rings", "withinMs": 100},
        {"name": "unknown", "faults": [{"match": "*", "hung": 1}], "get": "fax.rings"},
        {"name": "again", "get": "fax.redials", "value": "3", "repeat": 3, "withinMs": 250, "retryMs": 5000}]})");
    const std::string xml = Path("result.xml");
    const ProgramResult tap = Run(file, {"--tap", "--junit", xml});
    EXPECT_EQ(8, tap.code);
    for (const char* part : {"TAP version 13\n1..4\nnot ok 1 - ", "\\#3\n  ---\n  at: \"", "not ok 2",
                             "within 100 ms", "not ok 3", "no such field", "\nok 4 - "})
        EXPECT_THAT(tap.output, HasSubstr(part));
    const std::string document = FileText(xml);
    for (const char* part : {"tests=\"4\" failures=\"3\"", "name=\"wrong &lt;1&gt; &amp; &quot;2&quot; #3\"",
                             "expected the value &quot;9&quot;, found success, &quot;4&quot;"})
        EXPECT_THAT(document, HasSubstr(part));
    const auto json = tools::Json::Parse(Run(file, {"--json"}).output);
    EXPECT_EQ(8, json.At("exitCode"));
    EXPECT_EQ(1, json.At("passed"));
    EXPECT_EQ(3, json.At("failed"));
    EXPECT_EQ(true, json.At("cases").Items()[3].At("passed"));
    EXPECT_EQ(2, Run(file, {"--tap", "--json"}).code);
    EXPECT_EQ(2, Run(file, {"--junit", "/nowhere/x.xml"}).code);
}

}  // namespace
