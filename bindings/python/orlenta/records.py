# SPDX-License-Identifier: Apache-2.0
"""Values as dataclasses with annotations, for editors and type checkers.

    >>> CAM = orlenta.records.make("EU.CAM")
    >>> message = CAM.decode(data)
    >>> message.cam.camParameters.basicContainer.stationType

`python3 -m orlenta.records EU.CAM > cam.py` writes the classes as a module, which editors can read. A SEQUENCE is a
dataclass whose absent components are None, and a NULL that is there True; what is within a list or a CHOICE is as in plain values, dataclasses in the
place of dicts. Hyphens of names are underscores, and Python's keywords have one behind them.
"""

import dataclasses
import functools
import keyword
import sys
from typing import ClassVar

import orlenta

_PLAIN = {
    "INTEGER": "int", "BOOLEAN": "bool", "REAL": "float", "NULL": "None", "BIT STRING": "Tuple[bytes, int]",
    "OCTET STRING": "bytes", "open type": "Union[Tuple[str, Any], bytes]",
}
_RECORDS = ("SEQUENCE", "SET")
_LISTS = ("SEQUENCE OF", "SET OF")
_HEAD = '''"""Made by orlenta.records; not to be changed by hand."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, ClassVar, List, Literal, Optional, Tuple, Union

from orlenta.records import Record

'''


def identifier(name):
    """A name of the schema as one of Python's."""
    name = name.replace("-", "_")
    return name + "_" if keyword.iskeyword(name) else name


def class_name(type):
    """The name of a type's dataclass: with its module's where others of the schema are called so."""
    return "_".join(identifier(part) for part in type.name.split(".")[1 if type.region else 0 :])


# ---- source -------------------------------------------------------------------------------------------------------


def _annotation(type):
    kind = type.kind
    if kind in _RECORDS:
        return class_name(type)
    if kind in _LISTS:
        return f"List[{_annotation(type.element)}]"
    if kind == "CHOICE":
        pairs = (f"Tuple[Literal[{part.name!r}], {_annotation(part.type)}]" for part in type.alternatives)
        return f"Union[{', '.join(pairs)}]"
    if kind == "ENUMERATED":
        return f"Literal[{', '.join(repr(item.name) for item in type.items)}]"
    return _PLAIN.get(kind, "str")


def _fields(type):
    """Lines of the class, components that must be there first."""
    first, last = [], []
    for part in type.components:
        is_null = part.type.kind == "NULL"
        name, annotation = identifier(part.name), "Literal[True]" if is_null else _annotation(part.type)
        if part.optional:
            last.append(f"    {name}: Optional[{annotation}] = None")
        elif part.default is not None:
            last.append(f"    {name}: {annotation} = {part.default!r}")
        else:
            first.append(f"    {name}: {annotation}")
    return first + last


def _parts(type):
    if type.kind in _RECORDS:
        return [part.type for part in type.components]
    if type.kind in _LISTS:
        return [type.element]
    return [part.type for part in type.alternatives]


def _records_of(types):
    """Each SEQUENCE that the types lead to, once, in the order in which they are met."""
    found, seen, waiting = [], set(), list(types)
    while waiting:
        type = waiting.pop(0)
        if type in seen:
            continue
        seen.add(type)
        if type.kind in _RECORDS:
            found.append(type)
        waiting += _parts(type)
    return found


def source(*types):
    """A module of dataclasses: those of the types, each a Type or the name of one, and of all in them."""
    types = [orlenta.type(type) if isinstance(type, str) else type for type in types]
    classes = []
    for type in _records_of(types):
        lines = ["@dataclass", f"class {class_name(type)}(Record):", f"    orlenta_name: ClassVar[str] = {type.name!r}"]
        classes.append("\n".join(lines + _fields(type)) + "\n")
    return _HEAD + "\n\n" + "\n\n".join(classes)


# ---- classes ------------------------------------------------------------------------------------------------------


def _converter(type, namespace, to_record):
    """A function from plain values to those with dataclasses, or back; None where they are the same."""
    kind = type.kind
    if kind in _RECORDS:
        made = namespace[class_name(type)]
        return made.from_value if to_record else made.to_value
    if kind in _LISTS:
        inner = _converter(type.element, namespace, to_record)
        return inner and (lambda values: [inner(value) for value in values])
    if kind == "CHOICE":
        inner = {part.name: _converter(part.type, namespace, to_record) for part in type.alternatives}
        return _choice_converter({name: one for name, one in inner.items() if one})
    return None


def _choice_converter(inner):
    def convert(value):
        one = inner.get(value[0])
        return (value[0], one(value[1])) if one else value

    return convert if inner else None


class Record:
    """What dataclasses of types have in common."""

    orlenta_name: ClassVar[str] = ""

    @classmethod
    @functools.lru_cache(maxsize=None)
    def orlenta_type(cls):
        """The Type of the class's values."""
        return orlenta.type(cls.orlenta_name)

    @classmethod
    @functools.lru_cache(maxsize=None)
    def _converters(cls):
        """(attribute, component, to dataclasses, to plain values) of each component."""
        namespace = getattr(cls, "_namespace", None) or vars(sys.modules[cls.__module__])
        made = []
        for part in cls.orlenta_type().components:
            both = [_converter(part.type, namespace, to_record) for to_record in (True, False)]
            if part.type.kind == "NULL":
                both = [lambda value: True, lambda value: None]
            made.append((identifier(part.name), part.name, *both))
        return made

    @classmethod
    def from_value(cls, value):
        """The dataclass of a plain value."""
        made = {}
        for attribute, name, convert, _ in cls._converters():
            if name in value:
                part = value[name]
                made[attribute] = convert(part) if convert else part
        return cls(**made)

    def to_value(self):
        """The plain value; components that are None are absent."""
        value = {}
        for attribute, name, _, convert in self._converters():
            part = getattr(self, attribute)
            if part is not None:
                value[name] = convert(part) if convert else part
        return value

    @classmethod
    def decode(cls, data, rules="uper", **options):
        """As orlenta.decode."""
        return cls.from_value(cls.orlenta_type().decode(data, rules, **options))

    def encode(self, rules="uper", **options):
        """As orlenta.encode."""
        return self.orlenta_type().encode(self.to_value(), rules, **options)


def make(type):
    """The dataclass of a SEQUENCE or SET, given as a Type or by its name."""
    type = orlenta.type(type) if isinstance(type, str) else type
    if type.kind not in _RECORDS:
        raise TypeError(f"{type.name} is no SEQUENCE")
    namespace = {"__name__": __name__}
    exec(compile(source(type), f"<dataclasses of {type.name}>", "exec"), namespace)
    for found in _records_of([type]):
        made = namespace[class_name(found)]
        made._namespace = namespace
        made.orlenta_type = classmethod(lambda cls, found=found: found)
    return namespace[class_name(type)]


if __name__ == "__main__":
    sys.stdout.write(source(*sys.argv[1:]))
