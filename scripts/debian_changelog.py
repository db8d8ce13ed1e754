#!/usr/bin/python3
"""Prints debian/changelog: what CHANGELOG.md tells of the newest version, as of $SOURCE_DATE_EPOCH. A version that is
still being made is one behind the last release, with the day."""
import email.utils
import os
import re
import sys
import textwrap
import time

sys.dont_write_bytecode = True
from project import ROOT, VERSION


def newest_changes():
    """Whether they are released, and their entries, each with the heading it stands under."""
    version = re.split(r"^## ", (ROOT / "CHANGELOG.md").read_text(), flags=re.M)[1]
    title, text = version.split("\n", 1)
    entries = []
    for part in re.split(r"^### ", text, flags=re.M):
        heading, *listed = re.split(r"^- ", part, flags=re.M)
        kind = heading.strip()
        entries += [f"{kind}: {' '.join(entry.split())}" for entry in listed] if listed else filter(None, [kind])
    return title.strip() != "Unreleased", entries


def main():
    released, entries = newest_changes()
    when = int(os.environ["SOURCE_DATE_EPOCH"])
    version = VERSION if released else VERSION + time.strftime("+git%Y%m%d", time.gmtime(when))
    maintainer = re.search(r"^Maintainer: (.*)$", (ROOT / "debian/control").read_text(), re.M)[1]
    print(f"kestrel-sdk ({version}) unstable; urgency=medium\n")
    for entry in entries:
        print(textwrap.fill(" ".join(entry.split()), 78, initial_indent="  * ", subsequent_indent="    "))
    print(f"\n -- {maintainer}  {email.utils.formatdate(when)}")


if __name__ == "__main__":
    main()
