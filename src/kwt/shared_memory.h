// One named block of memory shared between processes, with its lock and its two events.
#pragma once

#include <cstdint>

#include "kwt/unique_handle.h"
#include "kwt/wide_text.h"
#include "kwt/win_event.h"
#include "kwt/win_mutex.h"

namespace kwt {

enum class SectionAccess : uint32_t { Read = 0, Write = 1 };

/// The lock keeps the threads of one process apart, never two processes; those coordinate through the notify
/// and cancel events and through what the user of the section agrees on. One thread at a time uses a section
/// object; `Cancel` may come from any thread or process. Virtual, in this order, and complete: the interface
/// that all modules of the package agree on, whatever this one calls.
class SharedMemory final {
  public:
    SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    virtual ~SharedMemory();

    /// Mapped, with its mutex and both events.
    [[nodiscard]] virtual bool IsValid();
    [[nodiscard]] virtual uint32_t GetSize() const;
    /// Creates or opens the block of `size` bytes and its events. The last-error value afterwards is 0 when
    /// this call made the block, 183 when it existed (its contents are kept), else why there is none. A block
    /// that exists and is smaller than `size` is refused with 1610.
    virtual bool Create(const WCHAR* name, uint32_t size, bool writable, bool global);
    virtual void Close();
    /// The block, or null: 5 for writing on a read-only section, 258 when the lock was not free in time.
    [[nodiscard]] virtual uint8_t* Lock(SectionAccess mode, uint32_t timeoutMs);
    /// With `notify`, a writer makes the block available and then sets the notify event; a reader resets the
    /// notify event and then makes the block available.
    virtual bool Unlock(bool notify);
    /// Waits for the notify event: `TimedOut` with last error 258; `Abandoned` with 995 when cancelled, which
    /// wins over a notification that stays pending; 31 on failure.
    virtual WaitResult WaitForNotify(uint32_t timeoutMs);
    /// Ends one wait on this section name, the one that waits now or the next, in whichever process.
    virtual BOOL Cancel();
    [[nodiscard]] virtual HANDLE GetNotifyHandle() const;
    [[nodiscard]] virtual WinEvent& GetNotifyEvent();
    virtual void Init();

  private:
    [[nodiscard]] bool MapBlock(const WCHAR* name, bool global);

    UniqueHandle<CloseHandle> mapping_;
    UniqueHandle<UnmapViewOfFile, 0, uint8_t*> view_;
    WinMutex mutex_;
    WinEventAuto notifyEvent_;
    WinEventAuto cancelEvent_;
    bool writable_ = true;
    SectionAccess accessMode_ = SectionAccess::Read;
    uint32_t size_ = 0;
};

}  // namespace kwt
