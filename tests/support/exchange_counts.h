// What one run of channel_client counted, and the line in which it says so.
#pragma once

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

struct ExchangeCounts {
    long good = 0;
    long failed = 0;  // as a death, a cancel or a late partner makes it
    long other = 0;   // failures that have no such reason
    long late = 0;    // the answer to an earlier request of the same process
    long wrong = 0;   // any other text
    long longestMs = 0;
    long least = std::numeric_limits<long>::max();  // good exchanges of the thread that had the fewest
    long most = 0;

    [[nodiscard]] long Failures() const { return failed + other; }

    void Add(const ExchangeCounts& more) {
        good += more.good;
        failed += more.failed;
        other += more.other;
        late += more.late;
        wrong += more.wrong;
        longestMs = std::max(longestMs, more.longestMs);
        least = std::min(least, more.least);
        most = std::max(most, more.most);
    }

    friend std::ostream& operator<<(std::ostream& out, const ExchangeCounts& counts) {
        for (const auto column : kColumns)
            out << counts.*column << ' ';
        return out;
    }
    friend std::istream& operator>>(std::istream& in, ExchangeCounts& counts) {
        for (const auto column : kColumns)
            in >> counts.*column;
        return in;
    }

  private:
    static constexpr long ExchangeCounts::*kColumns[] = {
        &ExchangeCounts::good,  &ExchangeCounts::failed,    &ExchangeCounts::other, &ExchangeCounts::late,
        &ExchangeCounts::wrong, &ExchangeCounts::longestMs, &ExchangeCounts::least, &ExchangeCounts::most};
};
