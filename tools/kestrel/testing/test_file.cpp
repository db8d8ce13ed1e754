// A file is read field by field; a complaint begins with the place.
#include "kestrel/testing/test_file.h"

#include <fmt/core.h>
#include <kestrel/sdk_text.h>

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "kestrel/failure.h"
#include "kestrel/settings/settings.h"
#include "kestrel/testing/pattern.h"
#include "kestrel/text/text.h"
#include "shared/file.h"
#include "shared/json_lines.h"

namespace cli {
namespace {

constexpr uint32_t kMostRepeats = 1'000'000;
constexpr uint32_t kMostMs = 3'600'000;
constexpr uint32_t kHighestExitCode = 255;

constexpr std::string_view kFileFields[] = {"about", "variables", "control", "cases"};
constexpr std::string_view kCaseFields[] = {"name", "about", "repeat", "faults", "steps"};

struct KindRow {
    std::string_view field;
    StepKind kind;
    bool isSetting;
};
constexpr KindRow kKinds[] = {{"raw", StepKind::Raw, false},
                              {"get", StepKind::Get, true},
                              {"set", StepKind::Set, true},
                              {"status", StepKind::Status, false}};

struct TextRow {
    std::string_view field;
    std::optional<std::string> TestStep::*member;
};
constexpr TextRow kTexts[] = {{"reply", &TestStep::reply},
                              {"value", &TestStep::value},
                              {"pattern", &TestStep::pattern},
                              {"error", &TestStep::error}};

struct NumberRow {
    std::string_view field;
    std::optional<uint32_t> TestStep::*member;
    uint32_t lowest;
    uint32_t highest;
};
constexpr NumberRow kNumbers[] = {{"exitCode", &TestStep::exitCode, 0, kHighestExitCode},
                                  {"withinMs", &TestStep::withinMs, 1, kMostMs},
                                  {"timeoutMs", &TestStep::timeoutMs, 1, kMostMs},
                                  {"retryMs", &TestStep::retryMs, 1, kMostMs}};

std::vector<std::string_view> StepFields() {
    std::vector<std::string_view> fields;
    for (const KindRow& row : kKinds)
        fields.push_back(row.field);
    for (const TextRow& row : kTexts)
        fields.push_back(row.field);
    for (const NumberRow& row : kNumbers)
        fields.push_back(row.field);
    fields.insert(fields.end(), {"to", "capture"});
    return fields;
}

// One object of the file, and where it stands.
class ObjectReader final {
  public:
    ObjectReader(const tools::Json& object, std::string place) : object_(object), place_(std::move(place)) {
        if (!object_.IsObject()) Complain("expected an object {...}, found " + object_.Dump());
    }

    [[noreturn]] void Complain(const std::string& what) const {
        throw UsageFailure(fmt::format("{}: {}", place_, what), "correct the test file; nothing was sent");
    }
    [[noreturn]] void Complain(std::string_view field, const std::string& expected) const {
        Complain(fmt::format("\"{}\": expected {}, found {}", field, expected,
                             Has(field) ? object_.At(field).Dump() : "nothing"));
    }

    template <typename Fields>
    void AllowOnly(const Fields& fields) const {
        for (const auto& [name, value] : object_.Members()) {
            if (std::ranges::find(fields, std::string_view(name)) != std::end(fields)) continue;
            Complain(fmt::format("there is no field \"{}\" here; the fields are {}", name,
                                 tools::Joined(fields, ", ")));
        }
    }

    [[nodiscard]] bool Has(std::string_view field) const { return object_.Find(field) != nullptr; }
    [[nodiscard]] const tools::Json& At(std::string_view field) const { return object_.At(field); }
    [[nodiscard]] const std::string& Place() const { return place_; }

    // Numbers, true and false may stand without quotes.
    [[nodiscard]] std::string Text(std::string_view field) const {
        if (!Has(field)) Complain(field, "a text");
        const tools::Json& value = object_.At(field);
        if (value.IsFlag()) return value.Flag() ? "yes" : "no";
        if (value.IsInteger()) return value.Dump();
        if (!value.IsText()) Complain(field, "a text");
        return value.Text();
    }

