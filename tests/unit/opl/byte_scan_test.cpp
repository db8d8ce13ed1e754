#include "opl/byte_scan.h"

#include <gtest/gtest.h>

#include <vector>

using namespace opl;

namespace {

constexpr auto kMarks = [](auto byte) { return byte == '!' || byte == '\0'; };

/// All scans of `text`, whose marks lie at `hits`.
void ExpectFound(const std::vector<char>& text, const std::vector<size_t>& hits) {
    const size_t none = text.size();
    EXPECT_EQ(FindFirst(text.data(), text.size(), kMarks), hits.empty() ? none : hits.front());
    EXPECT_EQ(FindFarFirst(text.data(), text.size(), kMarks), hits.empty() ? none : hits.front());
    EXPECT_EQ(FindLast(text.data(), text.size(), kMarks), hits.empty() ? none : hits.back());
    for (const size_t step : {1, 2}) {
        std::vector<size_t> visited;
        std::vector<size_t> expected;
        for (const size_t hit : hits)
            if (expected.empty() || hit >= expected.back() + step) expected.push_back(hit);
        ForEachHit({text.data(), text.size()}, kMarks, [&](size_t hit) {
            visited.push_back(hit);
            return hit + step;
        });
        EXPECT_EQ(visited, expected);
    }
}

TEST(ByteScan, Finds_what_a_look_at_each_byte_finds_wherever_it_lies) {
    for (const size_t length : {0, 1, 2, 15, 16, 17, 31, 32, 33, 63, 64, 65, 80, 95, 127, 128, 129, 135}) {
        ExpectFound(std::vector<char>(length, 'a'), {});
        for (size_t first = 0; first < length; ++first)
            for (const size_t second : {first, first + 1, length - 1}) {
                SCOPED_TRACE(testing::Message() << first << " and " << second << " of " << length);
                if (second < first || second >= length) continue;
                std::vector<char> text(length, 'a');
                text[first] = '!';
                text[second] = '\0';
                ExpectFound(text, first == second ? std::vector{first} : std::vector{first, second});
                if (testing::Test::HasFailure()) return;
            }
    }
}

}  // namespace
