// Commands of the client that are told in commands.txt.
#pragma once

#include <iomanip>
#include <regex>

#include "installed_printer.h"
#include "sections.h"

// Runs the cases of this title one after the other, each with `first` before its own words.
inline void ExpectCommands(const std::string& title, const Words& first = {}) {
    const std::regex home("HOME");
    const std::regex lineEnd(R"(\\n)");
    ForEachCase(COMMANDS, title, [&](const std::string& command, const std::string& expected) {
        std::istringstream in(std::regex_replace(command, home, std::getenv("KESTREL_TEST_FOLDER")));
        Words words;
        for (std::string word; in >> std::quoted(word);)
            words.push_back(word);
        const auto [code, output] = RunClient(first, words);
        size_t codeEnd = 0;
        EXPECT_EQ(std::stoi(expected, &codeEnd), code);
        const std::string told =
            std::regex_replace(expected.substr(std::min(codeEnd + 1, expected.size())), lineEnd, "\n");
        if (told.starts_with('='))
            EXPECT_EQ(told.substr(1), output);
        else if (told.starts_with('!'))
            EXPECT_THAT(output, Not(HasSubstr(told.substr(1))));
        else
            EXPECT_THAT(output, HasSubstr(told));
    });
}
