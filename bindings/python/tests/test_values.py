# SPDX-License-Identifier: Apache-2.0
"""What each kind of type is in Python, both ways, and what is refused."""

import math

import pytest

import orlenta

KINDS = orlenta.compile_text(
    """
    Kinds DEFINITIONS AUTOMATIC TAGS ::= BEGIN
    Small ::= INTEGER (-8..7)          Wide ::= INTEGER (0..4294967295)    Big ::= INTEGER
    Later ::= INTEGER (0..9, ...)      Stamp ::= INTEGER (0..4398046511103)
    Yes ::= BOOLEAN                    Nothing ::= NULL                    Ratio ::= REAL
    Colour ::= ENUMERATED { red, green(7), ..., blue }
    Flags ::= BIT STRING (SIZE (4))    Bits ::= BIT STRING                 Octets ::= OCTET STRING (SIZE (0..3))
    Oid ::= OBJECT IDENTIFIER          Rel ::= RELATIVE-OID
    Ia5 ::= IA5String                  Utf8 ::= UTF8String                 Bmp ::= BMPString
    Universal ::= UniversalString      Digits ::= NumericString (SIZE (1..4))
    Teletex ::= TeletexString
    List ::= SEQUENCE (SIZE (0..3)) OF Small
    Either ::= CHOICE { number Small, list List, ... , word Ia5 }
    Record ::= SEQUENCE { a Small, b Colour DEFAULT green, c Either OPTIONAL, ..., d Big, [[ e Yes, f Ia5 OPTIONAL ]] }
    Nested ::= SEQUENCE { inner Nested OPTIONAL, list SEQUENCE OF Nested OPTIONAL }
    Group ::= SET { x Small, y Yes }
    END
    """
)

ROUND = [
    ("Small", -8), ("Wide", 2**32 - 1), ("Later", 5), ("Later", -2147483648), ("Stamp", 2**42 - 1),
    ("Big", 0), ("Big", -1), ("Big", 2**63), ("Big", -(2**63)), ("Big", -(2**64)), ("Big", 7 << 20000),
    ("Yes", True), ("Yes", False), ("Nothing", None),
    ("Ratio", 0.0), ("Ratio", -1.5e-300), ("Ratio", math.inf),
    ("Colour", "green"), ("Colour", "blue"),
    ("Flags", (b"\xa0", 4)), ("Bits", (b"", 0)), ("Bits", (b"\xff\x80", 9)), ("Octets", b""), ("Octets", b"\0\1\2"),
    ("Oid", "1.2.840.113549"), ("Oid", "2.999.18446744073709551535"), ("Rel", "8571.3"),
    ("Ia5", ""), ("Ia5", "abc"), ("Utf8", "ä😀"), ("Utf8", "\udcff"), ("Bmp", "ä€😀"), ("Universal", "ä😀"),
    ("Digits", "1 23"), ("Teletex", "é"),
    ("List", []), ("List", [1, -2, 3]), ("Either", ("number", 3)), ("Either", ("list", [1])), ("Either", ("word", "w")),
    ("Record", {"a": 1, "b": "red"}), ("Record", {"a": 1, "b": "green", "c": ("number", 2), "d": 2**70, "e": True, "f": "x"}),
    ("Nested", {}), ("Nested", {"inner": {"list": [{}, {"inner": {}}]}}), ("Group", {"x": 1, "y": False}),
]

# No UTF-8; an arc beyond what texts may have; a character of two code units.
NOT_IN_TEXTS = ["\udcff", "2.999.18446744073709551535", "ä€😀"]


@pytest.mark.parametrize("rules", ["uper", "aper", "oer", "ber", "der", "jer", "xer", "gser"])
def test_round(rules):
    for name, value in ROUND:
        if rules in ("jer", "xer", "gser") and value in NOT_IN_TEXTS:
            continue
        assert KINDS.decode(name, KINDS.encode(name, value, rules), rules) == value, (name, value)


def test_forms_that_are_taken():
    class Five:
        def __index__(self):
            return 5

    for name, value, as_decoded in [
        ("Small", Five(), 5), ("Octets", bytearray(b"ab"), b"ab"), ("Octets", memoryview(b"ab"), b"ab"),
        ("Flags", (b"\xff\xff", 4), (b"\xf0", 4)), ("List", (1, 2), [1, 2]), ("Ratio", 2, 2.0),
        ("Record", {"a": 1}, {"a": 1, "b": "green"}),
    ]:
        assert KINDS.decode(name, KINDS.encode(name, value)) == as_decoded


