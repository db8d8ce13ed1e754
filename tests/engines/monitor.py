"""Prometheus as a process, with the configuration of fleet/."""
import json
import os
import pathlib
import socket
import subprocess
import urllib.error
import urllib.parse
import urllib.request

from conftest import LONGEST, ROOT

FLEET = ROOT / "fleet"


def fetched_engines():
    """The folder of Prometheus' programs; None when they cannot be had."""
    got = subprocess.run([ROOT / "scripts/engines.sh"], stdout=subprocess.PIPE, text=True)
    return pathlib.Path(got.stdout.strip()) / "usr/bin" if got.returncode == 0 else None


class Prometheus:
    def __init__(self, engines, folder, target, interval):
        """`interval`: seconds between two scrapes, and the longest that one may take."""
        config = folder / "prometheus.yml"
        text = (FLEET / "prometheus.yml").read_text()
        config.write_text(text.replace("127.0.0.1:9750", target).replace("60s", f"{interval}s")
                          .replace("scrape_timeout: 10s", f"scrape_timeout: {interval}s"))
        (folder / "kestrel.rules.yml").write_text((FLEET / "kestrel.rules.yml").read_text())
        self.log = (folder / "prometheus.log").open("w+")
        # A port that is free now; whoever takes it meanwhile is seen at once.
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            self.port = taken.getsockname()[1]
        self.process = subprocess.Popen(
            [engines / "prometheus", f"--config.file={config}", f"--storage.tsdb.path={folder}/data",
             f"--web.listen-address=127.0.0.1:{self.port}", "--log.level=warn"], stdout=self.log, stderr=self.log)

    def query(self, expression):
        assert self.process.poll() is None, pathlib.Path(self.log.name).read_text()
        url = f"http://127.0.0.1:{self.port}/api/v1/query?" + urllib.parse.urlencode({"query": expression})
        try:
            with urllib.request.urlopen(url, timeout=LONGEST) as answer:
                return json.loads(answer.read())["data"]["result"]
        except urllib.error.HTTPError as error:
            assert error.code == 503, f"{expression}: {error.read().decode()}"  # it is still starting
        except OSError:
            pass
        return []

    def number(self, expression):
        found = self.query(expression)
        return float(found[0]["value"][1]) if found else None

    def resident_bytes(self):
        return int(pathlib.Path(f"/proc/{self.process.pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def stop(self):
        self.process.terminate()
        assert self.process.wait(LONGEST) == 0
        self.log.close()
