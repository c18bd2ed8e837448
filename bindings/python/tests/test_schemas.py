# SPDX-License-Identifier: Apache-2.0
"""Schemas at run time, what types tell of themselves, names, and what goes to another process."""

import pickle
import subprocess
import sys

import pytest
from conftest import ROOT, needs_sets
from test_values import KINDS

import orlenta

IN_PLACE = orlenta.compile_text("S DEFINITIONS ::= BEGIN A ::= SEQUENCE { a INTEGER (0..9) } END")


def test_a_schema_from_a_file_in_one_line(sensors):
    value = {"station": 7, "quantity": "humidity", "value": 455, "quality": "good"}
    octets = sensors.encode("Reading", value)
    line = "import orlenta; print(orlenta.compile('examples/Sensors.asn1').decode('Reading', bytes.fromhex('%s')))"
    told = subprocess.run([sys.executable, "-c", line % octets.hex()], cwd=ROOT, capture_output=True, text=True, check=True)
    assert told.stdout == f"{value}\n"


def test_editions_side_by_side():
    text = "Dictionary DEFINITIONS ::= BEGIN Speed ::= INTEGER (0..%d) END"
    first, second = (orlenta.compile_text(text % most) for most in (100, 1000))
    assert first.encode("Speed", 100) == b"\xc8" and second.encode("Speed", 100) == b"\x19\x00"
    assert first.type("Speed") != second.type("Speed")
    assert first.type("Dictionary.Speed").bounds == (0, 100)
    with pytest.raises(orlenta.EncodeError):
        first.encode("Speed", 101)


def test_regions_and_names():
    schema = orlenta.compile_text(
        "M-One DEFINITIONS ::= BEGIN Same ::= NULL A-b ::= NULL END", "M-Two DEFINITIONS ::= BEGIN Same ::= BOOLEAN END",
        region="ME", module_names=True)
    assert schema.types() == ["ME.M-One.Same", "ME.A-b", "ME.M-Two.Same"] and schema.types("*.a-*") == ["ME.A-b"]
    for name in ("ME.A-b", "A-b", "A_b", "M-One.A-b", "ME.M-One.A-b"):
        assert schema.type(name).name == "ME.A-b"
    assert schema.type("M-Two.Same").kind == "BOOLEAN"
    with pytest.raises(orlenta.UnknownType, match="several") as caught:
        schema.type("Same")
    assert caught.value.nearest == ("ME.M-One.Same", "ME.M-Two.Same")


def test_schemas_that_are_wrong():
    with pytest.raises(orlenta.SchemaError) as caught:
        orlenta.compile_text("A DEFINITIONS ::= BEGIN\nX ::= INTEGR\nEND")
    file, line, column, text, is_note = caught.value.messages[0]
    assert (file, line, is_note) == ("text 1", 2, False) and column > 0 and caught.value.line == 2
    assert text in str(caught.value) and str(caught.value).startswith("text 1:2:")
    with pytest.raises(orlenta.SchemaError):
        orlenta.compile_text("A DEFINITIONS ::= BEGIN X ::= NULL END", region="5")


def names(parts):
    return [part.name for part in parts]


def test_what_types_tell():
    record = KINDS.type("Record")
    a, b, c, d, e, f = record.components
    assert record.kind == "SEQUENCE" and record.is_extensible and record.is_root and record.module == "Kinds"
    assert (a.optional, b.default, c.optional, d.is_addition, f.optional) == (False, "green", True, True, True)
    assert a.type.bounds == (-8, 7) and b.type.kind == "ENUMERATED" and record.bounds is None
    assert [tuple(item) for item in b.type.items] == [("red", 0, False), ("green", 7, False), ("blue", 1, True)]
    assert names(c.type.alternatives) == ["number", "list", "word"] and c.type.alternatives[2].is_addition
    assert KINDS.type("List").element.bounds == (-8, 7) and KINDS.type("List").bounds == (0, 3)
    assert KINDS.type("Stamp").bounds == (0, 2**42 - 1) and KINDS.type("Big").bounds == (None, None)
    assert [KINDS.type(name).kind for name in ("Bmp", "Rel", "Flags")] == ["BMPString", "RELATIVE-OID", "BIT STRING"]
    assert record.element is None and record.items == [] and KINDS.type("Octets").contained is None
    assert record.schema.type("Record") == record and repr(record) == "<orlenta.Type Record: SEQUENCE>"
    assert hash(record) == hash(KINDS.type("Record")) and record != KINDS.type("Group") and record != "Record"


