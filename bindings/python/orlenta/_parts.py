# SPDX-License-Identifier: Apache-2.0
"""What types and messages are made of."""

from decimal import Context, Decimal
from typing import TYPE_CHECKING, Any, List, NamedTuple, Optional

if TYPE_CHECKING:
    from . import Type

EXACT = Context(prec=100)  # digits


class Component(NamedTuple):
    """A component of a SEQUENCE or SET."""

    name: str
    type: "Type"
    optional: bool  # it may be absent: OPTIONAL, or an addition that an older sender does not know
    default: Any  # None: it has none
    is_addition: bool  # behind the extension marker


class Alternative(NamedTuple):
    """An alternative of a CHOICE."""

    name: str
    type: "Type"
    is_addition: bool


class Item(NamedTuple):
    """An item of an ENUMERATED."""

    name: str
    number: int
    is_addition: bool


class Special(NamedTuple):
    """Numbers of a unit with a meaning of their own."""

    first: int
    last: int
    meaning: str  # "unavailable", "orMore"
    is_limit: int  # 1 and -1: the physical value or more, or less; 0: they have no physical value


class Unit(NamedTuple):
    """What the numbers of a type stand for: physical value = number * scale + offset."""

    symbol: str  # "m/s", "deg", "%"; "1" of a plain number
    scale: float
    offset: float
    specials: List[Special]

    def physical(self, number):
        """The physical value of a number, or the meaning of one that has none."""
        special = self._special(number)
        return special.meaning if special and not special.is_limit else float(self._exact(number))

    def text(self, number):
        """The same in words: '18.34 m/s', 'unavailable', '127 m orMore'."""
        special = self._special(number)
        if special and not special.is_limit:
            return special.meaning
        value = f"{self._exact(number):f}"
        parts = [value.rstrip("0").rstrip(".") if "." in value else value]
        parts += [self.symbol] if self.symbol != "1" else []
        return " ".join(parts + ([special.meaning] if special else []))

    def _special(self, number):
        return next((special for special in self.specials if special.first <= number <= special.last), None)

    def _exact(self, number):
        # The schema's decimals, of which scale and offset are the nearest float.
        number = repr(number) if isinstance(number, float) else int(number)
        return EXACT.fma(Decimal(number), Decimal(repr(self.scale)), Decimal(repr(self.offset)))


class Bits(NamedTuple):
    """A run of bits in a message that was explained."""

    offset: int  # from the start of the message, in bits
    width: int
    kind: str  # 'value', 'extension', 'presence', 'index', 'tag', 'length', 'fragment', 'padding', 'end', ...
    text: str  # in words
    path: str  # of the component
    value: Optional[str]  # at the last run of a value without components: it, as JSON
