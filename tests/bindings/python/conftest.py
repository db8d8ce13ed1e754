"""A virtual printer in its own process, with a home of its own. BIN: the folder of the programs."""
import json
import pathlib
import subprocess
import sys
import time

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[2] / "support"))
from installed_home import BIN, bounded, home  # noqa: F401, E402


class VirtualPrinter:
    """`fault(rule...)` begins it anew with a fault script; `happens(...)` is what befalls it while it runs."""

    def __init__(self, folder):
        self.control, self.faults, self.trace = folder / "now.json", folder / "faults.json", folder / "trace.txt"
        self.process = None

    def start(self, *rules):
        self.stop()
        self.faults.write_text(json.dumps(rules))
        self.process = subprocess.Popen(
            [BIN / "kestrel-vprinter", "--port", "USB001", "--control", self.control, "--faults", self.faults,
             "--trace", "text", "--trace-file", self.trace], stdout=subprocess.PIPE)
        assert self.process.stdout.readline() == b"ready: USB001\n"

    def stop(self):
        if self.process:
            self.process.terminate()
            self.process.wait(10)
            self.process.stdout.close()
            self.process = None

    def happens(self, **what):
        new = self.control.with_suffix(".new")
        named = {name.replace("__", "-").replace("_", ".", 1): value for name, value in what.items()}
        new.write_text(json.dumps({"*": named}))
        new.rename(self.control)

    def saw(self, request):
        """How often; a line of the trace is written after its reply, so it is waited for."""
        for _ in range(100):
            if count := self.trace.read_text().count(request):
                return count
            time.sleep(0.1)
        return 0


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
