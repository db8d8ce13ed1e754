"""What the printer tells in records, for people."""
from __future__ import annotations

import dataclasses
from typing import Optional

from . import _catalogue
from ._catalogue import AddressType
from ._errors import InvalidValueError
from ._settings import text_of, utf16


@dataclasses.dataclass(frozen=True)
class QuickDial:
    """A destination of the address book. An empty one has the type NONE."""

    address_type: AddressType = AddressType.NONE
    name: str = ""
    address: str = ""
    """Fax number or e-mail address."""

    @classmethod
    def from_c(cls, record: _catalogue.KestrelQuickDial) -> QuickDial:
        return cls(AddressType(record.addressType), text_of(record.name), text_of(record.address))

    def to_c(self) -> _catalogue.KestrelQuickDial:
        try:
            record = _catalogue.KestrelQuickDial(AddressType(self.address_type))
        except ValueError:
            raise InvalidValueError(f"{self.address_type!r} is no type of address: none, fax or email") from None
        for field in ("name", "address"):
            units, text = getattr(record, field), utf16(getattr(self, field))
            if len(text) > 2 * len(units):
                raise InvalidValueError(f"the {field} {getattr(self, field)!r} of an address book record is too long: "
                                        f"at most {len(units) - 1} characters")
            units[:len(text) // 2] = memoryview(text).cast("H")
        return record


@dataclasses.dataclass(frozen=True)
class AccessPoint:
    """An access point as the printer sees it; the numbers are the printer's own."""

    ssid: str
    """Empty when it hides its name."""
    mac_address: str
    """00:1B:2C:3D:4E:5F; empty when the printer does not tell it."""
    channel: int
    signal_strength: int
    beacon_interval: int
    capabilities: int
    encryption: int

    @classmethod
    def from_c(cls, record: _catalogue.KestrelAccessPoint) -> AccessPoint:
        return cls(text_of(record.ssid), text_of(record.macAddress), record.channel, record.signalStrength,
                   record.beaconInterval, record.capabilities, record.encryption)


@dataclasses.dataclass(frozen=True)
class Status:
    """The printer's status."""

    state: int
    """The language monitor's number for it; 0 is ready."""
    text: str
    on_usb: bool
    """Whether the printer is on a USB port; else it is on the network."""
    record: bytes = dataclasses.field(repr=False)
    """The whole record, 1,052 bytes, in which the language monitor and the status monitor agree on more."""

    @property
    def known(self) -> bool:
        """Whether the language monitor has heard of the printer's status yet."""
        return self.state != 100000

    @classmethod
    def from_c(cls, record: _catalogue.DeviceStatusRecord) -> Status:
        return cls(record.state, text_of(record.text), record.onUsb != 0, bytes(record))


@dataclasses.dataclass(frozen=True)
class Firmware:
    """The versions of the firmware. What they count is the maker's business: compare them for equality."""

    printer: str
    customer: int
    lagoon: int


@dataclasses.dataclass(frozen=True)
class Capabilities:
    """What the printer can."""

    firmware_upgrade: bool
    top_of_form_edge_override: bool
    rbn_version: str
    """One character, or empty."""
    block: Optional[bytes]
    """The first 48 bytes of the printer's capability block; None when it has none of that length."""


@dataclasses.dataclass(frozen=True)
class Identity:
    """The printer's identifiers on the USB, and its cloud services: None for one that it does not know."""

    vendor: int
    product: int
    gcp_configured: Optional[bool]
    pennant_configured: Optional[bool]


@dataclasses.dataclass(frozen=True)
class PingCount:
    """Pings since the last one was started."""

    sent: int
    answered: int
