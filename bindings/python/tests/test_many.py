# SPDX-License-Identifier: Apache-2.0
"""Many messages at a time: lists, columns, threads."""

import threading
import time

import pytest
from conftest import needs_sets

import orlenta

numpy = pytest.importorskip("numpy")
SCHEMA = orlenta.compile_text(
    """
    Log DEFINITIONS AUTOMATIC TAGS ::= BEGIN
    Entry ::= SEQUENCE { id INTEGER (0..65535), stamp INTEGER (0..4398046511103), ratio REAL, on BOOLEAN,
      colour ENUMERATED { red, green }, note IA5String OPTIONAL, level INTEGER (-9..9) OPTIONAL,
      lit BOOLEAN OPTIONAL, share REAL OPTIONAL, list SEQUENCE OF INTEGER (0..9),
      either CHOICE { number INTEGER (0..9), word IA5String }, free INTEGER }
    END
    """
)
ENTRY = SCHEMA.type("Entry")


def entry(i):
    value = {
        "id": i, "stamp": 2**41 + i, "ratio": i / 4, "on": i % 2 == 1, "colour": "green" if i % 2 else "red",
        "list": [i % 10] * (i % 3), "either": ("number", i % 10) if i % 2 else ("word", str(i)), "free": i << i,
    }
    if i % 2:
        value.update(note=f"n{i}", level=-i % 10, lit=True, share=0.5)
    return value


COUNT = 600
VALUES = [entry(i) for i in range(COUNT)]
MESSAGES = [ENTRY.encode(value) for value in VALUES]


@pytest.mark.parametrize("threads", [1, 3])
def test_decode_many(threads):
    offsets = numpy.cumsum([0] + [len(message) for message in MESSAGES])
    for messages, options in [
        (MESSAGES, {}), (iter(MESSAGES), {}), (map(bytearray, MESSAGES), {}),
        (b"".join(MESSAGES), {"offsets": offsets}), (memoryview(b"".join(MESSAGES)), {"offsets": offsets.tolist()}),
    ]:
        assert ENTRY.decode_many(messages, threads=threads, **options) == VALUES
    assert SCHEMA.decode_many("Entry", [ENTRY.encode(v, "jer") for v in VALUES[:5]], "jer") == VALUES[:5]


@pytest.mark.parametrize("threads", [1, 3])
def test_messages_that_cannot_be_decoded(threads):
    damaged = list(MESSAGES)
    damaged[301] = damaged[301][:5]
    with pytest.raises(orlenta.DecodeError) as caught:
        ENTRY.decode_many(damaged, threads=threads)
    assert caught.value.index == 301 and caught.value.path == "stamp" and caught.value.bit_position >= 0
    expected = VALUES[:301] + [None] + VALUES[302:]
    assert ENTRY.decode_many(damaged, errors="none", threads=threads) == expected
    returned = ENTRY.decode_many(damaged, errors="return", threads=threads)
    assert str(returned[301]) == str(caught.value) and returned[:301] == VALUES[:301]
    with pytest.raises(orlenta.DecodeError) as caught:
        orlenta.columns(ENTRY, damaged, ["id"], threads=threads)
    assert caught.value.index == 301
    ids = orlenta.columns(ENTRY, damaged, ["id"], errors="none", threads=threads)["id"]
    assert numpy.isnan(ids[301]) and ids[302] == 302


def fails():
    yield MESSAGES[0]
    raise RuntimeError("the log broke off")


WRONG = [
    (TypeError, lambda: ENTRY.decode_many(MESSAGES[0])), (TypeError, lambda: ENTRY.decode_many(5)),
    (TypeError, lambda: ENTRY.decode_many([MESSAGES[0], 5])), (RuntimeError, lambda: ENTRY.decode_many(fails())),
    (ValueError, lambda: ENTRY.decode_many([], errors="stop")), (ValueError, lambda: ENTRY.decode_many([], threads=0)),
    (ValueError, lambda: ENTRY.decode_many(b"abc", offsets=[0, 4])), (TypeError, lambda: ENTRY.decode_many(b"abc", offsets=["0"])),
    (ValueError, lambda: ENTRY.decode_many(b"abc", offsets=[2, 1])), (ValueError, lambda: orlenta.columns(ENTRY, [], ["nope"])),
    (ValueError, lambda: orlenta.columns(ENTRY, [], ["id.more"])), (ValueError, lambda: orlenta.columns(ENTRY, [], ["list[x]"])),
    (TypeError, lambda: orlenta.columns(ENTRY, [], [5])), (ValueError, lambda: orlenta.columns(ENTRY, [], ["list."])),
]


def test_calls_that_are_wrong():
    for error, call in WRONG:
        with pytest.raises(error):
            call()


def present(part):
    return [part(value) for value in VALUES]


