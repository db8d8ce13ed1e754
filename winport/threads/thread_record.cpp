// A pthread key tells when a thread ends: its destructor runs on the ending thread, after the destructors of
// the thread's C++ objects, and again if one of the notices made the thread use winport anew.
#include "winport/threads/thread_record.h"

#include <pthread.h>

#include <algorithm>
#include <new>

namespace winport {

constinit thread_local ThreadRecord* currentRecord __attribute__((tls_model("initial-exec"))) = nullptr;

namespace {

std::atomic<ThreadRecord*> allRecords{nullptr};
std::atomic<uint32_t> nextLocalId{1};

// Filled while the library is loaded, by one thread, and only read later. One place for each room that
// registers.
struct ThreadCalls {
    std::array<ThreadCall, 4> calls{};

    void Add(ThreadCall call) { *std::find(calls.begin(), calls.end(), nullptr) = call; }
    void Run(ThreadRecord& record) const {
        for (const ThreadCall call : calls)
            if (call != nullptr) call(record);
    }
};

constinit ThreadCalls startNotices;
constinit ThreadCalls endNotices;
constinit ThreadCalls endBelongings;

void EndThread(void* value) {
    auto& record = *static_cast<ThreadRecord*>(value);
    currentRecord = &record;
    endNotices.Run(record);
    endBelongings.Run(record);
    for (auto& slot : record.tls)
        slot.store(nullptr, std::memory_order_relaxed);
    record.polling = {};
    record.impersonation.reset();
    record.cursor = nullptr;
    record.hazard.store(nullptr, std::memory_order_release);
    currentRecord = nullptr;
    record.inUse.store(false, std::memory_order_release);
}

pthread_key_t ThreadEndKey() {
    static const pthread_key_t key = [] {
        pthread_key_t made = 0;
        pthread_key_create(&made, EndThread);
        return made;
    }();
    return key;
}

ThreadRecord* TakeUnusedRecord() {
    for (ThreadRecord* record = FirstThreadRecord(); record != nullptr; record = record->next) {
        bool expected = false;
        if (record->inUse.compare_exchange_strong(expected, true, std::memory_order_acq_rel)) return record;
    }
    return nullptr;
}

ThreadRecord* LinkNewRecord() {
    auto* record = new ThreadRecord;
    record->inUse.store(true, std::memory_order_relaxed);
    record->next = allRecords.load(std::memory_order_relaxed);
    while (!allRecords.compare_exchange_weak(record->next, record, std::memory_order_release,
                                             std::memory_order_relaxed)) {
    }
    return record;
}

// The other threads are not there in a child: what they were using there is used by nobody.
void ForgetHazardsInChild() {
    for (ThreadRecord* record = FirstThreadRecord(); record != nullptr; record = record->next) {
        if (record == currentRecord) continue;
        record->hazard.store(nullptr, std::memory_order_relaxed);
        for (auto& hazard : record->waitHazards)
            hazard.store(nullptr, std::memory_order_relaxed);
    }
}

[[gnu::constructor]] void ForgetHazardsInChildren() {
    ::pthread_atfork(nullptr, nullptr, ForgetHazardsInChild);
}

}  // namespace

void AtThreadStart(ThreadCall notice) {
    startNotices.Add(notice);
}

void AtThreadEnd(ThreadCall notice) {
    endNotices.Add(notice);
}

void GiveBackAtThreadEnd(ThreadCall belongings) {
    endBelongings.Add(belongings);
}

ThreadRecord& BeginThread() {
    ThreadRecord* record = TakeUnusedRecord();
    if (record == nullptr) record = LinkNewRecord();
    record->localId = nextLocalId.fetch_add(1, std::memory_order_relaxed);
    currentRecord = record;
    pthread_setspecific(ThreadEndKey(), record);
    startNotices.Run(*record);
    return *record;
}

ThreadRecord* FirstThreadRecord() {
    return allRecords.load(std::memory_order_acquire);
}

bool OtherThreads() {
    const ThreadRecord* first = FirstThreadRecord();
    // The calling thread may have no record yet: creating and closing handles needs none.
    return first != nullptr && (first != currentRecord || first->next != nullptr);
}

}  // namespace winport
