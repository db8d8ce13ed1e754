#!/usr/bin/env python3
"""generate.py FOLDER/_catalogue.py: writes what the package kestrel_sdk knows from the catalogue and the C headers, and
beside it _access.pyi, by which a type checker knows the type of every setting by its name."""
import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import naming
from naming import catalogue, interface

NOTE = "Made from the catalogue and the C headers by bindings/python/generate.py: a change belongs there."
HEAD = f'''"""Settings, enumerations, errors, records and functions. {NOTE}"""
from __future__ import annotations

import ctypes
import ipaddress
from typing import Any, Dict, NamedTuple, Tuple

from ._settings import Choice, Setting
'''
STUB_HEAD = f'''"""{NOTE}"""
import abc
import ipaddress
from typing import Any, Iterator, Literal, Tuple, Union, overload

from . import _catalogue
from ._settings import Setting, SettingsView, Value
'''
C_TYPES = {"kestrel_bool": "ctypes.c_uint8", "uint8_t": "ctypes.c_uint8", "int8_t": "ctypes.c_int8",
           "uint16_t": "ctypes.c_uint16", "kestrel_char": "ctypes.c_uint16", "uint32_t": "ctypes.c_uint32",
           "int32_t": "ctypes.c_int32", "void": "None"}


def c_type(written):
    base = written.removeprefix("const ").removesuffix("*")
    if not written.endswith("*"):
        return C_TYPES[base]
    # Texts and blocks of bytes are handed over as Python's own bytes and buffers.
    return "ctypes.c_void_p" if base in ("kestrel_char", "void") else f"ctypes.POINTER({C_TYPES.get(base, base)})"


def enumeration(found):
    yield f"\n\nclass {naming.enumeration_name(found.name)}(Choice):"
    if found.about:
        yield f'    """{found.about}"""\n'
    prefix = re.sub(r"(?<!^)(?=[A-Z])", "_", found.name).upper() + "_"
    constants = sorted(found.values, key=found.values.get)
    seen = set()
    for constant, (_, number, word) in zip(constants, naming.members(found), strict=True):
        name = constant.removeprefix(prefix)
        yield f'    {"_" if name[0].isdigit() else ""}{name} = {number}, "{word}"'
        letters = {"".join(filter(str.isalnum, text)).casefold() for text in (name, word)}
        assert not seen & letters, f"{constant} cannot be told from another member by its letters"
        seen |= letters


def structure(record):
    yield f"\n\nclass {record.name}(ctypes.Structure):"
    if record.about:
        yield f'    """{record.about}"""\n'
    fields = [f'("{field.name}", {C_TYPES[field.type]}' + (f" * {field.count})" if field.count else ")")
              for field in record.fields]
    yield "    _fields_ = [" + ",\n                ".join(fields) + "]"


def python_type(row):
    kind = row["kind"]
    if kind == "CHOICE":
        return row["words"]
    return {"FLAG": "bool", "STRING": "str", "INDEXED": "str", "ADDRESS": "ipaddress.IPv4Address"}.get(kind, "int")


def setting(row):
    values = {"name": row["name"], "about": row["about"], "access": naming.access(row), "base": row["base"],
              "key": row["key"], "read": row.get("type", row.get("read")), "write": row.get("type", row.get("write"))}
    columns = [f'{column}="{value}"' for column, value in values.items() if value]
    columns.insert(2, f"type={python_type(row)}")
    if "index" in row:
        columns.append(f"index={row['index']}")
    if "lowest" in row:
        columns.append(f"range=({row['lowest']}, {row['highest']})")
    if "bytes" in row:
        columns.append(f"max_length={int(row['bytes']) // 2 - 1}")
    if row.get("privacy") == "Secret":
        columns.append("secret=True")
    return f"    Setting({', '.join(columns)}),"


def codeless():
    """What it means that a function fails and leaves 0: the row "0  text" of its errors."""
    for function in interface.functions().values():
        lines = next((text for text in function.texts if any(line.startswith("  0  ") for line in text)), [])
        found = re.search(r"^  0 +(.*(?:\n {4}.*)*)", "\n".join(lines), re.M)
        if found and "0" in (function.errors() or []):
            yield f'    "{function.name}": "{" ".join(found[1].split(";")[0].split())}",'


