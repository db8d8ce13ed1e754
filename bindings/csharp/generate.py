#!/usr/bin/env python3
"""generate.py OUTPUT: writes one of the generated sources of the C# interface, by its name.

    Native.cs    every function of the library and every record, from the public headers
    Settings.cs  the enumerations, their words and a property for each setting, from the catalogue
    Errors.cs    error codes and response numbers in words, from the public headers"""
import pathlib
import sys
from xml.sax.saxutils import escape

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import naming
from naming import catalogue, interface

HEAD = "// Made from {} by bindings/csharp/generate.py: a change belongs there.\n{}namespace Kestrel\n{{"
NUMBERS = {"uint8_t": "byte", "int8_t": "sbyte", "uint16_t": "ushort", "uint32_t": "uint", "int32_t": "int"}
SETTING_NUMBERS = {"U8": "byte", "S8": "sbyte", "U16": "ushort", "U32": "uint", "S32": "int", "Percent": "byte"}
FLAG = "[MarshalAs(UnmanagedType.U1)] "


def summary(text, indent):
    return f"{indent}/// <summary>{escape(text)}</summary>"


# --- Native.cs ---

def parameter(kind, name):
    """As C# declares it. Arrays of numbers and characters are not copied; a buffer's size is in the headers."""
    target = kind.removeprefix("const ").removesuffix("*")
    is_pointer, is_input = kind.endswith("*"), kind.startswith("const ")
    if not is_pointer:
        return f"{FLAG}bool {name}" if target == "kestrel_bool" else f"{NUMBERS[target]} {name}"
    if target == "kestrel_char":
        return f"[MarshalAs(UnmanagedType.LPWStr)] string {name}" if is_input else f"[In, Out] char[] {name}"
    if target == "void" or (target, name) == ("uint8_t", "address"):
        return f"byte[] {name}" if is_input else f"[In, Out] byte[] {name}"
    if target == "kestrel_bool":
        return f"{FLAG}out bool {name}"
    if target in NUMBERS:
        return f"out {NUMBERS[target]} {name}"
    if name.endswith("s"):  # a list
        return f"{target}[] {name}" if is_input else f"[In, Out] {target}[] {name}"
    return f"[In] ref {target} {name}" if is_input else f"out {target} {name}"


def function(found):
    parameters = ", ".join(parameter(*each) for each in found.parameters)
    yield "        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode,"
    yield "                   ExactSpelling = true, SetLastError = true)]"
    if found.result == "kestrel_bool":
        yield "        [return: MarshalAs(UnmanagedType.U1)]"
    result = {"kestrel_bool": "bool", "void": "void"}.get(found.result) or NUMBERS[found.result]
    yield f"        internal static extern {result} {found.name}({parameters});"
    yield ""


def field(found):
    if found.type == "kestrel_char":
        yield f"        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = {found.count})]"
        yield f"        internal string {found.name};"
    elif found.count:
        yield f"        [MarshalAs(UnmanagedType.ByValArray, SizeConst = {found.count})]"
        yield f"        internal {NUMBERS[found.type]}[] {found.name};"
    else:
        yield f"        internal {NUMBERS[found.type]} {found.name};"


def record(found):
    yield "    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]"
    yield f"    internal struct {found.name}"
    yield "    {"
    for each in found.fields:
        yield from field(each)
    yield "    }"
    yield ""


def native():
    yield HEAD.format("the public headers", "#pragma warning disable 0649  // fields that the library alone writes\n"
                      "using System.Runtime.InteropServices;\n\n")
    for found in interface.records().values():
        yield from record(found)
    yield summary("The functions of the C interface, which the public headers document.", "    ")
    yield "    internal static class Native"
    yield "    {"
    yield '        internal const string Library = "ZRIJ9900SDK";'
    yield from (f"        internal const int {''.join(part.capitalize() for part in name.split('_')[1:])} = {value};"
                for name, value in interface.limits().items())
    yield ""
    for found in interface.functions().values():
        yield from function(found)
    yield "    }"
    yield "}"


# --- Settings.cs ---

def enumeration(found):
    name = naming.enumeration_name(found.name)
    yield summary(found.about or f"The values of a setting: {name}.", "    ")
    yield f"    public enum {name} : uint"
    yield "    {"
    for member, number, word in naming.members(found):
        yield summary(word, "        ")
        yield f"        {member} = {number},"
    yield "    }"
    yield ""


def value_types(row):
    """How it is read and written in C#, and the two as they pass the C interface."""
    kind = row["kind"]
    if kind == "CHOICE":
        return row["words"], row["words"], "uint", "uint"
    if kind in ("STRING", "INDEXED"):
        return "string", "string", "string", "string"
    if kind == "ADDRESS":
        return "IPAddress", "IPAddress", "IPAddress", "IPAddress"
    if kind == "FLAG":
        return "bool", "bool", "bool", "bool"
    read = SETTING_NUMBERS[row["read"] if kind == "NUMBER_AS" else row["type"]]
    write = SETTING_NUMBERS[row["write"] if kind == "NUMBER_AS" else row["type"]]
    return read, write, NUMBERS[naming.getter(row).parameters[0].type.removesuffix("*")], write


def reading(row):
    read, _, passed, _ = value_types(row)
    if read == "string":
        return f"ReadText(Native.Get{row['base']}, {int(row['bytes']) // 2})"
    if read == "IPAddress":
        return f"ReadAddress(Native.Get{row['base']})"
    return ("" if read == passed else f"({read})") + f"Read<{passed}>(Native.Get{row['base']})"


