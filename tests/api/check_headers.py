#!/usr/bin/env python3
"""Holds the public headers against the code.

    check_headers.py documented    every export is declared, with its parameters, errors and blocking time explained, as is
                                   what a number or a field means, and every error of src/ is in sdk_errors.h
    check_headers.py exports       prints one EXPORT(NAME, PARAMETERS, THEIR NAMES, VALUES) a function, for the C sources
    check_headers.py seen FILE     every error that the recorder noted is among those of its function"""
import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"))
import interface
from interface import ROOT

NO_CODES = {"none", "any", "unchanged"}
# Success by other names, and one that SelectPrinter replaces.
NEVER_LEFT = {"ERROR_SUCCESS", "RPC_S_OK", "3012"}


def expanded(errors, codes, groups):
    for error in errors:
        if error in groups:
            yield from expanded(groups[error], codes, groups)
        else:
            yield str(codes.get(error, error))


def faults_of_source(codes):
    for path in sorted((ROOT / "src").rglob("*.[ch]*")):
        text = path.read_text()
        names = set(re.findall(r"\b(?:SDK_ERROR|ERROR|RPC_S)_[A-Z0-9_]+\b", text))
        numbers = dict(re.findall(r"constexpr (?:DWORD|uint32_t) (k\w+) = (\d+);", text))
        used = re.findall(r"SetLastError\((k\w+)\)|\{\d+, (k\w+)\}", text) if "sdk_errors.h" in text or "windows.h" in text else []
        names |= {numbers[name] for pair in used for name in pair if name in numbers}
        known = codes.keys() | {str(code) for code in codes.values()} | NEVER_LEFT
        for name in sorted(names - known):
            yield f"{path.relative_to(ROOT)}: {name} is not in sdk_errors.h"


def faults_of_texts(functions, codes, groups):
    exported = re.findall(r"^[A-Za-z]\w*", (ROOT / "src" / "entry" / "exports.list").read_text(), re.M)
    for name in sorted(set(exported) ^ set(functions)):
        yield f"{name}: not both exported and declared"
    for function in functions.values():
        text = "\n".join(line for lines in function.texts for line in lines)
        for _, name in function.parameters:
            if f"`{name}`" not in text:
                yield f"{function.name}: nothing is said of {name}"
        if not re.search(r"^Blocks ", text, re.M):
            yield f"{function.name}: no word of how long it blocks"
        if function.errors() is None:
            yield f"{function.name}: no errors are listed"
        else:
            unknown = set(expanded(function.errors(), codes, groups)) - {str(code) for code in codes.values()} - NO_CODES
            for error in sorted(unknown):
                yield f"{function.name}: {error} is not in sdk_errors.h"


def faults_of_types():
    """What the maker of the reference does not ask for."""
    for enumeration in interface.enumerations().values():
        for name in [enumeration.name] * (not enumeration.about) + [*enumeration.values.keys() - enumeration.meanings.keys()]:
            yield f"{name}: nothing is said of it"
    for record in interface.records().values():
        for field in record.fields:
            if not field.about:
                yield f"{record.name}::{field.name}: nothing is said of it"


def faults_of_run(path, functions, codes, groups):
    lines = path.read_text().splitlines() if path.exists() else []
    if not lines:
        yield f"{path}: no error was seen at all: is error_recorder preloaded?"
    for line in sorted(set(lines)):
        name, error, program = line.split(" ", 2)
        listed = set(expanded(functions[name].errors(), codes, groups))
        if error not in listed and "any" not in listed:
            yield f"{name} left {error} in {program}; its documentation does not list that"
    print(f"{len(lines)} errors seen")


def value_for(parameter):
    """What the C program gives that calls every function. Without a name's buffer no port is made."""
    if parameter.name == "portName":
        return "NULL"
    if parameter.type == "const kestrel_char*":
        return "kNoText"
    if parameter.type.endswith("*"):
        return "(void*)&out"
    return {"timeoutMs": "kMs", "mode": "0"}.get(parameter.name, "1")


def main():
    functions = interface.functions()
    table = {error.name: error.code for error in interface.errors()}, interface.error_groups()
    faults = []
    if sys.argv[1] == "exports":
        for function in functions.values():
            if function.result == "kestrel_bool":
                declared = ", ".join(f"{kind} {name}" for kind, name in function.parameters)
                names = ", ".join(name for _, name in function.parameters)
                values = ", ".join(map(value_for, function.parameters))
                print(f"EXPORT({function.name}, ({declared or 'void'}), ({names}), ({values}))")
    elif sys.argv[1] == "documented":
        faults = [*faults_of_source(table[0]), *faults_of_texts(functions, *table), *faults_of_types()]
        print(f"{len(functions)} functions, {len(faults)} faults")
    else:
        faults = list(faults_of_run(pathlib.Path(sys.argv[2]), functions, *table))
    print("\n".join(faults), file=sys.stderr, end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