REFUSED = [
    # type, value, path, what the message tells
    ("Small", 8, "", "8 is not in -8..7"), ("Small", 2**80, "", "out of range"), ("Small", 1.0, "", "an int expected, not float"),
    ("Small", None, "", "not None"), ("Wide", -1, "", "0..4294967295"), ("Later", 2**31, "", "32 bits"),
    ("Stamp", 2**42, "", "out of range"), ("Big", "1", "", "an int"), ("Yes", 1, "", "a bool"), ("Nothing", 0, "", "None"),
    ("Ratio", "1", "", "a float"), ("Colour", "pink", "", "no item is called 'pink'"), ("Colour", 1, "", "name of an item"),
    ("Flags", (b"\xa0", 3), "", "size 3"), ("Flags", (b"", 4), "", "as many bits"), ("Flags", b"\xa0", "", "number of bits"),
    ("Octets", "abc", "", "bytes"), ("Octets", b"1234", "", "size 4 is not in 0..3"), ("Octets", 5, "", "bytes"),
    ("Oid", "1", "", "no object identifier"), ("Oid", "1.40", "", "identifier"), ("Oid", "1..2", "", "identifier"),
    ("Oid", "3.1", "", "identifier"), ("Oid", 1, "", "a str"), ("Ia5", b"a", "", "a str"), ("Ia5", "€", "", "character"),
    ("Digits", "", "", "size 0"), ("List", [1, 9], "[1]", "9 is not in"), ("List", {1: 2}, "", "a list"),
    ("List", [1] * 4, "", "size 4"), ("Either", ("other", 1), "", "no alternative is called 'other'"),
    ("Either", ("list", [1, None]), "list[1]", "an int"), ("Either", ["number", 1], "", "alternative"),
    ("Either", ("number",), "", "alternative"), ("Either", (None, None), "", "alternative"),
    ("Record", {"b": "red"}, "a", "missing"), ("Record", {"a": 1, "z": 1}, "", "no component is called 'z'"),
    ("Record", {"a": 1, 5: 1}, "", "'5'"), ("Record", {"a": 1, "c": ("list", [99])}, "c.list[0]", "99"),
    ("Record", [1], "", "a dict expected, not list"), ("Nested", {"inner": {"list": [{}, 7]}}, "inner.list[1]", "a dict"),
]


def test_refused():
    for name, value, path, message in REFUSED:
        with pytest.raises(orlenta.EncodeError) as caught:
            KINDS.encode(name, value)
        assert caught.value.path == path and message in caught.value.message, (name, value, caught.value)


def test_check_holds_values_against_all_constraints():
    KINDS.check("Digits", "12")
    for call in (lambda: KINDS.check("Digits", "1a"), lambda: KINDS.encode("Digits", "1a", "oer", check=True)):
        with pytest.raises(orlenta.ConstraintError) as caught:
            call()
        assert caught.value.message


def test_objects_without_end():
    deep = {}
    for _ in range(10000):
        deep = {"inner": deep}
    round_and_round = {}
    round_and_round["inner"] = round_and_round
    listed = {"list": []}
    listed["list"].append(listed)
    for value in (deep, round_and_round, listed):
        with pytest.raises(orlenta.EncodeError, match="too deeply"):
            KINDS.encode("Nested", value)
    octets = b"\xa0\x80" * 20000  # as BER, without an end
    with pytest.raises(orlenta.DecodeError):
        KINDS.decode("Nested", b"\x30\x80" + octets, "ber")
    whole = KINDS.encode("Nested", {"inner": {}}, "der")
    for _ in range(600):
        inner = whole[1:]
        inner = b"\xa0" + inner
        whole = b"\x30" + length(len(inner)) + inner
    with pytest.raises(orlenta.DecodeError, match="too deeply") as caught:
        KINDS.decode("Nested", whole, "ber")
    assert caught.value.path.startswith("inner.inner.")


def length(size):
    return bytes([size]) if size < 128 else b"\x82" + size.to_bytes(2, "big")


def test_objects_that_change_while_they_are_read():
    class Shrinks:
        def __init__(self, target):
            self.target = target

        def __index__(self):
            self.target.clear()
            KINDS.encode("List", [1, 2, 3])  # a call within a call
            return 1

    items = []
    items += [Shrinks(items), 2, 3]
    with pytest.raises(IndexError):
        KINDS.encode("List", items)
    record = {}
    record.update(a=Shrinks(record), b="red")
    with pytest.raises(orlenta.EncodeError):
        KINDS.encode("Record", record)


def test_what_a_later_edition_knows():
    later = orlenta.compile_text(
        "Later DEFINITIONS AUTOMATIC TAGS ::= BEGIN Colour ::= ENUMERATED { red, green(7), ..., blue, mauve } "
        "Either ::= CHOICE { number INTEGER (-8..7), list NULL, ..., word IA5String, other NULL } END"
    )
    assert KINDS.decode("Colour", later.encode("Colour", "mauve")) is None
    assert KINDS.decode("Either", later.encode("Either", ("other", None))) == (None, None)


def test_trailing_octets():
    octets = KINDS.encode("Octets", b"a")
    with pytest.raises(orlenta.DecodeError, match="2 bytes behind") as caught:
        KINDS.decode("Octets", octets + b"xy")
    assert caught.value.bit_position == 8 * len(octets)
    assert KINDS.decode("Octets", octets + b"xy", allow_trailing=True) == b"a"


CALLS = [
    (TypeError, lambda: orlenta.decode()), (TypeError, lambda: orlenta.decode(5, b"")), (TypeError, lambda: orlenta.Type()),
    (TypeError, lambda: KINDS.decode("Small")), (TypeError, lambda: KINDS.decode("Small", b"", "uper", True)),
    (TypeError, lambda: KINDS.decode("Small", b"", data=b"")), (TypeError, lambda: KINDS.decode("Small", b"", colour=1)),
    (TypeError, lambda: KINDS.decode("Small", 5)), (orlenta.UnknownType, lambda: KINDS.decode("Small", b"", "utf8")),
    (orlenta.UnknownType, lambda: KINDS.decode("Small", b"", 5)), (KeyError, lambda: KINDS.type("Smal")),
    (TypeError, lambda: KINDS.type(5)), (ValueError, lambda: KINDS.random("Small", -1)),
    (ValueError, lambda: KINDS.explain("Small", "1", "jer")), (TypeError, lambda: orlenta.compile()),
    (FileNotFoundError, lambda: orlenta.compile("/nonexistent/a.asn1")), (TypeError, lambda: type(KINDS)()),
]


def test_calls_that_are_wrong():
    for error, call in CALLS:
        with pytest.raises(error):
            call()
