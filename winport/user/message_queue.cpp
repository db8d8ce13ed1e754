// The messages posted to a thread. A thread has a queue from its first call that asks for messages on. One
// lock for all queues: messages are rare, and a poster must find the receiver's queue alive.
#include <windows.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "winport/threads/thread_record.h"

namespace winport {

// As many as Windows holds by default.
constexpr std::size_t kMostMessages = 10'000;

class MessageQueue final {
  public:
    DWORD threadId = 0;
    std::deque<MSG> messages;
    std::condition_variable arrived;
};

namespace {

// Never destroyed: threads may end while the process exits.
std::mutex& QueuesLock() {
    static auto& lock = *std::make_unique<std::mutex>().release();
    return lock;
}

// The calling thread's queue, made when it is missing. Under the lock.
MessageQueue& OwnQueue() {
    ThreadRecord& thread = CurrentThread();
    if (thread.messages == nullptr) thread.messages = std::make_unique<MessageQueue>().release();
    thread.messages->threadId = GetCurrentThreadId();
    return *thread.messages;
}

// Under the lock. Null for a thread without a queue, of another process, or that is no more.
MessageQueue* FindQueue(DWORD threadId) {
    for (ThreadRecord* record = FirstThreadRecord(); record != nullptr; record = record->next) {
        if (record->messages != nullptr && record->messages->threadId == threadId) return record->messages;
    }
    return nullptr;
}

// Which messages a call asks for; 0 to 0 means all.
struct Filter {
    UINT first;
    UINT last;

    [[nodiscard]] bool Lets(const MSG& message) const {
        const bool all = first == 0 && last == 0;
        return all || message.message == WM_QUIT || (message.message >= first && message.message <= last);
    }
};

std::optional<MSG> Next(MessageQueue& queue, const Filter& filter, bool remove) {
    const auto found = std::find_if(queue.messages.begin(), queue.messages.end(),
                                    [&](const MSG& message) { return filter.Lets(message); });
    if (found == queue.messages.end()) return std::nullopt;
    const MSG message = *found;
    if (remove) queue.messages.erase(found);
    return message;
}

// There are no windows whose messages could be asked for.
bool IsRefused(LPMSG message, HWND window) {
    if (message != nullptr && window == nullptr) return false;
    SetLastError(message == nullptr ? ERROR_INVALID_PARAMETER : ERROR_INVALID_WINDOW_HANDLE);
    return true;
}

void ForgetMessages(ThreadRecord& thread) {
    if (thread.messages == nullptr) return;
    const std::lock_guard guard(QueuesLock());
    const std::unique_ptr<MessageQueue> gone(thread.messages);
    thread.messages = nullptr;
}

[[gnu::constructor]] void RegisterThreadEnd() {
    GiveBackAtThreadEnd(ForgetMessages);
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    const std::lock_guard guard(QueuesLock());
    MessageQueue* queue = FindQueue(threadId);
    if (queue == nullptr || queue->messages.size() >= kMostMessages) {
        SetLastError(queue == nullptr ? ERROR_INVALID_THREAD_ID : ERROR_NOT_ENOUGH_QUOTA);
        return FALSE;
    }
    queue->messages.push_back({nullptr, message, wParam, lParam, GetTickCount(), {0, 0}});
    queue->arrived.notify_all();
    return TRUE;
}

BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT removal) {
    if (IsRefused(message, window)) return FALSE;
    const std::lock_guard guard(QueuesLock());
    const auto found = Next(OwnQueue(), {first, last}, (removal & PM_REMOVE) != 0);
    if (found) *message = *found;
    return found ? TRUE : FALSE;
}

BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
    if (IsRefused(message, window)) return -1;
    std::unique_lock guard(QueuesLock());
    MessageQueue& queue = OwnQueue();
    std::optional<MSG> found;
    queue.arrived.wait(guard, [&] {
        found = Next(queue, {first, last}, true);
        return found.has_value();
    });
    *message = *found;
    return found->message != WM_QUIT ? TRUE : FALSE;
}

// Nothing comes from a keyboard.
BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

// A message posted to a thread has no window whose procedure could be called.
LRESULT DispatchMessageW(const MSG*) {
    return 0;
}
