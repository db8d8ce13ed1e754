#!/usr/bin/python3
"""Turns the lines that one run measured into results.json and a table.

report.py FOLDER RESULTS    FOLDER holds load, exchanges.jsonl, parsers.json and checks.jsonl
"""
import json
import os
import platform
import sys
from pathlib import Path
from statistics import median

BENCH = Path(__file__).parent
FIGURES = ("median_us", "p99_us", "ops_per_s", "cpu_us", "fairness")
COLUMNS = ("name", "case", "median_us", "p99_us", "ops_per_s", "cpu_us", "x_poll", "x_sleep", "target", "met")
BETTER = {"ops_per_s": max}  # of two limits, where the larger figure is the better one
RELATIONS = {
    "at_most": ("at most", lambda value, limit: value <= limit),
    "at_least": ("at least", lambda value, limit: value >= limit),
    "below": ("below", lambda value, limit: value < limit),
}


class Rounds:
    """Every round of one contender in one case, and the limits measured just before each."""

    def __init__(self):
        self.samples = []

    def own(self, figure):
        return [sample["own"][figure] for sample in self.samples]

    def limit(self, which, figure):
        if which == "better limit":
            best = BETTER.get(figure, min)
            return [best(s["polling"][figure], s["sleeping"][figure]) for s in self.samples]
        return [sample[which.removesuffix(" limit")][figure] for sample in self.samples]


def ratio(own, other):
    """The median of the rounds' own ratios: what disturbs a whole round disturbs both sides of it."""
    return median(a / b for a, b in zip(own, other) if b)


def judge(target, measured, unit_of):
    relation = next(key for key in RELATIONS if key in target)
    words, holds = RELATIONS[relation]
    what = f"{words} {target[relation]:g}" + (f" x {unit_of}" if unit_of else "")
    return {"target": what, "measured": measured, "met": holds(measured, target[relation])}


def read_exchanges(path):
    table = {}
    for line in path.read_text().splitlines():
        sample = json.loads(line)
        table.setdefault((sample["id"], sample["case"]), Rounds()).samples.append(sample)
    return table


def judge_exchange(target, table):
    rounds = table.get((target["row"], target["case"]))
    other = target.get("of")
    if rounds is None or (other and "limit" not in other and (other, target["case"]) not in table):
        return None
    own = rounds.own(target["figure"])
    if other is None:
        return judge(target, median(own), None) | {"figure": target["figure"]}
    if "limit" in other:
        reference, name = rounds.limit(other, target["figure"]), f"the {other}"
    else:
        against = table[other, target["case"]]
        reference, name = against.own(target["figure"]), against.samples[0]["name"]
    return judge(target, ratio(own, reference), name) | {"figure": target["figure"]}


def exchange_rows(table, targets):
    rows = []
    for (identity, case), rounds in table.items():
        row = {"name": rounds.samples[0]["name"], "case": case}
        row |= {figure: median(rounds.own(figure)) for figure in FIGURES}
        row["x_poll"] = ratio(rounds.own("median_us"), rounds.limit("polling", "median_us"))
        row["x_sleep"] = ratio(rounds.own("median_us"), rounds.limit("sleeping", "median_us"))
        row["judged"] = [judge_exchange(t, table) for t in targets if (t["row"], t["case"]) == (identity, case)]
        rows.append(row)
    return rows


def simple_rows(values, figure, case, targets):
    """Rows of one figure each, whose targets compare them with each other or with a number."""
    rows = []
    for name, value in values.items():
        row = {"name": name, "case": case, figure: value, "judged": []}
        for target in (t for t in targets if t["row"] == name):
            reference = values[target["of"]] if "of" in target else 1
            row["judged"].append(judge(target, value / reference, target.get("of")))
        rows.append(row)
    return rows


def read_parsers(path):
    if not path.exists():
        return {}
    benchmarks = json.loads(path.read_text())["benchmarks"]
    medians = [b for b in benchmarks if b.get("aggregate_name") == "median"]
    medians.sort(key=lambda b: b["family_index"])  # they were measured in random order
    return {b["run_name"]: b["cpu_time"] for b in medians}


def read_checks(path):
    lines = path.read_text().splitlines() if path.exists() else []
    return {check["check"]: check["value"] for check in map(json.loads, lines)}


def finish(row):
    """`target` and `met` sum up what was judged; a target whose counterpart is missing is not judged."""
    row["judged"] = [judgement for judgement in row["judged"] if judgement]
    if "median_ns" in row:
        row["median_us"] = row["median_ns"] / 1000
    row["target"] = "; ".join(judgement["target"] for judgement in row["judged"]) or None
    row["met"] = all(judgement["met"] for judgement in row["judged"]) if row["judged"] else None
    return {column: None for column in COLUMNS} | row


def number(value):
    if value is None:
        return ""
    return f"{value:,.0f}" if value >= 1000 else f"{value:.3g}"


def print_table(rows):
    print(f"{'':36}{'median us':>10}{'p99 us':>10}{'ops/s':>11}{'cpu us':>9}{'x_poll':>8}{'x_sleep':>9}")
    case = None
    for row in rows:
        if row["case"] != case:
            case = row["case"]
            print(f"\n{case}")
        if row["x_poll"] is not None:
            figures = (row[key] for key in COLUMNS[2:8])
            print(f"  {row['name']:34}" + "".join(
                f"{number(value):>{width}}" for value, width in zip(figures, (10, 10, 11, 9, 8, 9))))
        else:
            value, unit = (row["median_ns"], " ns") if "median_ns" in row else (row["value"], "")
            print(f"  {row['name']:34}{number(value) + unit:>13}")
        for judgement in row["judged"]:
            verdict = "met" if judgement["met"] else "MISSED"
            figure = judgement.get("figure", "").removesuffix("_us")
            print(f"      {verdict:7} {figure} {judgement['target']}: {number(judgement['measured'])}")


def processor():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":")[1].strip()
    return platform.machine()


def main():
    folder, results = Path(sys.argv[1]), Path(sys.argv[2])
    targets = json.loads((BENCH / "targets.json").read_text())
    rows = exchange_rows(read_exchanges(folder / "exchanges.jsonl"), targets["exchanges"])
    rows += simple_rows(read_parsers(folder / "parsers.json"), "median_ns", "parser", targets["parsers"])
    rows += simple_rows(read_checks(folder / "checks.jsonl"), "value", "check", targets["checks"])
    rows = [finish(row) for row in rows]
    machine = {"processor": processor(), "processors": os.cpu_count(), "system": platform.release(),
               "load_before": float((folder / "load").read_text().split()[0])}
    results.write_text(json.dumps({"machine": machine, "rows": rows}, indent=1) + "\n")
    print_table(rows)


main()
