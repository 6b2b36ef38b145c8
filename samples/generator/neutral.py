"""Exact evaluation of the formulas that stand in the source tables.

Their notation is not the one of the family documents: `{ID}` is a plain number without a unit,
arguments are separated by commas, angles are in radians and `&` joins texts. Numbers are
decimals of 40 digits, so what comes out serves as the expected value for formulas written
in the families' own language.
"""

from __future__ import annotations

import re
from collections.abc import Callable, Mapping
from decimal import ROUND_HALF_UP, Decimal, localcontext

from generator.units import PI

Value = Decimal | str | bool

DIGITS = 40
_TOKEN = re.compile(
    r"\s*(?:(\d+\.?\d*(?:[eE][+-]?\d+)?)|\"([^\"]*)\"|\{(\w+)\}|([A-Za-z]+)"
    r"|(<>|<=|>=|[=<>&+\-*/^(),]))"
)


def evaluate(expression: str, values: Mapping[str, Value]) -> Value:
    """The value of an expression over the named values; ValueError when it is malformed."""
    with localcontext() as context:
        context.prec = DIGITS
        parser = _Parser(expression, values)
        value = parser.comparison()
        parser.expect("")
        return value


def number_text(value: Decimal) -> str:
    """A number in its shortest plain form, as it is joined into texts."""
    text = format(value, "f")
    return text.rstrip("0").rstrip(".") if "." in text else text


class _Parser:
    """A recursive descent over one expression; each method reads one level of precedence."""

    def __init__(self, expression: str, values: Mapping[str, Value]) -> None:
        self._tokens = _tokens(expression)
        self._values = values
        self._position = 0

    def comparison(self) -> Value:
        left = self._joined()
        sign = self._take("=", "<>", "<", "<=", ">", ">=")
        return _COMPARISONS[sign](left, self._joined()) if sign else left

    def expect(self, text: str) -> None:
        if self._take(text) is None:
            raise ValueError(f"expected {text!r} at {self._tokens[self._position:]}")

    def _joined(self) -> Value:
        left = self._sum()
        while self._take("&"):
            left = _text(left) + _text(self._sum())
        return left

    def _sum(self) -> Value:
        left = self._product()
        while sign := self._take("+", "-"):
            right = _number(self._product())
            left = _number(left) + right if sign == "+" else _number(left) - right
        return left

    def _product(self) -> Value:
        left = self._signed()
        while sign := self._take("*", "/"):
            right = _number(self._signed())
            left = _number(left) * right if sign == "*" else _number(left) / right
        return left

    def _signed(self) -> Value:
        return -_number(self._signed()) if self._take("-") else self._power()

    def _power(self) -> Value:
        base = self._operand()
        return _number(base) ** _number(self._signed()) if self._take("^") else base

    def _operand(self) -> Value:
        if self._take("("):
            value = self.comparison()
            self.expect(")")
            return value
        kind, text = self._tokens[self._position]
        self._position += 1
        if kind == "number":
            return Decimal(text)
        if kind == "text":
            return text
        if kind == "reference":
            return self._values[text]
        if kind == "name":
            return PI if text == "PI" else self._call(text)
        raise ValueError(f"unexpected {text!r}")

    def _call(self, name: str) -> Value:
        self.expect("(")
        arguments = [self.comparison()]
        while self._take(","):
            arguments.append(self.comparison())
        self.expect(")")
        if name == "IF":
            return arguments[1] if arguments[0] else arguments[2]
        return _FUNCTIONS[name](*map(_number, arguments))

    def _take(self, *texts: str) -> str | None:
        kind, text = self._tokens[self._position]
        if kind != "sign" or text not in texts:
            return None
        self._position += 1
        return text


def _tokens(expression: str) -> list[tuple[str, str]]:
    found = []
    position = 0
    while position < len(expression.rstrip()):
        match = _TOKEN.match(expression, position)
        if not match:
            raise ValueError(f"unreadable at {position}: {expression}")
        kind = ("number", "text", "reference", "name", "sign")[match.lastindex - 1]
        found.append((kind, match[match.lastindex]))
        position = match.end()
    return [*found, ("sign", "")]


def _number(value: Value) -> Decimal:
    if not isinstance(value, Decimal):
        raise ValueError(f"not a number: {value!r}")
    return value


def _text(value: Value) -> str:
    if isinstance(value, bool):
        raise ValueError("a logical value does not join a text")
    return number_text(value) if isinstance(value, Decimal) else value


def _sine(angle: Decimal) -> Decimal:
    return _series(angle, angle, 1)


def _cosine(angle: Decimal) -> Decimal:
    return _series(Decimal(1), angle, 0)


def _series(first: Decimal, angle: Decimal, order: int) -> Decimal:
    """The Taylor series of sine (order 1) or cosine (order 0) from its first term."""
    total, term = Decimal(0), first
    while total + term != total:
        total += term
        order += 2
        term *= -angle * angle / (order * (order - 1))
    return total


def _arc_tangent(value: Decimal) -> Decimal:
    """Halves the angle until the series of the arc tangent converges fast."""
    doublings = 0
    while abs(value) > Decimal("0.1"):
        value /= 1 + (1 + value * value).sqrt()
        doublings += 1
    total, power, order = Decimal(0), value, 1
    while total + power / order != total:
        total += power / order
        power *= -value * value
        order += 2
    return total * 2**doublings


def _round(value: Decimal, digits: Decimal) -> Decimal:
    return value.quantize(Decimal(1).scaleb(-int(digits)), rounding=ROUND_HALF_UP)


_COMPARISONS: dict[str, Callable[[Value, Value], bool]] = {
    "=": lambda left, right: left == right,
    "<>": lambda left, right: left != right,
    "<": lambda left, right: _number(left) < _number(right),
    "<=": lambda left, right: _number(left) <= _number(right),
    ">": lambda left, right: _number(left) > _number(right),
    ">=": lambda left, right: _number(left) >= _number(right),
}

_FUNCTIONS: dict[str, Callable[..., Decimal]] = {
    "SQRT": lambda value: value.sqrt(),
    "SIN": _sine,
    "COS": _cosine,
    "TAN": lambda angle: _sine(angle) / _cosine(angle),
    "ATAN": _arc_tangent,
    "MAX": max,
    "MIN": min,
    "ROUND": _round,
    "FLOOR": lambda value: Decimal(value.__floor__()),
}
