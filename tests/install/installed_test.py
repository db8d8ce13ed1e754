#!/usr/bin/env python3
"""What a programmer has who installs the product: installed_test.py PREFIX [Case.test]. All is done outside the tree."""
import pathlib
import random
import re
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the source folder stays as it is
from installed import PRINTER, Installed, run

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PREFIX = pathlib.Path(sys.argv[1])
PACKAGE = "$(pkg-config --cflags --libs zrij9900sdk)"
# The word behind a fence of the README: the file that the example becomes, and the commands that make a program of it and
# run it.
LANGUAGES = {
    "c": ("example.c", f"cc -std=c11 -Wall -Wextra -Werror example.c {PACKAGE} -o example && ./example"),
    "cpp": ("example.cpp", f"c++ -std=c++20 -Wall -Wextra -Werror example.cpp {PACKAGE} -o example && ./example"),
    "python": ("example.py", "/usr/bin/python3 example.py"),
    "csharp": ("example.cs", 'mcs example.cs "$PREFIX"/share/kestrel-sdk/csharp/*.cs && mono example.exe'),
}
STRICT = "-Wall -Wextra -Wpedantic -Werror"
TEN_LINES = """cmake_minimum_required(VERSION 3.25)
project(Ten LANGUAGES C CXX)
find_package(KestrelSDK 1.0 REQUIRED)
foreach(language c cpp)
  add_executable(${language} ten.${language})
  target_link_libraries(${language} PRIVATE kestrel::sdk)
endforeach()
"""


def readme_examples():
    """(language, program) of every fence below the heading."""
    section = re.search(r"^## Ten lines in your language\n(.*?)(?=^## |\Z)", (ROOT / "README.md").read_text(), re.M | re.S)
    return re.findall(r"^```(\w*)\n(.*?)^```$", section[1], re.M | re.S)


class Libraries(unittest.TestCase):
    def test_carry_their_versions(self):
        folder = Installed(PREFIX).libraries
        for name, node in (("ZRIJ9900SDK", "ZRIJ9900SDK_1"), ("winport", "WINPORT_1")):
            file = folder / f"lib{name}.so"
            self.assertEqual({f"lib{name}.so.1.0.0"}, {(folder / f"lib{name}.so{end}").resolve().name for end in ("", ".1")})
            self.assertRegex(run("objdump", "-p", file), rf"SONAME +lib{name}\.so\.1\n")
            exported = run("nm", "-D", "--defined-only", file).split("\n")[:-1]
            self.assertGreater(len(exported), 100)
            self.assertEqual([], [line for line in exported if not line.endswith((f"@@{node}", f" A {node}"))])


class WithPrinter(unittest.TestCase):
    """A printer that runs, and an empty folder."""

    def setUp(self):
        self.product = self.enterContext(Installed(PREFIX))
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="outside-")))

    def build(self, source):
        """By CMake, against the installed package; gives the folder of the programs."""
        made = self.folder / "made"
        self.product.run("cmake", "-S", source, "-B", made, f"-DCMAKE_C_FLAGS={STRICT}", f"-DCMAKE_CXX_FLAGS={STRICT}")
        self.product.run("cmake", "--build", made)
        return made


class Client(WithPrinter):
    def test_finds_the_library_the_status_monitor_and_the_installer(self):
        self.assertIn(str(self.product.libraries), self.product.run("kestrel", "version"))
        self.product.run("kestrel", "-p", PRINTER, "status")
        self.product.run("kestrel", "monitor", "show")
        # An address of nobody: its module says so.
        with self.assertRaisesRegex(AssertionError, "the address is in use or not one of this computer"):
            self.product.run("kestrel", "metrics", "--listen", "192.0.2.1:9750", "--token", self.product.write("token", "0" * 16))
        inf = ROOT / "tests/process/two_kinds.inf"
        self.product.run("kestrel", "install", "printer", "Second", inf, "Model 32", "USB001")
        self.assertIn("Second", self.product.run("kestrel", "printers"))


class Programs(WithPrinter):
    def test_of_ten_lines_are_built_by_pkg_config_and_by_cmake(self):
        program = dict(readme_examples())["c"]
        for name in ("ten.c", "ten.cpp"):
            (self.folder / name).write_text(program)
        for compiler, name in (("cc -std=c11", "ten.c"), ("c++ -std=c++17", "ten.cpp")):
            self.product.run("/bin/sh", "-c", f"{compiler} {STRICT} {name} {PACKAGE} -o ten", cwd=self.folder)
            self.assertRegex(self.product.run(self.folder / "ten"), r"\d")
        (self.folder / "CMakeLists.txt").write_text(TEN_LINES)
        made = self.build(self.folder)
        for name in ("c", "cpp"):
            self.assertRegex(self.product.run(made / name), r"\d")


class Readme(WithPrinter):
    def test_runs_as_it_stands(self):
        """Each example prints the fax redials of the printer, which are a number that nobody can guess."""
        self.assertEqual(LANGUAGES.keys(), dict(readme_examples()).keys())
        for language, program in readme_examples():
            name, commands = LANGUAGES[language]
            (self.folder / name).write_text(program)
            redials = str(random.randrange(1, 7))
            self.product.run("kestrel", "-p", PRINTER, "set", "fax.redials", redials)
            printed = self.product.run("/bin/sh", "-c", commands, cwd=self.folder)
            self.assertIn(redials, re.findall(r"\d+", printed), f"{language}: {printed}")


class Examples(WithPrinter):
    def test_do_what_they_say(self):
        made = self.build(ROOT / "examples")
        client = lambda *words: self.product.run("kestrel", "-p", PRINTER, *words)
        example = lambda name, *words: self.product.run(made / name, *words)

        client("set", "device.name", "Zo\u00eb")
        self.assertRegex(example("read_settings", PRINTER), r"(?s)fax redials: 3\n.*name: Zo\u00eb\n")
        self.assertEqual("fax redials: 7\n", example("change_setting", "7"))
        self.assertEqual("7", client("get", "fax.redials").strip()[-1])
        with self.assertRaisesRegex(AssertionError, "the printer does not take this number: "):
            example("change_setting", "200")
        with self.assertRaisesRegex(AssertionError, "cannot be selected: there is no such printer"):
            example("read_settings", "nobody")
        self.assertRegex(example("address_book", "7", "Head office", "0301234567"), r" 7  fax    Head office: 0301234567\n")
        self.assertIn("Head office", client("addressbook", "export"))
        with self.assertRaisesRegex(AssertionError, r"(?s)redials: 7, fax mode: .*the printer found an error in the data"):
            example("cpp", PRINTER)  # ends with the refusal that it shows
        self.assertRegex(self.product.run("/usr/bin/python3", ROOT / "examples/python.py", PRINTER),
                         r"(?s)fax\.redials +5 .*\n[^\n]*\w\n$")
        self.assertRegex(example("watch_status", "1"), r"^state \d+: .+\n$")

        self.product.write("control.json", '{"*": {"upgrade.seconds": 1}}')
        firmware = self.product.write("new.fw", "ZRFW 1 9900.2210.420\n")
        self.assertRegex(example("upgrade_firmware", firmware), r"before: .*\nafter: .*9900\.2210\.420")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
