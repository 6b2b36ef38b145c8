"""Makes a family from a source table and the definition of its columns."""

from __future__ import annotations

import re
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path

from generator.columns import bookkeeping
from generator.evaluation import CellError, TableReader, read_materials
from generator.model import (Column, Family, HiddenDomain, Row, Spot, Template, stable_guid)
from generator.source import SOURCE_FOLDER, SourceRow, SourceTable, cell_text

MATERIALS_FILE = SOURCE_FOLDER.parent / "materials.csv"
SUPPRESSED = "Suppressed"

Strings = dict[str, dict[str, str]]


@dataclass(frozen=True)
class Definition:
    """How a source table becomes a family.

    Every column of the source table that has a column of the same name gives its cells.
    `derived` adds cells, `strings` the cells of localized columns by column and language.
    `standard_revision` is the year of the standard's edition where the source names one.
    """

    name: str
    group: str
    table: SourceTable
    columns: Sequence[Column]
    row_id: Callable[[SourceRow], str]
    picture: str
    spots: Sequence[Spot]
    titles: dict[str, str] = field(default_factory=dict)
    standard_revision: str = ""
    derived: Callable[[SourceRow], dict[str, str]] = lambda facts: {}
    strings: Callable[[SourceRow], Strings] = lambda facts: {}
    is_suppressed: Callable[[SourceRow], bool] = lambda facts: False
    templates: Sequence[Template] = ()
    is_feature: bool = False
    hidden_domain: HiddenDomain | None = None


def build(definition: Definition) -> Family:
    """The finished family, without cells that repeat what a column's formula gives."""
    table = definition.table
    columns = [*bookkeeping(), *definition.columns]
    family = Family(
        name=definition.name, group=definition.group, standard=table.standard,
        organization=table.organization, standard_revision=definition.standard_revision,
        titles=definition.titles or table.titles, category=table.group, columns=columns,
        rows=[_row(definition, columns, facts) for facts in table.rows], facts=table.rows,
        formulas=table.formulas, templates=list(definition.templates),
        spots=list(definition.spots), picture=definition.picture,
        is_feature=definition.is_feature, hidden_domain=definition.hidden_domain)
    _drop_repeated_cells(family)
    for row in family.rows:
        row.cells["MEMBER_REVISION"] = _revision(family, row)
        row.cells = {column.id: row.cells[column.id] for column in columns
                     if column.id in row.cells}
    return family


def slug(text: object) -> str:
    """A text without the characters that need care in identifiers."""
    return re.sub(r"[^\w.+-]+", "_", cell_text(text).replace(" ", ""))


def _row(definition: Definition, columns: list[Column], facts: SourceRow) -> Row:
    row_id = definition.row_id(facts)
    cells = {"RID": row_id}
    if definition.is_suppressed(facts):
        cells["STATUS"] = SUPPRESSED
    own = {name: cell_text(value) for name, value in facts.items()} | definition.derived(facts)
    cells.update({column.id: own[column.id] for column in columns if own.get(column.id)})
    strings: Strings = {}
    for column_id, texts in definition.strings(facts).items():
        cells[column_id] = texts["en"]
        for language, text in texts.items():
            strings.setdefault(language, {})[column_id] = text
    return Row(row_id, cells, strings)


def _drop_repeated_cells(family: Family) -> None:
    """Removes each cell whose text the column's formula gives as well."""
    materials = read_materials(MATERIALS_FILE)
    with_formula = [column for column in family.columns if column.formula]
    for row in family.rows:
        for column in with_formula:
            own = row.cells.get(column.id)
            if own is None or column.id in row.strings.get("en", {}):
                continue
            del row.cells[column.id]
            if own not in (column.formula, _value_or_nothing(family, row, column, materials)):
                row.cells[column.id] = own


def _value_or_nothing(family: Family, row: Row, column: Column,
                      materials: dict[str, str]) -> str | None:
    try:
        return TableReader(family, materials).value(row, column.id)
    except CellError:
        return None


def _revision(family: Family, row: Row) -> str:
    """A stamp that changes exactly when the member or a formula of its family does."""
    formulas = [f"{column.id}={column.formula}" for column in family.columns]
    cells = [f"{name}={value}" for name, value in row.cells.items()]
    return stable_guid("member", family.name, *formulas, *cells)


def samples_folder() -> Path:
    """The folder of the committed samples."""
    return SOURCE_FOLDER.parent
