// Why nothing was done.
#pragma once

#include <string>

namespace printui {

// Why nothing was done: what happened, and what to do about it.
struct Refusal final {
    std::string text;
    std::string advice;
    int exitCode = 1;  // 2: the command line itself is wrong
};

// The refusal for a spooler call that has just failed, by the last-error value.
[[nodiscard]] Refusal RefusalFromLastError(const std::string& attempt);

}  // namespace printui
