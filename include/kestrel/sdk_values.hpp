// The values of settings as sdk.hpp has them, and how each kind passes the C interface. The settings
// themselves are in sdk_settings.hpp, which is made from the catalogue.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "sdk_errors.h"
#include "sdk_types.h"
#include "sdk_unicode.hpp"

namespace kestrel {

/// An IPv4 address: a.b.c.d is Ipv4{a, b, c, d}.
struct Ipv4 {
    std::array<std::uint8_t, 4> bytes{};  ///< a, b, c, d

    constexpr Ipv4() = default;
    /// a.b.c.d
    constexpr Ipv4(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) : bytes{a, b, c, d} {}
    /// The same of four bytes in that order.
    constexpr explicit Ipv4(const std::array<std::uint8_t, 4>& address) : bytes(address) {}

    /// Four decimal numbers with dots, and nothing else.
    [[nodiscard]] static std::optional<Ipv4> parse(std::string_view text) {
        Ipv4 address;
        const char* at = text.data();
        const char* const end = at + text.size();
        for (std::size_t i = 0; i < address.bytes.size(); ++i) {
            if (i > 0 && (at == end || *at++ != '.')) return std::nullopt;
            const auto [rest, error] = std::from_chars(at, end, address.bytes[i]);
            if (error != std::errc()) return std::nullopt;
            at = rest;
        }
        return at == end ? std::optional(address) : std::nullopt;
    }
    /// As the C interface takes an address: the lowest byte goes first.
    [[nodiscard]] constexpr std::uint32_t to_number() const {
        return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
               std::uint32_t{bytes[3]} << 24;
    }
    bool operator==(const Ipv4&) const = default;
};

/// Four decimal numbers with dots.
[[nodiscard]] inline std::string to_string(const Ipv4& address) {
    std::string text;
    for (const std::uint8_t byte : address.bytes)
        text += (text.empty() ? "" : ".") + std::to_string(byte);
    return text;
}

/// What can be done with a setting.
enum class Access { ReadWrite, ReadOnly, WriteOnly, Command };

/// A setting that Printer::get takes.
template <typename Setting>
concept ReadableSetting = Setting::access == Access::ReadWrite || Setting::access == Access::ReadOnly;
/// A setting that Printer::set takes.
template <typename Setting>
concept WritableSetting = Setting::access == Access::ReadWrite || Setting::access == Access::WriteOnly;
/// A setting that Printer::command takes: the printer acts at once.
template <typename Setting>
concept CommandSetting = Setting::access == Access::Command;

namespace detail {

/// The device's words for the numbers of an enumeration, from 0 on.
template <typename Enumeration>
struct Words;

template <typename Enumeration>
concept Worded = requires {
    Words<Enumeration>::list;
};

}  // namespace detail

/// The device's word for it, as `kestrel list` shows it; empty for a number that is none of its enumerators.
template <detail::Worded Enumeration>
[[nodiscard]] constexpr std::string_view to_string(Enumeration value) {
    const auto& words = detail::Words<Enumeration>::list;
    const auto number = static_cast<std::size_t>(value);
    return number < words.size() ? words[number] : std::string_view();
}

/// from_string<FaxMode>("Fine_Black"); nothing when it is none of the device's words, letter for letter.
template <detail::Worded Enumeration>
[[nodiscard]] constexpr std::optional<Enumeration> from_string(std::string_view word) {
    const auto& words = detail::Words<Enumeration>::list;
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i] == word) return static_cast<Enumeration>(i);
    return std::nullopt;
}

/// The kinds of settings. `value_type` is what is read and `argument` what is written; `buffer` is what the C
/// getter fills, and `prepare` gives what the C setter takes, or nothing when the argument is refused with
/// `refusal`.
namespace kind {

struct Flag {
    using value_type = bool;
    using argument = bool;
    using buffer = kestrel_bool;
    static constexpr std::uint32_t refusal = 0;
    [[nodiscard]] static constexpr bool value_of(buffer raw) { return raw != 0; }
    [[nodiscard]] static constexpr std::optional<kestrel_bool> prepare(bool value) {
        return static_cast<kestrel_bool>(value);
    }
};

/// A number read as `Read` and written as `Write`.
template <typename Read, typename Write = Read, typename Buffer = Read>
struct Number {
    using value_type = Read;
    using buffer = Buffer;
    static constexpr std::uint32_t refusal = SDK_ERROR_BAD_NUMBER;

    /// Any integer: one that `Write` cannot hold is refused instead of being cut.
    class argument {
      public:
        template <std::integral Integer>
        requires(!std::same_as<Integer, bool>) constexpr argument(Integer value)
            : value_(static_cast<Write>(value)), fits_(std::in_range<Write>(value)) {}

      private:
        friend struct Number;
        Write value_;
        bool fits_;
    };

    [[nodiscard]] static constexpr Read value_of(Buffer raw) { return static_cast<Read>(raw); }
    [[nodiscard]] static constexpr std::optional<Write> prepare(argument value) {
        return value.fits_ ? std::optional(value.value_) : std::nullopt;
    }
};

template <typename Enumeration>
struct Choice {
    using value_type = Enumeration;
    using argument = Enumeration;
    using buffer = std::uint32_t;
    static constexpr std::uint32_t refusal = 0;
    [[nodiscard]] static constexpr Enumeration value_of(buffer raw) { return static_cast<Enumeration>(raw); }
    [[nodiscard]] static constexpr std::optional<std::uint32_t> prepare(Enumeration value) {
        return static_cast<std::uint32_t>(value);
    }
};

/// `bytes`: the getter's buffer, terminator included.
template <std::size_t bytes>
struct Text {
    using value_type = std::string;
    using argument = std::string_view;
    using buffer = std::array<kestrel_char, bytes / sizeof(kestrel_char)>;
    static constexpr std::uint32_t refusal = SDK_ERROR_BAD_TEXT;
    [[nodiscard]] static std::string value_of(const buffer& raw) {
        return detail::to_utf8(raw.data(), raw.size());
    }
    [[nodiscard]] static std::optional<detail::Wide> prepare(std::string_view text) {
        detail::Wide wide;
        return detail::to_wide(text, wide) ? std::optional(std::move(wide)) : std::nullopt;
    }
};

struct Address {
    using value_type = Ipv4;
    using argument = Ipv4;
    using buffer = std::array<std::uint8_t, 4>;
    static constexpr std::uint32_t refusal = 0;
    [[nodiscard]] static constexpr Ipv4 value_of(const buffer& raw) { return Ipv4(raw); }
    [[nodiscard]] static constexpr std::optional<std::uint32_t> prepare(Ipv4 address) {
        return address.to_number();
    }
};

}  // namespace kind

/// The settings in the catalogue's order: AllSettings of sdk_settings.hpp is one.
template <typename... Setting>
struct SettingList {
    /// How many there are.
    static constexpr std::size_t size = sizeof...(Setting);

    /// `function.operator()<Setting>()` for each of them.
    template <typename Function>
    static constexpr void for_each(Function&& function) {
        (function.template operator()<Setting>(), ...);
    }
};

}  // namespace kestrel
