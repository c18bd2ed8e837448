#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The Python package beside what one writes by hand with ctypes: the library's decoder and then either its records, read
word by word, or its JSON, read by Python's json.

python.py [--rounds N] [--record]: PYTHONPATH has the package; --record writes docs/performance.md's section. Both take
turns in one process, so that other work on the machine meets both; columns are the best of the rounds, and ratios those
of the medians.
"""

import argparse
import ctypes
import gc
import json
import os
import pathlib
import platform
import re
import statistics
import time

import orlenta

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
CORE = {
    "msgCnt": 67, "id": "9f2c41b7", "secMark": 41300, "lat": 422808540, "long": -837430880, "elev": 2556,
    "accuracy": {"semiMajor": 24, "semiMinor": 18, "orientation": 1000}, "transmission": "forwardGears", "speed": 1000,
    "heading": 9000, "angle": 12, "accelSet": {"long": 100, "lat": -5, "vert": 0, "yaw": 20},
    "brakes": {"wheelBrakes": "00", "traction": "on", "abs": "on", "scs": "on", "brakeBoost": "off", "auxBrakes": "off"},
    "size": {"width": 180, "length": 480},
}


LIBRARY = ctypes.CDLL(os.environ["ORLENTA_LIBRARY"])
for function in ("asn1_uper_decode", "asn1_jer_encode2", "asn1_jer_decode", "asn1_uper_encode"):
    getattr(LIBRARY, function).restype = ctypes.c_int64


def pointer_to(type):
    """The descriptor of a type, as the library exports it."""
    name = "asn1_type_" + type.replace(".", "_").replace("-", "_")
    return ctypes.c_void_p(ctypes.addressof(ctypes.c_char.in_dll(LIBRARY, name)))


def decode_by_hand(descriptor, octets, use):
    """Decodes a message, and gives what `use` makes of its record."""
    value = ctypes.c_void_p()
    if LIBRARY.asn1_uper_decode(ctypes.byref(value), descriptor, octets, ctypes.c_uint64(len(octets)), None) < 0:
        raise ValueError
    made = use(value)
    LIBRARY.asn1_free_value(descriptor, value)
    return made


class Json:
    """A type through ctypes and JSON: asn1_uper_decode, asn1_jer_encode2 with compact text, json.loads, and back."""

    compact = ctypes.create_string_buffer(24)

    def __init__(self, type):
        self.descriptor = pointer_to(type)

    def decode(self, octets):
        return decode_by_hand(self.descriptor, octets, self.loads)

    def loads(self, value):
        text = ctypes.c_void_p()
        size = LIBRARY.asn1_jer_encode2(ctypes.byref(text), self.descriptor, value, self.compact)
        made = json.loads(ctypes.string_at(text, size))
        LIBRARY.asn1_free(text)
        return made

    def encode(self, made):
        text = json.dumps(made).encode()
        value, octets = ctypes.c_void_p(), ctypes.c_void_p()
        if LIBRARY.asn1_jer_decode(ctypes.byref(value), self.descriptor, text, ctypes.c_uint64(len(text)), None) < 0:
            raise ValueError
        size = LIBRARY.asn1_uper_encode(ctypes.byref(octets), self.descriptor, value)
        encoded = ctypes.string_at(octets, size)
        LIBRARY.asn1_free(octets)
        LIBRARY.asn1_free_value(self.descriptor, value)
        return encoded


# ---- records by hand ----------------------------------------------------------------------------------------------

P, U4, U8, I8 = ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint64, ctypes.c_int64


def structure(text):
    kinds = {"p": P, "u": U4, "U": U8, "I": I8, "s": ctypes.c_char_p}
    fields = [(name, kinds[kind]) for kind, name in (word.split(":") for word in text.split())]
    return type("Structure", (ctypes.Structure,), {"_fields_": fields})


FACTS = structure("p:type p:inner u:kind u:string_type u:is_extensible u:is_big u:is_unsigned u:has_lower u:has_upper I:lower "
                  "I:upper p:big_lower p:big_upper u:root_count u:count U:record_size u:pointer_count p:element U:stride p:contained "
                  "p:object_class u:column u:key_count")
COMPONENT = structure("s:name p:type u:offset u:has_presence_word u:presence_offset u:presence u:is_addition u:opens u:closes "
                      "u:default_word p:big_default")
ALTERNATIVE = structure("s:name p:type u:is_addition U:selector_offset U:value_offset")
ITEM = structure("s:name u:number u:is_addition")
STRING = structure("p:data U:length")
OPEN = structure("p:type p:data U:length")
INTEGER = structure("p:limbs u:size u:capacity u:negative")


class Records:
    """A type through ctypes, its records read as one reads them by hand: the same values as the package's."""

    def __init__(self, type):
        self.descriptor = pointer_to(type)
        self.readers = {}
        self.read = self.reader(self.descriptor.value)

    def decode(self, octets):
        return decode_by_hand(self.descriptor, octets, lambda value: self.read(value.value))

    def reader(self, descriptor):
        """A function from the address of a record to a value."""
        if descriptor not in self.readers:
            self.readers[descriptor] = lambda address: self.readers[descriptor](address)
            self.readers[descriptor] = self.make(descriptor)
        return self.readers[descriptor]

    def make(self, descriptor):
        facts = FACTS()
        LIBRARY.orlenta_type_describe(P(descriptor), ctypes.byref(facts))
        kind, word = facts.kind, U4.from_address
        if kind in (0, 2):
            return self.record(self.parts(facts, COMPONENT, LIBRARY.orlenta_type_component))
        if kind in (1, 3):
            return self.list(facts.element, facts.stride)
        if kind == 4:
            return self.choice(self.parts(facts, ALTERNATIVE, LIBRARY.orlenta_type_alternative))
        if kind == 5 and facts.is_big:
            return big_integer
        if kind == 5:
            word = U4.from_address if facts.is_unsigned else ctypes.c_int32.from_address
            return lambda address: word(address).value
        if kind == 6:
            return lambda address: word(address).value != 0
        if kind == 7:
            return bit_string
        if kind == 9:
            items = [part.name.decode() for part in self.parts(facts, ITEM, LIBRARY.orlenta_type_item)]
            return lambda address: items[word(address).value]
        if kind == 16:
            return self.open_type
        return {8: octets_at, 15: lambda address: octets_at(address).decode("utf-8")}.get(kind, lambda address: None)

    def parts(self, facts, kind, get):
        parts = [kind() for _ in range(facts.count)]
        for index, part in enumerate(parts):
            get(P(facts.type), index, ctypes.byref(part))
        return parts

    def record(self, parts):
        plan = [(part.name.decode(), part.offset, part.presence_offset if part.has_presence_word else None,
                 self.reader(part.type)) for part in parts]

        def read(address):
            return {name: reader(address + offset) for name, offset, presence, reader in plan
                    if presence is None or U4.from_address(address + presence).value}
        return read

    def list(self, element, stride):
        read = self.reader(element)

        def elements(address):
            array = STRING.from_address(address)
            return [read(array.data + i * stride) for i in range(array.length)]
        return elements

    def choice(self, parts):
        plan = [(part.name.decode(), part.value_offset, self.reader(part.type)) for part in parts]

        def read(address):
            name, offset, reader = plan[U4.from_address(address).value]
            return name, reader(address + offset)
        return read

    def open_type(self, address):
        held = OPEN.from_address(address)
        return self.reader(held.type)(held.data)