    [[nodiscard]] uint32_t Number(std::string_view field, uint32_t lowest, uint32_t highest) const {
        const tools::Json& value = object_.At(field);
        const bool fits = value.IsUnsigned() && value.Unsigned() >= lowest && value.Unsigned() <= highest;
        if (!fits) Complain(field, fmt::format("a whole number from {} to {}", lowest, highest));
        return static_cast<uint32_t>(value.Unsigned());
    }

    [[nodiscard]] const tools::Json::Array& List(std::string_view field) const {
        const bool isList = Has(field) && object_.At(field).IsArray() && !object_.At(field).Items().empty();
        if (!isList) Complain(field, "a list [{...}, {...}] with something in it");
        return object_.At(field).Items();
    }

  private:
    const tools::Json& object_;
    std::string place_;
};

// Runs a judgement of the client's own and adds the place to its complaint.
template <typename Judge>
void Judged(const ObjectReader& reader, Judge judge) {
    try {
        judge();
    } catch (const Failure& failure) {
        reader.Complain(failure.text + (failure.advice.empty() ? "" : "; " + failure.advice));
    }
}

void CheckSetting(const ObjectReader& reader, const TestStep& step) {
    if (HasVariables(step.subject)) return;
    Judged(reader, [&] {
        const bool isSet = step.kind == StepKind::Set;
        const catalogue::Row& row =
            isSet ? FindWritableSetting(step.subject) : FindReadableSetting(step.subject);
        static_cast<void>(row);
    });
}

void CheckExpectations(const ObjectReader& reader, const TestStep& step) {
    if (step.reply && step.kind != StepKind::Raw)
        reader.Complain("\"reply\" is for a \"raw\" request; write \"value\" or \"pattern\"");
    if (step.value && (step.kind == StepKind::Raw || step.kind == StepKind::Set))
        reader.Complain("\"value\" is for \"get\" and \"status\"");
    if (step.value && (step.error || step.exitCode))
        reader.Complain("a step that is to fail has no \"value\"");
    if (step.error && !HasVariables(*step.error) && !ErrorNamed(*step.error))
        reader.Complain("error", "a number such as 170 or \"0xE0000003\", or a name of sdk_errors.h");
    if (!step.pattern || HasVariables(*step.pattern)) return;
    const std::string problem = ProblemWithPattern(*step.pattern);
    if (!problem.empty()) reader.Complain("pattern", "an ECMAScript regular expression (" + problem + ")");
}

TestStep ReadStep(const ObjectReader& reader) {
    TestStep step;
    const KindRow* kind = nullptr;
    for (const KindRow& row : kKinds) {
        if (!reader.Has(row.field)) continue;
        if (kind != nullptr)
            reader.Complain(fmt::format("\"{}\" and \"{}\" are two steps", kind->field, row.field));
        kind = &row;
    }
    if (kind == nullptr) reader.Complain("expected one of raw, get, set and status");
    step.kind = kind->kind;
    if (step.kind == StepKind::Status && reader.At(kind->field) != true) reader.Complain("status", "true");
    step.subject = reader.Text(kind->field);
    if (kind->isSetting) CheckSetting(reader, step);
    if (reader.Has("to") != (step.kind == StepKind::Set))
        reader.Complain("\"set\" and \"to\" belong together: {\"set\": \"fax.redials\", \"to\": 5}");
    if (reader.Has("to")) step.to = reader.Text("to");
    for (const TextRow& row : kTexts) {
        if (reader.Has(row.field)) step.*row.member = reader.Text(row.field);
    }
    for (const NumberRow& row : kNumbers) {
        if (reader.Has(row.field)) step.*row.member = reader.Number(row.field, row.lowest, row.highest);
    }
    if (reader.Has("capture")) step.capture = reader.Text("capture");
    CheckExpectations(reader, step);
    return step;
}

// Every variable must be known where it is used; a step's own answer is known to the next one.
void CheckVariables(const ObjectReader& reader, const TestStep& step, Variables& known) {
    Judged(reader, [&] {
        for (const std::string& text : {step.subject, step.to})
            static_cast<void>(Substituted(text, known));
        for (const TextRow& row : kTexts)
            static_cast<void>(Substituted((step.*row.member).value_or(""), known));
    });
    if (!step.capture.empty()) known[step.capture];
}

TestCase ReadCase(const ObjectReader& reader, Variables& known) {
    TestCase test;
    test.place = reader.Place();
    if (reader.Has("name")) test.name = reader.Text("name");
    if (reader.Has("repeat")) test.repeat = reader.Number("repeat", 1, kMostRepeats);
    if (reader.Has("faults")) {
        static_cast<void>(reader.List("faults"));
        test.faults = reader.At("faults");
        Judged(reader, [&] { static_cast<void>(AllSubstituted(*test.faults, known)); });
    }
    const auto add = [&](const ObjectReader& step) {
        test.steps.push_back(ReadStep(step));
        CheckVariables(step, test.steps.back(), known);
    };
    if (!reader.Has("steps")) {
        std::vector<std::string_view> fields = StepFields();
        fields.insert(fields.end(), std::begin(kCaseFields), std::end(kCaseFields));
        reader.AllowOnly(fields);
        add(reader);
        return test;
    }
    reader.AllowOnly(kCaseFields);
    for (const tools::Json& item : reader.List("steps")) {
        const ObjectReader step(item, fmt::format("{}, step {}", reader.Place(), test.steps.size() + 1));
        step.AllowOnly(StepFields());
        add(step);
    }
    return test;
}

tools::Json Parsed(const std::string& text, const std::string& path) {
    try {
        return tools::Json::Parse(text);
    } catch (const tools::JsonError& error) {
        throw UsageFailure(fmt::format("{}:{}: this is not JSON: {}", path,
                                       tools::LineOfByte(text, error.Byte()), error.what()),
                           "correct the test file; nothing was sent");
    }
}

std::filesystem::path PathOf(const std::string& utf8) {
    return {std::u8string(utf8.begin(), utf8.end())};
}

// As seen from the folder of the test file.
std::string Beside(const std::string& path, const std::string& name) {
    const std::u8string text = (PathOf(path).parent_path() / PathOf(name)).u8string();
    return {text.begin(), text.end()};
}

Variables OwnVariables(const ObjectReader& file) {
    Variables variables;
    if (!file.Has("variables")) return variables;
    const ObjectReader reader(file.At("variables"), file.Place() + ", \"variables\"");
    for (const auto& [name, value] : file.At("variables").Members())
        variables[name] = reader.Text(name);
    return variables;
}

}  // namespace

std::optional<uint32_t> ErrorNamed(const std::string& text) {
#define ERROR_ROW(name, code, text, advice) {code, name, text, advice},
    static constexpr KestrelErrorText kErrors[] = {KESTREL_SDK_ERRORS(ERROR_ROW)};
#undef ERROR_ROW
    for (const KestrelErrorText& row : kErrors) {
        if (text == row.name) return row.code;
    }
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const char* const end = text.data() + text.size();
    uint32_t number = 0;
    const auto [stop, error] = std::from_chars(text.data() + (isHex ? 2 : 0), end, number, isHex ? 16 : 10);
    if (error != std::errc() || stop != end) return {};
    return number;
}

TestFile ReadTestFile(const std::string& path, const Variables& given, const std::string& control) {
    const std::optional<std::string> text = tools::ReadFile(PathOf(path));
    if (!text) throw UsageFailure(path + " cannot be read", "check the name and its permissions");
    const tools::Json document = Parsed(*text, path);
    const ObjectReader reader(document, path + ":1");
    reader.AllowOnly(kFileFields);

    TestFile file;
    file.path = path;
    file.control = control;
    if (control.empty() && reader.Has("control")) file.control = Beside(path, reader.Text("control"));
    file.variables = OwnVariables(reader);
    for (const auto& [name, value] : given)
        file.variables[name] = value;

    Variables known = file.variables;
    const std::vector<size_t> lines = tools::LinesOfItems(*text, "cases");
    for (const tools::Json& item : reader.List("cases")) {
        const size_t index = file.cases.size();
        std::string place =
            fmt::format("{}:{}: case {}", path, index < lines.size() ? lines[index] : 1, index + 1);
        const tools::Json* const name = item.Find("name");
        if (name != nullptr && name->IsText()) place += fmt::format(" \"{}\"", name->Text());
        const ObjectReader caseReader(item, std::move(place));
        file.cases.push_back(ReadCase(caseReader, known));
        TestCase& test = file.cases.back();
        if (test.name.empty()) test.name = fmt::format("case {}", index + 1);
        if (test.faults && file.control.empty())
            caseReader.Complain(
                "\"faults\" need the virtual printer's control file: name it under \"control\" or with "
                "--control");
    }
    return file;
}

}  // namespace cli
