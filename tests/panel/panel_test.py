"""The panel in a browser, beside the client. As a script it makes the pictures and measures for as long as one likes:

    panel_test.py --pictures FOLDER
    panel_test.py --load SECONDS

BIN: the folder of the programs; BUILD: where axe-core may be kept."""
import functools
import hashlib
import io
import os
import pathlib
import subprocess
import sys
import tarfile
import time
import urllib.request

sys.dont_write_bytecode = True
import pytest
from browser import browser, look
from conftest import BIN, Panel, kestrel, until
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

AXE = "https://registry.npmjs.org/axe-core/-/axe-core-4.10.2.tgz"
AXE_SHA256 = "9ea2d2d6917da998122bdacfd3b473e31ead53f4b87146c716a12edf89158100"
RATE = 500  # exchanges a second
MOST_HEAP = 100e6
PICTURES = [("panel", 1360, 1240, False), ("panel-dark", 1360, 1240, True), ("panel-narrow", 360, 1500, False)]


@pytest.fixture(scope="module")
def driver():
    with browser() as driver:
        look(driver, 1280)
        yield driver


@pytest.fixture
def page(driver, panel):
    driver.get(panel.url)
    until(lambda: "live" in text(driver, "#line") and driver.find_elements(By.ID, "setting-fax.redials"))
    yield driver
    faults = [entry for entry in driver.get_log("browser") if "status of 422" not in entry["message"]]
    driver.get("about:blank")
    assert not faults


def text(driver, selector):
    return driver.execute_script("return document.querySelector(arguments[0])?.textContent ?? ''", selector)


def value(driver, identifier):
    return driver.execute_script("return document.getElementById(arguments[0]).value", identifier)


def test_a_change_here_is_read_there_and_the_other_way_round(page):
    field = page.find_element(By.ID, "setting-fax.redials")
    field.clear()
    field.send_keys("7", Keys.TAB)
    begun = time.monotonic()
    until(lambda: kestrel("get", "fax.redials")["values"]["fax.redials"] == 7)
    page.find_element(By.ID, "setting-fax.backup").send_keys(" ")
    until(lambda: kestrel("get", "fax.backup")["values"]["fax.backup"] is False)
    kestrel("set", "fax.redials", "2")
    changed = time.monotonic()
    until(lambda: value(page, "setting-fax.redials") == "2")
    assert time.monotonic() - changed < 1 and changed - begun < 10
    field.clear()
    field.send_keys("99", Keys.TAB)
    until(lambda: "from 0 to 10" in text(page, "[id='setting-fax.redials-problem']"))


def test_what_happens_to_the_printer_is_seen(page):
    page.find_element(By.ID, "knob-error").send_keys("Paper Jam")
    until(lambda: "Paper jam" in text(page, "#status") and "Remove" in text(page, "#display-first"))
    assert "paper-jam" in page.find_element(By.ID, "drawing").get_attribute("class")
    assert kestrel("status")["state"] == "paper-jam"
    with subprocess.Popen([BIN / "kestrel", "lock", "--hold", "60s"], stdin=subprocess.PIPE) as holder:
        until(lambda: "process" in text(page, "#facts"))
        holder.stdin.close()
    page.find_element(By.CSS_SELECTOR, "[data-port=NET1]").click()
    until(lambda: text(page, "#status") == "Ready")


def test_a_fault_makes_a_client_fail_as_announced(page):
    page.find_element(By.ID, "tab-faults").click()
    until(lambda: page.find_elements(By.ID, "fault-kind"))
    page.find_element(By.ID, "fault-kind").send_keys("busy")
    until(lambda: "A program: 170" in text(page, ".told"))
    page.find_element(By.ID, "fault-match").send_keys(Keys.ENTER)
    until(lambda: page.find_elements(By.CSS_SELECTOR, "[data-fault]"))
    assert kestrel("get", "fax.redials", code=5)["error"]["code"] == 170
    until(lambda: "as scripted" in text(page, "#exchanges"))
    # The table is drawn anew as the fault meets requests: the button is looked for and pressed at once.
    page.execute_script("document.querySelector('[data-fault]').click()")
    until(lambda: not page.find_elements(By.CSS_SELECTOR, "[data-fault]"))


def test_traffic_can_be_filtered_paused_and_opened(page):
    kestrel("get", "fax.redials", "photo.quality")
    until(lambda: "Photo.Quality" in text(page, "#exchanges"))
    page.find_element(By.ID, "traffic-filter").send_keys("fax.redials")
    until(lambda: len(page.find_elements(By.CSS_SELECTOR, ".exchange")) == 1)
    page.find_element(By.CSS_SELECTOR, ".exchange button").click()
    detail = page.find_element(By.CSS_SELECTOR, ".detail").text
    assert "fax.redials" in detail and "30 30 30 30 2C" in detail
    page.find_element(By.ID, "traffic-pause").click()
    kestrel("get", "fax.redials")
    time.sleep(0.5)
    assert len(page.find_elements(By.CSS_SELECTOR, ".exchange")) == 1
    page.find_element(By.ID, "traffic-pause").click()
    until(lambda: len(page.find_elements(By.CSS_SELECTOR, ".exchange")) == 2)


