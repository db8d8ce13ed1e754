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


def test_the_sources_are_strictly_typed_for_both_systems_with_the_stub_and_without(tmp_path):
    for platform in ("linux", "win32"):
        found = check(PACKAGE, "--strict", "--platform", platform, "--cache-dir", tmp_path, "kestrel_sdk")
        assert found.returncode == 0, found.stdout
    shutil.copytree(PACKAGE / "kestrel_sdk", tmp_path / "inline/kestrel_sdk", ignore=shutil.ignore_patterns("*.pyi"))
    found = check(tmp_path / "inline", "--strict", "--cache-dir", tmp_path / "cache", "kestrel_sdk")
    assert found.returncode == 0, found.stdout


def test_the_stub_is_what_the_module_is():
    found = check(PACKAGE, "kestrel_sdk._access", "--ignore-missing-stub", module="mypy.stubtest")
    assert found.returncode == 0, found.stdout


def test_a_callers_mistakes_are_found_and_nothing_else(tmp_path):
    found = check(PACKAGE, "--strict", "--cache-dir", tmp_path, "--no-error-summary", SAMPLE).stdout
    refused = {int(line) for line in re.findall(r"^\S+typing_sample\.py:(\d+): error", found, re.M)}
    lines = SAMPLE.read_text().splitlines()
    assert refused == {number for number, line in enumerate(lines, 1) if line.endswith("# wrong")}, found
