#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Instructions and allocations of a message, held against those of bench/instructions.tsv.

Counts are steady from run to run and from machine to machine, but not from compiler to compiler: the table has them
for each compiler by which they were recorded, and any other is told so and passes (exit status 77, a skipped test).
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.05
SKIPPED = 77
TABLE = pathlib.Path(__file__).with_name("instructions.tsv")
HEAD = "# Instructions and allocations of one run. Written by ./dev instructions --record\n" \
       "# compiler\tmessage, way\tinstructions\tallocations\n"

# The C library picks memcpy and its like by what the processor has; these counts are to be those of any.
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX2,-AVX,-ERMS,-FSRM,-SSSE3,-SSE4_1,-SSE4_2"


def measure(runner):
    """What each run took: name to (instructions, allocations)."""
    with tempfile.TemporaryDirectory() as folder:
        command = ["valgrind", "--tool=callgrind", "--collect-atstart=no", f"--callgrind-out-file={folder}/out", runner]
        run = subprocess.run(command, capture_output=True, text=True,
                             env=dict(os.environ, GLIBC_TUNABLES=PLAIN_PROCESSOR))
        if run.returncode:
            sys.exit(f"{' '.join(command)}\n{run.stdout}{run.stderr}")
        instructions = {}
        for dump in pathlib.Path(folder).iterdir():
            text = dump.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            if name:
                instructions[name[1]] = int(re.search(r"^(?:totals|summary): (\d+)$", text, re.M)[1])
    allocations = dict(line.split("\t") for line in run.stdout.splitlines())
    if not allocations or instructions.keys() != allocations.keys():
        sys.exit(f"callgrind has counts for {sorted(instructions)}, and the program ran {sorted(allocations)}")
    return {name: (instructions[name], int(allocations[name])) for name in allocations}


def read_table():
    """compiler to name to (instructions, allocations)"""
    table = {}
    for line in TABLE.read_text().splitlines() if TABLE.exists() else []:
        if not line.startswith("#"):
            compiler, name, instructions, allocations = line.split("\t")
            table.setdefault(compiler, {})[name] = (int(instructions), int(allocations))
    return table


def write_table(table):
    rows = [f"{compiler}\t{name}\t{counts[0]}\t{counts[1]}\n"
            for compiler in sorted(table) for name, counts in table[compiler].items()]
    TABLE.write_text(HEAD + "".join(rows))


def compare(recorded, measured):
    """Whether nothing takes more than is recorded, within the tolerance; prints what differs."""
    sound, smaller = True, False
    for name in sorted(recorded.keys() | measured.keys()):
        if name not in recorded or name not in measured:
            print(f"{name}: {'not recorded' if name in measured else 'recorded, but no longer run'}")
            sound = False
            continue
        for what, old, new in zip(("instructions", "allocations"), recorded[name], measured[name]):
            change = (new - old) / max(old, 1)
            if abs(change) > TOLERANCE:
                print(f"{name}: {new} {what}, recorded {old}, {change:+.1%}")
                sound &= change < 0
                smaller |= change < 0
    if not sound:
        print("If this is meant, record anew by ./dev instructions --record and commit bench/instructions.tsv.")
    elif smaller:
        print("Less than recorded: ./dev instructions --record keeps it that way.")
    return sound


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("runner", help="the program orlenta_instructions")
    parser.add_argument("--record", action="store_true", help="replace the recorded counts of its compiler")
    options = parser.parse_args()

    compiler = subprocess.run([options.runner, "--compiler"], capture_output=True, text=True, check=True).stdout.strip()
    table = read_table()
    if compiler not in table and not options.record:
        print(f"No counts are recorded for {compiler}, only for {', '.join(sorted(table)) or 'none'}; "
              "./dev instructions --record adds them.")
        sys.exit(SKIPPED)
    measured = measure(options.runner)
    if options.record:
        table[compiler] = measured
        write_table(table)
        print(f"{len(measured)} counts of {compiler} are in {TABLE}")
    else:
        sound = compare(table[compiler], measured)
        print(f"{len(measured)} counts of {compiler}: {'none' if sound else 'some'} above those recorded")
        sys.exit(0 if sound else 1)


if __name__ == "__main__":
    main()
