# SPDX-License-Identifier: Apache-2.0
"""Columns of messages' parts as arrays."""

import array

try:
    import numpy
except ImportError:  # plain lists and arrays then
    numpy = None  # type: ignore


def _plain(sort, cells, absent, missing):
    if sort == "object":
        return [missing if cell is None else cell for cell in cells] if missing is not None else cells
    values = array.array("d" if sort == "float" else "q")
    values.frombytes(cells)
    if absent is None and sort != "bool":
        return values
    present = map(bool, values) if sort == "bool" else values
    return [missing if gone else value for gone, value in zip(absent or bytes(len(values)), present)]




def _array(sort, cells, absent, missing):
    if sort == "object":
        values = numpy.empty(len(cells), dtype=object)
        for index, cell in enumerate(cells):
            values[index] = missing if cell is None else cell
        return values
    values = numpy.frombuffer(cells, dtype=numpy.float64 if sort == "float" else numpy.int64)
    if sort == "bool":
        values = values.astype(bool)
    if absent is None:
        return values
    fill = missing
    if missing is None and sort != "bool":
        fill = numpy.nan
    if sort == "int" and isinstance(fill, float):
        values = values.astype(numpy.float64)
    elif not isinstance(fill, bool if sort == "bool" else (int, float)):
        values = values.astype(object)
    values[numpy.frombuffer(absent, dtype=bool)] = fill
    return values


def arrays(paths, columns, missing):
    """A dict from paths to arrays, of columns of (sort, cells, which rows are absent)."""
    finish = _plain if numpy is None else _array
    return {path: finish(*column, missing) for path, column in zip(paths, columns)}
