# SPDX-License-Identifier: Apache-2.0
"""Schemas at run time."""

import os

from . import _orlenta


def _read(path):
    with open(path, "rb") as file:
        octets = file.read()
    try:
        return octets.decode()
    except UnicodeDecodeError:  # the other form that modules have
        return octets.decode("latin-1")


def compile(*paths, region=None, module_names=False):
    """The Schema of modules in files, compiled together. Raises SchemaError, or OSError for a file.

    region is what its names begin with; without one they have no such part. The schema and its types can be pickled:
    they take the modules' texts along.
    """
    if not paths:
        raise TypeError("compile() needs the path of a module")
    return compile_sources([(os.fspath(path), _read(path)) for path in paths], region, module_names)


def compile_text(*texts, region=None, module_names=False):
    """The same of modules that are at hand as texts."""
    return compile_sources([(f"text {number}", text) for number, text in enumerate(texts, 1)], region, module_names)


def compile_sources(sources, region=None, module_names=False):
    """The same of (name, text) tuples, as which messages call them."""
    return _orlenta.compile(tuple(sources), region, module_names)
