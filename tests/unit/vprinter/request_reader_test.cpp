#include "vprinter/requests/request_reader.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "opl/readable_text.h"

namespace vprinter {
namespace {

using namespace std::literals;

std::vector<Command> ReadAll(std::string_view request) {
    std::vector<Command> commands;
    RequestReader reader(request);
    for (Command command; reader.Next(command);)
        commands.push_back(command);
    return commands;
}

TEST(VprinterRequestReader, A_request_is_cut_into_commands_of_every_form) {
    const struct {
        std::string text;
        CommandKind kind;
        std::string_view key;
        std::string_view value;
    } parts[] = {
        {"A.B?", CommandKind::Query, "A.B", ""},
        {"Maintenance=001?", CommandKind::Word, "Maintenance", "001"},
        {"Block#4=;\0&?;"s, CommandKind::BinarySet, "Block", ";\0&?"sv},
        {"Block#0=;", CommandKind::BinarySet, "Block", ""},
        {"Name=;", CommandKind::Set, "Name", ""},
        {"Records[12].Name=\x80\x1D=,#;", CommandKind::Set, "Records[12].Name", "\x80\x1D=,#"},
    };
    std::string request;
    for (const auto& part : parts)
        request += part.text;
    const std::vector<Command> commands = ReadAll(request);
    ASSERT_EQ(commands.size(), std::size(parts));
    for (size_t i = 0; i < commands.size(); ++i) {
        EXPECT_EQ(commands[i].kind, parts[i].kind) << parts[i].text;
        EXPECT_EQ(commands[i].key, parts[i].key);
        EXPECT_EQ(commands[i].value, parts[i].value);
        EXPECT_EQ(commands[i].text, parts[i].text);
    }
}

// Over copies of the exact size, so that a sanitizer sees a look beyond the end.
TEST(VprinterRequestReader, A_malformed_command_ends_the_request) {
    std::istringstream all(
        R"(A ; ? =1; A; A&B? A=1 A=1&2; A\x0A? A\x80=1; A#=; A#x=1; A#-1=1; A#2=1; A#1=12; A#1=1
                              A#1 A# A#4294967295=x; A#9999999999=x;)");
    for (std::string written; all >> written;) {
        const std::string bad = opl::FromReadable(written).value();
        std::vector<char> request = {'Z', '?'};
        request.insert(request.end(), bad.begin(), bad.end());
        request.shrink_to_fit();
        const std::vector<Command> commands = ReadAll({request.data(), request.size()});
        ASSERT_EQ(commands.size(), 2u) << bad;
        EXPECT_EQ(commands[1].kind, CommandKind::Malformed) << bad;
        EXPECT_NE(commands[1].fault, nullptr) << bad;
        EXPECT_EQ(commands[1].text, bad);
    }
}

}  // namespace
}  // namespace vprinter
