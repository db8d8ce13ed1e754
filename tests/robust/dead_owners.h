// What the processes that contend for one mutex tell each other, in a section.
#pragma once

#include <atomic>
#include <cstdint>

struct DeadOwners {
    std::atomic<uint64_t> takes;
    std::atomic<uint64_t> kills;
    std::atomic<uint64_t> abandoned;
    std::atomic<uint64_t> lostTurns;    // waits of five seconds
    std::atomic<int64_t> diedAt;        // ns of the last owner that died with it, 0 when that has been told
    std::atomic<int64_t> longestHeir;   // ns until the next owner
    std::atomic<uint64_t> late;         // next owners after more than 100 ms
    std::atomic<uint64_t> killsWanted;  // no more die after that many
};
