# SPDX-License-Identifier: Apache-2.0
"""Names of types, and schemas by what they were made of."""

import difflib
import fnmatch
import functools

from ._errors import UnknownType


def matching(names, pattern):
    """The names that match a shell's pattern, whatever their case; all of them without one."""
    if pattern is None:
        return names
    wanted = pattern.lower()
    return [name for name in names if fnmatch.fnmatchcase(name.lower(), wanted)]


def _nearest(name, names):
    last = name.rpartition(".")[2].lower()
    same = [known for known in names if known.rpartition(".")[2].lower() == last]
    close = difflib.get_close_matches(name, names, n=3, cutoff=0.6)
    return list(dict.fromkeys(same + close))[:5]


def unknown(what, name, names):
    """The exception for a name that stands for nothing, or for several types."""
    name = str(name)
    if what == "ambiguous":
        last = name.rpartition(".")[2].replace("_", "-")
        nearest = [known for known in names if known.rpartition(".")[2].replace("_", "-") == last]
        message = f"several types are called '{name}'"
    else:
        nearest = _nearest(name, names)
        message = f"no {what} called '{name}'"
        if what == "rules":
            nearest = nearest or names
    if nearest:
        message += ": " + ", ".join(nearest)
    return UnknownType(message, nearest)


@functools.lru_cache(maxsize=32)
def _compile(sources, region, module_names):
    from . import _orlenta

    return _orlenta.compile(sources, region, module_names)


def restore(origin):
    """A schema that was pickled: the one built in, or one compiled anew, once in each process."""
    from . import _orlenta

    return _orlenta.builtin if origin is None else _compile(*origin)
