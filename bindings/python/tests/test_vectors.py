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
    return value.hex() if isinstance(value, bytes) else as_json(find(value[0]), value[1], theirs)


@functools.cache
def members(type):
    """Types of components or alternatives by name."""
    return {part.name: part.type for part in type.components or type.alternatives}


def as_json(type, value, theirs):
    """The value in JSON's form (X.697), which for a BIT STRING is the one that `theirs` has."""
    kind = kind_of(type)
    if kind == "SEQUENCE":
        return {name: as_json(members(type)[name], part, theirs.get(name)) for name, part in value.items()}
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
    ours = type.encode(type.decode(row.json, "jer"), "der")
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
    first_part = None
    for size in range(0, len(octets), len(octets) // 20 + 1):
        try:
            type.decode(octets[:size], rules)
        except orlenta.DecodeError as error:
            assert error.message and 0 <= error.bit_position <= 8 * size, where
            if is_per and not error.path:
                # The root itself: it has no parts, or its own bits are not all there.
                first_part = first_part or begin_of_parts(type, octets, rules)
                assert error.bit_position < first_part, f"{where} cut to {size}"
        else:
            assert octets == b"\0" and is_per, f"{where} cut to {size}"


def begin_of_parts(type, octets, rules):
    return next((run.offset for run in type.explain(octets, rules) if run.path), 8 * len(octets) + 1)
