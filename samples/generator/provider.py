"""The expression language of numeric formulas in the family documents, as far as they use it.

A quantity is a number with its unit text directly behind it ("1.5mm", "7.85e-6kg/mm3"). Every
operation follows the dimensions of its operands; a number without a unit takes the unit that is
asked for where an equal dimension is needed. Values are in database units (kg, cm, s, rad).
"""

from __future__ import annotations

import math
import re
from collections.abc import Callable
from dataclasses import dataclass

from generator.units import UNITLESS, Dimensions, Unit, parse_unit, scaled_sum

_NUMBER = re.compile(r"(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?")
_UNIT_FACTOR = re.compile(r"([A-Za-z]+)\d*")
_NAME = re.compile(r"[A-Za-z_]\w*")
_CONSTANTS = {"pi": math.pi, "e": math.e}
_ANGLE: Dimensions = (0, 0, 0, 1)


class ExpressionError(ValueError):
    """The text is not a valid expression, or its dimensions do not fit."""


@dataclass(frozen=True)
class Quantity:
    """A value in database units and its dimensions."""

    value: float
    dimensions: Dimensions


def evaluate(expression: str, unit_text: str) -> float:
    """The value of an expression, asked for in a unit, in the database units of that unit."""
    unit = parse_unit(unit_text)
    parser = _Parser(expression, unit)
    result = parser.comparison()
    parser.expect_end()
    if result.dimensions == UNITLESS:
        return result.value * float(unit.factor)
    if result.dimensions != unit.dimensions:
        raise ExpressionError(f"{expression}: dimensions do not fit {unit_text}")
    return result.value


