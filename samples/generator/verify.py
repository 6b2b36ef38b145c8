"""Checks over the written documents and over the values that they stand for.

Every function returns a list of findings, each a line of text; an empty list is good.
"""

from __future__ import annotations

import shutil
import subprocess
from pathlib import Path
from xml.etree import ElementTree
from xml.etree.ElementTree import Element

from generator.documents import strings_file_name
from generator.evaluation import REFERENCE, CellError, TableReader, syntax_error
from generator.expected import ExpectedValues
from generator.library import CONTENTS_FILE
from generator.model import Family, Spot
from generator.units import parse_unit

_LANGUAGE_ATTRIBUTE = "{http://www.w3.org/XML/1998/namespace}lang"
_HOST_UNITS = {"ul", "deg"}
_AREA_TOLERANCE = 0.005
_TIE_TOLERANCE = 3e-5
_LEAST_SPOTS = 4


def verify(families: list[Family], materials: dict[str, str], folder: Path) -> list[str]:
    """Every finding about the families and about the documents in a folder."""
    findings = check_contents(families, folder)
    for family in families:
        found = [*check_table(family, folder), *check_strings(family, folder),
                 *check_maps(family, folder)]
        if not found:
            found = [*check_formulas(family), *check_keys(family),
                     *check_values(family, materials), *check_spots(family, materials),
                     *check_areas(family, materials)]
        findings += [f"{family.path}: {text}" for text in found]
    return findings


# ---- documents


def check_table(family: Family, folder: Path) -> list[str]:
    """Identifiers are unique; cells and formulas name columns; no column depends on itself."""
    root = _read(folder / family.path)
    columns = [column.get("ColumnId", "") for column in root.iterfind("FamilyTable/Columns/Column")]
    rows = root.findall("FamilyTable/Rows/Row")
    findings = _repeated("column", columns)
    findings += _repeated("row", [row.get("RowId", "") for row in rows])
    references = {column.get("ColumnId"): REFERENCE.findall(column.get("ColumnwideValue", ""))
                  for column in root.iterfind("FamilyTable/Columns/Column")}
    for row in rows:
        names = [cell.get("ColumnId", "") for cell in row]
        findings += _repeated(f"cell of row {row.get('RowId')}", names)
        findings += [f"cell of no column: {name}" for name in set(names) - set(columns)]
        for cell in row:
            references[cell.get("ColumnId")] += REFERENCE.findall(cell.text or "")
    named = {name for found in references.values() for name in found}
    findings += [f"reference to no column: {name}" for name in named - set(columns)]
    return findings + [f"column depends on itself: {name}" for name in references
                       if name in _reached(references, name)]


def check_strings(family: Family, folder: Path) -> list[str]:
    """The strings documents are there, hold their language and name columns and rows."""
    root = _read(folder / family.path)
    columns = {column.id: column for column in family.columns}
    rows = {row.id for row in family.rows}
    findings = []
    files = [file.get("FullFileName") for file in root.iterfind("FamilyStrings/File")]
    if files != [strings_file_name(language) for language in family.languages]:
        findings.append(f"unexpected strings documents {files}")
    for language, name in zip(family.languages, files):
        strings = _read(folder / family.folder / name)
        if strings.get(_LANGUAGE_ATTRIBUTE) != language:
            findings.append(f"{name} is not in {language}")
        for element in strings.iterfind("Table/ColumnStrings"):
            column = columns.get(element.get("ColumnId"))
            has_values = element.find("Rows") is not None or (
                element.find("ColumnwideValue") is not None)
            if column is None or has_values and not family.is_localized(column):
                findings.append(f"{name}: texts of {element.get('ColumnId')} are never read")
            findings += [f"{name}: text for no row: {cell.get('RowId')}"
                         for cell in element.iterfind("Rows/CellString")
                         if cell.get("RowId") not in rows]
    thumbnail = root.find("Thumbnail/File").get("FullFileName")
    if not (folder / family.folder / thumbnail).is_file():
        findings.append(f"no thumbnail {thumbnail}")
    return findings


def check_maps(family: Family, folder: Path) -> list[str]:
    """Maps name columns, defined category parameters and parameters of the templates."""
    root = _read(folder / family.path)
    columns = {column.id for column in family.columns}
    defined = {(category.get("InternalName"), parameter.get("InternalName"))
               for category in root.iter("Category")
               for parameter in category.findall("CategoryParameter")}
    objects = [(template.get("Name"), parameter.get("Id"))
               for template in root.iterfind("FamilyTemplates/FamilyTemplate")
               for parameter in template.iter("GeneralizedParameter")]
    findings = _repeated("template parameter", [f"{name} {key}" for name, key in objects])
    for reference in root.iter("CategoryParameterRef"):
        pair = (reference.get("Category"), reference.get("CategoryParameter"))
        if pair not in defined:
            findings.append(f"undefined category parameter {pair}")
    for parameter in root.iter("TemplateParameter"):
        pair = (parameter.get("TemplateName"), parameter.get("ParameterId"))
        if pair not in objects:
            findings.append(f"no template parameter {pair}")
    mapped = {element.get("TableColumn") for element in root.iter()} - {None}
    return findings + [f"map of no column: {name}" for name in mapped - columns]


