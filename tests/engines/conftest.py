"""Virtual printers and an exporter of their metrics, each a process of its own. BIN: the folder of the programs."""
import http.client
import json
import os
import pathlib
import re
import signal
import subprocess
import sys

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from installed_home import BIN, LONGEST, bounded, until  # noqa: F401, E402

ROOT = pathlib.Path(os.environ["SOURCE"])


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


class Exporter(Process):
    def __init__(self, *options, listen="127.0.0.1:0", **more):
        super().__init__(BIN / "kestrel", "metrics", "--listen", listen, *options, **more)
        assert self.line.startswith("metrics: http://"), self.line
        self.host = self.line.removeprefix("metrics: http://").removesuffix("/metrics")

    def ask(self, path="/metrics", method="GET", **fields):
        connection = http.client.HTTPConnection(self.host, timeout=LONGEST)
        connection.request(method, path, headers={name.replace("_", "-"): value for name, value in fields.items()})
        answer = connection.getresponse()
        return answer.status, answer.headers, answer.read().decode()

    def scrape(self):
        status, _, text = self.ask()
        assert status == 200, text
        return Samples(text)


class Samples(dict):
    """Of a text in Prometheus' format: values by name and, of printers, by what else tells them apart."""

    def __init__(self, text):
        super().__init__()
        self.text = text
        for line in text.splitlines():
            if line.startswith("#"):
                continue
            name, labels, value = re.fullmatch(r'(\w+)(?:\{(.*)\})? (\S+)', line).groups()
            self[name, *re.findall(r'(?:printer|state|ink|code|tray)="([^"]*)"', labels or "")] = float(value)


@pytest.fixture(scope="session")
def home(tmp_path_factory):
    """Four printers: Dead has nobody behind its port."""
    folder = tmp_path_factory.mktemp("home")
    folder.chmod(0o700)
    os.environ["WINPORT_HOME"] = str(folder)
    kestrel("setup")
    for name, port in (("Office", "USB001"), ("Quick", "USB002"), ("Slow", "NET1"), ("Dead", "USB009")):
        kestrel("printers", "add", name, "--port", port)
    return folder


@pytest.fixture
def printers(home, tmp_path):
    printers = Printers(("USB001", "USB002", "NET1"), tmp_path)
    yield printers
    printers.stop()


@pytest.fixture
def exporter(printers):
    exporter = Exporter("--timeout", "1s")
    yield exporter
    exporter.stop()
