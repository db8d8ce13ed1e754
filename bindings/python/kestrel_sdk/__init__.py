"""Kestrel SDK: the settings and the state of one installed printer.

    from kestrel_sdk import Printer

    with Printer("Office") as printer:
        printer["fax.redials"] = 5
        print(printer.status().text, dict(printer.settings("fax.*")))
"""
from . import _catalogue
from ._catalogue import *  # noqa: F403  the enumerations and SETTINGS
from ._device import Action
from ._errors import (AccessDeniedError, BadReplyError, ClosedError, InstallationError, InvalidValueError, KestrelError,
                      LockedError, MissingFileError, NoAnswerError, NoPrinterError, NotSupportedError, OfflineError,
                      OutOfResourcesError, RefusedError, SettingAccessError, UnknownSettingError, ValueRefusedError)
from ._installation import add_driver, add_network_port, add_printer, interface_version
from ._printer import AsyncPrinter, Printer
from ._records import AccessPoint, Capabilities, Firmware, Identity, PingCount, QuickDial, Status
from ._settings import Choice, Setting, SettingsView, Value

__all__ = [
    "AccessDeniedError", "AccessPoint", "Action", "AsyncPrinter", "BadReplyError", "Capabilities", "Choice",
    "ClosedError", "Firmware", "Identity", "InstallationError", "InvalidValueError", "KestrelError", "LockedError",
    "MissingFileError", "NoAnswerError", "NoPrinterError", "NotSupportedError", "OfflineError",
    "OutOfResourcesError", "PingCount", "Printer", "QuickDial", "RefusedError", "Setting", "SettingAccessError",
    "SettingsView", "Status", "UnknownSettingError", "Value", "ValueRefusedError", "add_driver", "add_network_port",
    "add_printer", "interface_version"]
__all__ += _catalogue.__all__
