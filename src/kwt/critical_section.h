// A lock between the threads of this process.
#pragma once

#include <windows.h>

namespace kwt {

/// One of the system's critical sections, for the life of its owner.
class CriticalSection final {
  public:
    CriticalSection() { InitializeCriticalSection(&section_); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() { DeleteCriticalSection(&section_); }

    /// Holds the section for a scope.
    class Guard final {
      public:
        explicit Guard(CriticalSection& section) : section_(section.section_) {
            EnterCriticalSection(&section_);
        }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        ~Guard() { LeaveCriticalSection(&section_); }

      private:
        CRITICAL_SECTION& section_;
    };

  private:
    CRITICAL_SECTION section_;
};

}  // namespace kwt
