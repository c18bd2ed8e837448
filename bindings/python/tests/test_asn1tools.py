# SPDX-License-Identifier: Apache-2.0
"""The interface of asn1tools, as its documentation has it."""

import pytest

from orlenta import asn1tools

FOO = """
Foo DEFINITIONS AUTOMATIC TAGS ::= BEGIN
Question ::= SEQUENCE { id INTEGER, question IA5String }
Answer ::= SEQUENCE { id INTEGER, answer BOOLEAN }
Number ::= INTEGER (0..15)
Values ::= SEQUENCE { a BOOLEAN, b INTEGER, c REAL, d NULL, e BIT STRING, f OCTET STRING, g OBJECT IDENTIFIER,
  h ENUMERATED { one, two }, i SEQUENCE OF INTEGER, j CHOICE { k INTEGER, l NULL }, m UTF8String, n INTEGER DEFAULT 5,
  o INTEGER OPTIONAL }
END
Bar DEFINITIONS AUTOMATIC TAGS ::= BEGIN Number ::= BOOLEAN END
"""
QUESTION = {"id": 1, "question": "Is 1+1=3?"}
VALUES = {"a": True, "b": -(2**70), "c": 1.5, "d": None, "e": (b"\xf0", 4), "f": b"\0", "g": "1.2.3", "h": "two", "i": [1, 2],
          "j": ("k", 7), "m": "ä", "n": 5}


def test_question():
    foo = asn1tools.compile_string(FOO, "uper")
    assert foo.encode("Question", QUESTION).hex() == "01010993cd03156c5eb37e"
    assert foo.decode("Question", bytes.fromhex("01010993cd03156c5eb37e")) == QUESTION
    der = asn1tools.compile_string("F DEFINITIONS ::= BEGIN Question ::= SEQUENCE { id INTEGER, question IA5String } END", "der")
    assert der.encode("Question", QUESTION).hex() == "300e0201011609497320312b313d333f"


@pytest.mark.parametrize("codec", ["ber", "der", "jer", "oer", "per", "uper", "xer", "gser"])
def test_codecs(codec):
    foo = asn1tools.compile_string(FOO, codec)
    octets = foo.encode("Values", {name: part for name, part in VALUES.items() if name != "n"})
    assert isinstance(octets, bytes) and foo.decode("Values", octets) == VALUES
    assert foo.decode_with_length("Values", octets) == (VALUES, len(octets))
    assert foo.types["Values"].decode(octets) == foo.types["Values"].decode_with_length(octets)[0] == VALUES


def test_what_follows_is_left_alone():
    foo = asn1tools.compile_string(FOO, "der")
    octets = foo.encode("Answer", {"id": 1, "answer": False})
    assert foo.decode_with_length("Answer", octets + b"more") == ({"id": 1, "answer": False}, len(octets))
    assert foo.decode("Answer", octets + b"more")["id"] == 1


def test_types_and_modules(tmp_path):
    path = tmp_path / "foo.asn"
    path.write_text(FOO)
    for files in (str(path), path, [str(path)]):
        foo = asn1tools.compile_files(files, "uper")
    assert sorted(foo.types) == ["Answer", "Question", "Values"]
    assert foo.types["Question"].name == "Question" and "Number" not in foo.types and foo.types.get("X") is None
    assert foo.modules["Foo"]["Number"].encode(7) == b"\x70" and foo.modules["Bar"]["Number"].encode(True) == b"\x80"
    assert {name: type.name for name, type in foo.types.items()} == {name: name for name in foo.types}


def test_constraints():
    foo = asn1tools.compile_string("F DEFINITIONS ::= BEGIN D ::= NumericString END", "oer")
    assert foo.encode("D", "x") == b"\1x"
    for call in (lambda: foo.encode("D", "x", check_constraints=True), lambda: foo.decode("D", b"\1x", check_constraints=True)):
        with pytest.raises(asn1tools.ConstraintsError):
            call()


@pytest.mark.parametrize("error, call", [
    (asn1tools.EncodeError, lambda foo: foo.encode("Question", {"id": 1})),
    (asn1tools.EncodeError, lambda foo: foo.encode("Missing", {})),
    (asn1tools.DecodeError, lambda foo: foo.decode("Missing", b"")),
    (asn1tools.DecodeError, lambda foo: foo.decode("Question", b"\1")),
    (asn1tools.ParseError, lambda foo: asn1tools.compile_string("not a module")),
    (asn1tools.CompileError, lambda foo: asn1tools.compile_string("A DEFINITIONS ::= BEGIN B ::= C END")),
    (asn1tools.CompileError, lambda foo: asn1tools.compile_string(FOO, "morse")),
    (asn1tools.Error, lambda foo: foo.encode("Values", 1)),
    (NotImplementedError, lambda foo: asn1tools.compile_string(FOO, numeric_enums=True)),
])
def test_errors(error, call):
    with pytest.raises(error) as caught:
        call(asn1tools.compile_string(FOO, "uper"))
    assert str(caught.value)
