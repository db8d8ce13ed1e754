"""The metrics of several printers, asked by hand: once, and of the exporter."""
import concurrent.futures
import re
import signal
import stat
import subprocess
import time

import pytest
from conftest import BIN, ROOT, Exporter, Printers, Samples, kestrel, until
from prometheus_client.openmetrics.parser import text_string_to_metric_families as open_families
from prometheus_client.parser import text_string_to_metric_families as plain_families

TOKEN = "0123456789abcdef"


def test_a_file_of_all_printers_is_for_everybody(printers, tmp_path):
    target = tmp_path / "kestrel.prom"
    kestrel("metrics", "--timeout", "1s", "--output", str(target))
    assert stat.S_IMODE(target.stat().st_mode) == 0o644
    assert not list(tmp_path.glob("*.prom.*"))
    samples = Samples(target.read_text())
    assert {name: samples["kestrel_up", name] for name in ("Office", "Quick", "Slow", "Dead")} == {
        "Office": 1, "Quick": 1, "Slow": 1, "Dead": 0}
    assert samples["kestrel_ink_ratio", "Office", "black"] == 0.75
    assert samples["kestrel_last_error_info", "Dead", "0xE0000002"] == 1
    kestrel("metrics", "--output", str(tmp_path / "no" / "folder.prom"), "-p", "Office", code=6)
    assert Samples(kestrel("metrics", "-p", "Quick"))["kestrel_printers",] == 1


@pytest.mark.parametrize("form", ["prometheus", "openmetrics"])
def test_the_client_of_prometheus_reads_both_formats(exporter, form):
    _, fields, served = exporter.ask(**{} if form == "prometheus" else {
        "Accept": "application/openmetrics-text;version=1.0.0,text/plain;version=0.0.4;q=0.5"})
    once = kestrel("metrics", "--timeout", "1s", "--format", form)
    assert fields["Content-Type"].startswith("text/plain; version=0.0.4" if form == "prometheus" else
                                             "application/openmetrics-text; version=1.0.0")
    for text, inBoth in ((served, False), (once, True)):
        families = {family.name: family for family in (plain_families if form == "prometheus" else open_families)(text)}
        states = {sample.labels["state"]: sample.value for sample in families["kestrel_state"].samples
                  if sample.labels["printer"] == "Office"}
        assert states.pop("ready") == 1 and set(states.values()) == {0}
        assert ("kestrel_errors" in families) != inBoth


def test_every_metric_is_documented_and_no_other(exporter):
    text = exporter.scrape().text
    told = set(re.findall(r"^# TYPE (\w+)", text, re.M))
    documented = re.findall(r"^\| `([a-z]\w+)`", (ROOT / "docs/fleet.md").read_text(), re.M)
    assert sorted(told) == sorted(documented)
    # What rules and dashboard ask for is among them.
    for file in ("kestrel.rules.yml", "dashboard.json"):
        for name in re.findall(r"\bkestrel_\w+", (ROOT / "fleet" / file).read_text()):
            assert name.removesuffix("_bucket") in told, (file, name)


def test_what_changes_at_a_printer_shows_in_the_next_scrape(printers, exporter):
    exporter.scrape()
    printers.change({"USB001": {"status.error": "Paper_Jam", "ink.cyan": 4}, "USB002": {"device.online": False}})
    samples = exporter.scrape()
    assert samples["kestrel_state", "Office", "paper-jam"] == 1
    assert samples["kestrel_state", "Office", "ready"] == 0
    assert samples["kestrel_ink_ratio", "Office", "cyan"] == 0.04
    assert samples["kestrel_ink_low", "Office", "cyan"] == 1
    assert samples["kestrel_up", "Quick"] == 0
    assert samples["kestrel_up", "Slow"] == 1


def test_a_slow_printer_costs_nobody_else_and_is_asked_once_at_a_time(printers, tmp_path):
    exporter = Exporter("--timeout", "10s", "--patience", "300ms")
    until(lambda: exporter.scrape()["kestrel_up", "Slow"] == 1)
    before = exporter.scrape()["kestrel_exchange_seconds_count", "Slow"]
    printers.change({"NET1": {"faults": [{"match": "*", "delay": 2000}]}})
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        scrapes = []
        for _ in range(8):
            scrapes.append(pool.submit(exporter.scrape))
            time.sleep(0.1)
    for samples in (scrape.result() for scrape in scrapes):
        assert samples["kestrel_age_seconds", "Office"] < 1.5
        assert samples["kestrel_up", "Slow"] == 1
    assert samples["kestrel_age_seconds", "Slow"] > 0.3
    # Eight scrapes within a second: the first question of one round has not even been answered.
    assert exporter.scrape()["kestrel_exchange_seconds_count", "Slow"] - before <= 1
    printers.change({"NET1": {"faults": []}})
    until(lambda: exporter.scrape()["kestrel_age_seconds", "Slow"] < 0.3)
    assert exporter.stop() == 0


