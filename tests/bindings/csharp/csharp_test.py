"""The C# sources with the test or the example, compiled as strictly as mcs can and run with mono against a virtual printer.
BIN: the folder of the library and the programs; SOURCES: the interface's files."""
import json
import os
import pathlib
import subprocess
import sys

import pytest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.append(str(HERE.parents[1] / "support"))
from installed_home import BIN, Printers, bounded, home, kestrel  # noqa: F401, E402


@pytest.fixture
def program(home, tmp_path):
    """Compiles and runs; gives the outcome."""
    def run(main, *words):
        made = tmp_path / "made.exe"
        sources = os.environ["SOURCES"].split(":")
        subprocess.run(["mcs", "-warnaserror", "-warn:4", "-langversion:7", f"-out:{made}", main, *sources], check=True)
        return subprocess.run(["mono", made, *words], capture_output=True, text=True,
                              env={**os.environ, "LD_LIBRARY_PATH": str(BIN)})
    printer = Printers(("USB001",), tmp_path)
    yield run
    printer.stop()


def test_list(program):
    """Every setting as the client shows it."""
    rows = json.loads(kestrel("-p", "Office", "--json", "list", "--show-secrets"))["settings"]
    found = [line.split("\t") for line in program(HERE / "PrinterTest.cs", "list").stdout.splitlines()]
    assert [(name, value) for name, _, value in found] == [(row["key"], str(row.get("value", "-"))) for row in rows]
    for row, (name, access, _) in zip(rows, found):
        assert (row["readable"], row["writable"]) == ("Read" in access, access != "ReadOnly"), f"{name}: {access}"


def test_check(program):
    checked = program(HERE / "PrinterTest.cs", "check")
    assert checked.returncode == 0, checked.stderr


def test_example(program):
    """Ends with the refusal that it shows."""
    ended = program(HERE.parents[2] / "examples/csharp.cs", "Office")
    assert ended.returncode == 1 and "sender: Smith & Sons" in ended.stdout, ended
    assert ended.stderr.startswith("the printer found an error in the data (ERROR_CRC, 23); "), ended.stderr
