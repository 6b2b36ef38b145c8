"""Reads cells the way the library does, so that the documents can be checked without it.

A cell's text is resolved, its references are replaced by values and units, and the finished
text goes to the expression language of provider.py. Numbers come out with eight significant
digits; one that is not in its database unit passes through six digits on the way.
"""

from __future__ import annotations

import csv
import re
from pathlib import Path

from generator import provider
from generator.model import BASE_LANGUAGE, Column, Family, Row
from generator.units import parse_unit

REFERENCE = re.compile(r"\{([^{}]*)\}")
NUMERIC = re.compile(r"[+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?")
_RANGE = re.compile(r"\[([^;\]]*);([^;\]]*);([^;\]]*);([^;\]]*)\]")
_LOGICAL = {"true", "false", "t", "f", "yes", "no", "y", "n", "1", "0"}


class CellError(ValueError):
    """A cell that does not evaluate, or only without its units."""


class TableReader:
    """Evaluates the cells of one family; `materials` gives the names of the material keys.

    Values are kept, so the family must not change while the reader is in use.
    """

    def __init__(self, family: Family, materials: dict[str, str]) -> None:
        self._family = family
        self._materials = materials
        self._columns = {column.id: column for column in family.columns}
        self._known: dict[tuple[str, str, str], str] = {}
        self._open: set[str] = set()

    def value(self, row: Row, column_id: str, language: str = BASE_LANGUAGE) -> str:
        """The value text of a cell in a language; CellError when there is none."""
        key = (row.id, column_id, language)
        if key not in self._known:
            if column_id not in self._columns or column_id in self._open:
                raise CellError(f"{column_id}: no column, or one that depends on itself")
            self._open.add(column_id)
            try:
                self._known[key] = self._evaluated(row, self._columns[column_id], language)
            finally:
                self._open.remove(column_id)
        return self._known[key]

    def _evaluated(self, row: Row, column: Column, language: str) -> str:
        source = self._source(row, column, language)
        if column.id in ("RID", "STATUS"):
            return source
        if column.custom and (parts := _RANGE.fullmatch(source)):
            source = parts[4].strip() or parts[1].strip()
        if column.type == "string":
            return _joined(self._substituted(row, column, source, language))
        expression = self._substituted(row, column, source, language)
        if column.type == "boolean":
            if expression.strip().lower() not in _LOGICAL:
                raise CellError(f"{column.id}: {expression!r} is not a logical value")
            return expression
        return _number_text(expression, column.unit)

    def _source(self, row: Row, column: Column, language: str) -> str:
        own = row.cells.get(column.id)
        formula = column.formula
        if self._family.is_localized(column):
            own = row.strings.get(language, {}).get(column.id, own)
            formula = column.formulas.get(language, formula)
        return formula if own is None else own

    def _substituted(self, row: Row, column: Column, source: str, language: str) -> str:
        pieces = []
        for index, piece in enumerate(REFERENCE.split(source)):
            if index % 2:
                pieces.append(self._reference(row, column, piece.strip(), language))
            elif piece and column.parameter == "material":
                pieces.append(self._materials.get(piece, ""))
            else:
                pieces.append(piece)
        return "".join(pieces)

    def _reference(self, row: Row, column: Column, name: str, language: str) -> str:
        value = self.value(row, name, language)
        if column.is_numeric and NUMERIC.fullmatch(value):
            return value + self._columns[name].unit
        return value


def syntax_error(family: Family, column: Column) -> str:
    """Why a column would refuse its own formula, or nothing.

    References are replaced by sample numbers without units, and the result has to fit the
    column's unit: an integer formula may only refer to integers, a logical one to one flag.
    """
    references = [family.column(name) for name in REFERENCE.findall(column.formula)]
    if column.type == "string" or not column.formula:
        return ""
    if column.type == "boolean":
        types = [reference.type for reference in references]
        return "" if types in ([], ["boolean"]) else "a logical formula over other columns"
    found = _RANGE.fullmatch(column.formula)
    if column.custom and not found:
        return "not a range"
    parts = found.groups() if column.custom else [column.formula]
    samples = {reference.id: "1.1" if reference.type == "double" else "1"
               for reference in references
               if reference.type in (column.type, "integer")}
    for part in parts:
        expression = REFERENCE.sub(lambda match: samples.get(match[1], match[0]), part)
        try:
            provider.evaluate(expression, column.unit)
        except provider.ExpressionError as reason:
            return str(reason)
    return ""


def read_materials(path: Path) -> dict[str, str]:
    """Material names by key, from a file with a heading line."""
    with path.open(encoding="utf-8", newline="") as file:
        return {line["key"]: line["name"] for line in csv.DictReader(file)}


def _joined(expression: str) -> str:
    pieces = expression.split("&")
    if not pieces[0]:
        return expression
    return "".join(re.sub('""?', lambda quotes: quotes[0][1:], piece.strip())
                   for piece in pieces)


def _number_text(expression: str, unit_text: str) -> str:
    if not expression or NUMERIC.fullmatch(expression):
        return expression
    try:
        value = provider.evaluate(expression, unit_text)
    except (provider.ExpressionError, ZeroDivisionError) as reason:
        raise CellError(str(reason)) from None
    unit = parse_unit(unit_text)
    if unit.database_text != unit_text:
        value = float(f"{value:g}") / float(unit.factor)
    return f"{value:.8g}"
