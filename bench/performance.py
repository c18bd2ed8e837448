#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Puts measured figures into docs/performance.md, between its markers, and draws docs/performance.svg of them.

performance.py BENCH.tsv PEERS.tsv: the tables that the two benchmarks write. ./dev bench --record calls it.
"""

import argparse
import csv
import math
import os
import pathlib
import platform
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
CHART = ROOT / "docs/performance.svg"
RULES = ("uper", "aper", "oer", "der", "jer")


def read_rows(path):
    """The data rows of a table; names of columns occur more than once in it, so rows are lists."""
    with open(path, newline="") as file:
        return list(csv.reader(file, delimiter="\t"))[1:]


def geometric_mean(numbers):
    return math.exp(sum(map(math.log, numbers)) / len(numbers))


class Comparison:
    """A row of PEERS.tsv: nanoseconds of one message, of ours and of a peer, decoding and encoding."""

    def __init__(self, row):
        self.peer, self.engine, self.message = row[:3]
        self.octets, self.leaves = map(int, row[3:5])
        times = list(map(float, row[5:]))
        self.best = {"decode": (times[0], times[2]), "encode": (times[4], times[6])}
        self.median = {"decode": (times[1], times[3]), "encode": (times[5], times[7])}

    def ratio(self, direction, kind="best"):
        ours, theirs = getattr(self, kind)[direction]
        return theirs / ours


def output_of(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout.strip()


def circumstances():
    cpu = platform.processor()
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines() if os.path.exists("/proc/cpuinfo") else []:
        if line.startswith("model name"):
            cpu = line.split(":", 1)[1].strip()
    changed = ", with changes" if output_of("git", "status", "--porcelain", "--untracked-files=no") else ""
    compiler = output_of(os.environ.get("CXX", "c++"), "--version").splitlines()[0]
    load = os.getloadavg()[0]
    return (f"{os.cpu_count()} processors, {cpu}; {compiler}; commit {output_of('git', 'rev-parse', '--short', 'HEAD')}"
            f"{changed}; load {load:.1f} when it ended.\n")


def table(head, rows):
    lines = [head, ["---"] + ["---:"] * (len(head) - 1)] + rows
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def comparison_table(comparisons):
    rows = []
    for each in comparisons:
        row = [each.message, str(each.octets), str(each.leaves)]
        for direction in ("decode", "encode"):
            ours, theirs = each.best[direction]
            row += [f"{ours:.0f}", f"{theirs:.0f}", f"{each.ratio(direction):.2f}", f"{each.ratio(direction, 'median'):.2f}"]
        rows.append(row)
    mean = ["geometric mean", "", ""]
    for direction in ("decode", "encode"):
        mean += ["", ""] + [f"{geometric_mean([e.ratio(direction, kind) for e in comparisons]):.2f}"
                            for kind in ("best", "median")]
    head = ["message", "octets", "leaves", "decode ns", "theirs", "ratio", "of medians",
            "encode ns", "theirs", "ratio", "of medians"]
    return table(head, rows + [mean])


def rules_table(rows, engine):
    """Nanoseconds a leaf, decoded and released / encoded, by the rules that the engine knows."""
    cells = {}
    for rule, row_engine, message, _, leaves, decode, _, encode, _ in rows:
        if row_engine == engine:
            cells.setdefault(message, {})[rule] = f"{float(decode) / int(leaves):.1f} / {float(encode) / int(leaves):.1f}"
    rules = [rule for rule in RULES if any(rule in by_rule for by_rule in cells.values())]
    return table(["message"] + [rule.upper() for rule in rules],
                 [[message] + [by_rule.get(rule, "") for rule in rules] for message, by_rule in cells.items()])


def unique(names):
    return list(dict.fromkeys(names))


def figures(bench, peers):
    text = [circumstances()]
    for peer, engine in unique((each.peer, each.engine) for each in peers):
        rows = [each for each in peers if (each.peer, each.engine) == (peer, engine)]
        text.append(f"### {peer} and our {engine}, unaligned PER\n")
        text.append(comparison_table(rows))
    for engine in unique(row[1] for row in bench):
        text.append(f"### The {engine}, nanoseconds a leaf: decoded and released / encoded\n")
        text.append(rules_table(bench, engine))
    return "\n".join(text)


# ---- the chart ----------------------------------------------------------------------------------------------------

OUR_COLOURS = ("#1f77b4", "#2ca02c", "#9467bd")
PEER_COLOURS = ("#999999", "#bbbbbb", "#777777")
LABEL, PANEL, GAP, BAR, TOP = 150, 330, 30, 11, 56


def bars_of(peers, message, direction):
    """(who, nanoseconds a leaf) of one message: our engines, then the peers."""
    bars = {}
    rows = [each for each in peers if each.message == message]
    for each in rows:
        bars[f"orlenta, {each.engine}"] = each.best[direction][0] / each.leaves
    for each in rows:
        bars[each.peer] = each.best[direction][1] / each.leaves
    return bars


def chart(peers):
    messages = unique(each.message for each in peers)
    ours, theirs = unique(f"orlenta, {each.engine}" for each in peers), unique(each.peer for each in peers)
    who = ours + theirs
    colours = dict(zip(ours, OUR_COLOURS)) | dict(zip(theirs, PEER_COLOURS))
    largest = max(max(bars_of(peers, m, d).values()) for m in messages for d in ("decode", "encode"))
    row = BAR * len(who) + 9
    width, height = LABEL + 2 * PANEL + GAP + 10, TOP + row * len(messages) + 10
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" font-family="sans-serif" '
           f'font-size="11">', f'<rect width="{width}" height="{height}" fill="white"/>']

    def text(x, y, words, extra=""):
        svg.append(f'<text x="{x:.0f}" y="{y:.0f}" {extra}>{words}</text>')

    for n, name in enumerate(who):
        svg.append(f'<rect x="{LABEL + 150 * n}" y="8" width="10" height="10" fill="{colours[name]}"/>')
        text(LABEL + 150 * n + 15, 17, name)
    for panel, (direction, title) in enumerate((("decode", "decode and release"), ("encode", "encode and release"))):
        left = LABEL + panel * (PANEL + GAP)
        text(left, 42, f"{title}, ns a leaf", 'font-weight="bold"')
        for m, message in enumerate(messages):
            top = TOP + m * row
            if panel == 0:
                text(LABEL - 8, top + row / 2, message, 'text-anchor="end"')
            for b, (name, ns) in enumerate(bars_of(peers, message, direction).items()):
                length = ns / largest * (PANEL - 40)
                svg.append(f'<rect x="{left}" y="{top + b * BAR}" width="{length:.1f}" height="{BAR - 1}" '
                           f'fill="{colours[name]}"/>')
                text(left + length + 4, top + b * BAR + 9, f"{ns:.1f}")
    return "\n".join(svg) + "\n</svg>\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("bench", help="what ./dev bench --tsv printed")
    parser.add_argument("peers", help="the file that ./dev bench --peers --tsv FILE wrote")
    options = parser.parse_args()
    peers = [Comparison(row) for row in read_rows(options.peers)]
    begin, end = "<!-- figures -->\n", "<!-- end of figures -->"
    text, found = re.subn(f"{begin}.*{end}", lambda _: f"{begin}\n{figures(read_rows(options.bench), peers)}\n{end}",
                          PAGE.read_text(), flags=re.S)
    if found != 1:
        raise SystemExit(f"{PAGE} has lost its markers")
    PAGE.write_text(text)
    CHART.write_text(chart(peers))
    print(f"wrote {PAGE.relative_to(ROOT)} and {CHART.relative_to(ROOT)}")


if __name__ == "__main__":
    main()