DEFINITIONS = {
    "Record": "-- module Kinds\nRecord ::= SEQUENCE {\n  a Small,\n  b Colour DEFAULT green,\n  c Either OPTIONAL,\n  ...,\n"
              "  d Big,\n  e Yes,\n  f Ia5\n}",
    "Later": "-- module Kinds\nLater ::= INTEGER (0..9, ...)",
    "List": "-- module Kinds\nList ::= SEQUENCE (SIZE (0..3)) OF Small",
    "Flags": "-- module Kinds\nFlags ::= BIT STRING (SIZE (4))",
    "Colour": "-- module Kinds\nColour ::= ENUMERATED {\n  red(0),\n  green(7),\n  ...,\n  blue(1)\n}",
}


def test_documentation():
    for name, text in DEFINITIONS.items():
        assert KINDS.type(name).documentation == text


def test_explain():
    rows = KINDS.explain("Record", KINDS.encode("Record", {"a": 3, "c": ("number", -8)}))
    assert [(row.path, row.value) for row in rows if row.value] == [("a", "3"), ("c.number", "-8")]
    assert rows[0] == (0, 1, "extension", rows[0].text, "", None)
    assert KINDS.explain("Record", b"")[-1:] == []
    assert KINDS.explain("Wide", b"\1")[-1].kind == "refused"


def test_random_values_are_valid():
    for name in KINDS.types():
        for seed in (1, 2, None):
            KINDS.check(name, KINDS.random(name, seed))
        assert KINDS.random(name, 7) == KINDS.random(name, 7)


def test_convert():
    octets = KINDS.encode("Record", {"a": 3, "b": "red"})
    text = KINDS.convert("Record", octets, "uper", "jer")
    assert text == '{"a":3,"b":"red"}' and KINDS.convert("Record", text.encode(), "jer", "uper") == octets
    with pytest.raises(orlenta.ConstraintError):
        KINDS.convert("Digits", '"1a"', "jer", "oer", check=True)
    with pytest.raises(orlenta.DecodeError) as caught:
        KINDS.convert("Record", '{"a":\n}', "jer", "oer")
    assert caught.value.line == 2 and caught.value.bit_position is None


def test_pickles():
    errors = []
    for call in (lambda: KINDS.decode("Wide", b""), lambda: KINDS.encode("Wide", -1), lambda: KINDS.type("Wid"),
                 lambda: orlenta.compile_text("?"), lambda: KINDS.decode_many("Wide", [b"1"])):
        with pytest.raises(orlenta.Error) as caught:
            call()
        errors.append(caught.value)
    for error in errors:
        again = pickle.loads(pickle.dumps(error))
        assert (type(again), str(again), vars(again)) == (type(error), str(error), vars(error))
    again = pickle.loads(pickle.dumps(KINDS.type("Record")))
    assert again == KINDS.type("Record") and hash(again) == hash(KINDS.type("Record")) and again.schema is not KINDS
    assert pickle.loads(pickle.dumps(again)).schema is again.schema
    with pytest.raises(TypeError):
        pickle.dumps(IN_PLACE.type("A").components[0].type)
    other = subprocess.run([sys.executable, "-c", "import pickle, sys; print(pickle.load(sys.stdin.buffer).encode(3, 'jer'))"],
                           input=pickle.dumps(KINDS.type("Small")), capture_output=True, check=True)
    assert other.stdout == b"3\n"


@needs_sets
def test_built_in():
    cam = orlenta.type("EU.CAM")
    assert cam.region == "EU" and cam.is_root and pickle.loads(pickle.dumps(cam)) == cam
    assert "EU.CAM" in orlenta.types("eu.*cam*") and len(orlenta.types()) > 3000
    assert cam.schema is orlenta.builtin
    heading = orlenta.type("CN.Heading")
    assert heading.about == "Direction of travel, clockwise from true north."
    assert f"-- {heading.about}\nHeading ::= INTEGER" in heading.documentation
    unit = orlenta.type("EU.SpeedValue").unit
    assert (unit.symbol, unit.scale, unit.offset) == ("m/s", 0.01, 0.0) and (16383, 16383, "unavailable", 0) in unit.specials
    assert unit.physical(16383) == "unavailable" and unit.physical(1500) == pytest.approx(15)
    assert orlenta.type("EU.StationType").unit is None
    for name, nearest in [("EU.CAMM", "EU.CAM"), ("XY.DENM", "EU.DENM"), ("nothing like it at all", None)]:
        with pytest.raises(orlenta.UnknownType) as caught:
            orlenta.decode(name, b"")
        assert nearest is None or nearest in caught.value.nearest
    octets = cam.encode(cam.random(3))
    assert orlenta.decode(cam, octets) == orlenta.decode("EU.CAM", octets) == cam.random(3)


@needs_sets
def test_every_root_type_round_trips():
    for name in orlenta.types():
        type = orlenta.type(name)
        if not type.is_root:
            continue
        value = type.random(5)
        for rules in ("uper", "oer", "der"):
            assert type.decode(type.encode(value, rules, check=True), rules) == value, name
