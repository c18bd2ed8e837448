#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Lines and branches that the tests reached, by folder, from a build with clang's counters: coverage.py FOLDER.

A branch is a way that a condition of the source goes, true or false, each part of && and || for itself, or a case of a
switch. What a compiler folds has none. Copies of an inline function count as one. The library must stay above the
limits; the tools are shown beside it, orlentac with what it did for the build, whose tables the tests read.
FOLDER/unreached.txt names the branches that no test took.
"""

import bisect
import collections
import json
import subprocess
import sys
from pathlib import Path

LIMITS = {"line": 99.0, "branch": 97.0}
MEASURED = {"lib": "liborlenta.so", "compiler": "compiler/orlentac", "cli": "cli/orlenta"}  # folder: what it makes


def export(build, profile, folder):
    """What llvm-cov knows of the files of a folder: name in the tree, counts."""
    command = ["llvm-cov", "export", str(build / MEASURED[folder]), f"--instr-profile={profile}", "--skip-functions"]
    data = json.loads(subprocess.run(command, check=True, capture_output=True).stdout)["data"][0]
    for file in data["files"]:
        path = Path(file["filename"]).resolve()
        if path.is_relative_to(Path.cwd() / folder):
            yield path.relative_to(Path.cwd()), file


def branches(path, file):
    """All branches of a file: (line, column, text, times taken)."""
    text = path.read_text().splitlines()
    counts = collections.defaultdict(lambda: [0, 0])
    for *place, taken, not_taken, _, _, _ in file["branches"]:
        counts[tuple(place)][0] += taken
        counts[tuple(place)][1] += not_taken
    starts = [segment[:2] for segment in file["segments"]]
    for (line, column, _, end), (taken, not_taken) in sorted(counts.items()):
        passes = file["segments"][bisect.bisect_right(starts, [line, column]) - 1][2]
        if passes and not taken and not not_taken:
            continue  # folded: code runs here and nothing is decided
        before, source = text[line - 1][:column - 1], text[line - 1][column - 1:]
        if source.startswith(("case ", "default:")):
            yield line, column, source, taken
        elif before.endswith("switch ("):  # one without a default
            yield line, column, f"none: {source}", taken
        else:
            yield line, column, f"true: {source}", taken
            yield line, column, f"false: {source}", not_taken


def measure(build):
    """Counts by folder: {folder: {"line": [reached, all], "branch": [reached, all]}}."""
    profile = build / "profiles/all.profdata"
    made = (build / MEASURED["compiler"]).stat().st_mtime
    raw = [file for file in build.glob("profiles/*.profraw") if file.stat().st_mtime > made]
    subprocess.run(["llvm-profdata", "merge", "-o", profile, *raw], check=True)
    counts = collections.defaultdict(lambda: {"line": [0, 0], "branch": [0, 0]})
    with open(build / "unreached.txt", "w", encoding="utf-8") as unreached:
        for folder in MEASURED:
            for path, file in export(build, profile, folder):
                ways = list(branches(path, file))
                for line, column, text, taken in ways:
                    if not taken:
                        print(f"{path}:{line}:{column}: {text}", file=unreached)
                lines = file["summary"]["lines"]
                for group in {folder, "/".join(path.parts[:-1][:2])}:
                    counts[group]["line"][0] += lines["covered"]
                    counts[group]["line"][1] += lines["count"]
                    counts[group]["branch"][0] += sum(1 for *_, taken in ways if taken)
                    counts[group]["branch"][1] += len(ways)
    return counts


def percent(count):
    return 100.0 * count[0] / count[1] if count[1] else 100.0


def main():
    counts = measure(Path(sys.argv[1]))
    print(f"{'folder':<24}{'lines':>9}{'reached':>10}{'branches':>10}{'reached':>10}")
    for folder in sorted(counts):
        line, branch = counts[folder]["line"], counts[folder]["branch"]
        print(f"{folder:<24}{line[1]:>9}{percent(line):>9.2f}%{branch[1]:>10}{percent(branch):>9.2f}%")
    low = [what for what, limit in LIMITS.items() if percent(counts["lib"][what]) < limit]
    for what in low:
        print(f"lib: {what} {percent(counts['lib'][what]):.2f} %, less than {LIMITS[what]} %", file=sys.stderr)
    return 1 if low else 0


if __name__ == "__main__":
    sys.exit(main())