def test_the_keyboard_reaches_everything(page):
    page.find_element(By.ID, "tab-settings").send_keys(Keys.ARROW_RIGHT)
    assert page.switch_to.active_element.get_attribute("id") == "tab-book"
    for identifier, typed in (("book-name", "Eva"), ("book-address", "eva@example.org"), ("book-type", "email")):
        page.find_element(By.ID, identifier).send_keys(typed)
    page.find_element(By.ID, "book-address").send_keys(Keys.ENTER)
    until(lambda: "Eva" in text(page, "#book table"))
    assert kestrel("addressbook", "show")["speed-dial"][0]["name"] == "Eva"


@pytest.mark.parametrize("width", [320, 768, 1280, 2560])
def test_the_page_fits_its_window(page, width):
    look(page, width)
    for tab in page.find_elements(By.CSS_SELECTOR, "[role=tab]"):
        page.execute_script("arguments[0].click()", tab)
        assert page.execute_script("return document.documentElement.scrollWidth") <= width
    look(page, 1280)


@functools.cache
def axe_core():
    """The text of the tool; nothing but this test needs it."""
    archive = pathlib.Path(os.environ["BUILD"]) / "axe-core.tgz"
    if not archive.exists():
        with urllib.request.urlopen(AXE, timeout=60) as answer:
            archive.write_bytes(answer.read())
    packed = archive.read_bytes()
    assert hashlib.sha256(packed).hexdigest() == AXE_SHA256, f"{archive} is not what {AXE} was: remove it"
    with tarfile.open(fileobj=io.BytesIO(packed)) as files:
        return files.extractfile("package/axe.min.js").read().decode()


@pytest.mark.parametrize("dark", [False, True])
def test_axe_finds_nothing(page, dark):
    script = axe_core()
    kestrel("get", "fax.redials")
    until(lambda: page.find_elements(By.CSS_SELECTOR, ".exchange"))
    page.find_element(By.CSS_SELECTOR, ".exchange button").click()
    for width in (320, 1280):
        look(page, width, dark=dark)
        for tab in page.find_elements(By.CSS_SELECTOR, "[role=tab]"):
            page.execute_script("arguments[0].click()", tab)
            page.execute_script(script)
            found = page.execute_async_script("axe.run().then(arguments[0])")["violations"]
            assert not [(rule["id"], rule["nodes"][0]["html"]) for rule in found]
    look(page, 1280)


PACED = """
import ctypes, sys, time
sdk, value, end = ctypes.CDLL(sys.argv[1]), ctypes.c_uint8(), time.monotonic() + float(sys.argv[2])
assert sdk.SelectPrinter(None)
while time.monotonic() < end:
    begun = time.monotonic()
    for _ in range(int(sys.argv[3]) // 50):
        assert sdk.GetFaxRedials(ctypes.byref(value), 5000)
    time.sleep(max(0, begun + 0.02 - time.monotonic()))
"""


def load(driver, seconds):
    """Exchanges shown, heap, and the longest that the page took to draw, with RATE exchanges a second passing."""
    library = BIN / "libZRIJ9900SDK.so"
    client = subprocess.Popen([sys.executable, "-c", PACED, library, str(seconds), str(RATE)])
    longest = 0
    while client.poll() is None:
        begun = time.monotonic()
        driver.execute_async_script("requestAnimationFrame(() => setTimeout(arguments[0]))")
        longest = max(longest, time.monotonic() - begun)
        time.sleep(0.1)
    assert client.returncode == 0
    driver.execute_cdp_cmd("Performance.enable", {})
    metrics = {row["name"]: row["value"] for row in driver.execute_cdp_cmd("Performance.getMetrics", {})["metrics"]}
    told = text(driver, "#traffic-count").split(" exchanges")[0]
    return int("".join(digit for digit in told if digit.isdigit()) or 0), metrics["JSHeapUsedSize"], longest


def test_many_exchanges_leave_the_page_small_and_quick(page):
    count, heap, longest = load(page, 10)
    assert count > 10 * RATE / 3 and heap < MOST_HEAP and longest < 1


def pictures(driver, panel, folder):
    kestrel("status")
    driver.get(panel.url)
    until(lambda: driver.find_elements(By.ID, "setting-fax.redials"))
    for key, changed in (("ink.black", 12), ("ink.magenta", 35), ("printer.upper-tray-level", 45)):
        panel.put(f"/api/printers/USB001/settings/{key}", {"value": changed})
    for words in (("status",), ("get", "photo.quality", "fax.redials"), ("set", "fax.redials", "5")):
        kestrel(*words)
    time.sleep(1)
    for name, width, height, dark in PICTURES:
        panel.put("/api/printers/USB001/settings/status.error", {"value": "Paper_Jam" if dark else "None"})
        look(driver, width, height, dark)
        time.sleep(1.5)
        driver.save_screenshot(str(folder / f"{name}.png"))


def main():
    import tempfile
    with tempfile.TemporaryDirectory() as home:
        os.environ["WINPORT_HOME"] = home
        kestrel("setup")
        kestrel("printers", "add", "Office", "--port", "USB001")
        panel = Panel()
        with browser() as driver:
            if sys.argv[1] == "--pictures":
                pictures(driver, panel, pathlib.Path(sys.argv[2]))
            else:
                look(driver, 1280)
                driver.get(panel.url)
                time.sleep(2)
                count, heap, longest = load(driver, float(sys.argv[2]))
                print(f"{count} exchanges, {heap / 1e6:.1f} MB of heap, longest frame {longest * 1000:.0f} ms")
        panel.stop()
        subprocess.run([BIN / "ZRIJ9900MUI.exe", "--stop"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


if __name__ == "__main__":
    main()