def writing(row):
    _, write, _, passed = value_types(row)
    if write in ("string", "IPAddress"):
        return f"Write{'Text' if write == 'string' else 'Address'}(Native.{naming.setter_name(row)}, value)"
    return f"Write<{passed}>(Native.{naming.setter_name(row)}, {'' if write == passed else f'({passed})'}value)"


def description(row):
    limits = naming.limits(row)
    range_text = f" The printer takes {limits[0]} to {limits[1]}." if limits and naming.can_write(row) else ""
    return f"{naming.sentence(row['about'])}{range_text} In lists: {row['name']}."


def member(row):
    """A property; what is only written, or written as another type than it is read, has a method for that."""
    read, write, _, _ = value_types(row)
    writes_as_property = naming.access(row) == "ReadWrite" and read == write
    if naming.can_read(row):
        yield summary(description(row), "        ")
        yield f"        public {read} {row['base']}"
        yield "        {"
        yield f"            get {{ return {reading(row)}; }}"
        if writes_as_property:
            yield f"            set {{ {writing(row)}; }}"
        yield "        }"
        yield ""
    if naming.can_write(row) and not writes_as_property:
        yield summary(description(row), "        ")
        yield f"        public void {naming.setter_name(row)}({write} value)"
        yield "        {"
        yield f"            {writing(row)};"
        yield "        }"
        yield ""


def indexed_members(row):
    """One pair of methods for the strings that share one pair of functions."""
    base, capacity = row["base"], int(row["bytes"]) // 2
    yield summary(f"One of the strings of {row['name'].rstrip('0123456789')}, from 0.", "        ")
    yield f"        public string Get{base}(int index)"
    yield "        {"
    yield f"            return ReadText((text, timeoutMs) => Native.Get{base}((uint)index, text, timeoutMs), {capacity});"
    yield "        }"
    yield ""
    yield summary(f"Sets one of the strings of {row['name'].rstrip('0123456789')}, from 0.", "        ")
    yield f"        public void Set{base}(int index, string value)"
    yield "        {"
    yield f"            WriteText((text, timeoutMs) => Native.Set{base}((uint)index, text, timeoutMs), value);"
    yield "        }"
    yield ""


def listed(row):
    reader = f"printer => printer.Get{row['base']}({row['index']})" if row["kind"] == "INDEXED" else \
        f"printer => printer.{row['base']}" if naming.can_read(row) else "null"
    is_secret = str(row.get("privacy") == "Secret").lower()
    return (f'            new Setting("{row["name"]}", "{row["about"]}", Access.{naming.access(row)}, {is_secret},\n'
            f"                        {reader}),")


def settings():
    rows, enumerations = list(catalogue.rows()), list(interface.enumerations().values())
    yield HEAD.format("the catalogue of the settings",
                      "using System;\nusing System.Collections.Generic;\nusing System.Net;\n\n")
    for found in enumerations:
        yield from enumeration(found)
    yield "    public static partial class Words"
    yield "    {"
    yield "        private static readonly Dictionary<Type, string[]> Lists = new Dictionary<Type, string[]>"
    yield "        {"
    for found in enumerations:
        words = ", ".join(f'"{word}"' for _, _, word in naming.members(found))
        yield f"            {{ typeof({naming.enumeration_name(found.name)}), new[] {{ {words} }} }},"
    yield "        };"
    yield "    }"
    yield ""
    yield "    public sealed partial class Printer"
    yield "    {"
    indexed = {row["base"]: row for row in rows if row["kind"] == "INDEXED"}
    for row in rows:
        if row["kind"] != "INDEXED":
            yield from member(row)
    for row in indexed.values():
        yield from indexed_members(row)
    yield summary("Every setting, in the catalogue's order.", "        ")
    yield "        public static readonly IReadOnlyList<Setting> Settings = new[]"
    yield "        {"
    yield from map(listed, rows)
    yield "        };"
    yield "    }"
    yield "}"


# --- Errors.cs ---

def error_name(name):
    """ChannelNotOpen for SDK_ERROR_CHANNEL_NOT_OPEN."""
    return "".join(part.capitalize() for part in name.removeprefix("SDK_").removeprefix("ERROR_").split("_"))


def errors():
    found = [error for error in interface.errors() if error.code]
    assert len({error_name(error.name) for error in found}) == len(found), "two errors of one name"
    yield HEAD.format("the public headers", "")
    yield summary("Codes of a KestrelException; another one is the system's own and was passed on.", "    ")
    yield "    public static class ErrorCode"
    yield "    {"
    for error in found:
        yield summary(f"{error.name}: {error.text}.", "        ")
        yield f"        public const uint {error_name(error.name)} = {error.code}u;"
    yield "    }"
    yield ""
    yield "    internal static partial class Told"
    yield "    {"
    yield "        private static readonly ErrorText[] Errors ="
    yield "        {"
    yield from (f'            new ErrorText({error.code}u, "{error.name}", "{error.text}", "{error.advice}"),'
                for error in found)
    yield "        };"
    yield ""
    yield "        private static readonly ResponseText[] Responses ="
    yield "        {"
    yield from (f'            new ResponseText({response.first}u, {response.last}u, "{response.text}"),'
                for response in interface.responses())
    yield "        };"
    yield "    }"
    yield "}"


if __name__ == "__main__":
    output = pathlib.Path(sys.argv[1])
    lines = {"Native": native, "Settings": settings, "Errors": errors}[output.stem]()
    output.write_text("\n".join(lines) + "\n")
