"""The expected value texts, computed from the source tables alone.

Formulas are the source table's or the column's `check`, in exact decimals; what is taken over
from the library's way is only how a number becomes text and goes on from column to column.
"""

from __future__ import annotations

from collections.abc import Iterator, Mapping
from dataclasses import dataclass
from decimal import ROUND_FLOOR, Decimal, localcontext

from generator import neutral
from generator.model import BASE_LANGUAGE, Column, Family, Row
from generator.source import cell_text
from generator.units import parse_unit

VALUE_DIGITS = 8
CONVERSION_DIGITS = 6
_TIE_MARGIN = Decimal("1e-5")


@dataclass(frozen=True)
class Expected:
    """A value text; it is safe when no rounding on the way to it was close to a tie."""

    text: str
    is_safe: bool = True


class ExpectedValues:
    """The expected values of one family."""

    def __init__(self, family: Family, materials: dict[str, str]) -> None:
        self._family = family
        self._materials = materials
        self._facts = {row.id: facts for row, facts in zip(family.rows, family.facts, strict=True)}
        self._columns = {column.id: column for column in family.columns}
        self._known: dict[tuple[str, str, str], Expected] = {}

    def value(self, row: Row, column_id: str, language: str = BASE_LANGUAGE) -> Expected:
        """What a cell of the family shows in a language."""
        key = (row.id, column_id, language)
        if key not in self._known:
            self._known[key] = self._computed(row, self._columns[column_id], language)
        return self._known[key]

    def _computed(self, row: Row, column: Column, language: str) -> Expected:
        formula = self._formula(row, column, language)
        if not formula:
            return self._plain(row, column, language)
        values = _References(self, row, language)
        result = neutral.evaluate(formula, values)
        if not isinstance(result, Decimal):
            return Expected(cell_text(result), values.are_safe)
        return _number(result, column, values.are_safe)

    def _formula(self, row: Row, column: Column, language: str) -> str:
        """The formula that gives the value, or nothing when a text or a fact is the value."""
        if column.id in row.strings.get(language, {}):
            return ""
        formula = (column.check or column.formulas.get(language)
                   or self._family.formulas.get(column.id, ""))
        is_joined = column.type == "string" and column.parameter != "material"
        if formula or not is_joined or column.id in row.cells:
            return formula
        return column.formula

    def _plain(self, row: Row, column: Column, language: str) -> Expected:
        facts = self._facts[row.id]
        if column.id in facts:
            return Expected(cell_text(facts[column.id]))
        own = row.strings.get(language, {}).get(column.id)
        text = row.cells.get(column.id, column.formula) if own is None else own
        return Expected(self._materials[text] if column.parameter == "material" else text)

    def reference(self, row: Row, name: str, language: str) -> tuple[neutral.Value, bool]:
        """The value of a column as an operand, and whether it is safe."""
        expected = self.value(row, name, language)
        column = self._columns[name]
        if column.is_numeric:
            return Decimal(expected.text), expected.is_safe
        is_flag = column.type == "boolean"
        return (expected.text == "true" if is_flag else expected.text), expected.is_safe


class _References(Mapping[str, neutral.Value]):
    """The columns of a row as the values of a formula; notes unsafe ones that were used."""

    def __init__(self, values: ExpectedValues, row: Row, language: str) -> None:
        self._values = values
        self._row = row
        self._language = language
        self.are_safe = True

    def __getitem__(self, name: str) -> neutral.Value:
        value, is_safe = self._values.reference(self._row, name, self._language)
        self.are_safe = self.are_safe and is_safe
        return value

    def __iter__(self) -> Iterator[str]:
        return iter(())

    def __len__(self) -> int:
        return 0


def _number(value: Decimal, column: Column, is_safe: bool) -> Expected:
    """The text of a number in the column's unit: by way of the database unit if that differs."""
    unit = parse_unit(column.unit)
    with localcontext() as context:
        context.prec = neutral.DIGITS
        if unit.database_text != column.unit:
            database_value = value * unit.factor
            is_safe = is_safe and not _is_near_tie(database_value, CONVERSION_DIGITS)
            value = Decimal(_formatted(database_value, CONVERSION_DIGITS)) / unit.factor
        is_safe = is_safe and not _is_near_tie(value, VALUE_DIGITS)
        return Expected(_formatted(value, VALUE_DIGITS), is_safe)


def _formatted(value: Decimal, digits: int) -> str:
    with localcontext() as context:
        context.prec = digits
        rounded = +value
    return f"{float(rounded):.{digits}g}"


def _is_near_tie(value: Decimal, digits: int) -> bool:
    """Whether the last digit depends on less than what a double may lose."""
    if not value:
        return False
    scaled = abs(value).scaleb(digits - 1 - value.adjusted())
    rest = scaled - scaled.to_integral_value(ROUND_FLOOR)
    return abs(rest - Decimal("0.5")) < _TIE_MARGIN
