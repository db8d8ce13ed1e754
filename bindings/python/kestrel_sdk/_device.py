"""The calls of the library as methods. All run on the one thread that has selected the printer, and block it."""
from __future__ import annotations

import ctypes
import datetime
import enum
import ipaddress
import os
from typing import Any, List, Optional, Sequence, Union

from . import _catalogue
from ._catalogue import LIMITS, SETTINGS
from ._errors import InvalidValueError, KestrelError
from ._library import Library, Path
from ._records import AccessPoint, Capabilities, Firmware, Identity, PingCount, QuickDial, Status
from ._settings import Setting, Value, address_number, find, text_of, utf16

Address = Union[str, ipaddress.IPv4Address]

_FOREVER = 0xFFFFFFFF
_LONGEST_MESSAGE = 65791
_CAPABILITY_BYTES = 48
_NO_VERSION = 32


class Action(str, enum.Enum):
    """What the printer can do to itself."""

    CALIBRATE = "calibrate"
    TEST_PAGE = "test-page"
    CLEAN = "clean"
    DEEP_CLEAN = "deep-clean"
    CHECK_NOZZLES = "check-nozzles"
    ALIGN = "align"
    VTOE = "vtoe"


_ACTIONS = {Action.CALIBRATE: ("CalibrateHead",), Action.TEST_PAGE: ("PrintTestPage",), Action.CLEAN: ("CleanHead", 0),
            Action.DEEP_CLEAN: ("CleanHead", 1), Action.CHECK_NOZZLES: ("CheckNozzle",), Action.ALIGN: ("AlignHead",),
            Action.VTOE: ("VTOE",)}


def milliseconds(seconds: Optional[float]) -> int:
    """A time-out as the functions take it; None waits without limit."""
    if seconds is None:
        return _FOREVER
    if not 0 <= seconds < _FOREVER / 1000:
        raise InvalidValueError(f"{seconds!r} is no time-out: seconds from 0 on, or None for no limit")
    return round(seconds * 1000)


