#!/usr/bin/env python3
"""Runs the programs that the README shows, as they stand: readme_examples.py PREFIX.

Each prints the fax redials of the printer. They are set by the client to a number that nobody can guess, which must be in
what the program prints."""
import pathlib
import random
import re
import sys
import tempfile

sys.dont_write_bytecode = True  # the source folder stays as it is
from installed import PRINTER, Installed

README = pathlib.Path(__file__).resolve().parent.parent.parent / "README.md"
HEADING = "Ten lines in your language"

# The word behind a fence: the file that the example becomes, and the commands that make a program of it and run it.
PACKAGE = "$(pkg-config --cflags --libs zrij9900sdk)"
LANGUAGES = {
    "c": ("example.c", f"cc -std=c11 -Wall -Wextra -Werror example.c {PACKAGE} -o example && ./example"),
    "cpp": ("example.cpp", f"c++ -std=c++20 -Wall -Wextra -Werror example.cpp {PACKAGE} -o example && ./example"),
    "python": ("example.py", "/usr/bin/python3 example.py"),
    "csharp": ("example.cs", 'mcs example.cs "$PREFIX"/share/kestrel-sdk/csharp/*.cs && mono example.exe'),
}


def examples():
    """(language, program) of every fence below the heading."""
    section = re.search(rf"^## {HEADING}\n(.*?)(?=^## |\Z)", README.read_text(), re.M | re.S)
    if section is None:
        raise SystemExit(f"README.md has no section \"{HEADING}\"")
    return re.findall(r"^```(\w*)\n(.*?)^```$", section[1], re.M | re.S)


def run_example(product, language, program):
    """What it prints; `program` as it stands."""
    if language not in LANGUAGES:
        raise SystemExit(f"README.md shows an example in \"{language}\": LANGUAGES of {__file__} needs a row for it")
    name, commands = LANGUAGES[language]
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / name).write_text(program)
        return product.run("/bin/sh", "-c", commands, cwd=folder)


def main():
    found = examples()
    with Installed(sys.argv[1]) as product:
        for language, program in found:
            redials = str(random.randrange(1, 7))
            product.run("kestrel", "-p", PRINTER, "set", "fax.redials", redials)
            printed = run_example(product, language, program)
            if redials not in re.findall(r"\d+", printed):
                raise SystemExit(f"{language}: the fax redials are {redials}, but the example prints {printed!r}")
            print(f"{language}: {printed.strip()}")
    if not found:
        raise SystemExit(f"README.md shows no example below \"{HEADING}\"")


if __name__ == "__main__":
    main()
