# SPDX-License-Identifier: Apache-2.0
"""Values for people."""

import html

_MOST_PARTS = 200


def _text(value):
    if isinstance(value, bytes):
        return value.hex() or "(empty)"
    if isinstance(value, tuple) and len(value) == 2 and isinstance(value[0], bytes):
        bits = "".join(f"{octet:08b}" for octet in value[0])[: value[1]]
        return f"{bits or '(no bits)'}"
    return str(value)


def _is_alternative(value):
    return isinstance(value, tuple) and len(value) == 2 and isinstance(value[0], str)


def _parts(value):
    """(name, part) of a value that has parts, else None."""
    if isinstance(value, dict):
        return list(value.items())
    if isinstance(value, list):
        return [(f"[{index}]", part) for index, part in enumerate(value)]
    if _is_alternative(value):
        return [value]
    return None


def _lines(name, value, depth, lines):
    parts = _parts(value)
    indent = "  " * depth
    if parts is None:
        lines.append(f"{indent}{name}: {_text(value)}" if name else indent + _text(value))
        return
    if name:
        lines.append(f"{indent}{name}")
    for part_name, part in parts:
        _lines(part_name, part, depth + bool(name), lines)


def _rows(name, value):
    parts = _parts(value)
    label = html.escape(str(name))
    if parts is None:
        return f"<tr><td>{label}</td><td><code>{html.escape(_text(value))}</code></td></tr>"
    return f"<tr><td>{label}</td><td>{_table(parts)}</td></tr>"


def _table(parts):
    rows = "".join(_rows(name, part) for name, part in parts[:_MOST_PARTS])
    more = f"<tr><td>…</td><td>{len(parts) - _MOST_PARTS} more</td></tr>" if len(parts) > _MOST_PARTS else ""
    body = f"<table>{rows}{more}</table>"
    return body if len(parts) <= 8 else f"<details><summary>{len(parts)} parts</summary>{body}</details>"


class Shown:
    """A value with a text for the terminal and a table for notebooks."""

    def __init__(self, value, title=""):
        self.value = value
        self.title = title

    def __repr__(self):
        lines = []
        _lines(self.title, self.value, 0, lines)
        return "\n".join(lines)

    def _repr_html_(self):
        parts = _parts(self.value)
        title = f"<b>{html.escape(self.title)}</b>" if self.title else ""
        return title + (f"<code>{html.escape(_text(self.value))}</code>" if parts is None else _table(parts))


def show(value, title=""):
    """A value as a text with a line for each part, and as a table in a notebook."""
    return Shown(value, title)
