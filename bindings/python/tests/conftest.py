# SPDX-License-Identifier: Apache-2.0
"""What the tests have in common: the repository's vectors, and the package as PYTHONPATH has it."""

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
    """(file, line, rules) of rows whose octets are not this library's, as the library's own tests have them."""
    found = set()
    for row in (ROOT / "tests/vectors/exclusions.tsv").read_text().splitlines():
        if row and not row.startswith("#"):
            file, rules, lines, _ = row.split("\t")
            found |= {(file, int(line), rule.lower()) for line in lines.split(",") for rule in rules.split(",")}
    return found


@pytest.fixture(scope="session")
def sensors():
    return orlenta.compile(ROOT / "examples" / "Sensors.asn1")
