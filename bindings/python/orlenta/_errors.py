# SPDX-License-Identifier: Apache-2.0
"""The exceptions, all of them an orlenta.Error."""


class Error(Exception):
    """What went wrong, and where: `message`; `path`, as "a.b[3].c", or ""; `bit_position` in the message, or None;
    `line` of a text, or None. Of a call with many messages, `index` is the number of the message."""

    def __init__(self, message, path="", bit_position=None, line=None):
        super().__init__(message, path, bit_position, line)
        self.message = message
        self.path = path
        self.bit_position = bit_position
        self.line = line
        self.index = None

    def __str__(self):
        places = []
        if self.line is not None:
            places.append(f"line {self.line}")
        if self.bit_position is not None:
            places.append(f"bit {self.bit_position}")
        if self.path:
            places.append(f"at {self.path}")
        return self.message + (f" ({', '.join(places)})" if places else "")

    def __reduce__(self):
        return type(self), self.args, {"index": self.index}


class DecodeError(Error):
    """Octets or a text that are no message of the type."""


class EncodeError(Error):
    """A value that is none of the type."""


class ConstraintError(EncodeError):
    """A value that breaks a constraint of its type."""


class SchemaError(Error):
    """Modules that are not ASN.1. `messages` has all that is wrong: (file, line, column, text, is_note)."""

    def __init__(self, messages):
        errors = [message for message in messages if not message[4]] or [("", 0, 0, "no schema", False)]
        file, line, column, text, _ = errors[0]
        place = f"{file}:{line}:{column}: " if file else ""
        more = f" (and {len(errors) - 1} more)" if len(errors) > 1 else ""
        super().__init__(place + text + more)
        self.line = line or None
        self.messages = messages

    def __str__(self):
        return self.message

    def __reduce__(self):
        return type(self), (self.messages,)


class UnknownType(Error, KeyError):
    """A name of no type, or of no rules. `nearest` has names that are like it."""

    def __init__(self, message, nearest=()):
        super().__init__(message)
        self.nearest = tuple(nearest)

    def __reduce__(self):
        return type(self), (self.message, self.nearest)
