// A program that writes files, seen call by call: killed at one of them, or its calls noted for what a power
// loss would have left.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace crash {

// What changes files or their names, and what makes that last. Paths are relative to the watched folder.
struct Step {
    enum class Kind { Write, Truncate, Sync, Rename, Remove, Acknowledge };

    Kind kind = Kind::Write;
    std::string path = {};
    std::string other = {};  // the new name
    long at = -1;            // offset or size; -1: at the end
    std::string bytes = {};
    int generation = 0;  // that was acknowledged
};

struct Killing {
    int step = 0;  // counted from 1, acknowledgements apart; 0: none
    bool halfWritten = false;
};

struct Seen {
    std::vector<Step> steps;
    int calls = 0;         // the steps apart from the acknowledgements
    int acknowledged = 0;  // the last generation that the writer had been told was written
    bool ended = false;    // by itself, with success
};

// Told by the writer when a generation has been written.
void Acknowledge(int generation);

[[nodiscard]] Seen Watch(const std::filesystem::path& folder, const std::function<bool()>& writer,
                         Killing killing = {});

}  // namespace crash
