"""`kestrel top` in a real terminal, tmux, of which the screen is read."""
import re
import subprocess

import pytest
from conftest import BIN, until


class Terminal:
    """A tmux of its own, ended with the test; what runs in it leaves its exit code behind."""

    def __init__(self, folder, command, width=80, height=24, **environment):
        self.tmux = ["tmux", "-f", "/dev/null", "-S", str(folder / "tmux")]
        self.left = folder / "code"
        words = " ".join(f"{name}={value}" for name, value in environment.items())
        self.call("new-session", "-d", "-x", str(width), "-y", str(height),
                  f"{words} {command}; echo $? >{self.left}; sleep 60")

    def call(self, *words):
        return subprocess.run([*self.tmux, *words], check=True, capture_output=True, text=True).stdout

    def press(self, key):
        self.call("send-keys", key)

    def screen(self):
        return self.call("capture-pane", "-p").rstrip("\n").split("\n")

    def shows(self, pattern):
        return until(lambda: re.search(pattern, "\n".join(self.screen()), re.M))

    def code(self):
        return int(until(lambda: self.left.exists() and self.left.read_text()))


@pytest.fixture
def terminal(printers, tmp_path):
    printers.change({"USB002": {"ink.magenta": 3}, "NET1": {"status.error": "Paper_Jam"}})
    terminal = Terminal(tmp_path, f"{BIN}/kestrel --timeout 300ms top --interval 200ms", TERM="screen-256color")
    yield terminal
    terminal.call("kill-server")


EXPECTED = r"""4 printers, 1 without an answer  sort: name  filter: all  TIME
PRINTER        STATE        black cyan  magen yello UPPER LOWER  EX/S ERROR
Dead           no answer                                          0.0 no-answer
Office         ready        ####. ###.. ###.. ####.   80%  100%   EX
Quick          ready        ####. ###.. #.... ####.   80%  100%   EX
Slow           paper-jam    ####. ###.. ###.. ####.   80%  100%   EX""".split("\n")


def test_shows_every_printer_in_80_columns_and_24_lines(terminal):
    terminal.shows(r"^Slow +paper-jam")
    terminal.shows(r"^Quick .* #\.\.\.\.")
    terminal.shows(r"^Dead +no answer .* no-answer")
    lines = terminal.screen()
    assert lines[-1] == "q quit  s sort  f filter  d details  up, down"
    assert len(lines) == 24
    seen = [re.sub(r" \d\d:\d\d:\d\d$", " TIME", re.sub(r" {1,4}\d+\.\d$", "   EX", line)) for line in lines[:6]]
    for line, expected in zip(seen, EXPECTED):
        assert line.startswith(expected), "\n".join(lines)


def test_keys_sort_filter_choose_and_show_one_whole(terminal):
    terminal.shows(r"^Quick .* #\.\.\.\.")
    terminal.press("f")
    terminal.shows(r"filter: trouble")
    assert not [line for line in terminal.screen() if line.startswith("Office")]
    terminal.press("s")
    terminal.press("s")
    terminal.shows(r"sort: ink[\s\S]*^Quick[\s\S]*^Slow")
    terminal.press("Down")
    terminal.press("d")
    terminal.shows(r"^port    USB002[\s\S]*magenta +3 % low")
    terminal.press("d")
    terminal.shows(r"^PRINTER")
    terminal.press("q")
    assert terminal.code() == 0


def test_follows_the_terminal_and_ends_as_it_began(terminal):
    terminal.shows(r"^Slow +paper-jam")
    for width, height in ((120, 40), (60, 15), (20, 4), (80, 24)):
        terminal.call("resize-window", "-x", str(width), "-y", str(height))
        until(lambda: len(terminal.screen()) == height and terminal.screen()[-1].startswith("q quit"))
    terminal.press("C-c")
    assert terminal.code() == 130
    terminal.shows("interrupted")
