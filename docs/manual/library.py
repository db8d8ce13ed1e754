#!/usr/bin/env python3
"""Makes the manual pages of the library, from the public headers and the catalogue, and that of the settings.

    library.py VERSION FOLDER"""
import itertools
import pathlib
import re
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"))
import catalogue
import interface
from prose import prose
from scdoc import bold, definition, escaped, link, literal, page, plain, slanted, table_of, write

OVERVIEW = "kestrel-sdk"
EXAMPLE = (pathlib.Path(__file__).parent / "example.c").read_text()
ABOUT = {  # the subject of a header's pages
    "sdk.h": "the Kestrel SDK",
    "sdk_settings.h": "settings of the printer",
    "sdk_device.h": "what else the printer knows",
    "sdk_host.h": "what the package does on this computer",
}


def page_of(section):
    return f"{OVERVIEW}-" + re.sub(r"\W+", "-", section.lower().removeprefix("the "))


def sections():
    """The functions by the header's sections."""
    for _, members in itertools.groupby(interface.functions().values(), lambda f: (f.header, f.section)):
        yield list(members)


def prototype(function):
    parameters = ", ".join(f"{kind} {name}" for kind, name in function.parameters)
    return f"{function.result} {function.name}({parameters or 'void'});"


def number_range(row):
    return f"{row['lowest']} to {row['highest']}"


FORMS = {
    "FLAG": lambda row: "yes or no",
    "NUMBER": number_range,
    "NUMBER_AS": number_range,
    "CHOICE": lambda row: " ".join(row["table"]),
    "STRING": lambda row: f"at most {int(row['bytes']) // 2 - 1} characters",
    "INDEXED": lambda row: f"at most {int(row['bytes']) // 2 - 1} characters",
    "ADDRESS": lambda row: "a.b.c.d",
    "CONSTANT": lambda row: "a number",
}


def access(row):
    return {"ReadOnly": "read only", "WriteOnly": "set only", "Command": "set only, and done at once"}.get(row.get("access"), "")


def values(row):
    """What people may write, in words."""
    return "; ".join(part for part in (FORMS[row["kind"]](row), access(row)) if part)


def settings_by_function():
    found = {}
    for row in catalogue.rows():
        for function in (row["base"], f"Get{row['base']}", f"Set{row['base']}"):
            found.setdefault(function, []).append(row)
    return found


def functions_text(members, settings):
    text = ""
    # A getter and its setter share a comment.
    for own, group in itertools.groupby(members, lambda function: function.own_text):
        names = [function.name for function in group]
        text += f"## {', '.join(names)}\n\n{prose(own)}\n"
        for row in settings.get(names[0], ()):
            first = f" First value: {row['initial']}." if row.get("initial") else ""
            text += plain(f"The setting `{row['name']}`: {values(row)}.{first}") + "\n\n"
    return text


def section_page(members, version, settings):
    first = members[0]
    names = ", ".join(function.name for function in members)
    title, *intro = first.texts[1]
    head = [] if first.header == "sdk.h" else first.texts[2]
    return page(page_of(first.section), 3, version, f"{names} - {escaped(first.section.lower())}: {ABOUT[first.header]}", [
        ("SYNOPSIS", literal(["#include <kestrel/sdk.h>", "", *map(prototype, members)])),
        ("DESCRIPTION", prose(intro) + "\n" + functions_text(members, settings)),
        ("COMMON RULES", prose(head)),
        ("SEE ALSO", f"{bold(OVERVIEW)}(3), {bold(OVERVIEW + '-errors')}(3), {bold(OVERVIEW + '-types')}(3), "
                     f"{bold('kestrel-settings')}(7)"),
    ])


def caveats():
    """The head of sdk.h: paragraphs that begin with their title."""
    lines = next(iter(interface.functions().values())).texts[2]
    for paragraph in "\n".join(lines).split("\n\n"):
        title = re.match(r"([A-Z][a-z ]+)\. ", paragraph)
        if title:
            yield definition(bold(title[1]), prose(paragraph[title.end():].splitlines()))


def overview_page(groups, version):
    contents = "\n".join(definition(f"{bold(page_of(members[0].section))}(3)",
                                    escaped(", ".join(function.name for function in members))) for members in groups)
    return page(OVERVIEW, 3, version, f"{OVERVIEW} - device-management library of an inkjet all-in-one", [
        ("SYNOPSIS", literal(["#include <kestrel/sdk.h>", "",
                              "cc example.c $(pkg-config --cflags --libs zrij9900sdk)"])),
        ("DESCRIPTION", "The library selects one installed printer by name, and reads and changes what it knows. Its "
                        "interface is plain C functions, each with a manual page: *man GetFaxRedials*."),
        ("FUNCTIONS", contents),
        ("RULES FOR ALL", "\n".join(caveats())),
        ("EXAMPLE", literal(EXAMPLE.split("\n\n", 1)[1].splitlines())),
        ("SEE ALSO", f"{bold(OVERVIEW + '-errors')}(3), {bold(OVERVIEW + '-types')}(3), {bold('kestrel-settings')}(7), "
                     f"{bold('kestrel')}(1), {bold('kestrel-vprinter')}(1)"),
    ])


