#!/usr/bin/env python3
"""Checks the arrows of the house: which folder may include which, and that src/ knows no operating system."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# A room and the rooms it may include besides itself.
MAY_INCLUDE = {
    "kwt": set(),
    "opl": set(),
    "catalogue": {"opl"},
    "ipc": {"kwt"},
    "host": {"kwt"},
    "session": {"host", "ipc", "opl", "kwt"},
    "settings": {"session", "host", "ipc", "catalogue", "opl", "kwt"},
    "entry": {"settings", "session", "host", "ipc", "catalogue", "opl", "kwt"},
}
SYSTEM = {"windows.h", "winspool.h", "psapi.h", "rpc.h", "wtsapi32.h", "userenv.h", "objbase.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]', re.M)
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*(?:_WIN32|_WIN64|__linux__|__unix__|WIN32|WINPORT)", re.M)


def faults_of(path, room):
    text = path.read_text()
    where = path.relative_to(ROOT)
    for match in CONDITION.finditer(text):
        yield f"{where}: asks for the operating system: {match.group(0).strip()}"
    for quote, name in INCLUDE.findall(text):
        folder = name.split("/")[0] if "/" in name else ""
        if name.startswith("winport/"):
            yield f"{where}: names the layer below the Windows interfaces: {name}"
        elif folder in MAY_INCLUDE and folder != room and folder not in MAY_INCLUDE[room]:
            yield f"{where}: {room}/ may not include {folder}/ ({name})"
        elif quote == "<" and name.endswith(".h") and name not in SYSTEM:
            yield f"{where}: neither standard C++ nor a Windows header: <{name}>"
        elif room == "opl" and (name in SYSTEM or folder == "kestrel"):
            yield f"{where}: opl/ is pure text and includes nothing: {name}"


def main():
    faults, files = [], 0
    for room in MAY_INCLUDE:
        for path in sorted((ROOT / "src" / room).rglob("*")):
            if path.suffix in {".h", ".cpp", ".def"}:
                files += 1
                faults.extend(faults_of(path, room))
    print("\n".join(faults) if faults else f"{files} files of src/ include only what they may")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
