#!/usr/bin/env python3
"""run.py CASE PROGRAMS FOLDER SOURCE...: compiles the C# sources with the test or the example, as strictly as mcs can,
and runs it with mono against a virtual printer. PROGRAMS is the folder of the library and the client."""
import json
import os
import pathlib
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
EXAMPLE = HERE.parents[2] / "examples/csharp.cs"


def run(command, **options):
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, text=True, **options)


def compiled(folder, case, sources):
    program = folder / f"{case}.exe"
    main = EXAMPLE if case == "example" else HERE / "PrinterTest.cs"
    subprocess.run(["mcs", "-warnaserror", "-warn:4", "-langversion:7", f"-out:{program}", main, *sources], check=True)
    return ["mono", program]


def listed(program, programs):
    """Every setting as the client shows it."""
    rows = json.loads(run([programs / "kestrel", "-p", "Office", "--json", "list", "--show-secrets"]).stdout)["settings"]
    expected = [f"{row['key']}\t{row.get('value', '-')}" for row in rows]
    found = [line.split("\t") for line in run([*program, "list"], check=True).stdout.splitlines()]
    for wanted, (name, _, value) in zip(expected, found, strict=True):
        assert wanted == f"{name}\t{value}", f"{name} is {value}, the client has {wanted}"
    for row, (name, access, _) in zip(rows, found):
        assert (row["readable"], row["writable"]) == ("Read" in access, access != "ReadOnly"), f"{name}: {access}"


def checked(program, _):
    run([*program, "check"], check=True)


def example(program, _):
    """Ends with the refusal that it shows."""
    ended = run([*program, "Office"], stderr=subprocess.PIPE)
    assert ended.returncode == 1 and "sender: Smith & Sons" in ended.stdout, ended
    assert ended.stderr.startswith("the printer found an error in the data (ERROR_CRC, 23); "), ended.stderr


def main():
    case, programs, folder, *sources = sys.argv[1:]
    programs, folder = pathlib.Path(programs), pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    home = folder / "home"
    home.mkdir(mode=0o700, parents=True)
    os.environ.update(WINPORT_HOME=str(home), LD_LIBRARY_PATH=str(programs))
    program = compiled(folder, case, sources)
    run([programs / "kestrel", "setup"], check=True)
    run([programs / "kestrel", "printers", "add", "Office", "--port", "USB001"], check=True)
    printer = subprocess.Popen([programs / "kestrel-vprinter", "--port", "USB001", "--trace", "none"],
                               stdout=subprocess.PIPE)
    try:
        assert printer.stdout.readline() == b"ready: USB001\n"
        {"list": listed, "check": checked, "example": example}[case](program, programs)
    finally:
        printer.terminate()
        printer.wait()
        run([programs / "ZRIJ9900MUI.exe", "--stop"])  # the library may have started it


if __name__ == "__main__":
    main()
