// ncurses keeps one screen for the process.
#include "top/screen.h"

#include <curses.h>

#include <array>
#include <clocale>
#include <cstdio>

namespace top {
namespace {

constexpr int kInterrupt = 3;  // Ctrl-C, which raw mode hands over as a key

struct StyleLook {
    attr_t attributes;
    short colour;  // 0: that of the terminal
};
constexpr std::array<StyleLook, 6> kLooks = {{
    {A_NORMAL, 0},
    {A_BOLD, 0},
    {A_BOLD | A_UNDERLINE, 0},
    {A_REVERSE, 0},
    {A_BOLD, COLOR_YELLOW},
    {A_BOLD, COLOR_RED},
}};

struct KeyRow {
    int code;
    Key key;
};
constexpr std::array<KeyRow, 12> kKeys = {{
    {'q', Key::Quit},
    {kInterrupt, Key::Interrupt},
    {'s', Key::Sort},
    {'f', Key::Filter},
    {'d', Key::Details},
    {'\n', Key::Details},
    {'\r', Key::Details},
    {KEY_UP, Key::Up},
    {'k', Key::Up},
    {KEY_DOWN, Key::Down},
    {'j', Key::Down},
    {KEY_RESIZE, Key::Resized},
}};

class CursesScreen final : public Screen {
  public:
    explicit CursesScreen(bool inColour) : terminal_(newterm(nullptr, stdout, stdin)) {
        if (terminal_ == nullptr) return;
        set_term(terminal_);
        raw();
        noecho();
        keypad(stdscr, TRUE);
        curs_set(0);
        inColour_ = inColour && has_colors() && start_color() == OK;
        if (!inColour_) return;
        use_default_colors();
        for (const StyleLook& look : kLooks)
            if (look.colour != 0) init_pair(look.colour, look.colour, -1);
    }
    CursesScreen(const CursesScreen&) = delete;
    CursesScreen& operator=(const CursesScreen&) = delete;
    ~CursesScreen() override {
        if (terminal_ == nullptr) return;
        endwin();
        delscreen(terminal_);
    }

    [[nodiscard]] bool IsOpen() const { return terminal_ != nullptr; }
    [[nodiscard]] Size GetSize() const override { return {getmaxx(stdscr), getmaxy(stdscr)}; }

    void Draw(const std::vector<Line>& lines) override {
        erase();
        const Size size = GetSize();
        for (size_t i = 0; i < lines.size() && i < static_cast<size_t>(size.height); ++i) {
            move(static_cast<int>(i), 0);
            for (const Span& span : lines[i])
                DrawSpan(span);
        }
        refresh();
    }

    [[nodiscard]] Key WaitForKey(std::chrono::milliseconds time) override {
        timeout(static_cast<int>(time.count()));
        const int code = getch();
        for (const KeyRow& row : kKeys)
            if (row.code == code) return row.key;
        return Key::None;
    }

  private:
    void DrawSpan(const Span& span) const {
        const StyleLook& look = kLooks.at(static_cast<size_t>(span.style));
        attr_set(look.attributes, inColour_ ? look.colour : short{0}, nullptr);
        // What does not fit must not go on in the next line.
        const int room = getmaxx(stdscr) - getcurx(stdscr);
        addnstr(span.text.c_str(), room);
        attr_set(A_NORMAL, 0, nullptr);
    }

    SCREEN* terminal_;
    bool inColour_ = false;
};

}  // namespace
}  // namespace top

extern "C" [[gnu::visibility("default")]] top::Screen* KestrelOpenScreen(bool inColour);

top::Screen* KestrelOpenScreen(bool inColour) {
    std::setlocale(LC_CTYPE, "");
    auto screen = std::make_unique<top::CursesScreen>(inColour);
    return screen->IsOpen() ? screen.release() : nullptr;
}
