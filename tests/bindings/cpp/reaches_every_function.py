#!/usr/bin/env python3
"""reaches_every_function.py GENERATED_HEADERS: every function of the library is called by sdk.hpp or by one of its
headers, but for those that are kept for old programs and never do anything."""
import pathlib
import re
import sys

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "scripts"))
import interface

headers = [*(ROOT / "include/kestrel").glob("*.hpp"), *pathlib.Path(sys.argv[1]).glob("*.hpp")]
called = {name for header in headers for name in re.findall(r"(?<!\w)::([A-Z]\w+)", header.read_text())}
wanted = {name for name, function in interface.functions().items() if function.section != "Not supported"}
print(f"{len(wanted & called)} of {len(wanted)} functions are reached")
sys.exit(", ".join(sorted(wanted - called)) or 0)