class _Parser:
    """A recursive descent over one expression; each method reads one level of precedence."""

    def __init__(self, text: str, asked: Unit) -> None:
        self._text = text
        self._asked = asked
        self._position = 0
        self._unit_end = -1

    def comparison(self) -> Quantity:
        left = self._sum()
        sign = self._take("<=", ">=", "==", "!=", "<", ">")
        if not sign:
            return left
        left, right = self._alike(left, self._sum())
        holds = {"<=": left.value <= right.value, ">=": left.value >= right.value,
                 "==": left.value == right.value, "!=": left.value != right.value,
                 "<": left.value < right.value, ">": left.value > right.value}
        return Quantity(float(holds[sign]), UNITLESS)

    def expect_end(self) -> None:
        if self._text[self._position:].strip():
            raise self._error("unexpected text")

    def _sum(self) -> Quantity:
        left = self._product()
        while sign := self._take("+", "-"):
            left, right = self._alike(left, self._product())
            change = right.value if sign == "+" else -right.value
            left = Quantity(left.value + change, left.dimensions)
        return left

    def _product(self) -> Quantity:
        left = self._signed()
        while sign := self._take("*", "/"):
            right = self._signed()
            value = left.value * right.value if sign == "*" else left.value / right.value
            times = 1 if sign == "*" else -1
            left = Quantity(value, scaled_sum(left.dimensions, right.dimensions, times))
        return left

    def _signed(self) -> Quantity:
        if self._take("-"):
            inner = self._signed()
            return Quantity(-inner.value, inner.dimensions)
        return self._power()

    def _power(self) -> Quantity:
        base = self._operand()
        is_behind_unit = self._position == self._unit_end
        if not self._take("^"):
            return base
        if is_behind_unit:
            raise self._error("a power directly behind a unit")
        exponent = self._signed()
        if exponent.dimensions != UNITLESS:
            raise self._error("an exponent with a unit")
        return Quantity(base.value**exponent.value,
                        _power_dimensions(base.dimensions, exponent.value))

    def _operand(self) -> Quantity:
        if self._take("("):
            inner = self.comparison()
            self._expect(")")
            return inner
        if match := _NUMBER.match(self._text, self._position):
            self._position = match.end()
            return self._quantity(float(match[0]))
        if not (match := _NAME.match(self._text, self._position)):
            raise self._error("an operand is missing")
        self._position = match.end()
        name = match[0].lower()
        if self._take("("):
            return self._call(name)
        if name in _CONSTANTS:
            return Quantity(_CONSTANTS[name], UNITLESS)
        raise self._error(f"unknown name {match[0]}")

    def _quantity(self, number: float) -> Quantity:
        if self._text[self._position:self._position + 1] == "(":
            raise self._error("a bracket directly behind a number")
        unit_text = self._unit_text()
        if not unit_text:
            return Quantity(number, UNITLESS)
        try:
            unit = parse_unit(unit_text)
        except ValueError as reason:
            raise self._error(str(reason)) from None
        self._unit_end = self._position
        return Quantity(number * float(unit.factor), unit.dimensions)

    def _unit_text(self) -> str:
        """Takes the longest chain of unit names joined by * or / without blanks."""
        start = end = self._position
        while match := _UNIT_FACTOR.match(self._text, self._position):
            called = self._text[match.end():match.end() + 1] == "("
            if called or match[1].lower() in _CONSTANTS:
                break
            end = match.end()
            self._position = end + 1
            if self._text[end:end + 1] not in ("*", "/"):
                break
        self._position = end
        return self._text[start:end]

    def _call(self, name: str) -> Quantity:
        arguments = [self.comparison()]
        while self._take(";"):
            arguments.append(self.comparison())
        self._expect(")")
        if name == "if":
            return self._choose(*arguments)
        if name in ("min", "max"):
            return self._extreme(min if name == "min" else max, arguments)
        if name == "sqrt":
            (argument,) = arguments
            return Quantity(math.sqrt(argument.value),
                            _power_dimensions(argument.dimensions, 0.5))
        if name in ("floor", "round"):
            return self._whole(name, *arguments)
        return self._trigonometric(name, *arguments)

    def _choose(self, condition: Quantity, yes: Quantity, no: Quantity) -> Quantity:
        yes, no = self._alike(yes, no)
        return yes if condition.value else no

    def _extreme(self, pick: Callable[..., float], arguments: list[Quantity]) -> Quantity:
        result = arguments[0]
        for argument in arguments[1:]:
            left, right = self._alike(result, argument)
            result = Quantity(pick(left.value, right.value), left.dimensions)
        return result

    def _whole(self, name: str, argument: Quantity) -> Quantity:
        """Rounds; a quantity is counted in the unit asked for."""
        factor = 1.0
        if argument.dimensions != UNITLESS:
            if argument.dimensions != self._asked.dimensions:
                raise self._error("rounding in another unit than the one asked for")
            factor = float(self._asked.factor)
        count = argument.value / factor
        rounded = math.floor(count) if name == "floor" else _round_half_away(count)
        return Quantity(rounded * factor, argument.dimensions)

    def _trigonometric(self, name: str, argument: Quantity) -> Quantity:
        if name == "atan" and argument.dimensions == UNITLESS:
            return Quantity(math.atan(argument.value), _ANGLE)
        functions = {"sin": math.sin, "cos": math.cos, "tan": math.tan}
        if name not in functions or argument.dimensions not in (UNITLESS, _ANGLE):
            raise self._error(f"unusable function {name}")
        angle = argument.value
        if argument.dimensions == UNITLESS and self._asked.dimensions == _ANGLE:
            angle *= float(self._asked.factor)
        return Quantity(functions[name](angle), UNITLESS)

    def _alike(self, left: Quantity, right: Quantity) -> tuple[Quantity, Quantity]:
        """Gives a number beside a quantity the unit asked for; the dimensions must be equal."""
        if left.dimensions != right.dimensions:
            left, right = self._with_unit(left), self._with_unit(right)
        if left.dimensions != right.dimensions:
            raise self._error("different dimensions")
        return left, right

    def _with_unit(self, quantity: Quantity) -> Quantity:
        if quantity.dimensions != UNITLESS:
            return quantity
        return Quantity(quantity.value * float(self._asked.factor), self._asked.dimensions)

    def _expect(self, sign: str) -> None:
        if not self._take(sign):
            raise self._error(f"{sign} is missing")

    def _take(self, *signs: str) -> str | None:
        while self._text[self._position:self._position + 1] == " ":
            self._position += 1
        for sign in signs:
            if self._text.startswith(sign, self._position):
                self._position += len(sign)
                while self._text[self._position:self._position + 1] == " ":
                    self._position += 1
                return sign
        return None

    def _error(self, reason: str) -> ExpressionError:
        return ExpressionError(f"{self._text}, character {self._position + 1}: {reason}")


def _power_dimensions(dimensions: Dimensions, exponent: float) -> Dimensions:
    powers = [power * exponent for power in dimensions]
    if any(power != int(power) for power in powers):
        raise ExpressionError("a root without whole dimensions")
    a, b, c, d = map(int, powers)
    return (a, b, c, d)


def _round_half_away(value: float) -> float:
    return math.copysign(math.floor(abs(value) + 0.5), value)
