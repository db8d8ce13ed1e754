// What the command line says when it refuses something.
#pragma once

#include <functional>
#include <optional>

#include "kestrel/failure.h"

inline std::optional<cli::Failure> FailureOf(const std::function<void()>& attempt) {
    try {
        attempt();
        return {};
    } catch (const cli::Failure& failure) {
        return failure;
    }
}
