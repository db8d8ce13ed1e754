#!/usr/bin/python3
"""table.py RESULTS README: puts the figures of a run into README, in place of those below "## Figures"."""
import json
import re
import sys
from pathlib import Path

EXCHANGE_FIGURES = ("median_us", "p99_us", "ops_per_s", "cpu_us", "x_poll", "x_sleep")
VERDICT = {True: "met", False: "**missed**", None: ""}


def number(value, digits=3):
    if value is None:
        return ""
    return f"{value:,.0f}" if value >= 1000 else f"{value:.{digits}g}"


def line(cells):
    return "| " + " | ".join(cells) + " |"


def verdicts(row):
    told = (f"{judgement.get('figure', '').removesuffix('_us')} {judgement['target']}: "
            f"{number(judgement['measured'], 4)}".strip() for judgement in row["judged"])
    return ["<br>".join(told), "<br>".join(VERDICT[judgement["met"]] for judgement in row["judged"])]


def exchange_table(rows):
    yield line(("", "median us", "p99 us", "ops/s", "cpu us", "x_poll", "x_sleep", "target: measured", ""))
    yield line(["---"] + ["--:"] * len(EXCHANGE_FIGURES) + ["---", "---"])
    case = None
    for row in rows:
        if row["case"] != case:
            case = row["case"]
            yield line([f"**{case}**"] + [""] * (len(EXCHANGE_FIGURES) + 2))
        yield line([row["name"], *(number(row[figure]) for figure in EXCHANGE_FIGURES), *verdicts(row)])


def simple_table(rows, title, figure):
    yield line((*title, "target: measured", ""))
    yield line(("---", "--:", "---", "---"))
    for row in rows:
        yield line((row["name"].replace("/", ", ", 1 if row["case"] == "parser" else 0), number(row[figure]), *verdicts(row)))


def section(results):
    machine, rows = results["machine"], results["rows"]
    kinds = {"parser": [], "check": []}
    exchanges = [row for row in rows if row["case"] not in kinds]
    for row in rows:
        kinds.get(row["case"], []).append(row)
    return "\n".join((
        f"One run, on {machine['processors']} processors ({machine['processor']}), with a load of "
        f"{machine['load_before']:.2f} before it.", "",
        *exchange_table(exchanges), "",
        *simple_table(kinds["parser"], ("parser", "ns"), "median_ns"), "",
        *simple_table(kinds["check"], ("check", "value"), "value"), ""))


def main():
    results, readme = json.loads(Path(sys.argv[1]).read_text()), Path(sys.argv[2])
    figures = "## Figures\n\n" + section(results).replace("\\", "\\\\") + "\n"
    readme.write_text(re.sub(r"## Figures\n.*?(?=^## )", figures, readme.read_text(), flags=re.S | re.M))


main()