def octets_at(address):
    held = STRING.from_address(address)
    return ctypes.string_at(held.data, held.length)


def bit_string(address):
    held = STRING.from_address(address)
    return ctypes.string_at(held.data, (held.length + 7) // 8), held.length


def big_integer(address):
    held = INTEGER.from_address(address)
    magnitude = int.from_bytes(ctypes.string_at(held.limbs, 4 * held.size), "little")
    return -magnitude if held.negative else magnitude


def without_type_names(value):
    """Open types have the names of their types only in the package."""
    if isinstance(value, dict):
        return {name: without_type_names(part) for name, part in value.items()}
    if isinstance(value, list):
        return [without_type_names(part) for part in value]
    if isinstance(value, tuple) and isinstance(value[0], str):
        name, part = value
        return without_type_names(part) if "." in name else (name, without_type_names(part))
    return value


# ---- measuring ----------------------------------------------------------------------------------------------------


def messages():
    """(name, type, JSON): the benchmark's twelve, and a BSM of the core data alone."""
    yield "us-bsm-core", "US.BasicSafetyMessage", json.dumps({"coreData": CORE})
    for line in (ROOT / "bench/messages.tsv").read_text().splitlines():
        if not line.startswith("#"):
            name, type, _, text = line.split("\t")
            yield name, type, text


def take_time(calls, argument, times):
    start = time.thread_time_ns()
    for _ in range(times):
        calls(argument)
    return (time.thread_time_ns() - start) / times / 1000


def in_turns(calls, rounds):
    """(best, median) of each of (call, argument), in microseconds."""
    times = max(1, int(2000 / max(take_time(*call, 3) for call in calls)))
    rows = [[take_time(*call, times) for call in calls] for _ in range(rounds)]
    return [(min(column), statistics.median(column)) for column in zip(*rows)]


def measure(rounds):
    """(name, octets, (ours, by records, by JSON), (ours, by JSON)) for decoding and encoding."""
    for name, type_name, text in messages():
        type, by_json, records = orlenta.type(type_name), Json(type_name), Records(type_name)
        value = type.decode(text, "jer")
        octets = type.encode(value)
        made = by_json.decode(octets)
        if by_json.encode(made) != octets or records.decode(octets) != without_type_names(value):
            raise SystemExit(f"{name}: they differ")
        decoding = in_turns([(type.decode, octets), (records.decode, octets), (by_json.decode, octets)], rounds)
        encoding = in_turns([(type.encode, value), (by_json.encode, made)], rounds)
        yield name, len(octets), decoding, encoding


def cells(times):
    """Ours, and of each other its time and how many times ours that is."""
    (best, median), *others = times
    yield f"{best:.2f}"
    for their_best, their_median in others:
        yield f"{their_best:.1f}"
        yield f"{their_median / median:.1f}"


def many(rounds):
    """Messages a second, for the BSM of core data: (what, how many)."""
    type = orlenta.type("US.BasicSafetyMessage")
    octets = type.encode(type.decode(json.dumps({"coreData": CORE}), "jer"))
    log = [octets] * 100000
    paths = ["coreData.lat", "coreData.long", "coreData.speed"]
    for what, call in [("`columns` of three fields", lambda: orlenta.columns(type, log, paths)),
                       ("`decode_many`", lambda: type.decode_many(log))]:
        best = []
        for _ in range(min(rounds, 7)):
            start = time.thread_time()
            call()
            best.append(time.thread_time() - start)
        yield what, len(log) / min(best)


def table(rounds):
    load = os.getloadavg()[0]
    lines = ["| message | octets | decode µs | by records | ratio | by JSON | ratio | encode µs | by JSON | ratio |",
             "| --- |" + " ---: |" * 9]
    for name, size, decoding, encoding in measure(rounds):
        lines.append(" | ".join([f"| {name}", str(size), *cells(decoding), *cells(encoding)]) + " |")
    lines += ["", "On one core, for us-bsm-core: "
              + ", ".join(f"{what} {number:,.0f} messages a second" for what, number in many(rounds)) + "."]
    head = (f"Python {platform.python_version()}, {os.cpu_count()} processors; load {load:.1f} when it began and "
            f"{os.getloadavg()[0]:.1f} when it ended.")
    return "\n".join([head, "", *lines])


def main():
    parser = argparse.ArgumentParser(description="The Python package beside ctypes by hand.")
    parser.add_argument("--rounds", type=int, default=41)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_args()
    gc.disable()
    made = table(options.rounds)
    print(made)
    if options.record:
        text = PAGE.read_text()
        marked = re.sub(r"(<!-- python -->\n).*(<!-- end of python -->)", lambda m: f"{m[1]}\n{made}\n\n{m[2]}", text, flags=re.S)
        PAGE.write_text(marked)


if __name__ == "__main__":
    main()
