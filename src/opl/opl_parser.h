// Reads what the device answers: cuts messages out of a stream and values out of a message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "opl/list_items.h"

namespace opl {

enum class ParseResult : int32_t {
    MessageReady = 0,  // a complete message is delivered
    MoreInput = 1,     // the input ended inside a message
    Malformed = 2,     // not a message; the parser stays in this state for good
};

/// One stream framer, and the extraction operations, which use none of its state.
///
/// The extraction operations take one framed message, never look beyond its end and fail on whatever they do
/// not find; counts and numbers in a message are never trusted. Numbers too large for their type saturate.
/// An object belongs to one thread; the extraction operations may be called from any. Virtual in its end
/// alone, like the other classes of the package.
class OPLParser {
  public:
    /// Bytes of the longest message.
    static constexpr uint32_t kMaxMessage = 0x100FF;

    /// Leaves the message buffer as it is: to zero 64 KiB takes longer than the exchange that it serves.
    OPLParser() {}
    virtual ~OPLParser();
    OPLParser(const OPLParser&) = delete;
    OPLParser& operator=(const OPLParser&) = delete;

    /// Feeds `input`. A delivered message lies in the parser until the next call. Passing the same pointer
    /// again goes on behind the delivered message, so that one buffer with several messages yields one per
    /// call; its bytes and length must then be unchanged. After MoreInput the next input may lie anywhere.
    /// Unless a message is delivered, `message` is null and `messageLength` 0.
    [[nodiscard]] ParseResult ParseStream(const char* input, uint32_t length, const char*& message,
                                          uint32_t& messageLength);

    /// The decimal number before the first comma, if the message opens with one.
    [[nodiscard]] static bool GetResponseNumber(std::string_view message, uint32_t& number);
    /// The key of the first item, without surrounding blanks. `key` points into the message. For whoever
    /// checks a reply: the library knows what it asked for.
    [[nodiscard]] static bool GetKey(std::string_view message, std::string_view& key);
    /// The unescaped text after the first "="; empty on failure, but an empty value is a success.
    [[nodiscard]] static bool GetValue(std::string_view message, std::string& value);
    /// The one rule for numbers: a decimal value has a sign and stops at the ends of its 32 bits (4294967295
    /// is 2147483647); a hexadecimal one, after "0x", is the bits themselves (0xFFFFFFFF is -1). 0 on
    /// failure. An empty value is 0 and a success.
    [[nodiscard]] static bool GetIntValue(std::string_view message, int32_t& value);
    /// 1 for TRUE, YES, ON, ENABLE, 0 for FALSE, NO, OFF, DISABLE (only YES and NO in any case); 0 on
    /// failure.
    [[nodiscard]] static bool GetBoolValue(std::string_view message, uint8_t& value);
    /// The binary block of the first item; empty on failure.
    [[nodiscard]] static bool GetBinaryValue(std::string_view message, std::vector<uint8_t>& bytes);
    /// The items behind the response number. A message without a response number has no items.
    [[nodiscard]] static bool SplitList(std::string_view message, ListItems& items);
    /// The number in the first brackets of the key.
    [[nodiscard]] static bool GetIndex(std::string_view message, uint32_t& index);

    /// Whether `byte` ends a value.
    [[nodiscard]] static constexpr bool IsDelimiter(char byte) {
        return byte == '&' || byte == ';' || byte == '?';
    }

  private:
    enum class State : uint32_t {
        ReadKey,
        ReadLength,
        ReadBinary,
        ReadValue,
        ReadErrorText,
        Complete,
        Error
    };

    void Step();
    void ReadKey();
    [[nodiscard]] bool PassPlainItems();
    [[nodiscard]] bool OpensErrorText();
    void ReadLength();
    void ReadBinary();
    void ReadValue();
    void ReadErrorText();
    [[nodiscard]] std::string_view RemainingInput() const;
    void Consume(size_t count);
    void CopyConsumed();

    const char* input_ = nullptr;
    uint32_t inputLength_ = 0;
    uint32_t inputOffset_ = 0;
    State state_ = State::ReadKey;
    char buffer_[kMaxMessage + 1];
    uint32_t bufferLength_ = 0;
    uint32_t binaryLength_ = 0;
    uint32_t binaryRemaining_ = 0;
    bool messageReady_ = false;
    uint32_t uncopied_ = 0;  // bytes consumed in this call that are not in the buffer yet
};

}  // namespace opl
