# SPDX-License-Identifier: Apache-2.0
"""Dataclasses of types, and values shown."""

import dataclasses
import importlib.util
import shutil
import subprocess
import sys

import pytest
from conftest import needs_sets
from test_values import KINDS

import orlenta
from orlenta import records

SCHEMA = orlenta.compile_text(
    "R DEFINITIONS AUTOMATIC TAGS ::= BEGIN Outer-Part ::= SEQUENCE { class INTEGER (0..9), in-line Inner OPTIONAL, "
    "list SEQUENCE OF Inner, either CHOICE { inner Inner, none NULL }, gone NULL OPTIONAL, here NULL, "
    "level INTEGER (0..9) DEFAULT 4, self Outer-Part OPTIONAL } Inner ::= SEQUENCE { x BOOLEAN } END")
VALUE = {"class": 1, "list": [{"x": True}], "either": ("inner", {"x": False}), "here": None, "level": 4,
         "self": {"class": 2, "in-line": {"x": True}, "list": [], "either": ("none", None), "gone": None, "here": None, "level": 9}}


def test_dataclasses():
    Outer = records.make(SCHEMA.type("Outer-Part"))
    octets = SCHEMA.encode("Outer-Part", VALUE)
    record = Outer.decode(octets)
    assert dataclasses.is_dataclass(record) and record.to_value() == VALUE and record.encode() == octets
    assert record.class_ == 1 and record.list[0].x is True and record.either[1].x is False and record.gone is None
    assert record.self.gone is True and record.self.in_line.x is True and type(record.self) is Outer
    record.self = None
    assert Outer.decode(record.encode("oer"), "oer") == record
    assert Outer(class_=3, list=[], either=("none", None), here=True).to_value() == {
        "class": 3, "list": [], "either": ("none", None), "here": None, "level": 4}
    with pytest.raises(TypeError):
        records.make(KINDS.type("Small"))


@needs_sets
def test_a_module_for_editors(tmp_path):
    path = tmp_path / "messages.py"
    told = subprocess.run([sys.executable, "-m", "orlenta.records", "EU.CAM", "US.BasicSafetyMessage"],
                          capture_output=True, text=True, check=True)
    path.write_text(told.stdout)
    spec = importlib.util.spec_from_file_location("messages", path)
    messages = sys.modules["messages"] = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(messages)
    value = orlenta.random("EU.CAM", 4)
    cam = messages.CAM.from_value(value)
    assert cam.to_value() == value and isinstance(cam.header, messages.ItsPduHeader)
    assert messages.CAM.decode(cam.encode()) == cam
    if not shutil.which("mypy"):
        pytest.skip("no mypy to read it")
    path.write_text(told.stdout + "\nx: int = CAM.decode(b'').header.stationID\n")
    subprocess.run(["mypy", "--ignore-missing-imports", str(path)], check=True)


def test_show():
    shown = orlenta.show({"a": [1, ("b", b"\1\2")], "c": {"d": (b"\xa0", 3)}, "e": "<&>"}, "Message")
    assert repr(shown) == "Message\n  a\n    [0]: 1\n    [1]\n      b: 0102\n  c\n    d: 101\n  e: <&>"
    page = shown._repr_html_()
    assert "<b>Message</b>" in page and "&lt;&amp;&gt;" in page and page.count("<table>") == page.count("</table>") == 4
    long = orlenta.show(list(range(300)))._repr_html_()
    assert "<details>" in long and "100 more" in long


def test_help_and_types_for_editors():
    import pydoc
    from pathlib import Path

    page = pydoc.render_doc(orlenta, renderer=pydoc.plaintext)
    for word in ("decode(type, /, data, rules='uper', *, allow_trailing=False)", "CHOICE", "decode_many", "columns"):
        assert word in page
    for name in orlenta.__all__:
        assert getattr(orlenta, name).__doc__, name
    stub = (Path(orlenta.__file__).parent / "_orlenta.pyi").read_text()
    for kind in (orlenta.Type, type(orlenta.builtin)):
        for name in vars(kind):
            assert name.startswith("__") or f" {name}(" in stub or f" {name}:" in stub, name
