// What programs do with the library and the layer below, each a short piece that succeeds when all goes well.
#pragma once

#include <span>

struct Scenario {
    const char* name;
    bool (*run)();
    bool mayFailQuietly = false;  // its failure has no last-error value, or is no failure
    bool isExport = false;
};

// For a home where the desk is installed and printer P answers.
std::span<const Scenario> Scenarios();
