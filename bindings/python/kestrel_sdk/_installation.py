"""What is done without a printer: the library's version, and the installation of ports, drivers and printers."""
from __future__ import annotations

import contextlib
import ctypes
from typing import Any, Iterator, Optional

from ._errors import InvalidValueError
from ._library import PRODUCT, Path, load
from ._settings import text_of, utf16
from ._worker import Worker

_PORT_NAME_UNITS = 64


def interface_version(*, product: str = PRODUCT, library: Optional[Path] = None) -> int:
    """The version of the library's interface."""
    return int(load(product, library).function("GetSDKVersion")())


def add_network_port(host: str, number: int = 9100, name: str = "", *, product: str = PRODUCT,
                     library: Optional[Path] = None) -> str:
    """Makes a Standard TCP/IP port and gives its name, or an empty one when the port monitor could not be asked. One of
    that name that is there already stays as it is. The system may want an administrator.

    `host`: IPv4 address in dotted form, or a host name; at most 48 characters.
    `number`: TCP port.
    `name`: the wanted name; without one it is ZRIJT_ and the host.
    """
    wanted = utf16(name)
    if len(wanted) > 2 * _PORT_NAME_UNITS:
        raise InvalidValueError(f"the port name {name!r} is too long: at most {_PORT_NAME_UNITS - 1} characters")
    buffer = ctypes.create_string_buffer(wanted, 2 * _PORT_NAME_UNITS)
    _call(product, library, f"add a port to {host}", "AddNetPort", utf16(host), number, buffer)
    return text_of(buffer)


def add_printer(name: str, inf: Path, model: str, port: str, *, make_default: bool = False, product: str = PRODUCT,
                library: Optional[Path] = None) -> None:
    """Makes a printer with a driver of a setup information file, through the system's own program, and returns when
    that has ended. Whether the printer was made is not examined.

    `name`, `model`, `port`: the new printer's name, a model of the file, an existing port.
    """
    words = _words(name, inf, model, port)
    _call(product, library, f"add the printer {name}", "AddDriverInstance", *words, int(make_default))


def add_driver(inf: Path, model: str, *, product: str = PRODUCT, library: Optional[Path] = None) -> None:
    """Installs the driver of a model of a setup information file, without a printer; otherwise as add_printer."""
    _call(product, library, f"add the driver of {model}", "AddDriverFiles", *_words(inf, model))


def _words(*texts: Path) -> Iterator[bytes]:
    """Words of a command line."""
    for text in texts:
        if '"' in str(text):
            raise InvalidValueError(f"{text} must not hold a double quote")
        yield utf16(str(text))


def _call(product: str, library: Optional[Path], attempt: str, function: str, *arguments: Any) -> None:
    # The calls may take minutes: on a thread of their own an interrupt is heard meanwhile.
    with contextlib.closing(Worker("kestrel installation")) as worker:
        worker.run(lambda: load(product, library).call("cannot " + attempt, function, *arguments))
