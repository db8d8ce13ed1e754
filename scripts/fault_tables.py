#!/usr/bin/env python3
"""Writes the tables of faults in docs/vprinter.md, from what the virtual printer PROGRAM says of itself; with --check
tells instead whether they are up to date.

    scripts/fault_tables.py [--check] PROGRAM
"""
import json
import re
import subprocess
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
from catalogue import ROOT

PAGE = ROOT / "docs/vprinter.md"
SELECTION = "| Field | Value | Meaning |\n|---|---|---|\n"
KINDS = "| Field | Value | What the printer does | What a program sees |\n|---|---|---|---|\n"


def lines(rows, *columns):
    return "".join(f"| `{row['field']}` | " + " | ".join(row[column] for column in columns) + " |\n" for row in rows)


def tables(program):
    """By their headings."""
    listed = subprocess.run([program, "--list-faults", "--json"], check=True, capture_output=True, text=True).stdout
    fields = json.loads(listed)
    return {SELECTION: SELECTION + lines(fields["selection"], "value", "meaning"),
            KINDS: KINDS + lines(fields["kinds"], "value", "meaning", "client")}


def main():
    check = sys.argv[1] == "--check"
    text = PAGE.read_text()
    written = text
    for heading, table in tables(sys.argv[-1]).items():
        written, found = re.subn(re.escape(heading) + r"(?:\|.*\n)*", lambda _, table=table: table, written)
        if found != 1:
            sys.exit(f"{PAGE.relative_to(ROOT)}: there is not one table with the heading {heading.splitlines()[0]}")
    if not check:
        PAGE.write_text(written)
    elif written != text:
        sys.exit(f"{PAGE.relative_to(ROOT)}: its tables are not those of the program; run scripts/fault_tables.py")
    else:
        print("the document agrees with the program")


if __name__ == "__main__":
    main()
