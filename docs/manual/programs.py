#!/usr/bin/env python3
"""Makes the manual pages of the programs, each from what the program tells of its own command line.

    programs.py VERSION FOLDER PROGRAM...

Programs for another processor are run by what EMULATOR of the environment says."""
import json
import os
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True  # the source folder stays as it is
from scdoc import bold, definition, escaped, link, literal, page, plain, slanted, table_of, write

DESCRIBE = "--describe-command-line"


def described(program):
    command = [*os.environ.get("EMULATOR", "").split(), program, DESCRIBE]
    return json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)


def form(option):
    """As in a synopsis, without brackets."""
    if option["argument"]:
        text = slanted(option["names"][0])
    else:
        text = ", ".join(bold(name) for name in option["names"])
        text += f" {slanted(option['value'])}" if option["value"] else ""
    return text + ("..." if option["repeatable"] and option["argument"] else "")


def synopsis(command, path, options):
    parts = [bold(path)]
    for option in sorted(options, key=lambda option: option["argument"]):
        text = form({**option, "names": option["names"][-1:]})
        parts.append(text if option["required"] else f"\\[{text}\\]")
        if option["repeatable"] and not option["argument"]:
            parts.append("...")
    if command["subcommands"]:
        parts.append(slanted("COMMAND") if command["needsSubcommand"] else f"\\[{slanted('COMMAND')}\\]")
    return " ".join(parts)


def meaning(option):
    text = plain(option["about"].rstrip(".") + ".")
    if option["initial"]:
        text += f"\nDefault: {escaped(option['initial'])}."
    if option["environment"]:
        text += f"\nWithout it {bold(option['environment'])} of the environment counts."
    if any(word["about"] for word in option["words"]):
        text += "\n\n" + "\n".join(definition(bold(word["text"]), plain(word["about"])) for word in option["words"])
    elif any(word["text"] not in option["about"] for word in option["words"]):
        text += "\nOne of " + ", ".join(bold(word["text"]) for word in option["words"]) + "."
    return text


def option_list(options):
    return "\n".join(definition(form(option), meaning(option)) for option in options)


def own_options(command, above):
    """Those that the program as a whole does not have."""
    known = {name for option in above for name in option["names"]}
    return [option for option in command["options"] if not known & set(option["names"])]


def explained(rows):
    return table_of((row["text"], row["about"]) for row in rows)


def examples(rows):
    return "\n".join((plain(row["about"][:1].upper() + row["about"][1:]) + ":\n\n" if row["about"] else "")
                     + literal([row["text"]]) for row in rows)


def commands(command, path, above):
    """Every command below one, with those below it."""
    text = ""
    for child in command["subcommands"]:
        name, options = f"{path} {child['name']}", own_options(child, above)
        parts = [synopsis(child, name, options), plain(child["about"].rstrip(".") + "."), option_list(options),
                 *(plain(note) for note in child["notes"]), examples(child["examples"])]
        text += f"## {name}\n\n" + "\n\n".join(part for part in parts if part) + "\n\n"
        text += commands(child, name, above)
    return text


def variables(program):
    stand_ins = [(option["environment"], f"counts where there is no `{option['names'][-1]}`")
                 for option in program["options"] if option["environment"]]
    return table_of(stand_ins + [(row["text"], row["about"]) for row in program["variables"]])


def program_page(program, version, others):
    name = program["name"]
    about = program["about"].rstrip(".")
    options = program["options"]
    line = synopsis(program, name, [option for option in options if option["required"]])
    return page(name.removesuffix(".exe"), 1, version, f"{escaped(name.removesuffix('.exe'))} - {plain(about)}", [
        ("SYNOPSIS", line.replace(bold(name), f"{bold(name)} \\[{slanted('OPTIONS')}\\]", 1)),
        ("DESCRIPTION", "\n\n".join([plain(about) + ".", *(plain(note) for note in program["notes"])])),
        ("OPTIONS", option_list(options)),
        ("COMMANDS", commands(program, name, options)),
        ("EXAMPLES", examples(program["examples"])),
        ("EXIT STATUS", explained(program["exitCodes"])),
        ("ENVIRONMENT", variables(program)),
        ("FILES", explained(program["files"])),
        ("SEE ALSO", ", ".join(f"{bold(other)}({section})" for other, section in sorted(others) if other != name)),
    ])


def main():
    version, folder, *paths = sys.argv[1:]
    programs = [described(path) for path in paths]
    pages = {(program["name"].removesuffix(".exe"), 1) for program in programs}
    others = pages | {("kestrel-sdk", 3), ("kestrel-settings", 7)}
    for program in programs:
        name = program["name"].removesuffix(".exe")
        write(folder, name, 1, program_page(program, version, others - {(name, 1)}))
        if name != program["name"]:
            link(folder, program["name"], 1, name)


if __name__ == "__main__":
    main()
