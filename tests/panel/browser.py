"""A browser without a window, for the panel's tests and for the pictures in docs/."""
import contextlib
import os
import subprocess
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

OPTIONS = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
           "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage")


@contextlib.contextmanager
def browser():
    with tempfile.TemporaryDirectory() as profile:
        options = webdriver.ChromeOptions()
        for option in (*OPTIONS, f"--user-data-dir={profile}"):
            options.add_argument(option)
        # A profile of its own also for what Chromium keeps outside of it.
        driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver", log_output=subprocess.DEVNULL,
                                                                   env={**os.environ, "HOME": profile}))
        try:
            yield driver
        finally:
            driver.quit()


def look(driver, width, height=900, dark=False):
    """The page as wide as that; at one pixel for a pixel, also below what a window could be."""
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                           {"features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
