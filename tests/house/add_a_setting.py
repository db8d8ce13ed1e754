#!/usr/bin/env python3
"""Adds a setting with an enumeration of its own to a copy of the tree, in the places that the head of settings.def names
and in no others; then everybody has to know it: the library and its export list, the client, the virtual printer, and
the interfaces in other languages.

    add_a_setting.py SOURCE FOLDER CMAKE_OPTION..."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

TARGETS = ["kestrel_sdk", "kestrel", "kestrel-vprinter", "unit_tests", "every_export_as_c11", "error_recorder",
           "kestrel_python"]


def after(line, added):
    """Puts the added lines behind the one line that begins so."""
    def edit(text):
        edited, count = re.subn(rf"^{re.escape(line)}.*\n", lambda found: found[0] + added, text, flags=re.M)
        assert count == 1, f"{count} lines begin with {line}"
        return edited
    return edit


def both(first, second):
    return lambda text: second(first(text))


PLACES = {
    "src/opl/vocabulary.def": after(
        "OPL_KEY(ScanPreview,", 'OPL_KEY(ScanColour, ReadWrite, TextValue, "DeviceSettings.Scanner.Colour")\n'),
    "src/catalogue/settings.def": after(
        "FLAG(ScanPreview,", 'CHOICE(ScanColour, "scan.colour", ReadWrite, "Grey", ScanColour, "colours of a scan")\n'),
    "include/kestrel/sdk_settings.h": after(
        "KESTREL_API kestrel_bool SetScanPreview(",
        "\n/// Colours of a scan: a KestrelScanColour.\n"
        "KESTREL_API kestrel_bool GetScanColour(uint32_t* value, uint32_t timeoutMs);\n"
        "KESTREL_API kestrel_bool SetScanColour(uint32_t value, uint32_t timeoutMs);\n"),
    "src/entry/exports.list": both(
        after("GetScanPreview", "GetScanColour\n"), after("SetScanPreview", "SetScanColour\n")),
    "docs/vprinter.md": None,
    "include/kestrel/sdk_types.h": after(
        "} KestrelScanTo;",
        "\n/// Colours of a scan.\n"
        "typedef enum KestrelScanColour {\n    KESTREL_SCAN_COLOUR_GREY = 0,  ///< shades of grey\n"
        "    KESTREL_SCAN_COLOUR_FULL = 1   ///< all colours\n"
        "} KestrelScanColour;\n"),
    "src/catalogue/value_tables.h": after(
        "inline constexpr EnumEntry kNoWords[]",
        '\ninline constexpr EnumEntry kScanColour[] = {\n    {"Grey", KESTREL_SCAN_COLOUR_GREY},\n'
        '    {"Full", KESTREL_SCAN_COLOUR_FULL},\n    {nullptr, 0},\n};\n'),
}


# What a generator of bindings/ writes, and the line of the new setting in it.
INTERFACES = (
    ("cpp", "sdk_settings.hpp", "struct scan_colour : kind::Choice<ScanColour> {"),
    ("cpp", "sdk_settings.hpp", "enum class ScanColour : std::uint32_t {"),
    ("python", "_catalogue.py", '"scan.colour"'),
    ("csharp", "Native.cs", "bool GetScanColour(out uint value, uint timeoutMs)"),
    ("csharp", "Settings.cs", "public ScanColour ScanColour"),
    ("csharp", "Settings.cs", '{ typeof(ScanColour), new[] { "Grey", "Full" } }'),
)


def add_setting(tree):
    recipe = (tree / "src/catalogue/settings.def").read_text().split("Row kinds")[0]
    assert re.findall(r"^//   \d\. (\S+)", recipe, re.M) == list(PLACES), "the recipe names other places"
    for place, edit in PLACES.items():
        if edit:
            path = tree / place
            path.write_text(edit(path.read_text()))
    run([tree / "scripts/settings_table.py"])


def generate_interfaces(tree, folder):
    folder.mkdir()
    for language, output, wanted in INTERFACES:
        run([tree / "bindings" / language / "generate.py", folder / output])
        assert wanted in (folder / output).read_text(), f"{output} has no {wanted}"


def run(command, **options):
    print("$", *command, flush=True)
    return subprocess.run(command, check=True, **options)


def ask(*arguments, exit_code=0):
    command = ["kestrel", "--json", *arguments]
    print("$", *command, flush=True)
    result = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    assert result.returncode == exit_code, f"ended with {result.returncode}: {result.stdout}"
    return json.loads(result.stdout)


IN_PYTHON = """if True:
    from kestrel_sdk import Printer, ScanColour
    with Printer("Office") as printer:
        assert printer["scan.colour"] is ScanColour.FULL
        printer["scan.colour"] = "grey"
        assert printer.describe("scan.colour").words == ("Grey", "Full") and printer["scan.colour"] == ScanColour.GREY"""


def use_it(home):
    os.environ["WINPORT_HOME"] = str(home)
    home.mkdir(mode=0o700)
    ask("setup")
    ask("printers", "add", "Office", "--port", "USB001")
    printer = subprocess.Popen(["kestrel-vprinter", "--port", "USB001", "--trace", "none"], stdout=subprocess.PIPE)
    try:
        assert printer.stdout.readline() == b"ready: USB001\n"
        listed = ask("list", "scan.colour")["settings"]
        assert [(row["words"], row["value"]) for row in listed] == [(["Grey", "Full"], "Grey")], listed
        ask("set", "scan.colour", "full", "--verify")
        assert ask("get", "scan.colour")["values"] == {"scan.colour": "Full"}
        ask("set", "scan.colour", "Sepia", exit_code=6)
        run([sys.executable, "-B", "-c", IN_PYTHON])
    finally:
        printer.terminate()
        printer.wait()


def main():
    source, folder = (pathlib.Path(argument) for argument in sys.argv[1:3])
    shutil.rmtree(folder, ignore_errors=True)
    tree, build = folder / "tree", folder / "tree/build/added"
    shutil.copytree(source, tree, ignore=shutil.ignore_patterns("build", ".git"), symlinks=True)
    add_setting(tree)
    generate_interfaces(tree, folder / "generated")
    begun = time.monotonic()
    run(["cmake", "-S", tree, "-B", build, "-G", "Ninja", "-DKESTREL_BENCH=OFF", *sys.argv[3:]],
        stdout=subprocess.DEVNULL)
    run(["cmake", "--build", build, "--target", *TARGETS])
    print(f"built in {time.monotonic() - begun:.0f} s", flush=True)

    os.environ["PATH"] = f"{build}/bin:{os.environ['PATH']}"
    os.environ["PYTHONPATH"] = f"{build}/python"
    os.environ["KESTREL_SDK_LIBRARY"] = str(next((build / "bin").glob("lib*SDK.so")))
    run([build / "bin/unit_tests", "--gtest_brief=1"])
    run(["ctest", "--test-dir", build, "--no-tests=error", "--output-on-failure", "--fixture-exclude-any", ".", "-R",
         r"^(api\.every_export_as_c11|api\.exports_are|house\.documents)"])
    use_it(folder / "home")
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
