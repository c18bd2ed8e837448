# SPDX-License-Identifier: Apache-2.0
"""The interface of asn1tools, for programs that were written for that: change the import.

    from orlenta import asn1tools

Values are those of asn1tools but for open types of which the type is known, which are (type name, value), and times,
which are str. numeric_enums, any_defined_by_choices and cache_dir are refused if they are used. Names of a type that
several modules have are found in Specification.modules.
"""

import os

from . import _schema
from ._errors import ConstraintError as ConstraintsError
from ._errors import DecodeError, EncodeError, Error
from ._errors import SchemaError as CompileError

ParseError = CompileError

_RULES = {name: name for name in ("ber", "der", "oer", "uper", "jer", "xer", "gser")}
_RULES["per"] = "aper"

__all__ = [
    "CompileError", "ConstraintsError", "DecodeError", "EncodeError", "Error", "ParseError", "Specification",
    "compile_files", "compile_string",
]


class CompiledType:
    """One type by one set of encoding rules."""

    def __init__(self, type, rules):
        self._type = type
        self._rules = rules

    def __repr__(self):
        return repr(self._type)

    @property
    def name(self):
        return self._type.name.rpartition(".")[2]

    def encode(self, data, check_types=True, check_constraints=False, **kwargs):
        encoded = self._type.encode(data, self._rules, check=check_constraints)
        return encoded.encode(errors="surrogateescape") if isinstance(encoded, str) else encoded

    def decode(self, data, check_constraints=False):
        return self.decode_with_length(data, check_constraints)[0]

    def decode_with_length(self, data, check_constraints=False):
        value, length = self._type.decode_with_length(data, self._rules)
        if check_constraints:
            self._type.check(value)
        return value, length


class _Types(dict):
    """Compiled types by name, each made when it is asked for."""

    def __init__(self, schema, names, rules):
        super().__init__((name, None) for name in names)
        self._schema = schema
        self._full_names = names
        self._rules = rules

    def __getitem__(self, name):
        made = super().__getitem__(name)
        if made is None:
            made = CompiledType(self._schema.type(self._full_names[name]), self._rules)
            self[name] = made
        return made

    def get(self, name, default=None):
        return self[name] if name in self else default

    def values(self):
        return [self[name] for name in self]

    def items(self):
        return [(name, self[name]) for name in self]


class Specification:
    """What compile_files() and compile_string() give."""

    def __init__(self, schema, codec):
        if codec not in _RULES:
            raise CompileError([("", 0, 0, f"unsupported codec '{codec}'", False)])
        rules = _RULES[codec]
        names, modules = {}, {}
        for full_name in schema.types():
            type = schema.type(full_name)
            name = full_name.rpartition(".")[2]
            modules.setdefault(type.module, {})[name] = full_name
            names[name] = None if name in names else full_name
        self._types = _Types(schema, {name: full for name, full in names.items() if full}, rules)
        self._modules = {module: _Types(schema, found, rules) for module, found in modules.items()}

    @property
    def types(self):
        return self._types

    @property
    def modules(self):
        return self._modules

    def _find(self, name, error):
        found = self._types.get(name)
        if found is None:
            raise error(f"Type '{name}' not found in types dictionary.")
        return found

    def encode(self, name, data, check_types=True, check_constraints=False, **kwargs):
        return self._find(name, EncodeError).encode(data, check_types, check_constraints, **kwargs)

    def decode(self, name, data, check_constraints=False):
        return self._find(name, DecodeError).decode(data, check_constraints)

    def decode_with_length(self, name, data, check_constraints=False):
        return self._find(name, DecodeError).decode_with_length(data, check_constraints)


def _refuse(**options):
    for name, value in options.items():
        if value:
            raise NotImplementedError(f"{name} is not supported")


def compile_files(filenames, codec="ber", any_defined_by_choices=None, encoding="utf-8", cache_dir=None,
                  numeric_enums=False):
    """Compiles modules in one file or several."""
    _refuse(any_defined_by_choices=any_defined_by_choices, cache_dir=cache_dir, numeric_enums=numeric_enums)
    if isinstance(filenames, (str, os.PathLike)):
        filenames = [filenames]
    texts = []
    for filename in filenames:
        with open(filename, encoding=encoding) as file:
            texts.append((os.fspath(filename), file.read()))
    return Specification(_schema.compile_sources(texts), codec)


def compile_string(string, codec="ber", any_defined_by_choices=None, numeric_enums=False):
    """Compiles modules in a text."""
    _refuse(any_defined_by_choices=any_defined_by_choices, numeric_enums=numeric_enums)
    return Specification(_schema.compile_text(string), codec)
