# SPDX-License-Identifier: Apache-2.0
"""Vehicle messages (V2X) as plain Python objects.

    >>> import orlenta
    >>> value = orlenta.decode("EU.CAM", data)             # unaligned PER unless rules= says otherwise
    >>> value["cam"]["camParameters"]["basicContainer"]["referencePosition"]["latitude"]
    >>> data = orlenta.encode("EU.CAM", value)
    >>> orlenta.compile("my.asn1").decode("Reading", data)  # your own schema

Types are called [Region.][Module.]Type; orlenta.types("EU.*CAM*") lists them, orlenta.type("EU.CAM") tells what one is
made of. Values are

    SEQUENCE, SET            dict; absent components are absent, defaults are there
    SEQUENCE OF, SET OF      list
    CHOICE                   (name, value)
    ENUMERATED               str; None for an item of a later edition
    INTEGER                  int
    BOOLEAN                  bool
    BIT STRING               (bytes, number of bits)
    OCTET STRING             bytes
    NULL                     None
    REAL                     float
    OBJECT IDENTIFIER        str of arcs, "1.2.840"
    character strings, times str
    open types               (type name, value), or bytes where the type is not known

Errors are orlenta.Error: DecodeError, EncodeError, ConstraintError, SchemaError, UnknownType.

Many messages: decode_many, and columns for single parts of them. orlenta.asn1tools has the interface of asn1tools,
orlenta.records dataclasses, orlenta.show a value in a notebook.
"""

from ._errors import ConstraintError, DecodeError, EncodeError, Error, SchemaError, UnknownType
from ._orlenta import (Schema, Type, builtin, check, columns, convert, decode, decode_many, encode, explain, random)
from ._orlenta import version as __version__
from ._parts import Alternative, Bits, Component, Item, Special, Unit
from ._schema import compile, compile_text
from ._show import show

type = builtin.type
types = builtin.types

__all__ = [
    "Alternative", "Bits", "Component", "ConstraintError", "DecodeError", "EncodeError", "Error", "Item", "Schema",
    "SchemaError", "Special", "Type", "Unit", "UnknownType", "builtin", "check", "columns", "compile", "compile_text",
    "convert", "decode", "decode_many", "encode", "explain", "random", "show", "type", "types",
]
