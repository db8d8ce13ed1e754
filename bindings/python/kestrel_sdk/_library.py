"""The shared library: where it is found, its functions with their types, and what a failed call leaves."""
from __future__ import annotations

import codecs
import ctypes
import os
import pathlib
import sys
from typing import Any, Dict, Iterator, List, Optional, Union

from ._catalogue import CODELESS, ERRORS, FUNCTIONS, Error
from ._errors import BadReplyError, InstallationError, KestrelError, NoPrinterError, family_of
from ._settings import text_of

Path = Union[str, "os.PathLike[str]"]

PRODUCT = "ZRIJ9900"
VARIABLE = "KESTREL_SDK_LIBRARY"
_WINDOWS = sys.platform == "win32"
_NO_REPLY = 0xE0000003
_INVALID_PARAMETER = 87
_LONGEST_REPLY = 65792  # in UTF-16 units, with the terminator


def places(product: str) -> Iterator[str]:
    """Where the library of a product is looked for when nobody says where it is."""
    package = pathlib.Path(__file__).resolve().parent
    if _WINDOWS:
        name = product + "SDK.dll"
        folders = [package, *(parent / "bin" for parent in package.parents),
                   *(pathlib.Path(folder) for folder in os.get_exec_path() if os.path.isabs(folder))]
        yield from (str(folder / name) for folder in folders)
        return
    names = [f"lib{product}SDK.so.1", f"lib{product}SDK.so"]
    # An installation in a prefix of its own has the package in PREFIX/lib/python3/dist-packages.
    for folder in [package, *list(package.parents)[1:3]]:
        yield from (str(path) for name in names for path in (folder / name, *folder.glob("*-linux-gnu*/" + name)))
    yield from names


class Library:
    """A loaded library. Its functions may be called on any thread, and each thread has a selection of its own."""

    def __init__(self, product: str, path: Optional[Path]) -> None:
        self._functions: Dict[str, Any] = {}
        chosen = os.fspath(path) if path else os.environ.get(VARIABLE)
        self._dll = self._load([chosen] if chosen else list(places(product)), product)
        system = self._dll  # elsewhere than on Windows it needs a library with the system's functions
        if sys.platform == "win32":
            system = ctypes.WinDLL("kernel32")
        try:
            self._ansi = codecs.lookup(f"cp{system.GetACP()}")
        except LookupError:
            self._ansi = codecs.lookup("utf-8")

    @staticmethod
    def _load(candidates: List[str], product: str) -> ctypes.CDLL:
        reasons = []
        for candidate in candidates:
            if os.path.dirname(candidate) and not os.path.exists(candidate):
                continue
            try:
                return ctypes.CDLL(candidate, use_last_error=_WINDOWS)
            except OSError as reason:
                reasons.append(str(reason))
        raise InstallationError(
            f"the library of the product {product} cannot be loaded: {'; '.join(reasons) or 'it is not there'}; "
            f"install the Kestrel SDK, or name the library's file in {VARIABLE} (tried: {', '.join(candidates)})")

    def function(self, name: str) -> Any:
        """The C function with the types that the header gives it."""
        found = self._functions.get(name)
        if found is None:
            try:
                found = self._dll[name]
            except AttributeError:
                raise InstallationError(f"the library has no function {name}; install the library and this package "
                                        "from the same release") from None
            found.restype, *found.argtypes = FUNCTIONS[name]
            self._functions[name] = found
        return found

    def can_say(self, text: str) -> bool:
        """Whether the printer's 8-bit code page has all of its characters; others would reach it as "?"."""
        try:
            self._ansi.encode(text)
        except UnicodeError:
            return False
        return True

    def call(self, attempt: str, name: str, *arguments: Any, repeat: bool = True) -> None:
        """Calls a function, and raises what it left when it fails.

        `attempt`: what to say of it: "cannot read fax.redials".
        `repeat`: whether a query that another program's closing has withdrawn is repeated. A change never is.
        """
        function = self.function(name)
        code = 0
        for _ in range(2 if repeat and name.startswith("Get") else 1):
            if function(*arguments):
                return
            code = self._last_error()
            if code != _NO_REPLY:
                break
        raise self._failure(attempt, name, code)

    def _last_error(self) -> int:
        """The value that the call just before has left on this thread. ctypes keeps it on Windows, where its own calls
        would change it; elsewhere it is a function of a library that this one needs."""
        if sys.platform == "win32":
            return ctypes.get_last_error()
        code = self._dll.GetLastError
        code.restype = ctypes.c_uint32
        return int(code())

    def _failure(self, attempt: str, name: str, code: int) -> KestrelError:
        known = ERRORS.get(code) or Error(str(code), f"the system reports the error {code}", "see its documentation")
        family, text, advice = family_of(known.name), known.text, known.advice
        if code == _INVALID_PARAMETER and name.startswith("Get"):
            family, text = BadReplyError, "the printer answers with a word that is not known"
        elif code == 0:
            text, advice = CODELESS.get(name, "it was declined"), "look at the response number for the reason"
            if name == "SelectPrinter":
                family = NoPrinterError
                text = "no installed printer belongs to the product, or its configuration is not installed"
                advice = "install the product and a printer"
        reply = ctypes.create_string_buffer(2 * _LONGEST_REPLY)
        self.function("GetLastBadResponse")(reply, _LONGEST_REPLY)
        shown = f" ({known.name}, 0x{code:08X})" if code >= 0xE0000000 else f" ({known.name}, {code})" if code else ""
        error = family(f"{attempt}: {text}{shown}; {advice}")
        error.code, error.name, error.text, error.advice = code, known.name, text, advice
        error.reply = text_of(reply)
        error.response_number = int(self.function("GetLastResponseNum")())
        return error


_loaded: Dict[Any, Library] = {}


def load(product: str, path: Optional[Path]) -> Library:
    """The product's library, loaded once in a process. It is never unloaded: threads may have used it."""
    key = (product, os.fspath(path) if path else os.environ.get(VARIABLE))
    if key not in _loaded:
        _loaded[key] = Library(product, path)
    return _loaded[key]
