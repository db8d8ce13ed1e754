"""Everything but the settings, and what happens to calls that are in each other's way."""
import asyncio
import datetime
import gc
import os
import signal
import subprocess
import sys
import threading
import time

import pytest

import kestrel_sdk
from kestrel_sdk import AddressType, AsyncPrinter, Printer, QuickDial

SLOW = {"match": "DeviceSettings.Fax.Redials?", "delay": 1500}


def run(program, *arguments, **options):
    return subprocess.Popen([sys.executable, "-c", program, *arguments], stderr=subprocess.PIPE, text=True, **options)


def test_address_book(printer):
    office = QuickDial(AddressType.FAX, "Smith & Sons", "+1 555 0100")
    printer.set_speed_dials([office, QuickDial(), QuickDial(AddressType.EMAIL, "x" * 39, "y" * 49)])
    read = printer.speed_dials()
    assert read[:3] == [office, QuickDial(), QuickDial(AddressType.EMAIL, "x" * 39, "y" * 49)] and len(read) == 60
    printer.set_one_touch([office] * 5)
    printer.set_one_touch_record(4, QuickDial())
    assert printer.one_touch() == [office] * 4 + [QuickDial()] and printer.one_touch_record(0) == office
    for wrong in ([office] * 6, [QuickDial(name="x" * 41)], [QuickDial(address="\u4e00")]):
        with pytest.raises(ValueError):
            printer.set_one_touch(wrong)


def test_network_clock_and_identity(printer, virtual):
    virtual.happens(search_seconds=0, search_networks="kestrel,(null)")
    printer.start_search()
    assert [point.ssid for point in printer.access_points()] == ["kestrel", ""]
    assert printer.ping("192.168.0.1", count=2) == kestrel_sdk.PingCount(2, 2)
    assert printer.hosts() == ["kestrel-9900.local", "workshop-pc.local"]
    time_set = datetime.datetime(2020, 2, 29, 12, 0)
    printer.set_clock(time_set)
    assert printer.clock() - time_set < datetime.timedelta(minutes=2)
    printer.sync_clock()
    assert abs(printer.clock() - datetime.datetime.now()) < datetime.timedelta(minutes=2, hours=1)
    assert printer.firmware() == kestrel_sdk.Firmware("9900.2209.417", 2209, 417)
    capabilities = printer.capabilities()
    assert capabilities.firmware_upgrade and capabilities.rbn_version == "B" and len(capabilities.block) == 48
    assert printer.identity() == kestrel_sdk.Identity(65520, 9900, False, False)


def test_status_maintenance_and_supplies(printer, virtual):
    virtual.happens(status_error="Paper_Jam")
    status = printer.status()
    assert status.state == 2 and status.on_usb and status.known and status.text
    for action in kestrel_sdk.Action:
        printer.maintain(action)
    assert all(virtual.saw(f"Maintenance=00{number}?") for number in range(1, 8))
    printer.order_supplies()
    printer.set_window_always_shown(False)
    assert not printer.window_always_shown()
    virtual.happens(device_orders__supplies=False)
    with pytest.raises(kestrel_sdk.RefusedError):
        printer.order_supplies()
    printer.use_cache(False)
    printer.cancel()


def test_a_lock_keeps_other_programs_out_and_ends_with_the_printer(printer, virtual):
    other = """if True:
        import kestrel_sdk
        with kestrel_sdk.Printer("Office") as printer:
            try: printer["fax.redials"] = 7
            except kestrel_sdk.LockedError: raise SystemExit(5)"""
    with printer.lock():
        assert run(other).wait(20) == 5
    assert run(other).wait(20) == 0
    printer.take_lock()
    printer.close()
    assert run(other).wait(20) == 0 and virtual.saw("UnlockPrinter?")


