// rundll32 printui.dll,PrintUIEntry <action and options>
#pragma once

#include <string>
#include <vector>

#include "shared/command_text.h"

namespace printui {

enum class Action { InstallDriver, InstallPrinter, MakeDefault };

struct CommandLine final {
    Action action = Action::InstallDriver;
    std::string infPath;      // /f
    std::string model;        // /m
    std::string port;         // /r
    std::string baseName;     // /b
    std::string printer;      // /n
    bool keepDriver = false;  // /u: an installed driver of the model is taken as it is
    bool quiet = false;       // /q
};

// Throws a Refusal for whatever is unknown, missing or said twice. `words` is without the program's name.
// `quiet` is set as soon as the words hold /q, also when the rest of them is refused.
[[nodiscard]] CommandLine ParseCommandLine(const std::vector<std::string>& words, bool& quiet);

[[nodiscard]] std::string UsageText();
/// The same and more, for the manual.
[[nodiscard]] tools::CommandText Description();

}  // namespace printui
