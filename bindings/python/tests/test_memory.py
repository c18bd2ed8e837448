# SPDX-License-Identifier: Apache-2.0
"""Nothing is left behind, whether calls succeed or fail: Python's count of blocks, references, and the C library's."""

import ctypes
import gc
import sys
import tracemalloc

import pytest
from test_many import ENTRY, MESSAGES, VALUES
from test_values import KINDS, REFUSED, ROUND

import orlenta


class MallInfo(ctypes.Structure):
    _fields_ = [(name, ctypes.c_size_t) for name in
                ("arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks", "fordblks", "keepcost")]


def allocated():
    """Bytes that the C library's allocator has given out."""
    mallinfo2 = ctypes.CDLL(None).mallinfo2
    mallinfo2.restype = MallInfo
    info = mallinfo2()
    return info.uordblks + info.hblkhd


def refused(name, value):
    try:
        KINDS.encode(name, value)
    except orlenta.EncodeError:
        return
    raise AssertionError(name)


def cut(octets):
    try:
        ENTRY.decode(octets)
    except orlenta.DecodeError:
        return
    raise AssertionError(octets)


def round_trips():
    for name, value in ROUND[:20]:
        KINDS.decode(name, KINDS.encode(name, value))


def refusals():
    for name, value, _, _ in REFUSED[::3]:
        refused(name, value)


def cuts():
    for size in range(0, len(MESSAGES[7]), 2):
        cut(MESSAGES[7][:size])


def batches():
    ENTRY.decode_many(MESSAGES[:40], errors="none")
    ENTRY.decode_many([MESSAGES[0][:3]] * 3, errors="return")
    orlenta.columns(ENTRY, MESSAGES[:40], ["id", "note", "free"])


def schemas():
    schema = orlenta.compile_text("S DEFINITIONS ::= BEGIN A ::= SEQUENCE { a INTEGER (0..9) OPTIONAL } END")
    schema.decode("A", schema.encode("A", {"a": 3}, "oer"), "oer")
    schema.type("A").components


def texts_and_bits():
    text = ENTRY.encode(VALUES[5], "jer")
    ENTRY.convert(text, "jer", "uper")
    ENTRY.explain(MESSAGES[5])
    ENTRY.random(5)
    ENTRY.check(VALUES[5])


# How often, so that there are a million calls in all.
WORK = [(round_trips, 20000), (refusals, 6000), (cuts, 6000), (batches, 300), (schemas, 100), (texts_and_bits, 5000)]


@pytest.mark.parametrize("work, times", WORK, ids=lambda part: getattr(part, "__name__", None))
def test_steady(work, times):
    def run(count):
        for _ in range(count):
            work()
        gc.collect()

    run(min(times, 50))
    before = allocated(), sys.getallocatedblocks(), sys.getrefcount(None), sys.getrefcount(True)
    run(times)
    after = allocated(), sys.getallocatedblocks(), sys.getrefcount(None), sys.getrefcount(True)
    grown = [later - earlier for earlier, later in zip(before, after)]
    # A block lost by each call would show as more than this, whatever its size.
    assert grown[0] < 16 * times or grown[0] < 100000, grown
    assert all(abs(change) < min(times // 2, 200) for change in grown[1:]), grown


def test_steady_as_tracemalloc_sees_it():
    def run():
        for _ in range(50):
            round_trips(), refusals(), cuts(), batches(), texts_and_bits()
        gc.collect()

    tracemalloc.start()
    try:
        for _ in range(8):  # until the interpreter's lists of free objects are full
            run()
        first = tracemalloc.get_traced_memory()[0]
        for _ in range(4):
            run()
        # An object lost by each round of any of them, 200 in all, would be 5,600 bytes at the least.
        assert tracemalloc.get_traced_memory()[0] - first < 4000
    finally:
        tracemalloc.stop()
