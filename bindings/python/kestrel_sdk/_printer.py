"""One installed printer, for callers that wait and for asyncio."""
from __future__ import annotations

import asyncio
import contextlib
import functools
import time
from typing import TYPE_CHECKING, Any, AsyncIterator, Callable, Coroutine, Iterator, List, Optional, TypeVar

from ._access import AsyncSettingAccess, SettingAccess
from ._device import Address, Device, milliseconds
from ._library import PRODUCT, Path, load
from ._records import AccessPoint, PingCount
from ._settings import Value
from ._worker import Worker

if TYPE_CHECKING:
    from typing_extensions import Concatenate, ParamSpec

    P = ParamSpec("P")
R = TypeVar("R")
AnyPrinter = TypeVar("AnyPrinter", bound="Printer")
AnyAsyncPrinter = TypeVar("AnyAsyncPrinter", bound="AsyncPrinter")

_POLL = 0.5
# A search, or a ping, without news for so many seconds is over.
_QUIET = 3.0


class _Connection:
    """A device and the thread that it lives on."""

    def __init__(self, name: Optional[str], timeout: Optional[float], product: str, library: Optional[Path]) -> None:
        self.device = Device(load(product, library), name, timeout)
        self.worker = Worker(f"kestrel {name or product}")


    def run(self, method: Callable[[Device], R]) -> R:
        return self.worker.run(lambda: method(self.device))

    def start(self, method: Callable[[Device], R]) -> asyncio.Future[R]:
        return asyncio.wrap_future(self.worker.submit(lambda: method(self.device)))


def _waiting(method: Callable[Concatenate[Device, P], R]) -> Callable[Concatenate[Printer, P], R]:
    """The method on the device's thread, awaited by the caller's."""
    @functools.wraps(method)
    def call(self: Printer, /, *args: P.args, **kwargs: P.kwargs) -> R:
        return self._connection.run(lambda device: method(device, *args, **kwargs))
    return call


def _awaitable(
        method: Callable[Concatenate[Device, P], R]) -> Callable[Concatenate[AsyncPrinter, P], Coroutine[Any, Any, R]]:
    """The method on the device's thread, for asyncio. Cancelling it before its turn keeps it from being run."""
    @functools.wraps(method)
    async def call(self: AsyncPrinter, /, *args: P.args, **kwargs: P.kwargs) -> R:
        return await self._connection.start(lambda device: method(device, *args, **kwargs))
    return call


class Printer(SettingAccess):
    """An installed printer:

        with Printer("Office") as printer:
            printer["fax.redials"] = 5

    `name`: as it is installed on this computer; without one, the last printer of the product.
    `timeout`: seconds for an exchange with the printer, None for no limit. A call may take twice as long: once for its
    turn and once for the reply.
    `product`: prefix of the product's file names.
    `library`: the library's file; else that of the environment variable KESTREL_SDK_LIBRARY, else the installed one.

    It may be used from any thread: it has one of its own, on which the calls are made one after the other. After an
    interrupt (Ctrl-C) the call that has begun goes on there, unheard, and those that have not begun are dropped.
    """

    def __init__(self, name: Optional[str] = None, *, timeout: Optional[float] = 5.0, product: str = PRODUCT,
                 library: Optional[Path] = None) -> None:
        self._connection = _Connection(name, timeout, product, library)
        try:
            self._connection.run(Device.select)
        except BaseException:
            self._connection.worker.close()
            raise

    @property
    def name(self) -> Optional[str]:
        """The name that was asked for."""
        return self._connection.device.name

    @property
    def timeout(self) -> Optional[float]:
        """Seconds for an exchange, or None for no limit."""
        return self._connection.device.timeout

    @timeout.setter
    def timeout(self, seconds: Optional[float]) -> None:
        milliseconds(seconds)
        self._connection.device.timeout = seconds

    @property
    def aio(self) -> AsyncPrinter:
        """The same printer, on the same thread, for asyncio. It is closed with this one."""
        return AsyncPrinter._of(self._connection)

    def close(self) -> None:
        """Gives the lock back if it is held, and ends the thread. May be called twice."""
        _close(self._connection)

    def __enter__(self: AnyPrinter) -> AnyPrinter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<kestrel_sdk.Printer {self.name!r}>"

    @contextlib.contextmanager
    def lock(self) -> Iterator[None]:
        """Keeps the printer for this Printer within a `with`; other programs are refused as busy."""
        self.take_lock()
        try:
            yield
        finally:
            self.give_lock()

    def find_access_points(self, wait: float = 15) -> List[AccessPoint]:
        """Lets the printer search, until nothing new has been found for 3 s or `wait` seconds are over."""
        self.start_search()
        end = time.monotonic() + wait
        found, news = 0, time.monotonic()
        while time.monotonic() < end and (not found or time.monotonic() - news < _QUIET):
            time.sleep(_POLL)
            now = self.access_points_found()
            if now != found:
                found, news = now, time.monotonic()
        return self.access_points()

    def ping(self, address: Address, count: int = 4, wait: int = 2) -> PingCount:
        """Lets the printer ping an address `count` times, waits, and gives how many were sent and answered. `wait`: how
        long the printer waits for each answer, in its own unit, which is taken for seconds here."""
        self.start_ping(address, count, wait)
        end = time.monotonic() + count * (wait + 1) + _QUIET
        while True:
            time.sleep(_POLL)
            counted = self.ping_count()
            if counted.sent >= count or time.monotonic() > end:
                return counted

    def read(self, name: str) -> Value:
        return self._connection.run(lambda device: device.read(name))

    def write(self, name: str, value: Value) -> None:
        self._connection.run(lambda device: device.write(name, value))

    run = _waiting(Device.run)
    status = _waiting(Device.status)
    take_lock = _waiting(Device.take_lock)
    give_lock = _waiting(Device.give_lock)
    cancel = _waiting(Device.cancel)
    use_cache = _waiting(Device.use_cache)
    send = _waiting(Device.send)
    maintain = _waiting(Device.maintain)
    speed_dials = _waiting(Device.speed_dials)
    set_speed_dials = _waiting(Device.set_speed_dials)
    one_touch = _waiting(Device.one_touch)
    set_one_touch = _waiting(Device.set_one_touch)
    one_touch_record = _waiting(Device.one_touch_record)
    set_one_touch_record = _waiting(Device.set_one_touch_record)
    start_search = _waiting(Device.start_search)
    access_points_found = _waiting(Device.access_points_found)
    access_points = _waiting(Device.access_points)
    start_ping = _waiting(Device.start_ping)
    ping_count = _waiting(Device.ping_count)
    hosts = _waiting(Device.hosts)
    clock = _waiting(Device.clock)
    set_clock = _waiting(Device.set_clock)
    sync_clock = _waiting(Device.sync_clock)
    clock_text = _waiting(Device.clock_text)
    firmware = _waiting(Device.firmware)
    upgrade_firmware = _waiting(Device.upgrade_firmware)
    refresh_firmware_capabilities = _waiting(Device.refresh_firmware_capabilities)
    capabilities = _waiting(Device.capabilities)
    identity = _waiting(Device.identity)
    show_status_monitor = _waiting(Device.show_status_monitor)
    show_maintenance = _waiting(Device.show_maintenance)
    show_about_box = _waiting(Device.show_about_box)
    window_always_shown = _waiting(Device.window_always_shown)
    set_window_always_shown = _waiting(Device.set_window_always_shown)
    order_supplies = _waiting(Device.order_supplies)


