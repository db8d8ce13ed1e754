"""The package by a strict type checker: its sources, its stub, and a caller. PACKAGE: the folder that has it."""
import os
import pathlib
import re
import shutil
import subprocess
import sys

SAMPLE = pathlib.Path(__file__).with_name("typing_sample.py")
PACKAGE = pathlib.Path(os.environ["PACKAGE"])


def check(folder, *arguments, module="mypy"):
    environment = {**os.environ, "MYPYPATH": str(folder)}
    return subprocess.run([sys.executable, "-m", module, *arguments], cwd=folder, env=environment,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def test_the_sources_are_strictly_typed_without_the_stub_on_the_other_system(tmp_path):
    shutil.copytree(PACKAGE / "kestrel_sdk", tmp_path / "kestrel_sdk", ignore=shutil.ignore_patterns("*.pyi"))
    found = check(tmp_path, "--strict", "--platform", "win32", "--cache-dir", tmp_path / "cache", "kestrel_sdk")
    assert found.returncode == 0, found.stdout


def test_the_stub_is_what_the_module_is(tmp_path):
    shutil.copytree(PACKAGE / "kestrel_sdk", tmp_path / "kestrel_sdk")  # the checker leaves its cache there
    found = check(tmp_path, "kestrel_sdk._access", module="mypy.stubtest")
    assert found.returncode == 0, found.stdout


def test_a_callers_mistakes_are_found_and_nothing_else(tmp_path):
    found = check(PACKAGE, "--strict", "--cache-dir", tmp_path, "--no-error-summary", SAMPLE, "kestrel_sdk").stdout
    refused = set(re.findall(r"(\w+\.pyi?:\d+): error", found))
    lines = enumerate(SAMPLE.read_text().splitlines(), 1)
    assert refused == {f"typing_sample.py:{number}" for number, line in lines if line.endswith("# wrong")}, found
