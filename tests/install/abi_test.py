#!/usr/bin/env python3
"""That scripts/abi sees what breaks programs, shown at a small library in five states."""
import pathlib
import runpy
import subprocess
import tempfile
import unittest

abi = runpy.run_path(str(pathlib.Path(__file__).resolve().parent.parent.parent / "scripts" / "abi"))

HEADER = "typedef struct Point { int x; int y; } Point;\nint Reach(const Point* point);\nint Leave(void);\n"
SOURCE = '#include "api.h"\nint Reach(const Point* point) { return point->x; }\nint Leave(void) { return 1; }\n'
HIDDEN = SOURCE.replace("int Leave", '__attribute__((visibility("hidden"))) int Leave')


class Changes(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.folder / "base.abi").write_text(abi["description_of"](self.build(HEADER, SOURCE), self.folder))

    def build(self, header, source):
        (self.folder / "api.h").write_text(header)
        (self.folder / "api.c").write_text(source)
        library = self.folder / "libapi.so"
        subprocess.run(["cc", "-g", "-shared", "-fPIC", "-o", library, self.folder / "api.c"], check=True)
        return library

    def changes(self, header, source):
        return abi["changes"](self.folder / "base.abi", self.build(header, source), self.folder)

    def test_are_none_in_the_same_library_and_in_one_with_more_functions(self):
        self.assertEqual("", self.changes(HEADER, SOURCE))
        self.assertEqual("", self.changes(HEADER + "int More(void);\n", SOURCE + "int More(void) { return 2; }\n"))

    def test_are_seen_in_functions_that_are_gone_and_in_types_and_parameters(self):
        self.assertIn("Leave", self.changes(HEADER, HIDDEN))
        self.assertIn("Point", self.changes(HEADER.replace("int y", "int y; int z"), SOURCE))
        self.assertIn("Leave", self.changes(HEADER.replace("Leave(void)", "Leave(int)"), SOURCE.replace("Leave(void)", "Leave(int a)")))


if __name__ == "__main__":
    unittest.main()
