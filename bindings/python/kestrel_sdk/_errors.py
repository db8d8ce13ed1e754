"""The exceptions. Each has a builtin one among its bases where Python has a name for the same thing."""
from __future__ import annotations

from typing import Dict, Tuple, Type


class KestrelError(Exception):
    """Base of all that this package raises for reasons of its own. After a call of the library has failed:

    code             the last-error value, which the C header sdk_errors.h lists; 0 where there is none
    name             its name, such as "SDK_ERROR_NO_REPLY"
    text, advice     what happened, and what to do about it
    reply            the last reply that was judged bad or not understood, as text; empty when that was not the reason
    response_number  that of the last reply; 100000 before any
    """

    code: int = 0
    name: str = ""
    text: str = ""
    advice: str = ""
    reply: str = ""
    response_number: int = 100000

    def __str__(self) -> str:
        return " ".join(map(str, self.args))  # KeyError would show it quoted


class UnknownSettingError(KestrelError, KeyError):
    """No setting has this name."""


class SettingAccessError(KestrelError, TypeError):
    """A setting that can only be read was set, or one that can only be set was read."""


class InvalidValueError(KestrelError, ValueError):
    """A value that the setting or the function cannot take; as a rule nothing was sent."""


class ClosedError(KestrelError, RuntimeError):
    """The Printer is closed, or belongs to the process before a fork."""


class NoPrinterError(KestrelError, LookupError):
    """No such printer, or none that the library can use."""


class NoAnswerError(KestrelError, TimeoutError):
    """No reply in time: the printer's language monitor, or the status monitor, does not run or is busy."""


class OfflineError(KestrelError, ConnectionError):
    """The language monitor runs but does not reach the printer."""


class LockedError(KestrelError):
    """Another program holds the printer, or this one does and would select another."""


class RefusedError(KestrelError):
    """The printer, or the status monitor, understood and said no."""


class ValueRefusedError(RefusedError, ValueError):
    """The printer does not take this value."""


class NotSupportedError(RefusedError):
    """The printer model does not have this."""


class BadReplyError(KestrelError):
    """A reply came and was not understood."""


class MissingFileError(KestrelError, FileNotFoundError):
    """No file at the path, or not on the printer."""


class AccessDeniedError(KestrelError, PermissionError):
    """This account may not do that."""


class OutOfResourcesError(KestrelError, MemoryError):
    """Memory, files or room on the disk ran out."""


class InstallationError(KestrelError, OSError):
    """The library, the product's configuration or the spooler is not as it should be."""


# The families by the names of sdk_errors.h. A code that is in none of them is an InstallationError.
_FAMILIES: Dict[Type[KestrelError], Tuple[str, ...]] = {
    NoPrinterError: ("SDK_ERROR_CHANNEL_NOT_OPEN", "SDK_ERROR_BIDI_DISABLED", "SDK_ERROR_NETWORK_PRINTER_NAME",
                     "SDK_ERROR_PORT_LIST", "ERROR_INVALID_PRINTER_NAME", "ERROR_PRINTER_DELETED"),
    NoAnswerError: ("SDK_ERROR_SEND_INCOMPLETE", "SDK_ERROR_NO_REPLY", "ERROR_TIMEOUT", "ERROR_SHARING_VIOLATION",
                    "ERROR_ABANDONED_WAIT_0", "ERROR_OPERATION_ABORTED"),
    OfflineError: ("ERROR_DEVICE_NOT_AVAILABLE",),
    LockedError: ("ERROR_BUSY", "ERROR_LOCKED"),
    RefusedError: ("NO_ERROR", "ERROR_GEN_FAILURE", "ERROR_FILE_CORRUPT"),
    ValueRefusedError: ("ERROR_CRC",),
    NotSupportedError: ("ERROR_BAD_COMMAND", "ERROR_NOT_SUPPORTED"),
    BadReplyError: ("SDK_ERROR_BAD_REPLY", "SDK_ERROR_UNEXPECTED_REPLY"),
    InvalidValueError: ("ERROR_INVALID_PARAMETER", "ERROR_FILENAME_EXCED_RANGE"),
    MissingFileError: ("ERROR_FILE_NOT_FOUND",),
    AccessDeniedError: ("ERROR_ACCESS_DENIED",),
    OutOfResourcesError: ("ERROR_NOT_ENOUGH_MEMORY", "ERROR_OUTOFMEMORY", "ERROR_TOO_MANY_OPEN_FILES",
                          "ERROR_DISK_FULL", "ERROR_NO_SYSTEM_RESOURCES", "ERROR_COMMITMENT_LIMIT"),
}
_FAMILY_OF = {name: family for family, names in _FAMILIES.items() for name in names}


def family_of(name: str) -> Type[KestrelError]:
    """The class for the code of that name."""
    return _FAMILY_OF.get(name, InstallationError)
