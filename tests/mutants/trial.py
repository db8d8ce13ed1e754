"""Runs cases of the suites with one fault awake, each case in a machine of its own: its processes, its shared memory
and its temporary files end with it, and whatever the fault makes of a path, nothing outside is changed."""

import json
import os
import re
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

ALONE = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c",
         'mount --bind "$0" "$0" && mount -t tmpfs tmpfs /dev/shm && mount -t tmpfs tmpfs /tmp &&'
         ' mount -o remount,bind,ro / && mount -o remount,bind,ro /dev && "$@"; exit $?']
SUITES = re.compile(r"^(unit|contract|process|data|robust|crash)\.")
LEAST_SECONDS = 5


@dataclass(eq=False)
class Case:
    name: str
    command: list[str]
    environment: dict[str, str]
    seconds: float = 0.0
    reached: bytes = b""

    def run(self, notes: Path, fault: int = 0, reached: Path | None = None) -> bool:
        """`notes` is the one folder that stays writable."""
        environment = {**os.environ, **self.environment, "KESTREL_FAULT": str(fault)}
        environment.pop("KESTREL_PRINTER", None)
        if reached is not None:
            environment["KESTREL_FAULTS_REACHED"] = str(reached)
        alone = ALONE if os.geteuid() == 0 else [ALONE[0], "--map-root-user", *ALONE[1:]]
        # A fault that makes it wait is caught by the time that it takes.
        limit = 120.0 if reached is not None else LEAST_SECONDS + 4 * self.seconds
        try:
            done = subprocess.run([*alone, str(notes), *self.command], env=environment, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=limit, check=False)
        except subprocess.TimeoutExpired:
            return False
        return done.returncode == 0

    def measure(self, reached: Path, count: int) -> bool:
        """Notes how long the case takes and which faults it comes by."""
        reached.write_bytes(bytes(count + 1))
        reached.chmod(0o666)  # some cases become another account
        start = time.monotonic()
        passed = self.run(reached.parent, reached=reached)
        self.seconds = time.monotonic() - start
        self.reached = reached.read_bytes()
        return passed


def cases(tree: Path) -> list[Case]:
    shown = subprocess.run(["ctest", "--test-dir", str(tree), "--show-only=json-v1", "-LE", "slow"], capture_output=True,
                           text=True, check=True)
    found = []
    for test in json.loads(shown.stdout)["tests"]:
        if not SUITES.match(test["name"]) or "command" not in test:
            continue
        properties = {each["name"]: each["value"] for each in test.get("properties", [])}
        environment = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        environment.pop("LD_PRELOAD", None)  # watches the documented errors, and nothing else
        found.append(Case(test["name"].partition("  # ")[0], test["command"], environment))
    return found
