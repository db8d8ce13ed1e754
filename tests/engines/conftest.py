"""Virtual printers and an exporter of their metrics, each a process of its own. BIN: the folder of the programs."""
import http.client
import os
import pathlib
import re
import sys

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from installed_home import BIN, LONGEST, Printers, Process, bounded, install, kestrel, until  # noqa: F401, E402

ROOT = pathlib.Path(os.environ["SOURCE"])


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
    install(tmp_path_factory.mktemp("home"), {"Office": "USB001", "Quick": "USB002", "Slow": "NET1", "Dead": "USB009"})


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
