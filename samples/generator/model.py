"""What a sample family is made of, before it is written as documents."""

from __future__ import annotations

import uuid
from collections.abc import Mapping
from dataclasses import dataclass, field

LANGUAGES = ("en", "de", "fr")
BASE_LANGUAGE = "en"

_NAMESPACE = uuid.uuid5(uuid.NAMESPACE_DNS, "samples.encap.invalid")


def stable_guid(*parts: str) -> str:
    """A GUID that depends on nothing but the texts: lower case, 36 characters, no braces."""
    return str(uuid.uuid5(_NAMESPACE, "/".join(parts)))


LIBRARY_ID = stable_guid("library")


@dataclass(frozen=True)
class CategoryParameter:
    """The definition of a category parameter.

    `hidden` ones stand in the hidden category that every family keeps; `localized` ones have
    their constant value, or the cells of their column, in the strings documents.
    """

    id: str
    mnemonic: str
    data_type: str = "string"
    member: bool = False
    hidden: bool = False
    localized: bool = False


@dataclass(frozen=True)
class Column:
    """A column of the table.

    `formula` is the column-wide value or expression, `formulas` its text in single languages.
    `check` is the same formula in the notation of the source tables, from which the expected
    values come; it may be left out where the source table has a formula of the same name.
    `parameter` names the category parameter that the column supplies, `drives` what it drives
    in the model templates: "geometry", "material", "property:KEY" or "feature:KEY".
    """

    id: str
    title: str
    type: str = "double"
    unit: str = "ul"
    formula: str = ""
    formulas: Mapping[str, str] = field(default_factory=dict)
    check: str = ""
    key: int = 0
    hidden: bool = False
    custom: bool = False
    parameter: str = ""
    drives: str = ""

    @property
    def is_numeric(self) -> bool:
        return self.type in ("double", "integer")


@dataclass
class Row:
    """A member: its own cells, and those of localized columns by language and column."""

    id: str
    cells: dict[str, str]
    strings: dict[str, dict[str, str]] = field(default_factory=dict)


@dataclass(frozen=True)
class Template:
    """A model template; `columns` names the columns that drive it, none meaning every one.

    With `nested` its model parameters stand below one document object.
    """

    name: str
    file_name: str
    columns: tuple[str, ...] = ()
    nested: bool = False


@dataclass(frozen=True)
class Spot:
    """A cell whose value is checked.

    `value` is typed from the standard; without it the value is computed. `tabulated` is what
    the standard or a handbook prints for a computed value, which has to agree within `within`.
    """

    row: str
    column: str
    source: str
    value: str = ""
    language: str = BASE_LANGUAGE
    tabulated: float = 0.0
    within: float = 0.005


@dataclass(frozen=True)
class HiddenDomain:
    """One more hidden category of a family: its parameters by key, and constant values."""

    id: str
    parameters: dict[str, CategoryParameter]
    constants: dict[str, str]


@dataclass
class Family:
    """A family with its table, texts and maps.

    `name` is its folder below `group`. `facts` are the rows of the source table, one for each
    row, and `formulas` its formulas: the expected values are computed from these two alone.
    """

    name: str
    group: str
    standard: str
    organization: str
    standard_revision: str
    titles: dict[str, str]
    category: tuple[str, ...]
    columns: list[Column]
    rows: list[Row]
    facts: list[dict[str, object]]
    formulas: dict[str, str]
    templates: list[Template]
    spots: list[Spot]
    picture: str
    is_feature: bool = False
    hidden_domain: HiddenDomain | None = None

    @property
    def id(self) -> str:
        return stable_guid("family", self.name)

    @property
    def folder(self) -> str:
        return f"families/{self.group}/{self.name}"

    @property
    def path(self) -> str:
        """The family document, relative to the samples folder."""
        return f"{self.folder}/{self.name}.xml"

    @property
    def languages(self) -> list[str]:
        return [language for language in LANGUAGES if language in self.titles]

    def column(self, column_id: str) -> Column:
        """The column of that identifier; KeyError when there is none."""
        return {column.id: column for column in self.columns}[column_id]

    def row(self, row_id: str) -> Row:
        """The row of that identifier; KeyError when there is none."""
        return {row.id: row for row in self.rows}[row_id]

    def is_localized(self, column: Column) -> bool:
        """Whether the column's cells are looked for in the strings documents first."""
        if column.parameter:
            return self.parameters()[column.parameter].localized
        return not column.hidden and column.type == "string"

    def parameters(self) -> dict[str, CategoryParameter]:
        """Every category parameter that the family may supply, by its key."""
        own = self.hidden_domain.parameters if self.hidden_domain else {}
        return {**FAMILY_PARAMETERS, **MEMBER_PARAMETERS, **own}


def _member(key: str, data_type: str = "string", localized: bool = False) -> CategoryParameter:
    return CategoryParameter(stable_guid("parameter", key), key.upper().replace("-", "_"),
                             data_type, member=True, localized=localized)


FAMILY_PARAMETERS: dict[str, CategoryParameter] = {
    "display-name": CategoryParameter(
        "05415f3d-3907-474b-a020-eb9d644f4cf3", "DISPLAY_NAME", localized=True),
    "description": CategoryParameter(
        "13903e3d-64b1-4950-80da-f627842ea37f", "DESCRIPTION", localized=True),
    "manufacturer": CategoryParameter("cd6c7a72-a28a-4e50-99a9-2c7f4e13e5ad", "MANUFACTURER"),
    "organization": CategoryParameter("8f5914e1-4693-403f-8ab5-d37768198c9d", "STANDARDS_ORG"),
    "standard": CategoryParameter("0c0a119c-1e12-4c84-803f-101930972f5e", "STANDARD"),
    "standard-revision": CategoryParameter(
        "91d5a463-65c2-4fde-b823-3b7fea5e8e17", "STANDARD_REVISION"),
    "family-revision": CategoryParameter(
        "914462f6-6e19-4b14-ba84-155b9680b1d0", "FAMILY_REVISION"),
    "folder-name": CategoryParameter("3f06958e-8713-4116-9be7-ed6184ecc97b", "FOLDER_NAME"),
    "internal-name": CategoryParameter(
        "cf1d0246-76d9-4b4a-8305-fa0409afb5c1", "INTERNAL_NAME", hidden=True),
}
"""The well-known parameters that describe the whole family, each with a constant value."""

MEMBER_PARAMETERS: dict[str, CategoryParameter] = {
    "file-name": CategoryParameter(
        "8b46a4cc-9585-4fed-90c3-899f57e09a73", "FILE_NAME", member=True, hidden=True),
    "material": CategoryParameter(
        "818a152a-d3c3-49ca-80ee-df7d91421b8e", "MATERIAL", member=True, hidden=True),
    "size": _member("size"),
    "length": _member("length", "double"),
    "mass": _member("mass", "double"),
    "designation": _member("designation"),
    "series": _member("series", localized=True),
    "schedule": _member("schedule"),
    "member-standard": _member("member-standard"),
}
"""Parameters supplied by columns; the first two mark the file name and the material column."""
