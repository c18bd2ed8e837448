# SPDX-License-Identifier: Apache-2.0
"""Every row of the vectors: octets that an independent tool encoded give the value that the row's JSON names, and back;
cut anywhere, they are an error."""

import functools
import json

import pytest
from conftest import FILES, HAS, excluded, rows

import orlenta

OPAQUE = {"GeneralString", "GraphicString", "TeletexString", "VideotexString"}
EXCLUDED = excluded()
find = functools.cache(orlenta.type)
kind_of = functools.cache(lambda type: type.kind)
element_of = functools.cache(lambda type: type.element)


def bit_string(value, theirs):
    octets, bits = value
    return {"length": bits, "value": octets.hex()} if isinstance(theirs, dict) else octets.hex()


def open_value(value, theirs):
    if isinstance(value, bytes):
        return value.hex()
    name, part = value
    return as_json(find(name), part, theirs) if "." in name else part  # a type in place has no name


@functools.cache
def members(type):
    """Types of components or alternatives by name."""
    return {part.name: part.type for part in type.components or type.alternatives}


@functools.cache
def defaults(type):
    """What JSON leaves out."""
    return {part.name: part.default for part in type.components if part.default is not None}


def as_json(type, value, theirs):
    """The value in JSON's form (X.697), which for a BIT STRING is the one that `theirs` has."""
    kind = kind_of(type)
    if kind == "SEQUENCE":
        return {name: as_json(members(type)[name], part, theirs.get(name)) for name, part in value.items()
                if name in theirs or part != defaults(type).get(name)}
    if kind == "SEQUENCE OF":
        return [as_json(element_of(type), part, other) for part, other in zip(value, theirs, strict=True)]
    if kind == "CHOICE":
        name, part = value
        return {name: as_json(members(type)[name], part, theirs.get(name))}
    if kind == "BIT STRING":
        return bit_string(value, theirs)
    if kind == "open type":
        return open_value(value, theirs)
    if kind in OPAQUE:
        return value.encode("latin-1").hex()
    return value.hex() if isinstance(value, bytes) else value


def contents(octets):
    """What is behind the identifier octets of BER."""
    end = 1
    if octets[0] & 0x1F == 0x1F:
        while octets[end] & 0x80:
            end += 1
        end += 1
    return octets[:end], octets[end:]


def under_own_tag(row, type):
    """A row's DER under the tag that the type has in the tables, which the row may not know."""
    theirs = row.octets["der"]
    ours = type.encode(type.decode(row.octets["uper"]), "der")
    identifier, _ = contents(ours)
    if type.kind == "CHOICE" and ours != theirs:
        assert ours.endswith(theirs)
        return ours
    return identifier + contents(theirs)[1]


@pytest.mark.parametrize("rules", ["uper", "aper", "oer", "der"])
@pytest.mark.parametrize("file", FILES)
def test_rows(file, rules):
    if FILES[file] not in HAS:
        pytest.skip(f"{FILES[file]} is not built")
    for row in rows(file):
        if (file, row.line, rules) in EXCLUDED:
            continue
        type = find(row.type)
        where = f"{file}:{row.line} {row.type}"
        octets = under_own_tag(row, type) if rules == "der" else row.octets[rules]
        value = type.decode(octets, rules)
        theirs = json.loads(row.json)
        assert as_json(type, value, theirs) == theirs, where
        assert type.encode(value, rules) == octets, where
        cut_anywhere(type, octets, rules, where)


def cut_anywhere(type, octets, rules, where):
    is_per = rules in ("uper", "aper")
    roots_bits = None
    for size in range(0, len(octets), len(octets) // 20 + 1):
        try:
            type.decode(octets[:size], rules)
        except orlenta.DecodeError as error:
            assert error.message and 0 <= error.bit_position <= 8 * size, where
            if is_per and not error.path:
                roots_bits = roots_bits or bits_of_root(type, octets, rules)
                assert error.bit_position in roots_bits, f"{where} cut to {size}"
        else:
            assert octets == b"\0" and is_per, f"{where} cut to {size}"


def bits_of_root(type, octets, rules):
    """The bits that are no component's: only where they are missing does an error have no path. So it is with the octets
    of a group of additions, which are looked for as a whole."""
    runs = [run for run in type.explain(octets, rules) if not run.path]
    groups = [run.offset for run in runs if run.text.startswith("open type length")]
    own = {bit for run in runs for bit in range(run.offset, run.offset + run.width)}
    return own | set(range(groups[0], 8 * len(octets)) if groups else ())
