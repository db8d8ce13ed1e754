"""The catalogue for scripts: the rows of settings.def as dictionaries, with the texts of their keys and words."""
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
CATALOGUE = ROOT / "src/catalogue"


def rows():
    """Every row in the table's order: its columns by the names that settings.def gives them, quotes removed; besides
    `kind`, `key` (empty for a constant) and, of a choice, `table` (its words, in order)."""
    definitions = (CATALOGUE / "settings.def").read_text()
    columns = {kind: names.split(", ")
               for kind, names in re.findall(r"^#define ([A-Z_]+)\(([^)]*)\)", definitions, re.M)}
    vocabulary = (ROOT / "src/opl/vocabulary.def").read_text()
    keys = dict(re.findall(r'^OPL_KEY\((\w+), \w+, \w+,\s+"([^"]*)"\)', vocabulary, re.M))
    words = word_tables()
    for kind, values in re.findall(r"^([A-Z_]+)\((.*)\)$", definitions, re.M):
        fields = [field.strip('"') for field in re.findall(r'"[^"]*"|[^\s,]+', values)]
        row = dict(zip(columns[kind], fields, strict=True))
        row["kind"] = kind
        row["key"] = keys[row["base"] + row.get("index", "")] if kind != "CONSTANT" else ""
        if kind == "CHOICE":
            row["table"] = words[row["words"]]
        yield row


def word_tables():
    """The words of every enumeration, by the name that stands in its rows."""
    text = (CATALOGUE / "value_tables.h").read_text()
    return {name: re.findall(r'\{"([^"]*)",', entries)
            for name, entries in re.findall(r"EnumEntry k(\w+)\[\] = \{(.*?)\};", text, re.S)}


def words_of_constants():
    """The device's word for each named number of sdk_types.h; the first one where there are several."""
    pairs = re.findall(r'\{"([^"]*)", (KESTREL_\w+)\}', (CATALOGUE / "value_tables.h").read_text())
    return {constant: word for word, constant in reversed(pairs)}
