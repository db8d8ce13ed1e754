"""What others make of the metrics: promtool and Prometheus itself, on real output and on the files of fleet/."""
import json
import subprocess
import time

import pytest
from conftest import kestrel, until
from monitor import FLEET, Prometheus, fetched_engines


@pytest.fixture(scope="session")
def engines():
    folder = fetched_engines()
    if folder is None:
        pytest.fail("NOT TRIED: scripts/engines.sh could not fetch Prometheus; nothing of this file has been tried")
    return folder


def promtool(engines, *words, **options):
    result = subprocess.run([engines / "promtool", *words], capture_output=True, text=True, **options)
    assert result.returncode == 0, result.stdout + result.stderr
    return result


def test_promtool_finds_nothing_in_real_output(engines, printers, exporter):
    printers.change({"USB001": {"status.error": "Ink_Out", "ink.black": 0, "status.text": 'a "b" \\ c'}})
    until(lambda: ("kestrel_last_error_info", "Dead", "0xE0000002") in exporter.scrape())
    for text in (exporter.scrape().text, kestrel("metrics", "--timeout", "1s")):
        result = promtool(engines, "check", "metrics", input=text)
        assert result.stdout + result.stderr == ""


def test_promtool_takes_the_rules_and_the_configuration(engines):
    promtool(engines, "check", "rules", FLEET / "kestrel.rules.yml")
    promtool(engines, "check", "config", FLEET / "prometheus.yml")
    promtool(engines, "test", "rules", FLEET / "kestrel.rules.test.yml")


def test_every_alert_is_tried():
    rules = (FLEET / "kestrel.rules.yml").read_text()
    tried = (FLEET / "kestrel.rules.test.yml").read_text()
    for alert in [line.split(": ")[1] for line in rules.splitlines() if "- alert: " in line]:
        assert f"alertname: {alert}\n" in tried, alert


def test_prometheus_scrapes_without_a_gap(engines, printers, exporter, tmp_path):
    until(lambda: ("kestrel_last_error_info", "Dead", "0xE0000002") in exporter.scrape())
    prometheus = Prometheus(engines, tmp_path, exporter.host, 1)
    try:
        until(lambda: prometheus.number('up{job="kestrel"}') == 1)
        time.sleep(25)
        assert prometheus.number('min_over_time(up{job="kestrel"}[20s])') == 1
        assert prometheus.number('count_over_time(up{job="kestrel"}[20s])') >= 19
        assert prometheus.number('kestrel_up{printer="Office"}') == 1
        assert prometheus.number('kestrel_up{printer="Dead"}') == 0
        # What it took over is what the exporter tells, and its own rules see it.
        assert prometheus.number("kestrel_scrapes_total") >= 19
        assert prometheus.number("histogram_quantile(0.5, sum by (le) (rate(kestrel_exchange_seconds_bucket[20s])))") < 1
        printers.change({"*": {"status.error": "Paper_Jam"}})
        until(lambda: prometheus.number('count(kestrel_state{state="paper-jam"} == 1)') == 3)
        until(lambda: prometheus.query('ALERTS{alertname="KestrelPaperJam", alertstate="pending"}'))
        # Each panel of the dashboard asks something that this Prometheus understands.
        empty = {expression for expression in dashboard_expressions() if not prometheus.query(expression)}
        assert not empty
    finally:
        prometheus.stop()


def dashboard_expressions():
    dashboard = json.loads((FLEET / "dashboard.json").read_text())
    panels = [panel["id"] for panel in dashboard["panels"]]
    assert len(panels) == len(set(panels))
    for panel in dashboard["panels"]:
        for target in panel["targets"]:
            yield target["expr"].replace("$__rate_interval", "1m").replace("$printer", ".*").replace("$model", ".*")

