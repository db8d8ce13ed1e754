// How long the heir of a mutex waits beside others that take it out of turn, which waits for several objects
// and waits at their end do.
#include <latch>

#include "handle_support.h"
#include "page_of_object.h"

namespace {

TEST(Heirs, Wait_for_one_turn_however_many_owners_it_has) {
    const WideText name = FreshName();
    const Handle mutex = Mutex(name);
    const Page page(name);
    // A thread that lives, and so far asks for nothing, in the heir's place; its turn was the last, and is
    // over.
    std::latch isKnown(1);
    std::latch isOver(1);
    std::thread heir([&] {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 0));
        page->heir = page->word & winport::kMutexOwner;
        ReleaseMutex(mutex);
        isKnown.count_down();
        isOver.wait();
    });
    isKnown.wait();
    Sleep(10);
    const auto take = [&mutex](DWORD time) {
        DWORD result = WAIT_FAILED;
        std::thread([&] {
            result = WaitForSingleObject(mutex, time);
            if (result != WAIT_OBJECT_0) return;
            ReleaseMutex(mutex);
            // Had its owner a turn of its own, it could go on.
            result = WaitForSingleObject(mutex, 0);
            if (result == WAIT_OBJECT_0) ReleaseMutex(mutex);
        }).join();
        return result;
    };
    for (int owner = 0; owner < 3; ++owner)
        EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), take(1)) << "has waited to the end, and gives way then";
    isOver.count_down();
    heir.join();
}

}  // namespace
