"""Short forms for the columns that families are made of."""

from __future__ import annotations

from collections.abc import Mapping

from generator.model import BASE_LANGUAGE, Column

STEEL = "7.85e-6kg/mm3"
COPPER = "8.94e-6kg/mm3"


def number(column_id: str, title: str, unit: str = "mm", formula: str = "",
           **options: object) -> Column:
    """A column of real numbers."""
    return Column(column_id, title, "double", unit, formula, **options)


def whole(column_id: str, title: str, unit: str = "ul", formula: str = "",
          **options: object) -> Column:
    """A column of integers."""
    return Column(column_id, title, "integer", unit, formula, **options)


def text(column_id: str, title: str, formula: str = "", **options: object) -> Column:
    """A text column."""
    return Column(column_id, title, "string", "ul", formula, **options)


def flag(column_id: str, title: str, default: str) -> Column:
    """A logical column; only the members that differ from the default have a cell."""
    return Column(column_id, title, "boolean", "ul", default)


def dimension(column_id: str, title: str, **options: object) -> Column:
    """A length in mm that drives a parameter of the model templates."""
    return number(column_id, title, drives="geometry", **options)


def bookkeeping() -> list[Column]:
    """The hidden columns that every family has for the library's own use."""
    return [text("RID", "Row ID", hidden=True), text("STATUS", "Status", hidden=True),
            text("MEMBER_REVISION", "Member revision", hidden=True)]


def density(formula: str, check: str) -> Column:
    """The density of the material: `formula` with its unit, `check` in kg/m3."""
    return number("RHO", "Density", "kg/m3", formula, check=check, hidden=True)


def steel_density() -> Column:
    return density(STEEL, "7850")


def mass(formula: str = "{V}*{RHO}", title: str = "Approximate mass") -> Column:
    """The mass of one piece in kg."""
    return number("MASS", title, "kg", formula, parameter="mass", drives="property:Mass")


def designation(formula: str) -> Column:
    """The designation of the member by its standard."""
    return text("DESIG", "Designation", formula, parameter="designation",
                drives="property:Designation")


def description(titles: Mapping[str, str], reference: str = "{DESIG}") -> Column:
    """A text in every language: the name of the family and the designation."""
    formulas = {language: f'"{title} - " & {reference}' for language, title in titles.items()}
    return text("DESC", "Description", formulas[BASE_LANGUAGE], formulas=formulas)


def material(key: str) -> Column:
    """The material column; cells and formula hold keys of materials.csv."""
    return text("MATERIAL", "Material", key, parameter="material", drives="material")


def file_name(formula: str) -> Column:
    """The column from which a member's file name comes."""
    return text("FILENAME", "File name", formula, parameter="file-name")
