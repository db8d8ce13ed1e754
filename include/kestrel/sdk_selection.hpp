// Which printer a thread has selected, for sdk.hpp: the objects that belong to a selection know whether it is
// still theirs.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <utility>

#include "sdk_result.hpp"

namespace kestrel {

inline constexpr std::chrono::milliseconds default_timeout{5000};  ///< of a Printer that is given none
inline constexpr std::chrono::milliseconds no_limit{0xFFFFFFFF};   ///< a time-out that never comes

namespace detail {

/// The numbers of this thread's selection and of the one that it holds the lock of; 0 for none.
inline constinit thread_local std::uint64_t current_selection = 0;
inline constinit thread_local std::uint64_t locked_selection = 0;
inline constinit std::atomic<std::uint64_t> selections = 0;

/// Which selection, of which thread, an object was made for. What is moved from was made for none.
class Selection {
  public:
    [[nodiscard]] static Selection of_this_thread() { return Selection(current_selection); }

    Selection(Selection&& other) noexcept
        : number_(std::exchange(other.number_, none)), thread_(other.thread_) {}
    Selection& operator=(Selection&& other) noexcept {
        number_ = std::exchange(other.number_, none);
        thread_ = other.thread_;
        return *this;
    }
    ~Selection() = default;

    [[nodiscard]] bool is(std::uint64_t number) const noexcept { return number_ == number; }
    [[nodiscard]] std::uint64_t number() const noexcept { return number_; }
    /// Why it is not the one that it should be.
    [[nodiscard]] Error misuse() const {
        const bool is_stranger = number_ != none && thread_ != std::this_thread::get_id();
        return Error::of(is_stranger ? SDK_ERROR_WRONG_THREAD : SDK_ERROR_SELECTION_LOST);
    }

  private:
    static constexpr std::uint64_t none = ~std::uint64_t{0};
    explicit Selection(std::uint64_t number) : number_(number), thread_(std::this_thread::get_id()) {}

    std::uint64_t number_;
    std::thread::id thread_;
};

[[nodiscard]] constexpr std::uint32_t clamp32(std::uint64_t number) {
    constexpr std::uint32_t most = 0xFFFFFFFF;
    return number < most ? static_cast<std::uint32_t>(number) : most;
}

[[nodiscard]] constexpr std::uint32_t to_ms(std::chrono::milliseconds time) {
    return time.count() > 0 ? clamp32(static_cast<std::uint64_t>(time.count())) : 0;
}

}  // namespace detail

/// Keeps the printer for this thread until it is destroyed, or unlock is called. On another thread neither
/// gives the printer back.
class [[nodiscard]] PrinterLock {
  public:
    PrinterLock(PrinterLock&&) noexcept = default;
    /// Gives back what it kept before.
    PrinterLock& operator=(PrinterLock&& other) noexcept {
        if (this != &other) {
            release();
            selection_ = std::move(other.selection_);
            timeout_ = other.timeout_;
        }
        return *this;
    }
    ~PrinterLock() { release(); }

    /// Gives the printer back, to see whether it worked. As Unlock; SDK_ERROR_SELECTION_LOST when it has been
    /// given back before.
    Result<void> unlock() {
        if (!selection_.is(detail::locked_selection)) return selection_.misuse();
        return release() ? Result<void>() : Error::of_last_call();
    }

  private:
    friend class Printer;
    explicit PrinterLock(std::uint32_t timeout)
        : selection_(detail::Selection::of_this_thread()), timeout_(timeout) {
        detail::locked_selection = selection_.number();
    }

    bool release() noexcept {
        if (!selection_.is(detail::locked_selection)) return false;
        detail::locked_selection = 0;
        return ::Unlock(timeout_) != 0;
    }

    detail::Selection selection_;
    std::uint32_t timeout_;
};

}  // namespace kestrel