def test_a_withdrawn_query_is_repeated_once_and_a_change_never(virtual):
    virtual.start({"match": "DeviceSettings.Fax.Redials?", "noReply": True, "times": 1},
                  {"match": "DeviceSettings.Fax.Redials=*", "noReply": True, "times": 1})
    with Printer("Office", timeout=0.5) as printer:
        assert printer["fax.redials"] == 3
        with pytest.raises(TimeoutError) as lost:
            printer["fax.redials"] = 4
        assert lost.value.name == "SDK_ERROR_NO_REPLY"
        assert printer["fax.rings"] == 4
    assert virtual.saw("DeviceSettings.Fax.Rings?  ->") and virtual.saw("DeviceSettings.Fax.Redials=4;  ->") == 1


def test_any_thread_and_asyncio_may_use_it(virtual):
    async def use():
        async with AsyncPrinter("Office") as printer:
            await printer.set("fax.redials", 4)
            values = await asyncio.gather(*(printer.get("fax.redials") for _ in range(20)))
            async with printer.lock():
                assert (await printer.status()).known
            return values
    assert asyncio.run(use()) == [4] * 20
    with Printer("Office") as printer:
        seen = []
        threads = [threading.Thread(target=lambda: seen.append(printer["fax.redials"])) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        assert seen == [4] * 8
        assert asyncio.run(printer.aio.get("fax.redials")) == 4


def test_a_cancelled_change_that_has_not_begun_is_never_made(virtual):
    virtual.start(SLOW)

    async def use(printer):
        reading = asyncio.create_task(printer.aio.get("fax.redials"))
        setting = asyncio.create_task(printer.aio.set("fax.rings", 9))
        await asyncio.sleep(0.3)
        setting.cancel()
        return await reading
    with Printer("Office") as printer:
        assert asyncio.run(use(printer)) == 3 and printer["fax.rings"] == 4


def test_closed_forgotten_and_forked_ones_say_so_and_leave_no_thread(printer):
    def living():
        return [thread for thread in threading.enumerate() if thread.name.startswith("kestrel")]
    forgotten = Printer("Office")
    assert len(living()) == 2
    del forgotten
    gc.collect()
    assert len(living()) == 1
    child = os.fork()
    if child == 0:  # the parent's is of no use; a new one is
        signal.signal(signal.SIGALRM, signal.SIG_DFL)
        signal.alarm(10)
        try:
            printer["fax.redials"]
        except kestrel_sdk.ClosedError as error:
            printer.close()
            with Printer("Office") as own:
                os._exit(0 if "fork" in str(error) and own["fax.redials"] == 3 else 1)
        finally:
            os._exit(2)
    assert os.waitpid(child, 0)[1] == 0
    printer.close()
    printer.close()
    assert not living()
    with pytest.raises(kestrel_sdk.ClosedError, match="closed"):
        printer["fax.redials"]


@pytest.mark.parametrize("how", ["closed", "left open", "asked meanwhile", "interrupted"])
def test_the_interpreter_ends_without_hanging(virtual, how):
    virtual.start({**SLOW, "delay": 8000})
    program = """if True:
        import sys, threading, time, kestrel_sdk
        printer = kestrel_sdk.Printer("Office", timeout=30)
        if sys.argv[1] == "closed":
            printer.close()
        elif sys.argv[1] == "asked meanwhile":
            threading.Thread(target=lambda: printer["fax.redials"], daemon=True).start()
            time.sleep(0.3)
        elif sys.argv[1] == "interrupted":
            print("asking", flush=True)
            with printer: printer["fax.redials"]"""
    process = run(program, how, stdout=subprocess.PIPE)
    if how == "interrupted":
        assert process.stdout.readline() == "asking\n"
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
    begun = time.monotonic()
    output = process.communicate(timeout=20)[1]
    assert process.returncode == (-signal.SIGINT if how == "interrupted" else 0), output
    assert time.monotonic() - begun < 5 and ("KeyboardInterrupt" in output) == (how == "interrupted")
