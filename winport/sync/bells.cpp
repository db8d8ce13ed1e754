#include "winport/sync/bells.h"

#include <climits>

#include "winport/handles/home_page.h"

namespace winport {

namespace {

constexpr uint32_t kBells = kBellLines * kBellsOfLine;

// Neighbours in time lie on lines of their own. More threads than bells share some, and wake for each other.
std::atomic<uint32_t>& BellOf(HomePage& home, uint32_t number) {
    const uint32_t index = (number - 1) % kBells;
    return home.bells[index % kBellLines][index / kBellLines];
}

bool IsArmed(uint32_t bell) {
    return bell % 2 != 0;
}

// All: a bell may be shared.
void Ring(std::atomic<uint32_t>& bell) {
    uint32_t value = bell.load(std::memory_order_seq_cst);
    if (IsArmed(value) && bell.compare_exchange_strong(value, value + 1, std::memory_order_seq_cst))
        Wake(bell, INT_MAX);
}

uint32_t TagOf(HomePage& home) {
    uint32_t tag = home.bellTag.load(std::memory_order_acquire);
    if (tag != 0) return tag;
    const uint32_t made = static_cast<uint32_t>(Now()) | 1;
    return home.bellTag.compare_exchange_strong(tag, made, std::memory_order_acq_rel) ? made : tag;
}

// Whether all who use the event are known to have the same bells.
bool SharesBells(ObjectPage& page, uint32_t tag) {
    uint32_t seen = page.bellTag.load(std::memory_order_relaxed);
    return seen == tag || (seen == 0 && (page.bellTag.compare_exchange_strong(seen, tag) || seen == tag));
}

}  // namespace

BellSleep::BellSleep(ThreadRecord& thread) {
    HomePage* const home = SharedHomePage();
    if (home == nullptr) return;
    if (thread.bell == 0) thread.bell = home->lastBell.fetch_add(1, std::memory_order_relaxed) % kBells + 1;
    number_ = thread.bell;
    tag_ = TagOf(*home);
    bell_ = &BellOf(*home, number_);
    armed_ = bell_->load(std::memory_order_relaxed);
    while (!IsArmed(armed_) && !bell_->compare_exchange_weak(armed_, armed_ + 1, std::memory_order_seq_cst)) {
    }
    armed_ |= 1;
}

BellSleep::~BellSleep() {
    // Who shares it must not go on sleeping at a bell that looks as if nobody did; mostly it was rung.
    if (bell_ != nullptr && bell_->load(std::memory_order_relaxed) == armed_) Ring(*bell_);
}

BellSleep::Place BellSleep::LeaveNumber(ObjectPage& page, bool wakeOther) const {
    if (!SharesBells(page, tag_)) return Place::None;
    uint32_t word = page.word.load(std::memory_order_seq_cst);
    if ((word & kEventSignaled) != 0) return Place::EventIsSet;
    const uint32_t other = word / kEventBell;
    if (other == number_) return Place::Taken;
    std::atomic<uint32_t>* const others = other != 0 ? &BellOf(*SharedHomePage(), other) : nullptr;
    if (others != nullptr && !wakeOther && IsArmed(others->load(std::memory_order_relaxed)))
        return Place::None;
    const uint32_t mine = word % kEventBell + number_ * kEventBell;
    if (!page.word.compare_exchange_strong(word, mine, std::memory_order_seq_cst)) return Place::EventIsSet;
    // It may have begun to sleep since.
    if (others != nullptr) Ring(*others);
    return Place::Taken;
}

void BellSleep::Sleep(Moment until) const {
    const SleepWord sleep = {bell_, armed_};
    SleepOn({&sleep, 1}, until);
}

void RingBell(ObjectPage& page, uint32_t wordBefore) {
    const uint32_t number = wordBefore / kEventBell;
    HomePage* const home = SharedHomePage();
    if (home != nullptr && TagOf(*home) == page.bellTag.load(std::memory_order_relaxed))
        Ring(BellOf(*home, number));
    else
        page.bellTag.store(kNoBells, std::memory_order_relaxed);  // the sleeper looks within a second, once
}

}  // namespace winport
