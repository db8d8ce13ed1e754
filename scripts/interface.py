"""The public headers for scripts: functions, records, enumerations and error codes, as the headers give them.

A function's text is its own comment (///), that of its section (// --- Name ---) and that of its file's head; the
nearest one that has an "Errors" or a "Blocks" holds. Errors are a list behind a colon, or rows that begin with one:
numbers, names, and the groups of sdk_errors.h. "Errors of Get..." are those of functions so named."""
import pathlib
import re
from typing import NamedTuple

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADERS = ROOT / "include" / "kestrel"
PARTS = ("sdk.h", "sdk_settings.h", "sdk_device.h", "sdk_host.h")  # those with functions, in a reader's order
PROTOTYPE = re.compile(r"KESTREL_API (\w+) (\w+)\((.*)\);")
ERRORS = re.compile(r"Errors(?: of (\w+)\.\.\.)?(?:: (.*))?$")


class Parameter(NamedTuple):
    type: str  # as C writes it: "const kestrel_char*"
    name: str


class Function:
    def __init__(self, header, match, texts):
        self.header = header
        self.result, self.name, parameters = match.groups()
        self.parameters = [] if parameters == "void" else [
            Parameter(*re.fullmatch(r"(.*?) ?(\w+)", parameter).groups()) for parameter in parameters.split(", ")]
        self.texts = texts  # lines without comment marks: its own, its section's (the first is its title), its file's

    @property
    def own_text(self):
        return self.texts[0]

    @property
    def section(self):
        return re.fullmatch(r"// --- (.+) ---", self.texts[1][0])[1]

    def errors(self):
        """The codes and names that are listed; None when no text lists any."""
        for text in self.texts:
            for i, line in enumerate(text):
                match = ERRORS.match(line)
                if match and (match[1] is None or self.name.startswith(match[1])):
                    return match[2].split(", ") if match[2] else _rows_below(text, i)
        return None


def _rows_below(text, start):
    codes = []
    for line in text[start + 1:]:
        if not line.startswith("  "):
            break
        if line[2] != " ":
            codes += re.split(r"  +", line.strip())[0].split(", ")
    return codes


def functions():
    """Every exported function by name, in the order of the headers."""
    return {function.name: function for header in PARTS for function in _functions_of(header)}


def _functions_of(header):
    head, section, own, declaration, previous = [], [], [], "", ""
    for line in (HEADERS / header).read_text().splitlines():
        if declaration or line.startswith("KESTREL_API"):
            declaration = (declaration + " " + line.strip()).strip()
            if declaration.endswith(";"):
                yield Function(header, PROTOTYPE.match(declaration), (own, section, head))
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


class Enumeration(NamedTuple):
    name: str
    about: str
    values: dict  # enumerator: number
    meanings: dict  # enumerator: text


def enumerations():
    """Those of sdk_types.h by name. The catalogue's table of words X belongs to KestrelX."""
    found = re.findall(r"((?:^/// [^\n]*\n)*)^typedef enum (\w+) \{(.*?)\}", _types(), re.M | re.S)
    return {name: Enumeration(name, _plain(about),
                              {key: int(value) for key, value in re.findall(r"(\w+) = (\d+)", body)},
                              dict(re.findall(r"(\w+) = \d+,? +///< (.*)", body)))
            for about, name, body in found}


class Field(NamedTuple):
    type: str
    name: str
    count: int  # of an array; 0 for a single value
    about: str


class Record(NamedTuple):
    name: str
    about: str
    fields: list


def records():
    """The structures of sdk_types.h by name."""
    found = re.findall(r"((?:^/// [^\n]*\n)*)^typedef struct (\w+) \{(.*?)^\}", _types(), re.M | re.S)
    return {name: Record(name, _plain(about), [
        Field(kind, field, int(count or 0), text or "")
        for kind, field, count, text in re.findall(r"^ +(\w+) (\w+)(?:\[(\d+)\])?;(?: +///< (.*))?$", body, re.M)])
            for about, name, body in found}


def limits():
    """The numbers that sdk_types.h defines: how many records a list has."""
    return {name: int(value) for name, value in re.findall(r"^#define (KESTREL_\w+) (\d+)$", _types(), re.M)}


def _types():
    return (HEADERS / "sdk_types.h").read_text()


def _plain(comment):
    return " ".join(line[4:] for line in comment.splitlines())


class Error(NamedTuple):
    name: str
    code: int
    text: str
    advice: str


def errors():
    """The rows of sdk_errors.h."""
    return [Error(name, _code(code), words, advice) for name, code, words, advice in
            re.findall(r'ROW\("(\w+)", (\w+),\s*"([^"]*)",\s*"([^"]*)"\)', _flat_errors())]


class Response(NamedTuple):
    first: int
    last: int
    error: int
    name: str
    text: str
    advice: str


def responses():
    """The rows of response numbers of sdk_errors.h. The first that has a number counts."""
    return [Response(int(first, 0), int(last, 0), _code(error), name, words, advice)
            for first, last, error, name, words, advice in
            re.findall(r'ROW\((\w+)u, (\w+)u, (\w+), "(\w+)",\s*"([^"]*)",\s*"([^"]*)"\)', _flat_errors())]


def _flat_errors():
    """sdk_errors.h without the ends of its tables' lines; a text that goes on in the next one is whole."""
    text = (HEADERS / "sdk_errors.h").read_text().replace("\\\n", "\n")
    return re.sub(r'"\s*\n\s*"', "", text)


def _code(written):
    """A code by its number, or by the name that sdk_errors.h defines."""
    defined = dict(re.findall(r"#define (SDK_ERROR_\w+) (\w+)u", _flat_errors()))
    return int(defined.get(written, written.rstrip("u")), 0)


def error_groups():
    """The groups of codes by which functions name what they can fail with."""
    text = (HEADERS / "sdk_errors.h").read_text()
    head = re.sub(r"\n//      +", " ", text[:text.index("#pragma once")])
    return {name: members.split(", ") for name, members in re.findall(r"^//   (\w+) +([^:]+):", head, re.M)}