def check_contents(families: list[Family], folder: Path) -> list[str]:
    """The table of contents lists every family and references each from a visible category."""
    root = _read(folder / CONTENTS_FILE)
    listed = [element.get("InternalName", "") for element in root.iterfind("Families/*")]
    categories = [element.get("InternalName", "") for element in root.iter("Category")]
    findings = _repeated("family", listed) + _repeated("category", categories)
    if listed != [family.id for family in families]:
        findings.append(f"{CONTENTS_FILE} does not list the families")
    referenced = {reference.get("InternalName"): category.get("InternalName")
                  for category in root.iter("Category") if category.get("Hidden") == "false"
                  for reference in category.findall("FamilyReference")}
    for family in families:
        category = _read(folder / family.path).find("Categories/Category[@Hidden='false']")
        while category.find("Category") is not None:
            category = category.find("Category")
        if referenced.get(family.id) != category.get("InternalName"):
            findings.append(f"{family.path}: its category does not reference it")
    return findings


# ---- formulas and values


def check_formulas(family: Family) -> list[str]:
    """Every column would accept its own formula, in its own unit."""
    reasons = {column.id: syntax_error(family, column) for column in family.columns}
    findings = [f"formula of {name}: {reason}" for name, reason in reasons.items() if reason]
    for column in family.columns:
        for name in REFERENCE.findall(column.formula) if column.is_numeric else ():
            unit = family.column(name).unit
            if not unit[0].isalpha():
                findings.append(f"unit {unit} of {name} cannot stand behind a number")
    return findings


def check_keys(family: Family) -> list[str]:
    """The key columns tell the members apart, and their weights have no gaps."""
    keys = sorted((column.key, column.id) for column in family.columns if column.key)
    findings = []
    if [weight for weight, _ in keys] != list(range(1, len(keys) + 1)):
        findings.append(f"key weights {keys}")
    reader = TableReader(family, {})
    texts = [" | ".join(reader.value(row, name) for _, name in keys) for row in family.rows]
    return findings + _repeated("member key", texts)


def check_values(family: Family, materials: dict[str, str]) -> list[str]:
    """Each cell evaluates, in each language, to what the source table's formulas give."""
    reader, expected = TableReader(family, materials), ExpectedValues(family, materials)
    findings = []
    for row in family.rows:
        for column in family.columns:
            for language in family.languages:
                try:
                    text = reader.value(row, column.id, language)
                except CellError as reason:
                    findings.append(f"{row.id}, {column.id}: {reason}")
                    continue
                wanted = expected.value(row, column.id, language)
                if text != wanted.text and (wanted.is_safe or not _agree(text, wanted.text)):
                    findings.append(f"{row.id}, {column.id}: {text}, expected {wanted.text}")
    return findings


def _agree(first: str, second: str) -> bool:
    """Whether two numbers differ by no more than ties that were rounded the other way."""
    return abs(float(first) - float(second)) <= _TIE_TOLERANCE * abs(float(second))


def check_spots(family: Family, materials: dict[str, str]) -> list[str]:
    """Spot values are what was typed, agree with what is printed, and hang on no tie."""
    expected = ExpectedValues(family, materials)
    findings = [] if len(family.spots) >= _LEAST_SPOTS else ["too few spot values"]
    for spot in family.spots:
        value = expected.value(family.row(spot.row), spot.column, spot.language)
        if not value.is_safe or spot.value not in ("", value.text) or _is_off(spot, value.text):
            findings.append(f"spot {spot}: {value}")
    return findings


def _is_off(spot: Spot, text: str) -> bool:
    return bool(spot.tabulated) and abs(float(text) / spot.tabulated - 1) > spot.within


def check_areas(family: Family, materials: dict[str, str]) -> list[str]:
    """Section areas that follow from the dimensions agree with the tabulated ones."""
    if not {"A", "AC"} <= {column.id for column in family.columns}:
        return []
    expected = ExpectedValues(family, materials)
    return [f"{row.id}: the dimensions do not give the tabulated area" for row in family.rows
            if abs(float(expected.value(row, "AC").text)
                   / float(expected.value(row, "A").text) - 1) > _AREA_TOLERANCE]


def check_units(families: list[Family]) -> list[str] | None:
    """The unit database knows every unit with the same size; None without its command."""
    if not shutil.which("udunits2"):
        return None
    units = {column.unit for family in families for column in family.columns} - _HOST_UNITS
    findings = []
    for text in sorted(units):
        unit = parse_unit(text)
        target = unit.database_text.replace("^", "").removeprefix("1/")
        have = text.removeprefix("1/")
        result = subprocess.run(["udunits2", "-H", have, "-W", target], check=False,
                                capture_output=True, text=True)
        size = float(unit.factor if have == text else 1 / unit.factor)
        if f"1 {have} = {size:.6g} " not in f"{result.stdout} ":
            findings.append(f"unit {text}: {result.stdout or result.stderr}")
    return findings


def _read(path: Path) -> Element:
    return ElementTree.parse(path).getroot()


def _repeated(what: str, names: list[str]) -> list[str]:
    folded = [name.lower() for name in names]
    return [f"{what} {name!r} is there more than once"
            for name in sorted(set(folded)) if folded.count(name) > 1]


def _reached(references: dict[str | None, list[str]], start: str | None) -> set[str]:
    """The columns that a column depends on, over any number of steps."""
    reached: set[str] = set()
    waiting = list(references.get(start, ()))
    while waiting:
        name = waiting.pop()
        if name not in reached:
            reached.add(name)
            waiting += references.get(name, ())
    return reached
