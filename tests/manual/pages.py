#!/usr/bin/env python3
"""Looks at the manual pages as man shows them.

    pages.py shown|programs|new_setting FOLDER PROGRAM..."""
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the source folder stays as it is
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path += [str(ROOT / "scripts"), str(ROOT / "tests/house")]
import add_a_setting

ENVIRONMENT = {**os.environ, "MANWIDTH": "2000", "LC_ALL": "C.UTF-8", "MANPAGER": "cat"}


def shown(page):
    """The page's text; any word of man about it is a fault."""
    # A page that is a link to another one is looked for from the folder of all sections.
    result = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", page.resolve()], capture_output=True, text=True,
                            env=ENVIRONMENT, cwd=page.parent.parent)
    assert result.returncode == 0 and not result.stderr, f"{page.name}: {result.stderr}"
    return result.stdout


def check_shown(folder, programs):
    """Every page, and in them every exported function: by its own name, for apropos, declared and explained."""
    pages = [page for page in sorted(folder.glob("man*/*")) if not page.read_text().startswith(".so ")]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        texts = dict(zip((f"{page.parent.name}/{page.name}" for page in pages), pool.map(shown, pages)))
    assert all(texts.values()) and len(texts) > len(programs)
    titles = subprocess.run(["lexgrog", *pages], capture_output=True, text=True).stdout
    for page in pages:
        assert re.search(rf'{re.escape(str(page))}: "\S+ - \S', titles), f"{page.name} has no name that apropos finds"

    for name in re.findall(r"^[A-Za-z]\w*", (ROOT / "src/entry/exports.list").read_text(), re.M):
        target = (folder / "man3" / f"{name}.3").read_text().removeprefix(".so ").strip()
        head, _, rest = texts[target].partition("SYNOPSIS")
        assert name in head, f"apropos does not find {name}"
        assert re.search(rf"\b{name}\(.*\);", rest), f"{target} does not declare {name}"
        assert re.search(rf"^   .*\b{name}\b[^(]*$", rest, re.M), f"{target} does not explain {name}"


def tree_of(program):
    return json.loads(subprocess.check_output([program, "--describe-command-line"]))


def check_help(program, path, command):
    """The description has every option and command that the program's own help has."""
    text = subprocess.check_output([program, *path, "--help"], text=True)
    table, _, commands = text.partition("Subcommands:")
    options = re.findall(r"^  ((?:-\w,)?--?[\w-]+)", table, re.M)
    told = {name for option in command["options"] for name in option["names"]}
    missing = {name for option in options for name in option.split(",")} - told
    assert options and not missing, f"{path}: {missing} only in the help"
    names = re.findall(r"^  ([a-z]+) ", commands.split("\n\n")[0], re.M)
    assert names == [child["name"] for child in command["subcommands"]], f"{path}: the help has {names}"


def walk(command, path=()):
    yield path, command
    for child in command["subcommands"]:
        yield from walk(child, (*path, child["name"]))


def check_programs(folder, programs):
    for program in programs:
        tree = tree_of(program)
        name = tree["name"].removesuffix(".exe")
        text = shown(folder / "man1" / f"{name}.1")
        for path, command in walk(tree):
            if not name.startswith("rundll32"):  # whose help is another one
                check_help(program, path, command)
            part = text.partition(f"\n   {' '.join([name, *path])}\n")[2] if path else text
            assert part, f"{name}(1) has no command {path}"
            told = [command["about"].rstrip("."), *command["notes"], *(row["text"] for row in command["examples"])]
            own = [option for option in command["options"] if not path or option["names"] != ["-h", "--help"]]
            told += [word for option in own for word in [*option["names"], option["about"], option["environment"]]]
            told += [row[key] for table in ("exitCodes", "variables", "files") for row in command[table] for key in row]
            for words in told:
                assert words.replace("`", "") in part, f"{name}(1), {path}: {words!r} is missing"


def check_new_setting(folder, programs):
    """A row in the catalogue, and what its recipe wants besides, is all that it takes."""
    with tempfile.TemporaryDirectory() as temporary:
        tree, made = pathlib.Path(temporary, "tree"), pathlib.Path(temporary, "man")
        for part in ("src", "include", "scripts", "docs"):
            shutil.copytree(ROOT / part, tree / part)
        add_a_setting.add_setting(tree)
        subprocess.run([sys.executable, tree / "docs/manual/library.py", "1.0.0", made], check=True)
        assert re.search(r"^ +scan\.colour\n +colours of a scan\n +Grey Full$", shown(made / "man7/kestrel-settings.7"), re.M)
        text = shown(made / "man3/kestrel-sdk-scanner.3")
        assert "kestrel_bool SetScanColour(uint32_t value, uint32_t timeoutMs);" in text
        assert "The setting scan.colour: Grey Full. First value: Grey." in text
        assert "KESTREL_SCAN_COLOUR_FULL = 1" in shown(made / "man3/kestrel-sdk-types.3")


def main():
    case, folder, *programs = sys.argv[1:]
    {"shown": check_shown, "programs": check_programs, "new_setting": check_new_setting}[case](pathlib.Path(folder), programs)


if __name__ == "__main__":
    main()
