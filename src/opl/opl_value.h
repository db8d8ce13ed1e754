// The value parts of set commands: one small type per form in which values are written.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace opl {

struct YesNoValue {
    bool value;
    void AppendTo(std::string& out) const;
};

struct TrueFalseValue {
    bool value;
    void AppendTo(std::string& out) const;
};

struct IntValue {
    int32_t value;
    void AppendTo(std::string& out) const;
};

struct ByteValue {
    uint8_t value;
    void AppendTo(std::string& out) const;
};

struct WordValue {
    uint16_t value;
    void AppendTo(std::string& out) const;
};

struct SignedByteValue {
    int8_t value;
    void AppendTo(std::string& out) const;
};

/// Plain text; it is escaped on its way out. The text must outlive the value.
struct TextValue {
    std::string_view value;
    void AppendTo(std::string& out) const;
};

/// Four bytes in wire order, sent raw.
struct AddressValue {
    std::array<char, 4> bytes;
    void AppendTo(std::string& out) const;

    /// Of a number whose least significant byte is the first of the address: 192.168.0.1 is 0x0100A8C0.
    [[nodiscard]] static constexpr AddressValue FromNumber(uint32_t address) {
        return {{static_cast<char>(address), static_cast<char>(address >> 8),
                 static_cast<char>(address >> 16), static_cast<char>(address >> 24)}};
    }
};

}  // namespace opl
