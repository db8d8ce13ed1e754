#!/usr/bin/env python3
"""Turns a public header into what the maker of the reference reads: the file's head and its sections become comments of
theirs, functions that share a comment get one each, and a parameter is told as such.

    filter.py HEADER"""
import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"))
import interface

# What the rules at the head of a header say of parameters that are not told of anew at each function.
COMMON = {
    "timeoutMs": "T, the time allowed for an exchange with the printer, in milliseconds.",
    "value": "the value, read or to be set.",
    "text": "the text, read or to be set, zero-terminated.",
    "address": "a.b.c.d: read as four bytes, set as one number whose lowest byte goes first.",
}


def converted(line):
    """A line of prose."""
    line = re.sub(r"^`(\w+)`: ", r"@param \1 ", line)
    line = re.sub(r"^  (\S.*?)  +(\S.*)", r"- **\1**: \2", line)  # a row of codes
    line = re.sub(r"^  (\S[^`]*)$", r"- **\1**", line) if re.fullmatch(r"  [\w, ]+", line) else line
    line = re.sub(r"^(Errors|Blocks)\b(?: of (\S+))?:? ?", r"\n@par \1 \2\n", line)
    return re.sub(r"\b(Get|Set)\.\.\.", r"`\1...`", line)


def comment(lines):
    """Prose as one block; a row's continuation is indented for the list that it belongs to."""
    text, in_rows = [], False
    for line in lines:
        if line.startswith("    ") and not in_rows:
            text += ["", line] if text and text[-1] and not text[-1].startswith("    ") else [line]  # as it stands
            continue
        in_rows = line.startswith("  ")
        text.append(converted(re.sub(r"^   +", "  ", line)))
    return "/**\n" + "\n".join(text) + "\n*/\n"


RESULTS = {
    "kestrel_bool": "1 for success and 0 for failure, unless it says otherwise.",
    "uint32_t": "what it says.",
}


def completed(own, declaration):
    """What is said of a declaration, with the parameters and the result that the head of its file explains."""
    match = interface.PROTOTYPE.match(re.sub(r"\s+", " ", declaration))
    if not match:
        return own
    told = {found[1] for line in own if (found := re.match(r"`(\w+)`: ", line))}
    names = re.findall(r"(\w+)(?:,|$)", match[3])
    result = [f"@return {RESULTS[match[1]]}"] if match[1] in RESULTS else []
    added = [f"`{name}`: {COMMON[name]}" for name in names if name in COMMON and name not in told] + result
    end = next((i for i, line in enumerate(own) if re.match(r"(Errors|Blocks)\b", line)), len(own))
    return own[:end] + added + own[end:]


ERRORS = {error.name: error.text for error in interface.errors()}


def with_comment(own, declaration):
    if own:
        return comment(completed(own, declaration)) + declaration + "\n"
    # The codes' own texts are in the table below them.
    return re.sub(r"^#define (\w+) 0x\w+$", lambda found: f"{found[0]} ///< {ERRORS.get(found[1], '')}", declaration,
                  flags=re.M) + "\n"


def blocks(lines):
    """(kind, lines): comments of each sort, declarations, blank lines."""
    block, kind = [], None
    for line in lines:
        now = ("own" if line.startswith("///") else "section" if re.match(r"// --- .* ---", line) or kind == "section" and line.startswith("//")
               else "plain" if line.startswith("//") else "blank" if not line.strip() else "code")
        if now != kind and block:
            yield kind, block
            block = []
        kind = now
        block.append(line)
    yield kind, block


def declarations(lines):
    """Splits lines of code at the functions that they declare."""
    text = []
    for line in lines:
        text.append(line)
        if line.endswith(";") and text[0].startswith("KESTREL_API"):
            yield "\n".join(text)
            text = []
    if text:
        yield "\n".join(text)


def without_what_explains_itself(lines):
    """Neither macros that are gone at the end of their own file, nor what C++ makes by itself, nor what all settings have:
    of that the comment of their namespace tells."""
    undefined = {line.split()[1] for line in lines if line.startswith("#undef ")}
    in_settings = False
    for line in lines:
        is_gone = line.startswith("#define ") and re.split(r"\W", line[8:])[0] in undefined
        in_settings = line == "namespace setting {" or in_settings and not line.startswith("}  //")
        if not is_gone and not line.endswith("= default;") and not (in_settings and line.startswith("    ")):
            yield line


def with_overloads(lines):
    """An overload without a comment has that of the one above it."""
    text, name, above = [], "", False
    for line in lines:
        declared = re.match(r" +(?:\[\[nodiscard\]\] )?[\w:<>&* ]+[ &*](operator\S+|\w+)\([^;]*\{", line)
        if line.strip().startswith("///"):
            text = [*text, line] if above else [line]
        elif declared and declared[1] == name and not above:
            yield from text
        if declared:
            name = declared[1]
        above = line.strip().startswith("///")
        yield line


def filtered(lines):
    own, in_section, is_first = [], False, True
    lines = list(with_overloads(without_what_explains_itself(lines)))
    for kind, block in blocks(lines):
        if kind == "plain" and is_first:
            yield comment(["@file", *(line[3:] for line in block)])
        elif kind == "section":
            yield "/** @} */\n" if in_section else ""
            title = block[0].removeprefix("// --- ").removesuffix(" ---")
            yield comment([f"@name {title}", *(line[3:] for line in block[1:])]) + "/** @{ */\n"
            in_section = True
        elif kind == "own":
            own = [line[4:] for line in block]
        elif kind == "code":
            for declaration in declarations(block):
                yield with_comment(own, declaration)
        elif kind == "blank":
            own = []
        is_first = False
    yield "/** @} */\n" if in_section else ""


if __name__ == "__main__":
    print("".join(filtered(pathlib.Path(sys.argv[1]).read_text().splitlines())))
