#!/usr/bin/env python3
"""Asks the shells what they offer on a line of kestrel, each as it does for its users, and the program for what it has
in its tables.

    completion.py bash|zsh|fish|tables FOLDER_OF_PROGRAMS"""
import json
import os
import pathlib
import pty
import re
import select
import shlex
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"))
import catalogue

PATIENCE = 60  # seconds

# A line up to the cursor, and the words that stand in the place of its last one.
LINES = {
    "kestrel wi": ["wifi"],
    "kestrel printers ": ["add", "remove"],
    "kestrel --js": ["--json"],
    "kestrel --json set fax.m": ["fax.mode"],
    "kestrel set fax.mode dr": ["Draft_Color", "Draft_Black"],
    "kestrel set fax.backup ": ["yes", "no"],
    "kestrel set photo.copies ": ["1", "99"],
    "kestrel set fax.redials 3 --veri": ["--verify"],
    "kestrel maintenance cl": ["clean"],
    "kestrel wifi set --mode In": ["Infrastructure"],
    "kestrel -p ": ["Office", "Front Desk"],
    "kestrel -p Fr": ["Front Desk"],
    "kestrel -p 'Front D": ["Front Desk"],
    "kestrel --printer=Fr": ["--printer=Front Desk"],
    "kestrel -p Office get fax.m": ["fax.mode"],
    "kestrel addressbook import b": ["book.csv"],
    "kestrel set device.name ": [],
    "kestrel nonsense ": [],
}


class Shell:
    """An interactive shell on a terminal of its own, which ends a line with what was typed as words."""

    def __init__(self, command, start, insert_all):
        self.insert_all = insert_all
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.execvp(command[0], command)
        self.type("\n".join([*start, "printf 'rea%s\\n' dy", ""]))
        self.read_until(r"ready")

    def type(self, text):
        os.write(self.terminal, text.encode())

    def read_until(self, pattern):
        text, end = "", time.monotonic() + PATIENCE
        while not re.search(pattern, text):
            left = end - time.monotonic()
            if left <= 0 or not select.select([self.terminal], [], [], left)[0]:
                raise AssertionError(f"the shell shows no {pattern} but {text!r}")
            text += os.read(self.terminal, 65536).decode(errors="replace")
        return text

    def offers(self, line):
        """All that is offered takes the place of the last word; then the line is printed word by word, not run."""
        # A word in quotes is completed as by hand: bash would put many in its place without them.
        self.type(line + ("\t" if "'" in line else self.insert_all) + "\x01words \n")
        text = self.read_until(r"\[end\]").replace("\r", "")
        words = re.findall(r"^<(.*)>$", text, re.M)
        before = shlex.split(line + "'" * (line.count("'") % 2))[:None if line.endswith(" ") else -1]
        return [word for word in words[len(before):] if word]


WORDS = "words() { printf '<%s>\\n' \"$@\"; printf '[%s]\\n' end; }"


def bash(programs):
    shell = Shell(["bash", "--norc", "--noprofile", "-i"],
                  ["PS1= PS2=", "bind '\"\\C-xa\": insert-completions'", "source <(kestrel completion bash)", WORDS], "\x18a")
    return shell.offers


def zsh(programs):
    (pathlib.Path.cwd() / "_kestrel").write_bytes(subprocess.check_output([programs / "kestrel", "completion", "zsh"]))
    shell = Shell(["zsh", "-f", "-i"], [
        "PS1= PS2= RPS1=; unsetopt prompt_cr prompt_sp; unset zle_bracketed_paste", "bindkey -e",
        "fpath=($PWD $fpath); autoload -U compinit; compinit -D -u",
        "zle -C all complete-word _generic; bindkey '^Xa' all",
        "zstyle ':completion:all:*' insert yes; zstyle ':completion:all::::' completer _all_matches _complete", WORDS],
        "\x18a")
    return shell.offers


def fish(programs):
    def offers(line):
        script = "kestrel completion fish | source; complete -C $argv[1]"
        output = subprocess.check_output(["fish", "--no-config", "-c", script, line], text=True)
        return [row.split("\t")[0].replace("\\ ", " ") for row in output.splitlines()]
    return offers


def check_lines(offers):
    wrong = []
    for line, expected in LINES.items():
        found = offers(line)
        if sorted(found) != sorted(expected):  # some shells sort
            wrong.append(f"{line}: {found} instead of {expected}")
    assert not wrong, "\n".join(wrong)


def complete(*words):
    output = subprocess.check_output(["kestrel", "complete", str(len(words) - 1), "--", *words], text=True)
    kind, *rows = output.splitlines()
    return kind, dict(row.split("\t") for row in rows)


def check_tables():
    rows = list(catalogue.rows())
    writable = {row["name"]: row["about"] for row in rows if row.get("access", "ReadWrite") != "ReadOnly" and row["kind"] != "CONSTANT"}
    readable = {row["name"]: row["about"] for row in rows if row.get("access") not in ("WriteOnly", "Command")}
    assert complete("set", "")[1] == writable
    assert complete("get", "")[1] == readable
    assert complete("get", "fax.redials", "fax.red")[1] == {}, "a key that stands there already"
    for row in rows:
        if row["kind"] == "CHOICE" and row["name"] in writable:
            assert list(complete("set", row["name"], "")[1]) == row["table"]
    assert complete("set", "photo.copies", "5") == ("text copies of each photo: 1 to 99", {})
    assert complete("set", "--", "device.name", "")[0].endswith("at most 63 characters")

    tree = json.loads(subprocess.check_output(["kestrel", "--describe-command-line"]))
    assert complete("")[1] == {command["name"]: command["about"] for command in tree["subcommands"]}
    for command in tree["subcommands"]:
        names = {option["names"][-1] for option in command["options"] + tree["options"]}
        assert complete(command["name"], "--")[1].keys() == {name for name in names if name.startswith("--")}
    assert "--json" not in complete("--json", "get", "--")[1], "an option that stands there already"


def main():
    case, programs = sys.argv[1], pathlib.Path(sys.argv[2])
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        os.environ.update(WINPORT_HOME=f"{folder}/home", HOME=folder, PATH=f"{programs}:{os.environ['PATH']}", TERM="dumb",
                          LC_ALL="C.UTF-8")
        os.environ.pop("KESTREL_PRINTER", None)
        os.mkdir("home", 0o700)
        pathlib.Path("book.csv").touch()
        for command in (["setup"], ["printers", "add", "Office", "--port", "USB001"],
                        ["printers", "add", "Front Desk", "--port", "USB002"]):
            subprocess.run(["kestrel", *command], check=True, stdout=subprocess.DEVNULL)
        objects = sorted(pathlib.Path("home").rglob("*"))
        if case == "tables":
            check_tables()
        else:
            check_lines({"bash": bash, "zsh": zsh, "fish": fish}[case](programs))
        assert sorted(pathlib.Path("home").rglob("*")) == objects, "completion has opened a channel or written something"


if __name__ == "__main__":
    main()
