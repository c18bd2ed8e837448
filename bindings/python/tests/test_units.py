# SPDX-License-Identifier: Apache-2.0
"""Physical values: exact, and in the words of the command."""

import json
import os
import re
import subprocess
from decimal import Decimal
from pathlib import Path

import pytest

import orlenta

from conftest import needs_sets

COMMAND = Path(os.environ.get("ORLENTA_BUILD_DIR", "."), "cli", "orlenta")


def types_of_units():
    """A type for each unit."""
    types = [orlenta.type(name) for name in orlenta.types()]
    return {(unit.symbol, unit.scale, unit.offset, tuple(unit.specials)): type
            for type in types if (unit := type.unit)}.values()


def samples(type):
    low, high = type.bounds
    inner = [low + (high - low) * part // 97 for part in range(98)]
    return [n for n in inner + [-1, 0, 1, 28799, low + 1, high - 1] if low <= n <= high]


def in_words(shown):
    """What the command shows of a number: {"raw":917,"physical":18.34,"unit":"m/s"}."""
    physical = re.search(r'"physical":([^,}]+)', shown)
    parts = json.loads(shown)
    unit = [parts["unit"]] if parts.get("unit", "1") != "1" else []
    return " ".join(([physical[1]] if physical else []) + unit + ([parts["meaning"]] if "meaning" in parts else []))


@needs_sets
@pytest.mark.skipif(not COMMAND.exists(), reason="no command is built")
def test_the_command_says_the_same():
    types = types_of_units()
    assert len(types) > 100
    for type in types:
        numbers = samples(type)
        shown = subprocess.run([COMMAND, "convert", "--type", type.name, "--from", "jer", "--to", "jer", "--lines", "--physical"],
                               input="\n".join(map(str, numbers)), capture_output=True, text=True, check=True).stdout
        assert [in_words(line) for line in shown.splitlines()] == list(map(type.unit.text, numbers)), type.name


EXACT = orlenta.compile_text("""M DEFINITIONS ::= BEGIN
Step ::= INTEGER --@ unit 0.0125 deg
Small ::= INTEGER --@ unit 0.0000001 deg
Above ::= INTEGER (0..255) --@ unit 200 Pa + 57800; 0 unavailable; 255 orMore
Below ::= INTEGER (0..255) --@ unit 0.5 degC - 40.25
Part ::= INTEGER (0..50) --@ unit 0.02 1
Fine ::= INTEGER --@ unit 0.000000000000001 m
END""")


@pytest.mark.parametrize("name, number, text, physical", [
    ("Step", 28799, "359.9875 deg", 359.9875), ("Step", -1, "-0.0125 deg", -0.0125), ("Step", 80, "1 deg", 1.0),
    ("Step", 2**62 + 1, "57646075230342348.8125 deg", 57646075230342348.8125), ("Small", -1163975126, "-116.3975126 deg", -116.3975126),
    ("Small", 0, "0 deg", 0.0), ("Small", 1, "0.0000001 deg", 1e-7), ("Above", 0, "unavailable", "unavailable"),
    ("Above", 1, "58000 Pa", 58000.0), ("Above", 255, "108800 Pa orMore", 108800.0), ("Below", 81, "0.25 degC", 0.25),
    ("Below", 80, "-0.25 degC", -0.25), ("Part", 50, "1", 1.0), ("Part", 7, "0.14", 0.14),
    ("Fine", 2**53 + 1, "9.007199254740993 m", float(Decimal("9.007199254740993"))),
])
def test_exact(name, number, text, physical):
    unit = EXACT.type(name).unit
    assert (unit.text(number), unit.physical(number)) == (text, physical)
