"""A virtual printer with a panel, in its own process and a home of its own. BIN: the folder of the programs."""
import http.client
import json
import pathlib
import sys

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
import installed_home  # noqa: E402
from installed_home import BIN, Process, bounded, home, until  # noqa: F401, E402


class Panel(Process):
    def __init__(self, *options):
        super().__init__(BIN / "kestrel-vprinter", "--port", "USB001", "--port", "NET1", "--web", "127.0.0.1:0", *options)
        assert self.process.stdout.readline().startswith("ready: ")
        self.url = self.line.removeprefix("panel: ")
        self.host = self.url.removeprefix("http://").rstrip("/")

    def ask(self, method, path, body=None, **fields):
        """Status, fields and body of an answer. A body that is no bytes is sent as JSON."""
        connection = http.client.HTTPConnection(self.host, timeout=20)
        body = {} if body is None and method == "DELETE" else body
        if body is not None and not isinstance(body, bytes):
            body = json.dumps(body).encode()
        named = {"Content-Type": "application/json"} if method != "GET" else {}
        named.update({name.replace("_", "-"): value for name, value in fields.items()})
        connection.request(method, path, body, {name: value for name, value in named.items() if value is not None})
        answer = connection.getresponse()
        text = answer.read()
        isJson = answer.getheader("Content-Type") == "application/json"
        return answer.status, answer.headers, json.loads(text) if isJson else text

    def get(self, path):
        status, _, body = self.ask("GET", path)
        assert status == 200, body
        return body

    def put(self, path, body):
        return self.ask("PUT", path, body)[0]


def kestrel(*words, code=0):
    return json.loads(installed_home.kestrel("--json", *words, code=code))


@pytest.fixture
def panel(home):
    panel = Panel()
    yield panel
    assert panel.stop() == 0
