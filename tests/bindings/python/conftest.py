"""A virtual printer in its own process, with a home of its own. BIN: the folder of the programs."""
import json
import pathlib
import sys

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[2] / "support"))
from installed_home import BIN, Printers, bounded, home, kestrel, until  # noqa: F401, E402


class VirtualPrinter:
    """`start(rule...)` begins it anew with a fault script; `happens(...)` is what befalls it while it runs."""

    def __init__(self, folder):
        self.folder, self.trace, self.printers = folder, folder / "trace.txt", None

    def start(self, *rules):
        self.stop()
        faults = self.folder / "faults.json"
        faults.write_text(json.dumps(rules))
        self.printers = Printers(("USB001",), self.folder, "--faults", faults, "--trace", "text", "--trace-file", self.trace)

    def stop(self):
        if self.printers:
            self.printers.stop()

    def happens(self, **what):
        self.printers.change({"*": {name.replace("__", "-").replace("_", ".", 1): value for name, value in what.items()}})

    def saw(self, request):
        """How often; a line of the trace is written after its reply, so it is waited for."""
        return until(lambda: self.trace.read_text().count(request))


@pytest.fixture
def virtual(home, tmp_path):
    printer = VirtualPrinter(tmp_path)
    printer.start()
    yield printer
    printer.stop()


@pytest.fixture
def printer(virtual):
    import kestrel_sdk
    with kestrel_sdk.Printer("Office") as opened:
        yield opened
