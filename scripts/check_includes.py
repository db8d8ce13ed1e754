#!/usr/bin/env python3
"""Checks the arrows of the house: which folder may include which, and that src/ knows no operating system.

A folder under src/, winport/ or tools/ is a room. Its row names the rooms it may include besides itself; "windows" are
the headers of the Windows interfaces, "include" the public headers. A room without a row is a fault, as is an arrow that
no row allows.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

ROOMS = {
    # The product, from the ground floor up. std and the Windows interfaces alone.
    "src/opl": "",
    "src/catalogue": "include src/opl",
    "src/kwt": "windows",
    "src/ipc": "windows src/kwt",
    "src/host": "windows src/kwt",
    "src/session": "windows include src/kwt src/opl src/catalogue src/ipc src/host",
    "src/settings": "windows include src/kwt src/opl src/catalogue src/ipc src/host src/session",
    "src/entry": "windows include src/kwt src/opl src/catalogue src/ipc src/host src/session src/settings",
    # The Windows calls on Linux.
    "winport/include": "windows",
    "winport/runtime": "windows",
    "winport/text": "windows",
    "winport/threads": "windows",
    "winport/files": "windows winport/text",
    "winport/profile": "windows winport/text winport/files",
    "winport/registry": "windows winport/text winport/files",
    "winport/spooler": "windows winport/text winport/files winport/registry",
    "winport/handles": "windows winport/text winport/files winport/threads",
    "winport/disk": "windows winport/text winport/files winport/handles",
    "winport/sections": "windows winport/handles",
    "winport/sync": "windows winport/threads winport/handles",
    "winport/user": "windows winport/threads",
    "winport/module": "windows winport/text winport/threads",
    "winport/entry": "windows winport/module",
    "winport/process": "windows winport/text winport/files winport/threads winport/handles winport/sync winport/module",
    # The programs. The counterparts share the product's channels; no program includes another one's files.
    "tools/shared": "windows",
    "tools/http": "tools/shared",
    "tools/exporter": "tools/shared tools/http",
    "tools/top": "",
    "tools/kestrel": "windows include src/catalogue src/opl tools/shared tools/http tools/exporter tools/top",
    "tools/rundll32": "windows include src/catalogue tools/shared",
    "tools/statusmon": "windows include src/catalogue src/opl src/ipc src/kwt tools/shared",
    "tools/vprinter": "windows include src/catalogue src/opl src/ipc src/kwt tools/shared tools/http",
}
MAY_INCLUDE = {room: set(others.split()) | {room} for room, others in ROOMS.items()}
# What a room may include of a lower one, where that is less than the whole of it.
ONLY = {
    ("src/catalogue", "src/opl"): {"vocabulary.h", "vocabulary.def"},
    ("tools/kestrel", "tools/exporter"): {"exporter.h"},
}

# Of names between quotes or brackets, in the order of the search.
SEARCHED = ("src", "include", "tools", "")
SOURCES = {".h", ".cpp", ".c", ".def", ".inc", ".list"}
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]', re.M)
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*(?:_WIN32|_WIN64|__linux__|__unix__|WIN32|WINPORT)", re.M)
WINDOWS_HEADERS = {path.name for path in (ROOT / "winport/include").iterdir()}


def room_of(path):
    parts = path.relative_to(ROOT).parts
    return parts[0] if parts[0] == "include" else "/".join(parts[:2])


def find(name, includer):
    """The room that a name leads to; None for the headers of the system, of libraries and of the build."""
    if name in WINDOWS_HEADERS:
        return "windows", name
    for folder in (includer.parent, *(ROOT / place for place in SEARCHED)):
        path = (folder / name).resolve()
        if path.is_file() and path.is_relative_to(ROOT):
            return room_of(path), path.name
    return None, name


def faults_of(path, room):
    text = path.read_text()
    where = path.relative_to(ROOT)
    ofProduct = room.startswith("src/")
    for match in CONDITION.finditer(text) if ofProduct else ():
        yield f"{where}: asks for the operating system: {match.group(0).strip()}"
    for bracket, name in INCLUDE.findall(text):
        target, file = find(name, path)
        if target is None:
            if ofProduct and bracket == "<" and name.endswith(".h"):
                yield f"{where}: neither standard C++ nor a Windows header: <{name}>"
        elif target not in MAY_INCLUDE[room] or file not in ONLY.get((room, target), {file}):
            yield f"{where}: {room}/ may not include {name} of {target}/"


def main():
    faults, files = [], 0
    for house in ("src", "winport", "tools"):
        for path in sorted((ROOT / house).glob("*/**/*")):
            room = room_of(path)
            if path.suffix not in SOURCES or not path.is_file():
                continue
            files += 1
            if room in MAY_INCLUDE:
                faults.extend(faults_of(path, room))
            else:
                faults.append(f"{path.relative_to(ROOT)}: {room}/ has no row in the table of rooms")
    print("\n".join(faults) if faults else f"{files} files include only what they may")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
