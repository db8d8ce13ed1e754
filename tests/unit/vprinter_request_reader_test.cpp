#include "vprinter/request_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(VprinterRequestReader, Every_form_is_cut_into_key_and_value) {
    const struct {
        std::string text;
        CommandKind kind;
        std::string_view key;
        std::string_view value;
    } cases[] = {
        {"DeviceSettings.Fax.Redials?", CommandKind::Query, "DeviceSettings.Fax.Redials", ""},
        {"Maintenance=001?", CommandKind::Word, "Maintenance", "001"},
        {"Name=;", CommandKind::Set, "Name", ""},
        {"Name=\x80\x1D=,#;", CommandKind::Set, "Name", "\x80\x1D=,#"},
        {"Records[12].Name=a;", CommandKind::Set, "Records[12].Name", "a"},
        {"Block#0=;", CommandKind::BinarySet, "Block", ""},
    };
    for (const auto& expected : cases) {
        const std::vector<Command> commands = ReadAll(expected.text);
        ASSERT_EQ(commands.size(), 1u) << expected.text;
        EXPECT_EQ(commands[0].kind, expected.kind) << expected.text;
        EXPECT_EQ(commands[0].key, expected.key);
        EXPECT_EQ(commands[0].value, expected.value);
        EXPECT_EQ(commands[0].text, expected.text);
    }
}

TEST(VprinterRequestReader, Commands_of_one_request_come_in_their_order_and_a_block_hides_delimiters) {
    const std::string request = "A?B#4=;\0&?;C=1;"s;
    const std::vector<Command> commands = ReadAll(request);
    ASSERT_EQ(commands.size(), 3u);
    EXPECT_EQ(commands[0].key, "A");
    EXPECT_EQ(commands[1].value, ";\0&?"sv);
    EXPECT_EQ(commands[2].value, "1");
}

// Over copies of the exact size, so that a sanitizer sees a look beyond the end.
TEST(VprinterRequestReader, A_malformed_command_ends_the_request) {
    for (const std::string_view bad : {"A",
                                       ";",
                                       "?",
                                       "=1;",
                                       "A;",
                                       "A&B?",
                                       "A=1",
                                       "A=1&2;",
                                       "A\n?",
                                       "A\x80=1;",
                                       "A#=;",
                                       "A#x=1;",
                                       "A#-1=1;",
                                       "A#2=1;",
                                       "A#1=12;",
                                       "A#1=1",
                                       "A#1",
                                       "A#",
                                       "A#4294967295=x;",
                                       "A#9999999999=x;"}) {
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
