#!/usr/bin/env python3
"""Checks the file of the Windows library: check_dll.py FOLDER. Its exports are the list's and no others, it needs no
library but Windows' own, it can be moved in memory and its data not be executed, and it says what it is."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SYSTEM = {"ADVAPI32.dll", "KERNEL32.dll", "msvcrt.dll", "ole32.dll", "RPCRT4.dll", "USER32.dll", "USERENV.dll",
          "WINSPOOL.DRV", "WTSAPI32.dll"}


def main():
    library = next(pathlib.Path(sys.argv[1]).glob("*SDK.dll"))
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-x", library], check=True, capture_output=True,
                             text=True).stdout
    wanted = {line for line in (ROOT / "src/entry/exports.list").read_text().split("\n") if re.match("[A-Za-z]", line)}
    names = headers.split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
    exported = set(re.findall(r"^\s*\[\s*\d+\] (?:\+base\[\s*\d+\]\s+[0-9a-f]+ )?(\w+)$", names, re.M))
    imported = set(re.findall(r"DLL Name: (\S+)", headers))
    flags = re.findall(r"^\s+(DYNAMIC_BASE|NX_COMPAT|HIGH_ENTROPY_VA)$", headers, re.M)
    faults = []
    if exported != wanted:
        faults.append(f"exports missing: {sorted(wanted - exported)}, besides: {sorted(exported - wanted)}")
    if not imported <= SYSTEM:
        faults.append(f"needs {sorted(imported - SYSTEM)}, which Windows does not have")
    if "DYNAMIC_BASE" not in flags or "NX_COMPAT" not in flags:
        faults.append(f"has only the flags {flags}")
    if "HAS_RELOC" not in headers.split("\n\n")[0] and ".reloc" not in headers:
        faults.append("has no relocations")
    if "Kestrel SDK".encode("utf-16-le") not in library.read_bytes():
        faults.append("has no version resource that names the product")
    if not (library.parent / (library.name + ".debug")).exists():
        faults.append("has no debug symbols beside it")
    for fault in faults:
        print(f"{library}: {fault}", file=sys.stderr)
    print(f"{library.name}: {len(exported)} exports, needs {', '.join(sorted(imported))}, {', '.join(flags)}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
