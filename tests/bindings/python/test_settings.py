"""Every setting by its name, and what cannot be."""
import ctypes
import ipaddress
import subprocess

import pytest
from conftest import BIN

import kestrel_sdk
from kestrel_sdk import SETTINGS, Choice, KestrelError, Printer


def other(setting, value):
    """A value that the printer takes and does not have."""
    if setting.type is bool:
        return not value
    if setting.type is int:
        return setting.range[0] if value != setting.range[0] else setting.range[1]
    if setting.type is str:
        return "x" * setting.max_length
    if issubclass(setting.type, Choice):
        return next(member for member in setting.type if member != value)
    return ipaddress.IPv4Address("10.1.2.3")


def test_every_setting_is_read_changed_and_read_back(printer):
    readable = [setting for setting in SETTINGS.values() if setting.readable]
    assert len(readable) > 70
    for setting in readable:
        value = printer[setting.name]
        assert type(value) is setting.type, setting.name
        if setting.writable:
            wanted = other(setting, value)
            printer[setting.name] = wanted
            assert printer[setting.name] == wanted, setting.name
    # What it says is what the client says.
    names = "fax.mode", "ip.static.address", "wireless.rssi-dbm"
    said = subprocess.run([BIN / "kestrel", "-p", "Office", "get", *names], stdout=subprocess.PIPE, text=True, check=True)
    assert said.stdout.split()[1::2] == [str(printer.read(name)) for name in names]
    printer.run("device.restore-defaults", "all")
    assert printer["fax.redials"] == 3


def test_it_is_a_mapping_without_secrets(printer):
    everything = dict(printer)
    assert everything == dict(printer.settings()) and len(everything) == len(printer)
    assert not [name for name in everything if SETTINGS[name].secret or not SETTINGS[name].readable]
    assert set(printer.settings("copy.*")) == {name for name in SETTINGS if name.startswith("copy.")}
    with pytest.raises(KeyError):
        printer.settings()["wireless.pass-phrase"]
    with pytest.raises(KestrelError) as refused:
        printer["wireless.pass-phrase"] = "very secret \x01"
    assert "very secret" not in str(refused.value)


REFUSED = [
    ("fax.redails", 1, KeyError), ("fax.redials", 256, ValueError), ("fax.redials", "5", ValueError),
    ("fax.redials", True, ValueError), ("fax.redials", 200, kestrel_sdk.ValueRefusedError),
    ("copy.quantity", 200, ValueError), ("fax.backup", 1, ValueError), ("fax.mode", "splendid", ValueError),
    ("fax.mode", 6, ValueError), ("fax.mode", kestrel_sdk.CopyQuality.DRAFT, ValueError),
    ("ip.static.address", "1.2.3", ValueError), ("device.name", "x" * 64, ValueError),
    ("device.name", "\U00020000", ValueError), ("device.rpid", "x", TypeError),
    ("device.restore-defaults", "All", TypeError)]


def test_what_cannot_be_set_is_refused_in_words(printer):
    for name, value, kind in REFUSED:
        with pytest.raises(kind) as refused:
            printer[name] = value
        assert isinstance(refused.value, KestrelError) and name in str(refused.value), (name, value)


def test_words_are_taken_as_people_write_them(printer):
    for written in ("Fine_Color", "fine color", "FINE-COLOR", "fine_color", 2):
        printer["fax.mode"] = "draft black"
        printer["fax.mode"] = written
        assert printer["fax.mode"] is kestrel_sdk.FaxMode.FINE_COLOR
    printer["device.language"] = "CastilianSpanish"  # the words' order is not that of the numbers
    assert printer["device.language"] == kestrel_sdk.Language.CASTILIAN_SPANISH
    assert printer.send("DeviceSettings.System.Language?") == b"0000,DeviceSettings.System.Language=CastilianSpanish;"
    assert printer.describe("FAX.REDIALS").range == (0, 10)
    assert printer.describe("fax.dialing").words == ("Tone", "Pulse")


def test_each_error_is_of_its_family_and_tells_all(printer, virtual):
    for name, kind in (("Nobody", LookupError), ("\\\\other\\Office", kestrel_sdk.NoPrinterError)):
        with pytest.raises(kind):
            Printer(name)
    with pytest.raises(FileNotFoundError):
        printer.upgrade_firmware("/nowhere")
    with pytest.raises(kestrel_sdk.NotSupportedError) as unknown:
        printer.send("Nonsense?")
    error = unknown.value
    assert (error.code, error.name, error.response_number) == (22, "ERROR_BAD_COMMAND", 3400)
    assert error.text and error.advice and error.reply.startswith("3400,")
    virtual.happens(device_online=False)
    with pytest.raises(ConnectionError):
        printer["fax.redials"]
    with pytest.raises(kestrel_sdk.InstallationError, match="KESTREL_SDK_LIBRARY"):
        Printer("Office", product="NONE", library="/nowhere/libNONESDK.so")


def test_records_have_the_sizes_that_the_headers_name():
    from kestrel_sdk import _catalogue
    for record, size in (("DeviceStatusRecord", 1052), ("KestrelQuickDial", 184), ("KestrelAccessPoint", 372),
                         ("KestrelHost", 512)):
        assert ctypes.sizeof(getattr(_catalogue, record)) == size
