// Cases that are told in a text: "## Title" begins a section, "#" a comment, any other line is a case.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

struct Section {
    std::string title;
    std::vector<std::string> lines;
};

inline std::vector<Section> Sections(const char* path) {
    std::vector<Section> all;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("## "))
            all.push_back({line.substr(3), {}});
        else if (!line.empty() && line.front() != '#')
            all.back().lines.push_back(line);
    return all;
}

inline std::vector<std::string> CasesOf(const char* path, const std::string& title) {
    const std::vector<Section> all = Sections(path);
    const auto found = std::ranges::find(all, title, &Section::title);
    return found == all.end() ? std::vector<std::string>{"no such section"} : found->lines;
}

// "CASE -> EXPECTED"
inline std::pair<std::string, std::string> CaseIn(const std::string& line) {
    const size_t arrow = line.find(" ->");
    return {line.substr(0, arrow), line.substr(std::min(line.size(), arrow + 4))};
}

// Calls `check(given, expected)` with each case of a section.
template <typename Check>
void ForEachCase(const char* path, const std::string& title, Check check) {
    for (const std::string& line : CasesOf(path, title)) {
        SCOPED_TRACE(title + ": " + line);
        const auto [given, expected] = CaseIn(line);
        check(given, expected);
    }
}
