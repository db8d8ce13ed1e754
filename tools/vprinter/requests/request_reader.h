// Cuts one request text into its commands.
//
//   query        Key?
//   set          Key=value;
//   binary set   Key#4=<4 bytes>;
//   word         Word?  or  Word=argument?
//
// A request holds one command or several, each complete with its own terminator. Keys are printable ASCII;
// values hold any byte but the three delimiters, which come escaped. Requests come from other processes and
// are hostile until read.
#pragma once

#include <cstdint>
#include <string_view>

namespace vprinter {

enum class CommandKind : uint8_t { Query, Set, BinarySet, Word, Malformed };

/// Views into the request text.
struct Command {
    CommandKind kind = CommandKind::Malformed;
    std::string_view key;
    std::string_view value;       // still escaped; the raw bytes of a binary set
    std::string_view text;        // the whole command with its terminator
    const char* fault = nullptr;  // of a malformed command: what is wrong with it
};

class RequestReader final {
  public:
    explicit RequestReader(std::string_view request) : rest_(request) {}

    /// The next command; false at the end of the request. A malformed command ends the request, because
    /// nothing tells where the next one would begin.
    [[nodiscard]] bool Next(Command& command);

  private:
    [[nodiscard]] Command ReadValue(size_t keyLength) const;
    [[nodiscard]] Command ReadBlock(size_t keyLength) const;

    std::string_view rest_;
};

}  // namespace vprinter
