# SPDX-License-Identifier: Apache-2.0
"""What the tests have in common: the repository's vectors, and the package as PYTHONPATH has it."""

import re
from pathlib import Path
from typing import NamedTuple

import pytest

import orlenta

ROOT = Path(__file__).resolve().parents[3]
DATA = ROOT / "tests" / "data"
FILES = {"cn.tsv": "CN", "eu.tsv": "EU", "us.tsv": "US", "us-rrc.tsv": "US"}
HAS = {name.partition(".")[0] for name in orlenta.types()}
needs_sets = pytest.mark.skipif(not {"CN", "EU", "US"} <= HAS, reason="a message set is not built")


class Row(NamedTuple):
    file: str
    line: int
    type: str
    octets: dict  # by rules
    json: str


def rows(file):
    for number, line in enumerate((DATA / file).read_text().splitlines(), 1):
        region, name, *octets, json = line.split("\t")
        columns = dict(zip(("uper", "aper", "oer", "der"), map(bytes.fromhex, octets)))
        yield Row(file, number, f"{region}.{name}", columns, json)


def excluded():
    """(file, line, rules) of rows whose octets are not this library's: the lists of the library's own tests."""
    found = set()
    lists = (ROOT / "tests/vectors/exclusions.hpp").read_text()
    for file, rules, _, lines in re.findall(
        r'\{"([\w.-]+)",\s*\{([^}]*)\},\s*((?:"[^"]*"\s*)+),\s*\{([\d,\s]+)\}\}', lists
    ):
        found |= {(file, int(line), rule.lower()) for line in re.findall(r"\d+", lines) for rule in re.findall(r"\w+", rules)}
    for file, line in re.findall(r'\{"([\w.-]+)", (\d+), k', (ROOT / "tests/vectors/octet_rows.hpp").read_text()):
        found.add((file, int(line), "oer"))
    assert len(found) > 50
    return found


@pytest.fixture(scope="session")
def sensors():
    return orlenta.compile(ROOT / "examples" / "Sensors.asn1")
