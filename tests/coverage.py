#!/usr/bin/env python3
"""Lines and branches that the tests reach, by folder, from a build with counters: coverage.py FOLDER.

Branches that only an exception takes, and those that a compiler adds, are none of ours and stay out. The library must
stay above the limits; the tools are shown beside it.
"""

import collections
import json
import subprocess
import sys

LIMITS = {"line": 99.0, "branch": 97.0}
FOLDERS = ("lib", "compiler", "cli")


def measure(build):
    """Counts by folder: {folder: {"line": [reached, all], "branch": [reached, all]}}."""
    command = ["gcovr", "--root", ".", "--object-directory", build, "--exclude-throw-branches",
               "--exclude-unreachable-branches", "--json-summary", "-", "-j", "2"]
    for folder in FOLDERS:
        command += ["--filter", f"{folder}/"]
    files = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)["files"]
    counts = collections.defaultdict(lambda: {"line": [0, 0], "branch": [0, 0]})
    for file in files:
        parts = file["filename"].split("/")
        for folder in {parts[0], "/".join(parts[:2]) if len(parts) > 2 else parts[0]}:
            for what in LIMITS:
                counts[folder][what][0] += file[f"{what}_covered"]
                counts[folder][what][1] += file[f"{what}_total"]
    return counts


def percent(count):
    return 100.0 * count[0] / count[1] if count[1] else 100.0


def main():
    counts = measure(sys.argv[1])
    print(f"{'folder':<24}{'lines':>9}{'reached':>10}{'branches':>10}{'reached':>10}")
    for folder in sorted(counts):
        line, branch = counts[folder]["line"], counts[folder]["branch"]
        print(f"{folder:<24}{line[1]:>9}{percent(line):>9.2f}%{branch[1]:>10}{percent(branch):>9.2f}%")
    low = [what for what, limit in LIMITS.items() if percent(counts["lib"][what]) < limit]
    for what in low:
        print(f"lib: {percent(counts['lib'][what]):.2f} % of {what}s, less than {LIMITS[what]} %", file=sys.stderr)
    return 1 if low else 0


if __name__ == "__main__":
    sys.exit(main())
