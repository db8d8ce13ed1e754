#!/usr/bin/env python3
"""Whether the functions that the models stand for are still as they were when the models were last compared with them.

    models/functions.py --check     fails with the names of those that have changed
    models/functions.py --update    writes functions.txt anew, after the models were looked at

functions.txt: file, function as it is written in the source, hash of its text without comments and spaces."""

import hashlib
import re
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
TABLE = HERE / "functions.txt"


def text_of(source: str, function: str) -> str | None:
    """From the name of its definition to the brace that closes it; text in quotes has no braces in these files."""
    for found in re.finditer(rf"(?<![\w:.>]){re.escape(function)}\(", source):
        opened = source.find("{", found.end())
        ended = source.find(";", found.end())
        if opened < 0 or 0 <= ended < opened:
            continue
        depth, at = 0, opened
        while at < len(source):
            depth += {"{": 1, "}": -1}.get(source[at], 0)
            at += 1
            if depth == 0:
                break
        # A call in a condition is no definition: that begins at the margin, or in a class, with its type before it.
        line = source[source.rfind("\n", 0, found.start()) + 1 : found.start()]
        if re.search(r"\b(if|while|for|return)\b|[=(!]", line):
            continue
        return source[found.start() : at]
    return None


def hash_of(file: str, function: str) -> str:
    source = re.sub(r"//[^\n]*", "", (HERE.parent / file).read_text())
    text = text_of(source, function)
    if text is None:
        return "gone"
    return hashlib.sha256("".join(text.split()).encode()).hexdigest()[:16]


def main() -> int:
    lines = [line.split() for line in TABLE.read_text().splitlines() if line and not line.startswith("#")]
    now = [(file, function, hash_of(file, function)) for file, function, *_ in lines]
    if sys.argv[1:] == ["--update"]:
        if lost := [f"{file} {function}" for file, function, hash_ in now if hash_ == "gone"]:
            sys.exit("Not found, give it its new name in models/functions.txt: " + ", ".join(lost))
        head = [line for line in TABLE.read_text().splitlines() if line.startswith("#")]
        TABLE.write_text("\n".join(head + [" ".join(row) for row in now]) + "\n")
        return 0
    if sys.argv[1:] != ["--check"]:
        sys.exit(__doc__)
    changed = [f"{file}: {function}" for (file, function, hash_), line in zip(now, lines) if line[2:] != [hash_]]
    for name in changed:
        print(name)
    if changed:
        print("Changed since the models were compared with it. Look at the comment that names it in models/*.pml, make "
              "the model do the same, run models/run, then models/functions.py --update.")
    return 1 if changed or not lines else 0


if __name__ == "__main__":
    sys.exit(main())
