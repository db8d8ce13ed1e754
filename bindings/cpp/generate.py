#!/usr/bin/env python3
"""generate.py OUTPUT: writes sdk_settings.hpp, the enumerations and settings of sdk.hpp, from the catalogue."""
import pathlib
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import naming
from naming import catalogue, interface

HEAD = """\
// The settings of the printer with their types, and the enumerations of the interface. Made from the catalogue of the
// settings by bindings/cpp/generate.py: a change belongs there. Included by sdk.hpp.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <kestrel/sdk.h>
#include <kestrel/sdk_values.hpp>

namespace kestrel {
"""
NUMBERS = {"U8": "std::uint8_t", "S8": "std::int8_t", "U16": "std::uint16_t", "U32": "std::uint32_t",
           "S32": "std::int32_t", "Percent": "std::uint8_t"}


def enumeration(found):
    name = naming.enumeration_name(found.name)
    members = naming.members(found)
    if found.about:
        yield f"/// {found.about}"
    yield f"enum class {name} : std::uint32_t {{"
    meanings = {number: found.meanings[constant] for constant, number in found.values.items()}
    yield from (f"    {member} = {number},  ///< {meanings[number]}" for member, number, _ in members)
    yield "};"
    yield "template <>"
    yield f"struct detail::Words<{name}> {{"
    yield "    static constexpr auto list = std::to_array<std::string_view>({"
    yield from (f'        "{word}",' for _, _, word in members)
    yield "    });"
    yield "};"
    yield ""


def number_kind(read, write, row):
    """The C getter's own type stands behind the two when it is another one."""
    buffer = "std::" + naming.getter(row).parameters[0].type.removesuffix("*")
    types = [NUMBERS[read], NUMBERS[write], buffer]
    while len(types) > 1 and types[-1] == types[0]:
        types.pop()
    return f"Number<{', '.join(types)}>"


def kind_of(row):
    return {"FLAG": lambda: "Flag", "ADDRESS": lambda: "Address",
            "CHOICE": lambda: f"Choice<{row['words']}>",
            "STRING": lambda: f"Text<{row['bytes']}>", "INDEXED": lambda: f"Text<{row['bytes']}>",
            "NUMBER": lambda: number_kind(row["type"], row["type"], row),
            "CONSTANT": lambda: number_kind(row["type"], row["type"], row),
            "NUMBER_AS": lambda: number_kind(row["read"], row["write"], row)}[row["kind"]]()


def calls(row):
    """The C functions; of one string of several, with its index."""
    if row["kind"] == "INDEXED":
        for name, qualifier in (("getter", ""), ("setter", "const ")):
            yield f"    static kestrel_bool {name}({qualifier}kestrel_char* text, std::uint32_t timeout) {{"
            yield f"        return ::{name[0].upper()}et{row['base']}({row['index']}, text, timeout);"
            yield "    }"
        return
    if naming.can_read(row):
        yield f"    static constexpr auto getter = &::Get{row['base']};"
    if naming.can_write(row):
        yield f"    static constexpr auto setter = &::{naming.setter_name(row)};"


def setting(row):
    limits = naming.limits(row)
    yield f"/// {naming.sentence(row['about'])}"
    yield f"struct {identifier(row)} : kind::{kind_of(row)} {{"
    yield f"    static constexpr std::string_view name = \"{row['name']}\";"
    yield f"    static constexpr std::string_view about = \"{row['about']}\";"
    yield f"    static constexpr Access access = Access::{naming.access(row)};"
    yield f"    static constexpr bool is_secret = {str(row.get('privacy') == 'Secret').lower()};"
    if limits:
        yield f"    static constexpr std::int64_t lowest = {limits[0]};  // what the printer takes"
        yield f"    static constexpr std::int64_t highest = {limits[1]};"
    yield from calls(row)
    yield "};"
    yield ""


def identifier(row):
    return row["name"].replace(".", "_").replace("-", "_")


def header():
    rows = list(catalogue.rows())
    yield HEAD
    for found in interface.enumerations().values():
        yield from enumeration(found)
    yield "/// The settings. Each has its `name`, what it is `about`, its `access`, whether it `is_secret`, of a number"
    yield "/// the `lowest` and `highest` that the printer takes, and the C functions `getter` and `setter`."
    yield "namespace setting {"
    yield ""
    for row in rows:
        yield from setting(row)
    yield "}  // namespace setting"
    yield ""
    yield "/// All of them, in the catalogue's order."
    yield "using AllSettings = SettingList<"
    yield ",\n".join(f"    setting::{identifier(row)}" for row in rows) + ">;"
    yield ""
    yield "}  // namespace kestrel"


if __name__ == "__main__":
    pathlib.Path(sys.argv[1]).write_text("\n".join(header()) + "\n")
