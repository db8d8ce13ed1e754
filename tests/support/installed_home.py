"""What the Python suites have in common: a home in which the printer Office is installed, processes, and an end to every
test. BIN: the folder of the programs."""
import json
import os
import pathlib
import signal
import subprocess
import time

import pytest

BIN = pathlib.Path(os.environ["BIN"])
LONGEST_TEST = 180  # seconds
LONGEST = 20  # seconds that anything takes to happen on a busy machine


def give_up(*_):
    raise AssertionError("a test has taken three minutes")


def until(holds):
    """Waits for what has to happen within a second; the machine may be busy."""
    end = time.monotonic() + LONGEST
    while not (found := holds()) and time.monotonic() < end:
        time.sleep(0.02)
    assert found
    return found


def kestrel(*words, code=0):
    result = subprocess.run([BIN / "kestrel", *words], capture_output=True, text=True)
    assert result.returncode == code, result.stdout + result.stderr
    return result.stdout


class Process:
    """Ended with the test, by its id; its first line tells that it is there."""

    def __init__(self, *words, **options):
        self.process = subprocess.Popen(words, stdout=subprocess.PIPE, text=True, **options)
        self.line = self.process.stdout.readline().strip()

    def stop(self, with_signal=signal.SIGTERM):
        if self.process.poll() is None:
            self.process.send_signal(with_signal)
        self.process.stdout.close()
        return self.process.wait(LONGEST)


class Printers(Process):
    """`change` sets what the printers are, while they run."""

    def __init__(self, ports, folder, *options, **more):
        self.control = folder / "now.json"
        super().__init__(BIN / "kestrel-vprinter", "--quiet", "--control", self.control,
                         *(word for port in ports for word in ("--port", port)), *options, **more)
        assert self.line.startswith("ready: ")

    def change(self, values):
        fresh = self.control.with_suffix(".new")
        fresh.write_text(json.dumps(values))
        fresh.rename(self.control)


@pytest.fixture(autouse=True)
def bounded():
    signal.signal(signal.SIGALRM, give_up)
    signal.alarm(LONGEST_TEST)
    yield
    signal.alarm(0)


def install(folder, printers):
    folder.chmod(0o700)
    os.environ["WINPORT_HOME"] = str(folder)
    kestrel("setup")
    for name, port in printers.items():
        kestrel("printers", "add", name, "--port", port)


@pytest.fixture(scope="session")
def home(tmp_path_factory):
    install(tmp_path_factory.mktemp("home"), {"Office": "USB001"})
    yield
    subprocess.run([BIN / "ZRIJ9900MUI.exe", "--stop"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
