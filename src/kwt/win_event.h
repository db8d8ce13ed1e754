// Events of the system, owned.
#pragma once

#include <cstdint>

#include "kwt/unique_handle.h"
#include "kwt/wait_result.h"
#include "kwt/wide_text.h"

namespace kwt {

/// A manual-reset event. `Set`, `Reset` and the waits may come from any thread; `Create` and destruction
/// belong to the owner. Virtual, in this order, and complete: the interface that all modules of the package
/// agree on, whatever this one calls.
class WinEvent {
  public:
    /// An unnamed event.
    WinEvent();
    /// A named event; with `global`, in the namespace of all sessions. An event of that name that exists
    /// already is opened and keeps its own reset mode and state.
    WinEvent(const WCHAR* name, bool global);
    WinEvent(const WinEvent&) = delete;
    WinEvent& operator=(const WinEvent&) = delete;
    virtual ~WinEvent() = default;

    [[nodiscard]] virtual bool IsValid() const;
    /// Closes what is held and creates or opens anew; false, with the system's last error, when no handle was
    /// obtained.
    virtual bool Create(const WCHAR* name, bool global);
    /// The system's result, 0 without a handle; `Reset` likewise.
    virtual BOOL Set();
    virtual BOOL Reset();
    /// True only for a manual-reset event that is signalled now; an auto-reset event is not touched.
    [[nodiscard]] virtual bool IsSignaled();
    virtual WaitResult ResetAndWait(uint32_t timeoutMs);
    virtual WaitResult Wait(uint32_t timeoutMs);
    [[nodiscard]] virtual HANDLE GetHandle() const;
    [[nodiscard]] virtual bool IsManualReset() const;
    virtual void Init();
    /// Waits at most `timeoutMs` milliseconds (0xFFFFFFFF without limit); `resetFirst` resets a manual-reset
    /// event before the wait.
    virtual WaitResult WaitEx(uint32_t timeoutMs, bool resetFirst);

  protected:
    /// For a derived class, which creates the event itself.
    explicit WinEvent(bool manualReset);

    UniqueHandle<CloseHandle> handle_;
    BOOL manualReset_ = TRUE;
};

/// An auto-reset event: each wait that it ends consumes its signal.
class WinEventAuto final : public WinEvent {
  public:
    WinEventAuto();
    WinEventAuto(const WCHAR* name, bool global);
    ~WinEventAuto() override = default;
};

/// Waits for any one of the events, or for all with `waitAll`; resets manual-reset events first with
/// `resetFirst`. `index` receives the position of the event that ended the wait (the lowest when several
/// were signalled) or of the first event without a handle. At most 64 events.
WaitResult WaitForEvents(uint32_t count, WinEvent* const* events, bool waitAll, uint32_t& index,
                         uint32_t timeoutMs, bool resetFirst);

}  // namespace kwt