class AsyncPrinter(AsyncSettingAccess):
    """A printer for asyncio, with the arguments and the rules of Printer:

        async with AsyncPrinter("Office") as printer:
            await printer.set("fax.redials", 5)
    """

    _connection: _Connection

    def __init__(self, name: Optional[str] = None, *, timeout: Optional[float] = 5.0, product: str = PRODUCT,
                 library: Optional[Path] = None) -> None:
        self._open = functools.partial(_Connection, name, timeout, product, library)

    @classmethod
    def _of(cls, connection: _Connection) -> AsyncPrinter:
        printer = cls.__new__(cls)
        printer._connection = connection
        return printer

    async def __aenter__(self: AnyAsyncPrinter) -> AnyAsyncPrinter:
        self._connection = self._open()
        try:
            await self._connection.start(Device.select)
        except BaseException:
            self._connection.worker.close()
            raise
        return self

    async def __aexit__(self, *_: object) -> None:
        await asyncio.to_thread(_close, self._connection)

    @contextlib.asynccontextmanager
    async def lock(self) -> AsyncIterator[None]:
        """Keeps the printer for this Printer within an `async with`; other programs are refused as busy."""
        await self.take_lock()
        try:
            yield
        finally:
            await self.give_lock()

    async def read(self, name: str) -> Value:
        return await self._connection.start(lambda device: device.read(name))

    async def write(self, name: str, value: Value) -> None:
        await self._connection.start(lambda device: device.write(name, value))

    run = _awaitable(Device.run)
    status = _awaitable(Device.status)
    take_lock = _awaitable(Device.take_lock)
    give_lock = _awaitable(Device.give_lock)
    cancel = _awaitable(Device.cancel)
    use_cache = _awaitable(Device.use_cache)
    send = _awaitable(Device.send)
    maintain = _awaitable(Device.maintain)
    speed_dials = _awaitable(Device.speed_dials)
    set_speed_dials = _awaitable(Device.set_speed_dials)
    one_touch = _awaitable(Device.one_touch)
    set_one_touch = _awaitable(Device.set_one_touch)
    one_touch_record = _awaitable(Device.one_touch_record)
    set_one_touch_record = _awaitable(Device.set_one_touch_record)
    start_search = _awaitable(Device.start_search)
    access_points_found = _awaitable(Device.access_points_found)
    access_points = _awaitable(Device.access_points)
    start_ping = _awaitable(Device.start_ping)
    ping_count = _awaitable(Device.ping_count)
    hosts = _awaitable(Device.hosts)
    clock = _awaitable(Device.clock)
    set_clock = _awaitable(Device.set_clock)
    sync_clock = _awaitable(Device.sync_clock)
    clock_text = _awaitable(Device.clock_text)
    firmware = _awaitable(Device.firmware)
    upgrade_firmware = _awaitable(Device.upgrade_firmware)
    refresh_firmware_capabilities = _awaitable(Device.refresh_firmware_capabilities)
    capabilities = _awaitable(Device.capabilities)
    identity = _awaitable(Device.identity)
    show_status_monitor = _awaitable(Device.show_status_monitor)
    show_maintenance = _awaitable(Device.show_maintenance)
    show_about_box = _awaitable(Device.show_about_box)
    window_always_shown = _awaitable(Device.window_always_shown)
    set_window_always_shown = _awaitable(Device.set_window_always_shown)
    order_supplies = _awaitable(Device.order_supplies)


def _close(connection: _Connection) -> None:
    try:
        if connection.device.locked and connection.worker.usable:
            connection.run(Device.leave)
    finally:
        connection.worker.close()