def package():
    yield HEAD
    shown = ["SETTINGS", *(naming.enumeration_name(found.name) for found in interface.enumerations().values())]
    yield "__all__ = [" + ", ".join(f'"{name}"' for name in shown) + "]"
    for found in interface.enumerations().values():
        yield from enumeration(found)
    for record in interface.records().values():
        yield from structure(record)
    yield '\n\nclass Error(NamedTuple):\n    """A row of sdk_errors.h."""\n'
    yield "    name: str\n    text: str\n    advice: str\n\n"
    yield "SETTINGS: Dict[str, Setting] = {setting.name: setting for setting in ("
    yield from map(setting, catalogue.rows())
    yield f")}}\n\nLIMITS = {interface.limits()}\n\nERRORS: Dict[int, Error] = {{"
    yield from (f'    {error.code}: Error("{error.name}", "{error.text}", "{error.advice}"),'
                for error in interface.errors())
    yield "}\n\n# What a failure without a code means.\nCODELESS = {"
    yield from codeless()
    yield "}\n\n# The result and the parameters of each function.\nFUNCTIONS: Dict[str, Tuple[Any, ...]] = {"
    for function in interface.functions().values():
        types = [C_TYPES[function.result], *(c_type(parameter.type) for parameter in function.parameters)]
        yield f'    "{function.name}": ({", ".join(types)},),'
    yield "}"


def by_type(rows):
    """The rows' names as a Literal for each type."""
    names = {}
    for row in rows:
        names.setdefault(python_type(row), []).append(f'"{row["name"]}"')
    for kind, literals in names.items():
        # A setting of an enumeration is also set by a word.
        prefix = "_catalogue." if kind[0].isupper() else ""
        yield f"Literal[{', '.join(literals)}]", prefix + kind


def settable(kind):
    return f"Union[{kind}, str]" if "." in kind else kind


def overloads(reader, readable, writer, writable):
    """What is read and what is set, for each type of setting."""
    for names, kind in by_type(readable):
        yield f"    @overload\n    {reader}(self, name: {names}) -> {kind}: ..."
    yield f"    @overload\n    {reader}(self, name: _ReadableSetting) -> Value: ..."
    for names, kind in by_type(writable):
        yield f"    @overload\n    {writer}(self, name: {names}, value: {settable(kind)}) -> None: ..."


def stub():
    rows = list(catalogue.rows())
    readable = [row for row in rows if naming.can_read(row)]
    writable = [row for row in rows if naming.can_write(row) and naming.access(row) != "Command"]
    yield STUB_HEAD
    yield "_ReadableSetting = Literal[" + ", ".join(f'"{row["name"]}"' for row in readable) + "]\n"
    yield "class SettingAccess(abc.ABC):"
    yield "    @abc.abstractmethod\n    def read(self, name: str) -> Value: ..."
    yield "    @abc.abstractmethod\n    def write(self, name: str, value: Value) -> None: ..."
    yield from overloads("def __getitem__", readable, "def __setitem__", writable)
    yield "    def __iter__(self) -> Iterator[_ReadableSetting]: ..."
    yield "    def __len__(self) -> int: ..."
    yield "    def __contains__(self, name: object) -> bool: ..."
    yield "    def keys(self) -> Tuple[_ReadableSetting, ...]: ..."
    yield '    def settings(self, pattern: str = "*") -> SettingsView: ...'
    yield "    def describe(self, name: str) -> Setting: ..."
    yield "\nclass AsyncSettingAccess(abc.ABC):"
    yield "    @abc.abstractmethod\n    async def read(self, name: str) -> Value: ..."
    yield "    @abc.abstractmethod\n    async def write(self, name: str, value: Value) -> None: ..."
    yield from overloads("async def get", readable, "async def set", writable)


def main():
    output = pathlib.Path(sys.argv[1])
    output.write_text("\n".join(package()) + "\n")
    output.with_name("_access.pyi").write_text("\n".join(stub()) + "\n")


if __name__ == "__main__":
    main()
