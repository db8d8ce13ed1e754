// Regular expressions of test files.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// Bytes of the longest text that a pattern is held against.
inline constexpr size_t kLongestForPattern = 4096;

// What is wrong with an ECMAScript regular expression, without back-references; empty for nothing.
[[nodiscard]] std::string ProblemWithPattern(const std::string& pattern);

// Whether a pattern without a problem fits somewhere in a text of at most kLongestForPattern bytes.
[[nodiscard]] bool PatternFits(const std::string& pattern, const std::string& text);

}  // namespace cli
