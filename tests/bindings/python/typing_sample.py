"""A caller as a type checker sees it. Each line that ends with "wrong" must be refused, and no other."""
import asyncio
from ipaddress import IPv4Address
from typing import Dict, List

from kestrel_sdk import AsyncPrinter, FaxMode, PingCount, Printer, QuickDial, Value


def settings(printer: Printer, name: str) -> None:
    redials: int = printer["fax.redials"]
    backup: bool = printer["fax.backup"]
    mode: FaxMode = printer["fax.mode"]
    address: IPv4Address = printer["ip.static.address"]
    key: str = printer["wireless.security-key0"]
    printer["fax.redials"] = redials + 1
    printer["fax.backup"] = not backup
    printer["fax.mode"] = "Fine_Color" if mode is FaxMode.FINE_BLACK else FaxMode("Fine_Black")
    printer["ip.static.address"] = "10.0.0.1" if address.is_private else address
    everything: Dict[str, Value] = {name: printer[name] for name in printer}
    print(dict(printer.settings()), everything, key, printer.read(name), printer.describe(name).range)
    text: str = printer["fax.redials"]  # wrong
    printer["fax.redials"] = "5"  # wrong
    printer["fax.mode"] = 5.0  # wrong
    printer["fax.redails"] = 5  # wrong
    print(printer["fax.redails"], text)  # wrong
    printer["device.rpid"] = "x"  # wrong
    print(printer["device.camera-mode"])  # wrong
    printer["device.restore-defaults"] = "All"  # wrong


def others(printer: Printer) -> None:
    dials: List[QuickDial] = printer.speed_dials(timeout=10)
    printer.set_one_touch(dials[:5])
    pings: PingCount = printer.ping("10.0.0.1", count=2)
    printer.ping(count="2", address=pings)  # wrong
    printer.status("now")  # wrong


async def later(printer: AsyncPrinter) -> None:
    redials: int = await printer.get("fax.redials")
    await printer.set("fax.redials", redials)
    task: "asyncio.Task[List[str]]" = asyncio.create_task(printer.hosts())
    print(await task)
    await printer.set("fax.redials", "5")  # wrong
    text: str = await printer.get("fax.redials")  # wrong
    print(text, (await printer.status()).nothing)  # wrong
