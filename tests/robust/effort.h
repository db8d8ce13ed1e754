// How hard a run tries. A short run belongs to every test run; a long one, of tests/soak/run, has the
// variable KESTREL_LONG. Both begin with the seed that they print, another one in KESTREL_SEED.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

struct Effort {
    const std::string seed =
        std::getenv("KESTREL_SEED") != nullptr ? std::getenv("KESTREL_SEED") : "20261124";
    const bool isLong = std::getenv("KESTREL_LONG") != nullptr;

    // Of a long run's number, what this run does.
    [[nodiscard]] int Of(int longCount, int shortCount) const { return isLong ? longCount : shortCount; }
    [[nodiscard]] std::mt19937 Random() const {
        static const int told = std::printf("seed %s, %s\n", seed.c_str(), isLong ? "long" : "short");
        static_cast<void>(told);
        return std::mt19937(static_cast<uint32_t>(std::stoul(seed)));
    }
};

// A sanitizer has an allocator of its own, and its shadow grows with what is used.
inline constexpr bool kIsSanitized = sizeof(KESTREL_SANITIZE) > 1;

inline const Effort effort;
