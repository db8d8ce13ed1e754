#include "support.h"

namespace {

// Takes and dispatches every message of the thread, as a caller that waits does.
std::vector<WPARAM> Drain(UINT first = 0, UINT last = 0) {
    std::vector<WPARAM> seen;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, first, last, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
        seen.push_back(message.wParam);
    }
    return seen;
}

}  // namespace

TEST(Messages, Posted_ones_are_taken_in_order_and_by_their_number) {
    EXPECT_TRUE(Drain().empty());
    for (WPARAM i = 1; i <= 3; ++i)
        EXPECT_TRUE(PostThreadMessageW(GetCurrentThreadId(), WM_USER + static_cast<UINT>(i), i, 0));
    EXPECT_EQ(Drain(WM_USER + 2, WM_USER + 2), std::vector<WPARAM>{2});
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(Drain(), (std::vector<WPARAM>{1, 3}));
    SetLastError(77);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(GetLastError(), 77u);
}

TEST(Messages, A_waiting_thread_is_woken_and_a_thread_that_ended_is_refused) {
    Drain();
    const DWORD self = GetCurrentThreadId();
    DWORD other = 0;
    std::thread poster([&] {
        other = GetCurrentThreadId();
        Drain();
        Sleep(50);
        PostThreadMessageW(self, WM_USER, 7, 8);
        PostThreadMessageW(self, WM_QUIT, 0, 0);
    });
    MSG message = {};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), TRUE);
    EXPECT_EQ(message.wParam, 7u);
    EXPECT_EQ(message.lParam, 8);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), FALSE);
    poster.join();
    EXPECT_FALSE(PostThreadMessageW(other, WM_USER, 0, 0));
}

TEST(Cursors, The_previous_one_comes_back) {
    const HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    ASSERT_NE(wait, nullptr);
    const HCURSOR before = SetCursor(wait);
    EXPECT_EQ(SetCursor(before), wait);
}
