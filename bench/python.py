#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The Python package beside what one writes by hand: ctypes, JSON from the library, and Python's json.

python.py [--rounds N] [--record]: PYTHONPATH has the package; --record writes docs/performance.md's section. Both take
turns in one process, so that other work on the machine meets both; columns are the best of the rounds, and ratios those
of the medians.
"""

import argparse
import ctypes
import gc
import json
import os
import pathlib
import platform
import re
import statistics
import time

import orlenta

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
CORE = {
    "msgCnt": 67, "id": "9f2c41b7", "secMark": 41300, "lat": 422808540, "long": -837430880, "elev": 2556,
    "accuracy": {"semiMajor": 24, "semiMinor": 18, "orientation": 1000}, "transmission": "forwardGears", "speed": 1000,
    "heading": 9000, "angle": 12, "accelSet": {"long": 100, "lat": -5, "vert": 0, "yaw": 20},
    "brakes": {"wheelBrakes": "00", "traction": "on", "abs": "on", "scs": "on", "brakeBoost": "off", "auxBrakes": "off"},
    "size": {"width": 180, "length": 480},
}


class ByHand:
    """A type through ctypes: asn1_uper_decode, asn1_jer_encode2 with compact text, json.loads, and back."""

    library = ctypes.CDLL(os.environ["ORLENTA_LIBRARY"])

    def __init__(self, type):
        self.descriptor = ctypes.c_char.in_dll(self.library, "asn1_type_" + type.replace(".", "_").replace("-", "_"))
        self.pointer = ctypes.byref(self.descriptor)
        self.compact = ctypes.create_string_buffer(24)
        for name in ("asn1_uper_decode", "asn1_jer_encode2", "asn1_jer_decode", "asn1_uper_encode"):
            getattr(self.library, name).restype = ctypes.c_int64

    def decode(self, octets):
        value, text = ctypes.c_void_p(), ctypes.c_void_p()
        if self.library.asn1_uper_decode(ctypes.byref(value), self.pointer, octets, ctypes.c_uint64(len(octets)), None) < 0:
            raise ValueError
        size = self.library.asn1_jer_encode2(ctypes.byref(text), self.pointer, value, self.compact)
        made = json.loads(ctypes.string_at(text, size))
        self.library.asn1_free(text)
        self.library.asn1_free_value(self.pointer, value)
        return made

    def encode(self, made):
        text = json.dumps(made).encode()
        value, octets = ctypes.c_void_p(), ctypes.c_void_p()
        if self.library.asn1_jer_decode(ctypes.byref(value), self.pointer, text, ctypes.c_uint64(len(text)), None) < 0:
            raise ValueError
        size = self.library.asn1_uper_encode(ctypes.byref(octets), self.pointer, value)
        encoded = ctypes.string_at(octets, size)
        self.library.asn1_free(octets)
        self.library.asn1_free_value(self.pointer, value)
        return encoded


def messages():
    """(name, type, JSON): the benchmark's twelve, and a BSM of the core data alone."""
    yield "us-bsm-core", "US.BasicSafetyMessage", json.dumps({"coreData": CORE})
    for line in (ROOT / "bench/messages.tsv").read_text().splitlines():
        if not line.startswith("#"):
            name, type, _, text = line.split("\t")
            yield name, type, text


def take_time(calls, argument, times):
    start = time.thread_time_ns()
    for _ in range(times):
        calls(argument)
    return (time.thread_time_ns() - start) / times / 1000


def in_turns(ours, theirs, rounds):
    """(best, median) of each, in microseconds. Both are (call, argument)."""
    times = max(1, int(2000 / take_time(*theirs, 3)))
    both = [(take_time(*ours, times), take_time(*theirs, times)) for _ in range(rounds)]
    return [(min(column), statistics.median(column)) for column in zip(*both)]


def measure(rounds):
    for name, type_name, text in messages():
        type, hand = orlenta.type(type_name), ByHand(type_name)
        value = type.decode(text, "jer")
        octets = type.encode(value)
        made = hand.decode(octets)
        if type.decode(octets) != value or hand.encode(made) != octets:
            raise SystemExit(f"{name}: the two differ")
        row = [name, len(octets)]
        for ours, theirs in [((type.decode, octets), (hand.decode, octets)), ((type.encode, value), (hand.encode, made))]:
            (best, median), (their_best, their_median) = in_turns(ours, theirs, rounds)
            row += [best, their_best, their_median / median]
        yield row


def many(rounds):
    """Messages a second, for the BSM of core data: (what, how many)."""
    type = orlenta.type("US.BasicSafetyMessage")
    octets = type.encode(type.decode(json.dumps({"coreData": CORE}), "jer"))
    log = [octets] * 100000
    paths = ["coreData.lat", "coreData.long", "coreData.speed"]
    for what, call in [("`columns` of three fields", lambda: orlenta.columns(type, log, paths)),
                       ("`decode_many`", lambda: type.decode_many(log))]:
        best = []
        for _ in range(min(rounds, 7)):
            start = time.thread_time()
            call()
            best.append(time.thread_time() - start)
        yield what, len(log) / min(best)


def table(rounds):
    load = os.getloadavg()[0]
    lines = ["| message | octets | decode µs | by hand | ratio | encode µs | by hand | ratio |",
             "| --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: |"]
    for name, size, *numbers in measure(rounds):
        formats = ("{:.2f}", "{:.1f}", "{:.1f}") * 2
        lines.append(f"| {name} | {size} | " + " | ".join(map(str.format, formats, numbers)) + " |")
    lines += ["", "On one core, for us-bsm-core: "
              + ", ".join(f"{what} {number:,.0f} messages a second" for what, number in many(rounds)) + "."]
    head = (f"Python {platform.python_version()}, {os.cpu_count()} processors; load {load:.1f} when it began and "
            f"{os.getloadavg()[0]:.1f} when it ended.")
    return "\n".join([head, "", *lines])


def main():
    parser = argparse.ArgumentParser(description="The Python package beside ctypes by hand.")
    parser.add_argument("--rounds", type=int, default=41)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_args()
    gc.disable()
    made = table(options.rounds)
    print(made)
    if options.record:
        text = PAGE.read_text()
        marked = re.sub(r"(<!-- python -->\n).*(<!-- end of python -->)", lambda m: f"{m[1]}\n{made}\n\n{m[2]}", text, flags=re.S)
        PAGE.write_text(marked)


if __name__ == "__main__":
    main()
