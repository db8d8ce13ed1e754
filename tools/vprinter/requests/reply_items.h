// Puts together the items of a reply: Key=value&Key2=value2&Key3#6=<6 bytes>.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vprinter {

class ReplyItems final {
  public:
    /// `value` as people write it; it is escaped here.
    ReplyItems& Text(std::string_view key, std::string_view value);
    ReplyItems& Number(std::string_view key, int64_t value);
    ReplyItems& Block(std::string_view key, std::string_view bytes);

    [[nodiscard]] std::string Take() { return std::move(items_); }

  private:
    void Begin(std::string_view key);

    std::string items_;
};

}  // namespace vprinter