def errors_page(version):
    rows = "\n".join(definition(f"{bold(error.name)}, {error.code:#x}" if error.code > 0xFFFF else
                                f"{bold(error.name)}, {error.code}", plain(f"{error.text}: {error.advice}."))
                     for error in interface.errors())
    groups = "\n".join(definition(bold(name), escaped(", ".join(codes)) + ".") for name, codes in interface.error_groups().items())
    return page(f"{OVERVIEW}-errors", 3, version, f"{OVERVIEW}-errors - error codes of the Kestrel SDK", [
        ("SYNOPSIS", literal(["#include <kestrel/sdk_errors.h>"])),
        ("DESCRIPTION", "After a call that failed, the calling thread's last-error value holds one of these codes, or "
                        "another one of the system with its usual meaning. "
                        "*KESTREL\\_SDK\\_ERRORS* makes a table of them. Of *<kestrel/sdk\\_text.h>*, "
                        "*KestrelFindError* and *KestrelFindResponse* find the words of a code and of a response number; "
                        "of *<kestrel/sdk\\_last\\_error.h>*, *KestrelLastError* has the value."),
        ("CODES", rows),
        ("RESPONSE NUMBERS", table_of((f"{row.first} to {row.last}" if row.last > row.first else str(row.first),
                                       f"{row.text}: {row.advice}.") for row in interface.responses())),
        ("GROUPS", "By these names the functions tell what they can fail with:\n\n" + groups),
        ("SEE ALSO", f"{bold(OVERVIEW)}(3)"),
    ])


def enumeration_text(enumeration):
    rows = "\n".join(definition(f"{bold(name)} = {number}", plain(enumeration.meanings[name] + "."))
                     for name, number in enumeration.values.items())
    return f"## {enumeration.name}\n\n{plain(enumeration.about)}\n\n{rows}\n"


def record_text(record):
    fields = [f"    {field.type} {field.name}{f'[{field.count}]' if field.count else ''};  // {field.about}"
              for field in record.fields]
    return f"## {record.name}\n\n{plain(record.about)}\n\n" + literal([f"typedef struct {record.name} {{", *fields,
                                                                        f"}} {record.name};"])


def types_page(version):
    enumerations, records = interface.enumerations().values(), interface.records().values()
    return page(f"{OVERVIEW}-types", 3, version, f"{OVERVIEW}-types - records and enumerations of the Kestrel SDK", [
        ("SYNOPSIS", literal(["#include <kestrel/sdk_types.h>"])),
        ("DESCRIPTION", "The functions take and write the numbers of an enumeration as `uint32_t`.".replace("`", "*")),
        ("ENUMERATIONS", "\n".join(map(enumeration_text, enumerations))),
        ("RECORDS", "\n".join(map(record_text, records))),
        ("LIMITS", table_of((name, str(number)) for name, number in interface.limits().items())),
        ("SEE ALSO", f"{bold(OVERVIEW)}(3)"),
    ])


def settings_page(version):
    families = itertools.groupby(catalogue.rows(), lambda row: row["name"].split(".")[0])
    text = ""
    for family, rows in families:
        text += f"## {family}\n\n" + "\n".join(
            definition(bold(row["name"]), plain(row["about"]) + "++\n" + slanted(values(row))) for row in rows) + "\n"
    return page("kestrel-settings", 7, version, "kestrel-settings - settings of the printer, and what each may be", [
        ("DESCRIPTION", "What *kestrel get*, *kestrel set* and *kestrel list* call the settings; below each, what it "
                        "may be. The printer decides about numbers: the ranges are those of the virtual printer."),
        ("SETTINGS", text),
        ("SEE ALSO", f"{bold('kestrel')}(1), {bold('kestrel-vprinter')}(1), {bold(OVERVIEW)}(3)"),
    ])


def main():
    version, folder = sys.argv[1:]
    groups, settings = list(sections()), settings_by_function()
    for members in groups:
        name = page_of(members[0].section)
        write(folder, name, 3, section_page(members, version, settings))
        for function in members:
            link(folder, function.name, 3, name)
    write(folder, OVERVIEW, 3, overview_page(groups, version))
    write(folder, f"{OVERVIEW}-errors", 3, errors_page(version))
    write(folder, f"{OVERVIEW}-types", 3, types_page(version))
    write(folder, "kestrel-settings", 7, settings_page(version))


if __name__ == "__main__":
    main()
