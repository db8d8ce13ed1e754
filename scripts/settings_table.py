#!/usr/bin/env python3
"""Writes the table of settings in docs/vprinter.md; with --check tells instead whether it is up to date, and whether
the public header names the buffer that each text needs."""
import re
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
from catalogue import ROOT, rows

PAGE = ROOT / "docs/vprinter.md"
HEADER = ROOT / "include/kestrel/sdk_settings.h"
BEGIN = "| Key | Name | First value | Taken |\n|---|---|---|---|\n"


def characters(row):
    return int(row["bytes"]) // 2 - 1


def taken(row):
    if row.get("access") == "ReadOnly":
        return "read only"
    values = {
        "FLAG": lambda: "YES, NO",
        "CHOICE": lambda: f"its {len(row['table'])} words",
        "ADDRESS": lambda: "address",
        "STRING": lambda: f"at most {characters(row)} characters",
        "INDEXED": lambda: f"at most {characters(row)} characters",
    }.get(row["kind"], lambda: f"{row['lowest']} to {row['highest']}")()
    return values + (", set only" if row.get("access") in ("WriteOnly", "Command") else "")


def table():
    return BEGIN + "".join(f"| `{row['key']}` | `{row['name']}` | {row['initial'] or '(empty)'} | {taken(row)} |\n"
                           for row in rows() if row["key"])


def faults():
    if table() + "\n" not in PAGE.read_text():
        yield f"{PAGE.relative_to(ROOT)}: its table is not that of settings.def; run scripts/settings_table.py"
    # A caller does not pass the size of its buffer: what is written here is all that it knows of it.
    header = HEADER.read_text()
    for row in rows():
        if row["kind"] not in ("STRING", "INDEXED"):
            continue
        about = header.split(f" Get{row['base']}(")[0].rsplit(";", 1)[1]
        if f"Buffer: {row['bytes']} bytes, {characters(row)} characters" not in about:
            yield f"{HEADER.relative_to(ROOT)}: Get{row['base']} does not say \"Buffer: {row['bytes']} bytes\""


def main():
    if sys.argv[1:] == ["--check"]:
        found = list(faults())
        print("\n".join(found) if found else "the documents agree with settings.def")
        return 1 if found else 0
    text = PAGE.read_text()
    PAGE.write_text(re.sub(re.escape(BEGIN) + r"(?:\|.*\n)*", lambda _: table(), text, count=1))
    return 0


if __name__ == "__main__":
    sys.exit(main())
