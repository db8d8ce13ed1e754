// What a call of sdk.hpp comes to: a value, or an Error in numbers and words. No exception is needed; value()
// throws where exceptions are enabled.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "sdk.h"
#include "sdk_last_error.h"
#include "sdk_text.h"
#include "sdk_unicode.hpp"

namespace kestrel {

/// Why a call failed. The texts live as long as the program.
struct Error {
    std::uint32_t code = 0;      ///< one of sdk_errors.h, never 0, or one of the system that was passed on
    std::string_view name;       ///< such as "ERROR_BUSY"; empty for a code that is not in sdk_errors.h
    std::string_view text;       ///< what happened
    std::string_view advice;     ///< what to do about it
    std::string reply;           ///< the reply that was judged bad, in UTF-8; empty when none was
    std::uint32_t response = 0;  ///< its response number; 0 when there was no reply

    /// An error that has no reply.
    [[nodiscard]] static Error of(std::uint32_t code) {
        Error error;
        error.code = code;
        const KestrelErrorText* const known = KestrelFindError(code);
        error.name = known != nullptr ? known->name : "";
        error.text = known != nullptr ? known->text : "an error of the system";
        error.advice = known != nullptr ? known->advice : "look the code up in the system's documentation";
        return error;
    }

    /// That of this thread's last call, which must have failed. Some calls leave 0 when the printer declines:
    /// `instead` is then the code.
    [[nodiscard]] static Error of_last_call(std::uint32_t instead = SDK_ERROR_DECLINED) {
        constexpr std::uint32_t longest_reply = 1024;
        constexpr std::uint32_t no_reply = 100000;
        constexpr std::uint32_t no_object = 100001;
        const std::uint32_t code = KestrelLastError();
        Error error = of(code != 0 ? code : instead);
        kestrel_char reply[longest_reply] = {};
        ::GetLastBadResponse(reply, longest_reply);
        error.reply = detail::to_utf8(reply, longest_reply);
        error.response = ::GetLastResponseNum();
        if (error.response == no_reply || error.response == no_object) error.response = 0;
        return error;
    }

    /// All of it in one line.
    [[nodiscard]] std::string message() const {
        char number[16];
        constexpr std::uint32_t own_codes = 0xE0000000;
        std::snprintf(number, sizeof number, code >= own_codes ? "0x%08lX" : "%lu",
                      static_cast<unsigned long>(code));
        std::string all = std::string(text) + " (" + std::string(name);
        all += (name.empty() ? "" : ", ") + std::string(number) + "); " + std::string(advice);
        if (response != 0) {
            all += "; the printer answered " + std::to_string(response) + ", " +
                   KestrelFindResponse(response)->text;
        }
        if (!reply.empty()) all += ": \"" + reply + '"';
        return all;
    }
};

/// What value() throws.
class Exception : public std::runtime_error {
  public:
    /// With the error's message as what().
    explicit Exception(Error error) : std::runtime_error(error.message()), error_(std::move(error)) {}
    /// Why the call failed.
    [[nodiscard]] const Error& error() const noexcept { return error_; }

  private:
    Error error_;
};

namespace detail {

[[noreturn]] inline void fail(const Error& error) {
#if defined(__cpp_exceptions) || defined(_CPPUNWIND)
    throw Exception(error);
#else
    std::fprintf(stderr, "%s\n", error.message().c_str());
    std::abort();
#endif
}

}  // namespace detail

/// A value or an Error.
template <typename T>
class [[nodiscard]] Result {
  public:
    /// A call that succeeded.
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    /// A call that failed.
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    /// Whether the call succeeded.
    [[nodiscard]] bool has_value() const noexcept { return state_.index() == 0; }
    /// The same.
    explicit operator bool() const noexcept { return has_value(); }

    /// The value. Without one it throws kestrel::Exception; a program without exceptions prints the error's
    /// message and aborts.
    [[nodiscard]] const T& value() const& {
        check();
        return **this;
    }
    [[nodiscard]] T& value() & {
        check();
        return **this;
    }
    [[nodiscard]] T value() && {
        check();
        return std::move(**this);
    }
    /// The value, or `other` where there is none.
    [[nodiscard]] T value_or(T other) const& { return has_value() ? **this : std::move(other); }
    [[nodiscard]] T value_or(T other) && { return has_value() ? std::move(**this) : std::move(other); }

    /// The value, which must be there.
    [[nodiscard]] const T& operator*() const noexcept { return *std::get_if<0>(&state_); }
    [[nodiscard]] T& operator*() noexcept { return *std::get_if<0>(&state_); }
    /// Into the value, which must be there.
    [[nodiscard]] const T* operator->() const noexcept { return std::get_if<0>(&state_); }
    [[nodiscard]] T* operator->() noexcept { return std::get_if<0>(&state_); }

    /// The error, which must be there.
    [[nodiscard]] const Error& error() const noexcept { return *std::get_if<1>(&state_); }

  private:
    void check() const {
        if (!has_value()) detail::fail(error());
    }

    std::variant<T, Error> state_;
};

/// Done, or an Error.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    /// A call that failed.
    Result(Error error) : error_(std::move(error)) {}

    /// Whether the call succeeded.
    [[nodiscard]] bool has_value() const noexcept { return !error_.has_value(); }
    /// The same.
    explicit operator bool() const noexcept { return has_value(); }

    /// Nothing, or as Result<T>::value().
    void value() const {
        if (error_) detail::fail(*error_);
    }
    /// The error, which must be there.
    [[nodiscard]] const Error& error() const noexcept { return *error_; }

  private:
    std::optional<Error> error_;
};

}  // namespace kestrel