def test_a_dead_printer_is_not_waited_for_and_comes_back(printers, exporter, tmp_path):
    until(lambda: ("kestrel_last_error_info", "Dead", "0xE0000002") in exporter.scrape())
    start = time.monotonic()
    for _ in range(5):
        samples = exporter.scrape()
        assert samples["kestrel_up", "Dead"] == 0
        assert ("kestrel_state", "Dead", "ready") not in samples
    # Asking it takes seconds each time.
    assert time.monotonic() - start < 5
    revived = Printers(("USB009",), tmp_path / "..")
    until(lambda: exporter.scrape()["kestrel_up", "Dead"] == 1)
    assert exporter.scrape()["kestrel_errors_total", "Dead", "0xE0000002"] >= 1
    # Its end is seen at the next scrape that waits for it.
    revived.stop()
    until(lambda: exporter.scrape()["kestrel_up", "Dead"] == 0)
    # A request that was given up does not stand in anybody's way.
    assert kestrel("-p", "Office", "get", "fax.redials").strip() == "3"


def test_printers_come_and_go(exporter):
    assert ("kestrel_up", "Later") not in exporter.scrape()
    kestrel("printers", "add", 'Later "x"', "--port", "USB001")
    assert 'kestrel_up{printer="Later \\"x\\"",port="USB001"' in exporter.scrape().text
    kestrel("printers", "remove", 'Later "x"')
    assert "Later" not in exporter.scrape().text


def test_strangers_are_turned_away(exporter, tmp_path):
    for status, path, method, fields in (
            (200, "/", "GET", {}), (200, "/metrics", "HEAD", {}), (404, "/other", "GET", {}),
            (405, "/metrics", "POST", {"Content_Length": "0"}), (403, "/metrics", "GET", {"Host": "evil.example"}),
            (403, "/metrics", "GET", {"Origin": "http://evil.example"}),
            (403, "/metrics", "GET", {"Sec_Fetch_Site": "cross-site"})):
        assert exporter.ask(path, method, **fields)[0] == status, (path, method, fields)
    tokens = tmp_path / "token"
    tokens.write_text(TOKEN + "\n")
    closed = Exporter("--token", tokens, listen="0.0.0.0:0")
    for status, fields in ((401, {}), (401, {"Authorization": "Bearer 0123456789abcdee"}),
                           (200, {"Authorization": "Bearer " + TOKEN}),
                           # Whoever knows the token may call this computer by its name.
                           (200, {"Authorization": "Bearer " + TOKEN, "Host": "printers.example:9750"})):
        assert closed.ask(**fields)[0] == status, fields
    assert closed.stop() == 0


def test_where_and_how_it_listens_is_told_when_it_cannot(exporter, tmp_path):
    short = tmp_path / "short"
    short.write_text("1234")
    for words in (("--listen", "0.0.0.0:0"), ("--listen", exporter.host), ("--listen", "nowhere"),
                  ("--listen", "127.0.0.1:0", "--token", str(short)), ("--patience", "1s"),
                  ("--listen", "127.0.0.1:0", "--output", "x")):
        kestrel("metrics", *words, code=2)


@pytest.mark.parametrize("with_signal", [signal.SIGTERM, signal.SIGINT])
def test_it_ends_at_once_also_while_a_printer_is_asked(printers, with_signal):
    exporter = Exporter("--timeout", "10s", "--patience", "100ms")
    exporter.scrape()
    start = time.monotonic()
    assert exporter.stop(with_signal) == 0
    assert time.monotonic() - start < 5


def test_a_plain_command_does_not_load_the_exporter():
    libraries = subprocess.run(["ldd", BIN / "kestrel"], capture_output=True, text=True, check=True).stdout
    assert "httplib" not in libraries and "libssl" not in libraries
