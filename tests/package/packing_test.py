#!/usr/bin/python3
"""What scripts/ packs, without a build: from folders that look like installed ones."""
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from project import PRODUCT, ROOT, VERSION

INSTALLED = ("README.md", "LICENSE", "include/kestrel/sdk.h", "bin/kestrel.exe", f"bin/{PRODUCT}SDK.dll",
             f"bin/{PRODUCT}SDK.dll.debug", f"lib/lib{PRODUCT}SDK.dll.a", f"lib/{PRODUCT}SDK.lib",
             f"lib/{PRODUCT}SDK.def")


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, capture_output=True,
                          env=os.environ | {"SOURCE_DATE_EPOCH": "1700000000"}, **options).stdout


class WindowsPackages(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        for word_size in ("x86", "x64"):
            for name in INSTALLED:
                path = self.folder / word_size / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(f"{name} of {word_size}")

    def pack(self, name):
        target = self.folder / name
        target.mkdir()
        run(ROOT / "scripts/pack_windows.py", target, self.folder / "x86", self.folder / "x64")
        return target

    def test_the_same_files_give_the_same_bytes(self):
        first = self.pack("first")
        for path in (self.folder / "x86").rglob("*"):
            os.utime(path, (1, 1))
            path.chmod(0o700)
        second = self.pack("second")
        for path in first.iterdir():
            self.assertEqual(path.read_bytes(), (second / path.name).read_bytes(), path.name)

    def test_the_checksums_are_those_of_all_files(self):
        with zipfile.ZipFile(next(self.pack("out").glob("*-x64.zip"))) as archive:
            sums = dict(reversed(line.split("  ")) for line in archive.read("SHA256SUMS").decode().splitlines())
            self.assertEqual(set(sums), set(INSTALLED))
            for name, wanted in sums.items():
                self.assertEqual(hashlib.sha256(archive.read(name)).hexdigest(), wanted)

    def test_what_the_nuget_package_names_is_in_it(self):
        with zipfile.ZipFile(next(self.pack("out").glob("*.nupkg"))) as archive:
            names = set(archive.namelist())
            texts = {name: archive.read(name).decode() for name in names}
        for target in re.findall(r'Target="/([^"]*)"', texts["_rels/.rels"]):
            self.assertIn(target, names)
        self.assertIn(re.search("<readme>(.*)</readme>", texts["KestrelSDK.nuspec"])[1], names)
        types = texts["[Content_Types].xml"]
        for name in names - {"[Content_Types].xml"}:
            ending = name.rsplit(".", 1)[-1]
            self.assertTrue(f'Extension="{ending}"' in types or f'PartName="/{name}"' in types, name)
        targets = texts["build/native/KestrelSDK.targets"].replace("$(MSBuildThisFileDirectory)", "build/native/")
        for runtime, word_size in (("win-x86", "x86"), ("win-x64", "x64")):
            paths = targets.replace("$(KestrelSdkRuntime)", runtime).replace("\\", "/")
            for name in re.findall(r"build/native/[\w./-]+SDK\.\w+", paths):
                self.assertIn(word_size, texts[os.path.normpath(name)])


class DebianChangelog(unittest.TestCase):
    def test_its_version_is_not_before_the_release(self):
        head, *entries = run(ROOT / "scripts/debian_changelog.py").split("\n  * ")
        version = re.fullmatch(r"kestrel-sdk \((.*)\) unstable; urgency=medium\n", head)[1]
        run("dpkg", "--compare-versions", version, "ge", VERSION)
        self.assertNotEqual(entries, [])


if __name__ == "__main__":
    unittest.main()
