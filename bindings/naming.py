"""What the generated interfaces call things: the same in every language that names enumerators itself."""
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts"))
import catalogue
import interface


def enumeration_name(c_name):
    """FaxMode for KestrelFaxMode."""
    return c_name.removeprefix("Kestrel")


def members(enumeration):
    """Its members in the order of their numbers, which begin at 0 without a gap: name, number and the device's word.
    KESTREL_FAX_MODE_FINE_BLACK is FineBlack; one that would begin with a digit begins with a low line."""
    prefix = re.sub(r"(?<!^)(?=[A-Z])", "_", enumeration.name).upper() + "_"
    words = catalogue.words_of_constants()
    found = []
    for constant, number in sorted(enumeration.values.items(), key=lambda item: item[1]):
        assert constant.startswith(prefix) and number == len(found), f"{constant} = {number}"
        name = "".join(part.capitalize() for part in constant.removeprefix(prefix).split("_"))
        found.append(("_" + name if name[0].isdigit() else name, number, words[constant]))
    return found


def getter(row):
    """The function that reads it, as the headers declare it; None when it cannot be read."""
    return interface.functions().get("Get" + row["base"]) if can_read(row) else None


def access(row):
    """Of a row whose kind has no such column as well."""
    return row.get("access", {"CONSTANT": "ReadOnly", "INDEXED": "ReadWrite"}.get(row["kind"]))


def can_read(row):
    return access(row) in ("ReadOnly", "ReadWrite")


def can_write(row):
    return access(row) != "ReadOnly"


def setter_name(row):
    return row["base"] if access(row) == "Command" else "Set" + row["base"]


def limits(row):
    """The lowest and highest number that the printer takes; None for what is no number."""
    return (row["lowest"], row["highest"]) if "lowest" in row else None


def sentence(about):
    """A phrase of the catalogue as a sentence."""
    return about[0].upper() + about[1:] + "."
