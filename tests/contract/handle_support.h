// Handles that close themselves, and names that no other test uses.
#pragma once

#include "support.h"

class Handle final {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
    Handle& operator=(Handle&&) = delete;
    ~Handle() { Close(); }

    operator HANDLE() const { return handle_; }
    void Close() {
        if (handle_ != nullptr) CloseHandle(handle_);
        handle_ = nullptr;
    }

  private:
    HANDLE handle_ = nullptr;
};

inline Handle AutoEvent(const WideText& name = {}) {
    return Handle(CreateEventW(nullptr, FALSE, FALSE, name.empty() ? nullptr : name.c_str()));
}

inline Handle ManualEvent(const WideText& name = {}) {
    return Handle(CreateEventW(nullptr, TRUE, FALSE, name.empty() ? nullptr : name.c_str()));
}

inline Handle Mutex(const WideText& name = {}) {
    return Handle(CreateMutexW(nullptr, FALSE, name.empty() ? nullptr : name.c_str()));
}

inline Handle Section(DWORD size, const WideText& name = {}) {
    return Handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size,
                                     name.empty() ? nullptr : name.c_str()));
}

// Its bytes; null when it is not mapped.
inline unsigned char* View(const Handle& section, DWORD access = FILE_MAP_ALL_ACCESS) {
    return static_cast<unsigned char*>(MapViewOfFile(section, access, 0, 0, 0));
}

// "Global\Contract<process>-<count><ending>"
inline WideText FreshName(const WideText& ending = {}) {
    static std::atomic<int> count{0};
    const std::string number = std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    return TEXT("Global\\Contract") + WideText(number.begin(), number.end()) + ending;
}
