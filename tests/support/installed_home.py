"""What the Python suites have in common: a home in which the printer Office is installed, and an end to every test. BIN:
the folder of the programs."""
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


@pytest.fixture(autouse=True)
def bounded():
    signal.signal(signal.SIGALRM, give_up)
    signal.alarm(LONGEST_TEST)
    yield
    signal.alarm(0)


@pytest.fixture(scope="session")
def home(tmp_path_factory):
    folder = tmp_path_factory.mktemp("home")
    folder.chmod(0o700)
    os.environ["WINPORT_HOME"] = str(folder)
    for words in (["setup"], ["printers", "add", "Office", "--port", "USB001"]):
        subprocess.run([BIN / "kestrel", *words], check=True, stdout=subprocess.DEVNULL)
    yield folder
    subprocess.run([BIN / "ZRIJ9900MUI.exe", "--stop"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
