#!/usr/bin/python3
"""plot.py RESULTS PNG: how long one question takes, each way of asking it, as a multiple of the polling limit."""
import json
import sys

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402  (the back end is chosen first)

CASES = ("hot", "one a millisecond", "one processor", "four clients")
TITLES = {
    "hot": "one client, one question after the other",
    "one a millisecond": "one question a millisecond",
    "one processor": "both processes on one processor",
    "four clients": "four clients at once",
}
LIBRARY, LIMIT, PEER = "#c8472f", "#8a8f98", "#3f6c9b"
FASTEST_FIRST = "median_us"


def colour(name):
    if name.startswith("limit"):
        return LIMIT
    return LIBRARY if name == "GetFaxRedials" else PEER


def duration(us):
    if us < 1:
        return f"{us * 1000:.0f} ns"
    return f"{us:.1f} µs" if us < 1000 else f"{us / 1000:.1f} ms"


def compared(rows, case):
    """Those who answer the same question: not the library's other functions, nor the large messages."""
    asked = {row["name"] for row in rows if row["case"] == "four clients"}
    return sorted((row for row in rows if row["case"] == case and row["name"] in asked),
                  key=lambda row: row[FASTEST_FIRST], reverse=True)


def draw(axes, rows, case):
    names = [row["name"] for row in rows]
    times = [row["median_us"] for row in rows]
    axes.barh(names, times, color=[colour(name) for name in names], height=0.62)
    for place, row in enumerate(rows):
        axes.plot([row["median_us"], row["p99_us"]], [place, place], color="#333", linewidth=0.8, alpha=0.6)
        axes.text(max(row["median_us"], row["p99_us"]) * 1.25, place, duration(row["median_us"]),
                  va="center", fontsize=8, color="#333")
    axes.set_xscale("log")
    axes.set_xlim(min(times) / 2, max(row["p99_us"] for row in rows) * 12)
    axes.set_title(TITLES[case], fontsize=10, loc="left", weight="bold")
    axes.set_xlabel("microseconds, logarithmic; the line reaches to the 99th percentile", fontsize=7)
    axes.tick_params(axis="both", labelsize=8, length=0)
    axes.grid(axis="x", color="#e4e6ea", linewidth=0.7)
    axes.set_axisbelow(True)
    for side in ("top", "right", "left"):
        axes.spines[side].set_visible(False)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        results = json.load(file)
    figure, grid = pyplot.subplots(2, 2, figsize=(13, 8.2))
    for axes, case in zip(grid.flat, CASES):
        draw(axes, compared(results["rows"], case), case)
    machine = results["machine"]
    figure.suptitle("One question to another process, and its answer", fontsize=14, weight="bold", x=0.02, ha="left")
    figure.text(0.02, 0.935, f"{machine['processors']} processors, {machine['processor']}; medians of several rounds",
                fontsize=9, color="#555")
    figure.tight_layout(rect=(0, 0, 1, 0.93), h_pad=2)
    figure.savefig(sys.argv[2], dpi=110)


main()