class Device:
    """`timeout`: seconds for an exchange; a call may take twice as long, once for its turn and once for the reply."""

    def __init__(self, library: Library, name: Optional[str], timeout: Optional[float]) -> None:
        self.library = library
        self.name = name
        self.timeout = timeout
        self.locked = False
        milliseconds(timeout)

    def select(self) -> None:
        """Selects the printer for this thread."""
        self.library.call(f'cannot select the printer "{self.name}"' if self.name else "cannot select a printer",
                          "SelectPrinter", utf16(self.name) if self.name else None)

    def _call(self, what: str, function: str, *arguments: Any, timeout: Optional[float] = None) -> None:
        limit = milliseconds(self.timeout if timeout is None else timeout)
        self.library.call("cannot " + what, function, *arguments, limit)

    def _number(self, what: str, function: str) -> int:
        number = self.library.function(function).argtypes[0]._type_()
        self._call(what, function, number)
        return int(number.value)

    # Settings

    def read(self, name: str) -> Value:
        """The value of the setting of that name, which may be any text. A query that another program's closing has
        withdrawn is repeated once."""
        setting = find(SETTINGS, name).demand(readable=True)
        index = () if setting.index is None else (setting.index,)
        buffer = setting.buffer(self.library.function(setting.getter).argtypes[len(index)])
        self._call(f"read {setting.name}", setting.getter, *index, buffer)
        return setting.decode(buffer)

    def write(self, name: str, value: Value) -> None:
        """Sets the setting of that name, which may be any text. It is sent once, whatever happens."""
        self._set(find(SETTINGS, name).demand(writable=True), value)

    def run(self, name: str, value: Value) -> None:
        """Runs a command of the catalogue, such as run("device.restore-defaults", "network"): the printer acts at
        once."""
        self._set(find(SETTINGS, name).demand(command=True), value)

    def _set(self, setting: Setting, value: object) -> None:
        encoded = setting.encode(value)
        if isinstance(value, str) and setting.type is str and not self.library.can_say(value):
            raise setting.refuse(value, "the system's code page lacks some of its characters")
        index = () if setting.index is None else (setting.index,)
        self._call(f"set {setting.name}", setting.setter, *index, encoded)

    # Session

    def status(self) -> Status:
        """The printer's status. The status monitor is started if it does not run, and a status that is not known yet is
        waited for, up to 14 s; in the worst case the call takes 133 s."""
        record = _catalogue.DeviceStatusRecord()
        # It asks eight times by itself.
        self.library.call("cannot read the status", "GetStatus", record, ctypes.sizeof(record), repeat=False)
        return Status.from_c(record)

    def take_lock(self) -> None:
        """Keeps the printer for this Printer; the requests of other programs may be refused as busy. Better:
        `with printer.lock():`."""
        self._call("lock the printer", "Lock")
        self.locked = True

    def give_lock(self) -> None:
        """Gives the printer back, and asks again once a second until it confirms that."""
        self.locked = False
        self._call("unlock the printer", "Unlock")

    def leave(self) -> None:
        """Before the end: a thread that ends does not give the printer back."""
        if self.locked:
            self.give_lock()

    def cancel(self) -> None:
        """Cancels what the language monitor is doing for this printer."""
        self.library.call("cannot cancel", "Cancel")

    def use_cache(self, enable: bool) -> None:
        """Whether the language monitor may answer from what it knows, or asks the printer each time."""
        self.library.call("cannot switch the cache", "EnableCache", int(enable))

    def send(self, request: Union[bytes, str], timeout: Optional[float] = None) -> bytes:
        """Sends one request of the printer's command language, and gives the whole reply. It is sent once. A text is
        sent as ASCII."""
        sent = request.encode("ascii") if isinstance(request, str) else bytes(request)
        reply, length = ctypes.create_string_buffer(_LONGEST_MESSAGE), ctypes.c_uint32()
        self._call("send the request", "SendCmd", sent, len(sent), reply, len(reply), length, timeout=timeout)
        return reply.raw[:length.value]

    def maintain(self, action: Union[Action, str]) -> None:
        """Starts an action of the printer, an Action or its word; returns when the printer has taken it on."""
        try:
            function, *arguments = _ACTIONS[Action(action)]
        except ValueError:
            raise InvalidValueError(f"there is no maintenance action {action!r}; there are "
                                    + ", ".join(known.value for known in Action)) from None
        self.library.call(f"cannot run {Action(action).value}", str(function), *arguments)

    # Address book

    def speed_dials(self, timeout: Optional[float] = 60) -> List[QuickDial]:
        """The speed-dial list, all 60 records. `timeout`: seconds for the whole list, which takes 180 requests."""
        return self._list("speed-dial", "GetQuickDialNumbers", LIMITS["KESTREL_SPEED_DIAL_RECORDS"], timeout)

    def set_speed_dials(self, records: Sequence[QuickDial]) -> None:
        """Writes the whole speed-dial list with one request; what `records` leaves out becomes empty."""
        self._set_list("speed-dial", "SetQuickDialNumbers", LIMITS["KESTREL_SPEED_DIAL_RECORDS"], records)

    def one_touch(self, timeout: Optional[float] = 60) -> List[QuickDial]:
        """The one-touch list, all 5 records. `timeout`: seconds for the whole list."""
        return self._list("one-touch", "GetQuickDialButtons", LIMITS["KESTREL_ONE_TOUCH_RECORDS"], timeout)

    def set_one_touch(self, records: Sequence[QuickDial]) -> None:
        """Writes the whole one-touch list, record by record; what `records` leaves out becomes empty."""
        self._set_list("one-touch", "SetQuickDialButtons", LIMITS["KESTREL_ONE_TOUCH_RECORDS"], records)

    def one_touch_record(self, index: int) -> QuickDial:
        """One record of the one-touch list, counted from 0."""
        record = _catalogue.KestrelQuickDial()
        self._call(f"read record {index} of the one-touch list", "GetQuickDialButton", _index(index), record)
        return QuickDial.from_c(record)

    def set_one_touch_record(self, index: int, record: QuickDial) -> None:
        """Writes one record of the one-touch list, counted from 0."""
        self._call(f"write record {index} of the one-touch list", "SetQuickDialButton", _index(index),
                   self._dial(record))

    def _dial(self, record: QuickDial) -> _catalogue.KestrelQuickDial:
        if not self.library.can_say(record.name + record.address):
            raise InvalidValueError(f"the system's code page lacks some characters of {record}")
        return record.to_c()

    def _list(self, which: str, function: str, count: int, timeout: Optional[float]) -> List[QuickDial]:
        records = (_catalogue.KestrelQuickDial * count)()
        self._call(f"read the {which} list", function, records, timeout=timeout)
        return [QuickDial.from_c(record) for record in records]

    def _set_list(self, which: str, function: str, count: int, records: Sequence[QuickDial]) -> None:
        if len(records) > count:
            raise InvalidValueError(f"the {which} list has {count} records, not {len(records)}")
        whole = [*records, *[QuickDial()] * (count - len(records))]
        self._call(f"write the {which} list", function,
                   (_catalogue.KestrelQuickDial * count)(*map(self._dial, whole)))

    # Network

    def start_search(self) -> None:
        """Starts a search for access points and does not wait for its end."""
        self._call("start a search", "StartSearchForAccessPoints")

    def access_points_found(self) -> int:
        """How many access points the search has found so far."""
        return self._number("count the access points", "GetNumAccessPoints")

    def access_points(self) -> List[AccessPoint]:
        """The access points that the last search has found, at most 30."""
        records = (_catalogue.KestrelAccessPoint * LIMITS["KESTREL_MAX_ACCESS_POINTS"])()
        found = min(self.access_points_found(), len(records))
        self._call("read the access points", "GetAccessPoints", records)
        return [AccessPoint.from_c(record) for record in records[:found]]

    def start_ping(self, address: Address, count: int = 4, wait: int = 2) -> None:
        """Lets the printer ping an address `count` times and wait `wait` for each answer, in its own unit; does not
        wait for the answers."""
        if not (1 <= count <= 255 and 1 <= wait <= 255):
            raise InvalidValueError(f"count {count} and wait {wait} must be within 1 to 255")
        try:
            number = address_number(address)
        except ValueError:
            raise InvalidValueError(f"{address!r} is no address; write four numbers with dots") from None
        self._call(f"ping {address}", "SetPing", number, count, wait)

    def ping_count(self) -> PingCount:
        """Pings sent, and answered, since the last start."""
        return PingCount(self._number("count the pings sent", "GetNumOfPingExecuted"),
                         self._number("count the pings answered", "GetNumOfPingSuccess"))

    def hosts(self) -> List[str]:
        """The hosts that the printer has discovered by multicast DNS."""
        records = (_catalogue.KestrelHost * LIMITS["KESTREL_MAX_HOSTS"])()
        self._call("read the hosts", "GetMDNSHostList", records)
        return [name for name in (text_of(record.name) for record in records) if name]

    # Clock

    def clock(self) -> datetime.datetime:
        """The time that the printer shows, to the minute, in its own time zone."""
        parts = [ctypes.c_uint32() for _ in range(5)]
        self._call("read the clock", "GetDeviceTime", *parts)
        try:
            return datetime.datetime(*(part.value for part in parts))  # type: ignore[arg-type]
        except ValueError as reason:
            raise KestrelError(f"cannot read the clock: the printer sends no date and time ({reason})") from None

    def set_clock(self, time: datetime.datetime) -> None:
        """Sets the clock to what `time` shows, to the minute."""
        self._call("set the clock", "SetDeviceTime", time.year, time.month, time.day, time.hour, time.minute)

    def sync_clock(self) -> None:
        """Sets the printer's clock to that of this computer."""
        self._call("set the clock", "SetCurrentTimeRTC")

    def clock_text(self) -> str:
        """The clock as 28 hexadecimal digits: who set it, the seconds, and the distance from UTC."""
        text = ctypes.create_string_buffer(58)
        self._call("read the clock", "GetCurrentTimeRTC", text)
        return text_of(text)

    # Firmware, capabilities, identity

    def firmware(self) -> Firmware:
        """The versions of the firmware."""
        lagoon, customer, text = ctypes.c_uint32(), ctypes.c_uint32(), ctypes.create_string_buffer(128)
        self._call("read the firmware's versions", "GetFWVersion", lagoon, customer, text)
        return Firmware(text_of(text), customer.value, lagoon.value)

    def upgrade_firmware(self, path: Path) -> None:
        """Hands an upgrade file to the language monitor, which takes up to a minute, in the worst case 142 s; the
        printer goes on by itself."""
        self.library.call(f"cannot upgrade the firmware with {os.fspath(path)}", "UpgradeFW",
                          utf16(os.path.abspath(path)))

    def refresh_firmware_capabilities(self) -> None:
        """Makes the language monitor ask the printer for its firmware's capabilities anew."""
        self._call("refresh the firmware's capabilities", "RefreshFWCapabilities")

    def capabilities(self) -> Capabilities:
        """What the printer can, with several requests."""
        version = self._number("read the RBN version", "GetCapRBNVer")
        # A character above 127 comes as its byte with the upper bits set.
        letter = bytes([version & 0xFF]).decode("latin-1") if version not in (0, _NO_VERSION) else ""
        return Capabilities(self._number("read the upgrade capability", "GetCapFWUpgrade") != 0,
                            self._number("read the edge capability", "GetCapTOFEdgeOverride") != 0, letter,
                            self._capability_block())

    def _capability_block(self) -> Optional[bytes]:
        block = ctypes.create_string_buffer(_CAPABILITY_BYTES)
        if not self._offers("read the capabilities", "GetCapabilities", block, _CAPABILITY_BYTES):
            return None
        return block.raw

    def identity(self) -> Identity:
        """The printer's identifiers and cloud services, with several requests."""
        vendor, product = ctypes.c_uint32(), ctypes.c_uint32()
        self._call("read the identity", "GetVendorProductIDs", vendor, product)
        services: List[Optional[bool]] = []
        for function in ("GetGCPConfigured", "GetPennantConfigured"):
            configured = ctypes.c_uint8()
            offered = self._offers("read a cloud service", function, configured)
            services.append(configured.value != 0 if offered else None)
        return Identity(vendor.value, product.value, *services)

    def _offers(self, what: str, function: str, *arguments: Any) -> bool:
        """False when the call fails without a code: the printer does not have this."""
        try:
            self._call(what, function, *arguments)
        except KestrelError as error:
            if error.code == 0:
                return False
            raise
        return True

    # The status monitor, and supplies

    def show_status_monitor(self) -> None:
        """Lets the status monitor open its window for this printer, after starting it if it does not run."""
        self.library.call("cannot open the status window", "ShowStatusMonitor")

    def show_maintenance(self) -> None:
        """Lets the status monitor open its maintenance window, after starting it if it does not run."""
        self.library.call("cannot open the maintenance window", "ShowMaintenance")

    def show_about_box(self) -> None:
        """Lets the status monitor open its about box, if it runs."""
        self.library.call("cannot open the about box", "ShowAboutBox")

    def window_always_shown(self) -> bool:
        """Whether the status monitor's window is always shown to the current user."""
        return bool(self.library.function("GetStatusMonitorDisplayMode")())

    def set_window_always_shown(self, always: bool) -> None:
        """Stores for the current user whether the status monitor's window is always shown."""
        self.library.call("cannot store the display mode", "SetStatusMonitorDisplayMode", int(always))

    def order_supplies(self) -> None:
        """Starts the ordering of supplies, by the printer or else by the status monitor."""
        self.library.call("cannot order supplies", "OrderSupplies")


def _index(index: int) -> int:
    if index < 0:
        raise InvalidValueError(f"record {index}: records count from 0")
    return index


