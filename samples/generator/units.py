"""The units of the sample families, reduced to the database units kg, cm, s and rad.

Factors follow from the definitions of the units (inch 25.4 mm, pound 0.45359237 kg) and are
exact decimals, apart from those that hold pi.
"""

from __future__ import annotations

import re
from dataclasses import dataclass
from decimal import Decimal

Dimensions = tuple[int, int, int, int]
"""Exponents of mass, length, time and angle."""

PI = Decimal("3.14159265358979323846264338327950288419716939937510")
UNITLESS: Dimensions = (0, 0, 0, 0)
_MASS, _LENGTH, _ANGLE = (1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 0, 1)
_FORCE = (1, 1, -2, 0)

_NAMED: dict[str, tuple[Decimal, Dimensions]] = {
    "ul": (Decimal(1), UNITLESS),
    "kg": (Decimal(1), _MASS),
    "lb": (Decimal("0.45359237"), _MASS),
    "mm": (Decimal("0.1"), _LENGTH),
    "cm": (Decimal(1), _LENGTH),
    "m": (Decimal(100), _LENGTH),
    "in": (Decimal("2.54"), _LENGTH),
    "ft": (Decimal("30.48"), _LENGTH),
    "l": (Decimal(1000), (0, 3, 0, 0)),
    "h": (Decimal(3600), (0, 0, 1, 0)),
    "N": (Decimal(100), _FORCE),
    "kN": (Decimal(100000), _FORCE),
    "MPa": (Decimal(10000), (1, -1, -2, 0)),
    "rad": (Decimal(1), _ANGLE),
    "deg": (PI / 180, _ANGLE),
    "revolution": (2 * PI, _ANGLE),
    "rpm": (2 * PI / 60, (0, 0, -1, 1)),
}

_FACTOR = re.compile(r"([A-Za-z]+)(\d*)")
_BASE_NAMES = ("kg", "cm", "s", "rad")


@dataclass(frozen=True)
class Unit:
    """A unit: how many database units it holds, and its dimensions."""

    factor: Decimal
    dimensions: Dimensions

    @property
    def database_text(self) -> str:
        """The text of the database unit: positive powers first, then each divisor."""
        powers = list(zip(_BASE_NAMES, self.dimensions))
        above = "*".join(_power_text(name, power) for name, power in powers if power > 0)
        below = "".join("/" + _power_text(name, -power) for name, power in powers if power < 0)
        if not above and not below:
            return "ul"
        return (above or "1") + below


def parse_unit(text: str) -> Unit:
    """The unit of a text such as "kg/m3", "1/m" or "ul"; ValueError for anything else."""
    rest = text[1:] if text.startswith("1/") else "*" + text
    factor, dimensions = Decimal(1), UNITLESS
    while rest:
        match = _FACTOR.match(rest, 1)
        if rest[0] not in "*/" or not match or match[1] not in _NAMED:
            raise ValueError(f"unknown unit {text!r}")
        power = int(match[2] or 1) * (1 if rest[0] == "*" else -1)
        base, base_dimensions = _NAMED[match[1]]
        factor *= base**power
        dimensions = scaled_sum(dimensions, base_dimensions, power)
        rest = rest[match.end():]
    return Unit(factor, dimensions)


def scaled_sum(first: Dimensions, second: Dimensions, times: int) -> Dimensions:
    """The dimensions of first * second ^ times."""
    a, b, c, d = (x + times * y for x, y in zip(first, second))
    return (a, b, c, d)


def _power_text(name: str, power: int) -> str:
    return name if power == 1 else f"{name}^{power}"
