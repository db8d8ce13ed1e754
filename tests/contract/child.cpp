#include "child.h"

#include <cstdlib>

std::optional<int> RunAsChild(int argc, char** argv) {
    if (argc != 4 || std::string_view(argv[1]) != "--child") return std::nullopt;
    const std::string_view what = argv[2];
    const std::string argument = argv[3];
    if (what == "has") return std::getenv(argument.c_str()) != nullptr ? 1 : 0;
    const WideText name(argument.begin(), argument.end());
    const bool takes = what == "take";
    const HANDLE object =
        takes ? CreateMutexW(nullptr, FALSE, name.c_str()) : CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    if (takes) SetEvent(CreateEventW(nullptr, TRUE, FALSE, (name + TEXT("Opened")).c_str()));
    return WaitForSingleObject(object, kPatience) == WAIT_OBJECT_0 ? 3 : 4;
}
