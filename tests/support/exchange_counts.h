// What one run of channel_client counted, and the line in which it says so.
#pragma once

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

struct ExchangeCounts {
    long good = 0;
    long abandoned = 0;  // 735: the one before died in its exchange
    long cancelled = 0;  // 995: a dying client's cancel met this one
    long timedOut = 0;
    long occupied = 0;  // 32: an unread message of a process that has died and still counts as running
    long other = 0;
    long late = 0;   // the answer to an earlier request of the same process
    long wrong = 0;  // any other text
    long longestMs = 0;
    long least = std::numeric_limits<long>::max();  // good exchanges of the thread that had the fewest
    long most = 0;

    [[nodiscard]] long Failures() const { return abandoned + cancelled + timedOut + occupied + other; }

    void Add(const ExchangeCounts& more) {
        for (const auto column : kSums)
            this->*column += more.*column;
        longestMs = std::max(longestMs, more.longestMs);
        least = std::min(least, more.least);
        most = std::max(most, more.most);
    }

    friend std::ostream& operator<<(std::ostream& out, const ExchangeCounts& counts) {
        for (const auto column : kSums)
            out << counts.*column << ' ';
        return out << counts.longestMs << ' ' << counts.least << ' ' << counts.most;
    }
    friend std::istream& operator>>(std::istream& in, ExchangeCounts& counts) {
        for (const auto column : kSums)
            in >> counts.*column;
        return in >> counts.longestMs >> counts.least >> counts.most;
    }

  private:
    static constexpr long ExchangeCounts::*kSums[] = {&ExchangeCounts::good,      &ExchangeCounts::abandoned,
                                                      &ExchangeCounts::cancelled, &ExchangeCounts::timedOut,
                                                      &ExchangeCounts::occupied,  &ExchangeCounts::other,
                                                      &ExchangeCounts::late,      &ExchangeCounts::wrong};
};
