#!/usr/bin/env python3
"""Adds up what several ctest runs reported: summarize.py NAME=JUNIT_FILE... Each skip is named with its reason, and
the last line counts. Ends with 1 when something failed or nothing ran."""
import os
import re
import sys
import xml.etree.ElementTree as ET

SKIP_REASON = re.compile(r"Skipped\n(.*?)\n", re.S)


def main():
    passed, failed, skipped = 0, [], []
    for argument in sys.argv[1:]:
        suite, path = argument.split("=", 1)
        if not os.path.exists(path):
            failed.append(f"{suite}: ended without its report {path}")
            continue
        for case in ET.parse(path).getroot().iter("testcase"):
            name = f"{suite}: {case.get('name')}"
            output = case.findtext("system-out") or ""
            status = case.get("status")
            if status == "run":
                passed += 1
            elif status in ("notrun", "disabled"):
                found = SKIP_REASON.search(output)
                skipped.append((name, found.group(1).strip() if found else "it did not say why"))
            else:
                failed.append(name)
    for name, reason in skipped:
        print(f"skipped  {name}: {reason}")
    for name in failed:
        print(f"FAILED   {name}")
    print(f"{passed} passed, {len(failed)} failed, {len(skipped)} skipped")
    return 1 if failed or passed == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
