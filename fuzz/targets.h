// What is fed with texts that nobody wrote: one function for each place where foreign bytes are read.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace fuzz {

struct Target {
    std::string_view name;  // also that of its folder in corpus/
    void (*feed)(std::string_view bytes);
};

[[nodiscard]] std::span<const Target> TextTargets();
[[nodiscard]] std::span<const Target> FileTargets();
[[nodiscard]] std::span<const Target> PanelTargets();

/// Null for an unknown name.
[[nodiscard]] inline const Target* FindTarget(std::string_view name) {
    for (const auto& targets : {TextTargets(), FileTargets(), PanelTargets()})
        for (const Target& target : targets)
            if (target.name == name) return &target;
    return nullptr;
}

/// Sanitizers find what must never happen to memory; this is for what must be true of the results.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

}  // namespace fuzz
