// A started program: one object for its process and one for its first thread, both signalled when it ends.
#pragma once

#include <sys/types.h>
#include <windows.h>

#include <atomic>

#include "winport/handles/kernel_object.h"

namespace winport {

class ProgramObject final : public KernelObject {
  public:
    ProgramObject(ObjectKind kind, pid_t id);

    [[nodiscard]] pid_t Id() const { return id_; }
    // STILL_ACTIVE while it runs.
    [[nodiscard]] DWORD ExitCode() const { return exitCode_.load(std::memory_order_acquire); }
    // Ends the program; false when it has ended already.
    bool Terminate(DWORD exitCode);

    // The program has ended: first the code of both objects is set, then both are signalled, so that whoever
    // has waited for one finds the other's code.
    void SetExitCode(DWORD exitCode) { exitCode_.store(exitCode, std::memory_order_release); }
    void Signal();
    // The code that `Terminate` was given; STILL_ACTIVE when it was not called.
    [[nodiscard]] DWORD WantedExitCode() const { return wantedExitCode_.load(std::memory_order_acquire); }

  private:
    ObjectPage page_{};
    pid_t id_;
    std::atomic<DWORD> exitCode_{STILL_ACTIVE};
    std::atomic<DWORD> wantedExitCode_{STILL_ACTIVE};
};

// Takes a child's exit code when it ends, in a thread of its own, and tells both objects. False when no
// thread can be had.
bool WatchProgram(ProgramObject& process, ProgramObject& thread);

}  // namespace winport
