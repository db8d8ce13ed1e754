"""A virtual printer with a panel, in its own process and a home of its own. BIN: the folder of the programs."""
import http.client
import json
import pathlib
import subprocess
import sys

import pytest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from installed_home import BIN, LONGEST, bounded, home, until  # noqa: F401, E402


class Panel:
    def __init__(self, *options, ports=("USB001", "NET1")):
        named = [word for port in ports for word in ("--port", port)]
        self.process = subprocess.Popen([BIN / "kestrel-vprinter", *named, "--web", "127.0.0.1:0", *options],
                                        stdout=subprocess.PIPE, text=True)
        self.url = self.process.stdout.readline().removeprefix("panel: ").strip()
        assert self.process.stdout.readline().startswith("ready: ")
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

    def stop(self):
        self.process.terminate()
        assert self.process.wait(LONGEST) == 0
        self.process.stdout.close()


def kestrel(*words, code=0):
    result = subprocess.run([BIN / "kestrel", "--json", *words], capture_output=True, text=True)
    assert result.returncode == code, result.stdout + result.stderr
    return json.loads(result.stdout)


@pytest.fixture
def panel(home):
    panel = Panel()
    yield panel
    panel.stop()
