// Long random traces of calls on events, mutexes and sections by two threads, one of which dies now and then.
// What every call returned goes into a digest; the digests in the table are those of Windows' own calls, as
// Wine carries them out.
#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <random>

#include "handle_support.h"

namespace {

constexpr int kOperations = 25'000;
constexpr size_t kSlots = 16;
constexpr size_t kNames = 6;

// Does what it is told, one thing at a time; ending it ends its thread.
class Actor final {
  public:
    ~Actor() { Do(nullptr); }

    void Do(std::function<void()> work) {
        std::unique_lock guard(lock_);
        work_ = std::move(work);
        isPending_ = true;
        changed_.notify_all();
        changed_.wait(guard, [this] { return !isPending_; });
    }

  private:
    void Run() {
        for (bool ends = false; !ends;) {
            std::unique_lock guard(lock_);
            changed_.wait(guard, [this] { return isPending_; });
            ends = work_ == nullptr;
            if (!ends) work_();
            isPending_ = false;
            changed_.notify_all();
        }
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::function<void()> work_;
    bool isPending_ = false;
    std::jthread thread_{[this] { Run(); }};
};

class Trace final {
  public:
    explicit Trace(uint32_t seed) : random_(seed) {
        for (WideText& name : names_)
            name = FreshName();
    }
    ~Trace() {
        for (Slot& slot : slots_)
            if (slot.handle != nullptr) CloseHandle(slot.handle);
    }

    uint64_t Run() {
        for (int i = 0; i < kOperations; ++i)
            if (Below(500) == 0) {
                other_.reset();
                other_ = std::make_unique<Actor>();
            } else if (Below(2) == 0) {
                other_->Do([this] { Step(); });
            } else {
                Step();
            }
        other_.reset();
        return digest_;
    }

  private:
    struct Slot {
        HANDLE handle = nullptr;
        uint32_t object = 0;  // the same for all handles to one object
    };

    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
    Slot& AnySlot() { return slots_[Below(kSlots)]; }

    void Note(uint32_t number) { digest_ = (digest_ ^ number) * 0x100000001B3; }
    // What a call gave, and its last-error value where that means something.
    void NoteCall(bool succeeded) { Note(succeeded ? 1 : GetLastError() << 8); }

    void Step() {
        SetLastError(0);
        switch (Below(10)) {
            case 0:
            case 1:
                return Create();
            case 2:
                return NoteCall(SetEvent(AnySlot().handle));
            case 3:
                return NoteCall(ResetEvent(AnySlot().handle));
            case 4:
            case 5:
                return NoteCall(ReleaseMutex(AnySlot().handle));
            case 6:
                return UseMemory();
            case 7:
                return WaitForSome();
            default:
                return NoteWait(WaitForSingleObject(AnySlot().handle, 0));
        }
    }

    void Create() {
        Slot& slot = AnySlot();
        if (slot.handle != nullptr) NoteCall(CloseHandle(slot.handle));
        const uint32_t name = Below(kNames + 3);
        const WCHAR* const text = name < kNames ? names_[name].c_str() : nullptr;
        slot.object = name < kNames ? name : kNames + ++unnamed_;
        const uint32_t bits = Below(4);
        switch (Below(3)) {
            case 0:
                slot.handle = CreateEventW(nullptr, bits & 1, bits >> 1, text);
                break;
            case 1:
                slot.handle = CreateMutexW(nullptr, bits & 1, text);
                break;
            default:
                slot.handle =
                    CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSizes[bits], text);
        }
        Note(GetLastError());
        Note(slot.handle != nullptr);
    }

    void NoteWait(DWORD result) {
        Note(result);
        if (result == WAIT_FAILED) Note(GetLastError());
    }

    void WaitForSome() {
        std::array<HANDLE, 4> handles;
        std::array<uint32_t, 4> objects;
        DWORD count = 0;
        for (uint32_t left = 1 + Below(handles.size()); left > 0; --left) {
            const Slot& slot = AnySlot();
            // An object twice in one wait is another matter.
            if (std::count(objects.begin(), objects.begin() + count, slot.object) != 0) continue;
            objects[count] = slot.object;
            handles[count++] = slot.handle;
        }
        NoteWait(WaitForMultipleObjects(count, handles.data(), Below(2) == 0, 0));
    }

    // Reads what an earlier step left in the section, and leaves something else there.
    void UseMemory() {
        auto* bytes = static_cast<uint8_t*>(MapViewOfFile(AnySlot().handle, FILE_MAP_ALL_ACCESS, 0, 0, 0));
        NoteCall(bytes != nullptr);
        if (bytes == nullptr) return;
        const uint32_t place = Below(kSizes[0]);
        Note(bytes[place]);
        bytes[place] = static_cast<uint8_t>(Below(256));
        NoteCall(UnmapViewOfFile(bytes));
    }

    static constexpr DWORD kSizes[] = {100, 4096, 5000, 70'000};

    std::mt19937 random_;
    std::array<WideText, kNames> names_;
    std::array<Slot, kSlots> slots_;
    uint32_t unnamed_ = 0;
    std::unique_ptr<Actor> other_ = std::make_unique<Actor>();
    uint64_t digest_ = 0xCBF29CE484222325;
};

TEST(Traces, Random_calls_give_what_Windows_gives) {
    constexpr uint64_t kDigests[] = {0x1E95673868FF83A6, 0xDD3365EE0C7760BC, 0xEE5C7314037BA75F,
                                     0xD5AD86610D0F46F3};
    uint32_t seed = 0;
    for (const uint64_t digest : kDigests)
        EXPECT_EQ(digest, Trace(++seed).Run()) << "seed " << seed;
}

}  // namespace
