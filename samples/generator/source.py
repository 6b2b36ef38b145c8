"""Reads the source tables and the terms in other languages."""

from __future__ import annotations

import csv
import json
from dataclasses import dataclass
from decimal import Decimal
from functools import lru_cache
from pathlib import Path

from generator.neutral import number_text

SOURCE_FOLDER = Path(__file__).resolve().parent.parent / "source"

SourceRow = dict[str, object]


@dataclass(frozen=True)
class SourceTable:
    """A table of facts: who published them, the members, and formulas over their columns."""

    standard: str
    organization: str
    titles: dict[str, str]
    group: tuple[str, ...]
    columns: list[str]
    formulas: dict[str, str]
    rows: list[SourceRow]


def read_table(name: str) -> SourceTable:
    """The table source/NAME.json."""
    with (SOURCE_FOLDER / f"{name}.json").open(encoding="utf-8") as file:
        data = json.load(file, parse_float=Decimal, parse_int=Decimal)
    columns = data["columns"]
    return SourceTable(data["standard"], data["org"], data["title"], tuple(data["group"]),
                       columns, data["formulas"],
                       [dict(zip(columns, row, strict=True)) for row in data["rows"]])


def cell_text(value: object) -> str:
    """The text of a source value in a cell."""
    if isinstance(value, bool):
        return "true" if value else "false"
    return number_text(value) if isinstance(value, Decimal) else str(value)


@lru_cache
def terms() -> dict[str, dict[str, str]]:
    """Titles in other languages: English text, then language, to text."""
    with (SOURCE_FOLDER / "terms.csv").open(encoding="utf-8", newline="") as file:
        return {line["en"]: line for line in csv.DictReader(file)}


def term(text: str, language: str) -> str:
    """An English title in a language; KeyError when terms.csv lacks it."""
    return terms()[text][language]
