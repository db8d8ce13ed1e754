#!/usr/bin/env python3
"""Holds the public headers against the code.

    check_headers.py documented    every export is declared, with its parameters, errors and blocking time explained, and
                                   every error of src/ is in sdk_errors.h
    check_headers.py wrappers      prints one RECORDED(...) a function, for error_recorder.c
    check_headers.py seen FILE     every error that the recorder noted is among those of its function

A function's text is its own comment (///), that of its section (// --- Name ---) and that of its file's head; the
nearest one that has an "Errors" or a "Blocks" holds. Errors are a list behind a colon, or rows that begin with one:
numbers, names, and the groups of sdk_errors.h. "Errors of Get..." are those of functions so named."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HEADERS = ROOT / "include" / "kestrel"
PROTOTYPE = re.compile(r"KESTREL_API (\w+) (\w+)\((.*)\);")
ERRORS = re.compile(r"Errors(?: of (\w+)\.\.\.)?(?:: (.*))?$")
NO_CODES = {"none", "any", "unchanged"}
# Success by other names, and one that SelectPrinter replaces.
NEVER_LEFT = {"ERROR_SUCCESS", "RPC_S_OK", "3012"}


class Function:
    def __init__(self, match, texts):
        self.result, self.name, parameters = match.groups()
        self.parameters = [] if parameters == "void" else parameters.split(", ")
        self.parameter_names = [re.search(r"\w+$", parameter).group() for parameter in self.parameters]
        self.texts = texts

    def errors(self):
        """The codes and names that are listed; None when no text lists any."""
        for text in self.texts:
            for i, line in enumerate(text):
                match = ERRORS.match(line)
                if match and (match[1] is None or self.name.startswith(match[1])):
                    return match[2].split(", ") if match[2] else rows_below(text, i)
        return None


def rows_below(text, start):
    codes = []
    for line in text[start + 1:]:
        if not line.startswith("  "):
            break
        if line[2] != " ":
            codes += re.split(r"  +", line.strip())[0].split(", ")
    return codes


def functions_of(header):
    head, section, own, declaration = [], [], [], ""
    for line in header.read_text().splitlines():
        if declaration or line.startswith("KESTREL_API"):
            declaration = (declaration + " " + line.strip()).strip()
            if declaration.endswith(";"):
                yield Function(PROTOTYPE.match(declaration), (own, section, head))
                declaration = ""
        elif line.startswith("///"):
            # A comment behind a declaration begins another function's.
            own = own + [line[4:]] if previous.startswith("///") else [line[4:]]
        elif line.startswith("// ---"):
            section, own = [line], []
        elif line.startswith("//"):
            (section or head).append(line[3:])
        elif not line:
            own = []
        previous = line


def error_table():
    """Codes by name, and the groups of codes."""
    text = (HEADERS / "sdk_errors.h").read_text()
    codes = {name: int(code, 0) for name, code in re.findall(r"#define (SDK_ERROR_\w+) (\w+)u", text)}
    codes |= {name: int(code) for name, code in re.findall(r'ROW\("(\w+)", (\d+)u,', text)}
    head = re.sub(r"\n//      +", " ", text[:text.index("#pragma once")])
    groups = {name: members.split(", ") for name, members in re.findall(r"^//   (\w+) +([^:]+):", head, re.M)}
    return codes, groups


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
        for name in function.parameter_names:
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


def main():
    functions = {function.name: function for header in sorted(HEADERS.glob("*.h")) for function in functions_of(header)}
    table = error_table()
    faults = []
    if sys.argv[1] == "wrappers":
        for function in functions.values():
            if function.result == "kestrel_bool":
                print(f"RECORDED({function.name}, ({', '.join(function.parameters) or 'void'}), "
                      f"({', '.join(function.parameter_names)}))")
    elif sys.argv[1] == "documented":
        faults = [*faults_of_source(table[0]), *faults_of_texts(functions, *table)]
        print(f"{len(functions)} functions, {len(faults)} faults")
    else:
        faults = list(faults_of_run(pathlib.Path(sys.argv[2]), functions, *table))
    print("\n".join(faults), file=sys.stderr, end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
