// What is said of something that is refused.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <optional>
#include <string>

#include "kestrel/failure.h"

/// What `attempt` throws is told with `part` in it; "no complaint" when it throws nothing.
template <typename Attempt>
void ExpectComplaint(const std::string& part, Attempt attempt) {
    std::string complaint = "no complaint";
    try {
        attempt();
    } catch (const std::exception& error) {
        complaint = error.what();
    }
    EXPECT_PRED_FORMAT2(testing::IsSubstring, part, complaint);
}

template <typename Attempt>
std::optional<cli::Failure> FailureOf(Attempt attempt) {
    try {
        attempt();
        return {};
    } catch (const cli::Failure& failure) {
        return failure;
    }
}
