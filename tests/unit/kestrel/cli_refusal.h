// What the command line says when it refuses something.
#pragma once

#include <optional>

#include "kestrel/failure.h"

template <typename Attempt>
std::optional<cli::Failure> FailureOf(Attempt attempt) {
    try {
        static_cast<void>(attempt());
        return {};
    } catch (const cli::Failure& failure) {
        return failure;
    }
}
