"""What CMakeLists.txt says of the project, for the scripts beside this one."""
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
_text = (ROOT / "CMakeLists.txt").read_text()
VERSION = re.search(r"project\(KestrelSDK VERSION ([\d.]+)", _text)[1]
PRODUCT = re.search(r'set\(KESTREL_PRODUCT "(\w+)"', _text)[1]
