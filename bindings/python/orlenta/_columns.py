# SPDX-License-Identifier: Apache-2.0
"""Single parts of many messages, each as an array."""

import array

from . import _orlenta

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


def columns(type, messages, paths, rules="uper", errors="raise", *, threads=1, offsets=None, allow_trailing=False,
            missing=None):
    """The parts of many messages that `paths` name, as a dict from paths to numpy arrays of one row for each message.

    A path is as "coreData.lat", "nodes[0].refPos.lat", or "value.coreData.lat" through an open type. INTEGER gives
    int64, REAL float64, BOOLEAN bool, and all else objects. For a part that is absent stands `missing`, else NaN
    (with which an int64 column becomes float64) or None. With errors="none" a message that cannot be decoded has no
    part. Without numpy columns are of array.array or list. The other arguments are those of decode_many.

    pandas.DataFrame(orlenta.columns(...)) makes a table of it.
    """
    paths = list(paths)
    how = (rules, errors, threads, offsets, allow_trailing)
    if isinstance(type, _orlenta.Type):
        made = type._columns(messages, paths, *how)
    else:
        made = _orlenta.columns(type, messages, paths, *how)
    finish = _plain if numpy is None else _array
    return {path: finish(*column, missing) for path, column in zip(paths, made)}
