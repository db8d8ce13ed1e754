// Memory that ends where the process's memory ends: a write behind it is a fault, one before it is found.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

class Guarded final {
  public:
    static constexpr uint8_t kUntouched = 0xA5;

    explicit Guarded(size_t size)
        : size_(size),
          room_((size + kPage - 1) / kPage * kPage),
          base_(static_cast<uint8_t*>(
              mmap(nullptr, room_ + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(base_ + room_, kPage, PROT_NONE);
        Fill();
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded() { munmap(base_, room_ + kPage); }

    void Fill() { std::fill_n(base_, room_, kUntouched); }
    [[nodiscard]] uint8_t* Data() const { return base_ + room_ - size_; }
    [[nodiscard]] size_t Size() const { return size_; }
    [[nodiscard]] bool IsAll(uint8_t byte) const {
        return std::count(Data(), Data() + size_, byte) == Count();
    }
    [[nodiscard]] bool IsIntactBefore() const {
        return std::count(base_, Data(), kUntouched) == Data() - base_;
    }

  private:
    static constexpr size_t kPage = 4096;
    [[nodiscard]] ptrdiff_t Count() const { return static_cast<ptrdiff_t>(size_); }

    size_t size_;
    size_t room_;
    uint8_t* base_;
};
