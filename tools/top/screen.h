// The module that owns the terminal, which the client loads only for `kestrel top`: no other command is to
// pay for the terminal library. Both are of one release.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace top {

enum class Style { Plain, Bold, Heading, Chosen, Warning, Alarm };

struct Span final {
    std::string text;
    Style style = Style::Plain;
};
using Line = std::vector<Span>;

struct Size final {
    int width = 80;
    int height = 24;
};

enum class Key { None, Quit, Interrupt, Sort, Filter, Details, Up, Down, Resized };

/// The whole terminal, until it is destroyed.
class Screen {
  public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    virtual ~Screen() = default;

    [[nodiscard]] virtual Size GetSize() const = 0;
    /// Lines from the top; what has no room is cut.
    virtual void Draw(const std::vector<Line>& lines) = 0;
    /// The next key that means something, or None when the time is over.
    [[nodiscard]] virtual Key WaitForKey(std::chrono::milliseconds time) = 0;
};

/// The module's one export: a screen that the caller owns, or none where the output is no terminal that it
/// knows.
using OpenFunction = Screen*(bool inColour);
inline constexpr const char* kOpenName = "KestrelOpenScreen";

}  // namespace top