COLUMNS = [
    ("id", numpy.int64, present(lambda v: v["id"])),
    ("stamp", numpy.int64, present(lambda v: v["stamp"])),
    ("ratio", numpy.float64, present(lambda v: v["ratio"])),
    ("on", numpy.bool_, present(lambda v: v["on"])),
    ("colour", object, present(lambda v: v["colour"])),
    ("note", object, present(lambda v: v.get("note"))),
    ("level", numpy.float64, present(lambda v: v.get("level", numpy.nan))),
    ("share", numpy.float64, present(lambda v: v.get("share", numpy.nan))),
    ("lit", object, present(lambda v: v.get("lit"))),
    ("list", object, present(lambda v: v["list"])),
    ("list[1]", numpy.float64, present(lambda v: v["list"][1] if len(v["list"]) > 1 else numpy.nan)),
    ("either.number", numpy.float64, present(lambda v: v["either"][1] if v["either"][0] == "number" else numpy.nan)),
    ("free", object, present(lambda v: v["free"])),  # more than 64 bits on the way
    ("", object, VALUES),
]


@pytest.mark.parametrize("threads", [1, 2])
def test_columns(threads):
    made = orlenta.columns(ENTRY, MESSAGES, [path for path, _, _ in COLUMNS], threads=threads)
    for path, dtype, expected in COLUMNS:
        assert made[path].dtype == dtype, path
        for have, wanted in zip(made[path], expected, strict=True):
            assert have == wanted or (have != have and wanted != wanted), path
    filled = orlenta.columns(ENTRY, MESSAGES, ["level", "note", "lit"], missing=-1)
    assert filled["level"].dtype == numpy.int64 and filled["level"][:2].tolist() == [-1, 9]
    assert filled["note"][:2].tolist() == [-1, "n1"]
    texts = orlenta.columns(ENTRY, MESSAGES, ["level", "lit", "share"], missing="")
    assert [texts[path][:2].tolist() for path in texts] == [["", 9], ["", True], ["", 0.5]]
    empty = orlenta.columns(ENTRY, [], ["id"])
    assert len(empty["id"]) == 0
    for made in (ENTRY.columns(MESSAGES, ["id"]), SCHEMA.columns("Entry", MESSAGES, ["id"])):
        assert made["id"].tolist() == list(range(COUNT))


def test_columns_without_numpy(monkeypatch):
    from orlenta import _arrays

    monkeypatch.setattr(_arrays, "numpy", None)
    made = orlenta.columns(ENTRY, MESSAGES[:3], ["id", "ratio", "level", "on", "note"], missing=0)
    assert {path: list(cells) for path, cells in made.items()} == {
        "id": [0, 1, 2], "ratio": [0, 0.25, 0.5], "level": [0, 9, 0], "on": [False, True, False], "note": [0, "n1", 0]}


@needs_sets
def test_columns_through_open_types():
    frame = orlenta.type("US.MessageFrame")
    core = orlenta.random("US.BSMcoreData", 1)
    bsm = {"messageId": 20, "value": ("US.BasicSafetyMessage", {"coreData": core})}
    map_data = {"messageId": 18, "value": ("US.MapData", {"msgIssueRevision": 9})}
    unknown = {"messageId": 4000, "value": b"\1\2"}
    made = orlenta.columns(frame, [frame.encode(v) for v in (bsm, map_data, unknown)],
                           ["messageId", "value.coreData.lat", "value.msgIssueRevision", "value.nowhere"], missing=-1)
    assert made["messageId"].tolist() == [20, 18, 4000]
    assert made["value.coreData.lat"].tolist() == [core["lat"], -1, -1]
    assert made["value.msgIssueRevision"].tolist() == [-1, 9, -1]
    assert made["value.nowhere"].tolist() == [-1, -1, -1]


@needs_sets
def test_threads_share_types():
    """Eight threads, each with types that none has used before."""
    names = [name for name in ("EU.CAM", "EU.DENM", "CN.MessageFrame", "US.MessageFrame", "US.MapData", "EU.CPM")]
    end = time.monotonic() + 10
    problems = []
    rounds = []

    def work(number):
        try:
            count = 0
            while time.monotonic() < end:
                schema = orlenta if count % 50 else orlenta.compile_text(
                    f"T{number} DEFINITIONS AUTOMATIC TAGS ::= BEGIN A ::= SEQUENCE {{ a INTEGER (0..{count + 1}), b A OPTIONAL }} END")
                name = names[(count + number) % len(names)] if count % 50 else "A"
                value = schema.random(name, 8 * count + number)
                octets = schema.encode(name, value)
                assert schema.decode(name, octets) == value
                assert orlenta.decode_many(orlenta.type("EU.CAM"), [], threads=2) == []
                count += 1
            rounds.append(count)
        except Exception as problem:
            problems.append(problem)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not problems and len(rounds) == 8 and min(rounds) > 10
