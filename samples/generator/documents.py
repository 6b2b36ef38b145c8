"""Writes families, their strings documents and the table of contents as XML."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from xml.etree import ElementTree
from xml.etree.ElementTree import Element, SubElement

from generator.model import (BASE_LANGUAGE, FAMILY_PARAMETERS, LIBRARY_ID, CategoryParameter,
                             Column, Family, Row, Template, stable_guid)
from generator.source import term

KEPT_HIDDEN_CATEGORY = "23b78d0f-2648-40c6-8793-ca6db495c9e8"
FEATURE_CATEGORY_TYPE = "9ce1a3c8-5164-4421-8b65-e51b0a387cfc"
MANUFACTURER = "Generic"
FAMILY_REVISION = "1"
THUMBNAIL = "thumbnail.bmp"
LAST_MODIFIED = "2024-01-15T00:00:00Z"
_DOCUMENT_PROPERTY = "Standard"
_LANGUAGE_ATTRIBUTE = "{http://www.w3.org/XML/1998/namespace}lang"
_DESCRIPTIONS = {"en": "{title} to {standard}", "de": "{title} nach {standard}",
                 "fr": "{title} selon {standard}"}


def document_text(root: Element) -> str:
    """The document as indented text with its declaration."""
    ElementTree.indent(root)
    body = ElementTree.tostring(root, encoding="unicode")
    return f'<?xml version="1.0" encoding="UTF-8"?>\n{body}\n'


def strings_file_name(language: str) -> str:
    return f"FamilyStrings.{language}.xml"


def category_id(path: Sequence[str]) -> str:
    """The identifier of a category, the same in families and table of contents."""
    return stable_guid("category", *path)


def revision_id(family: Family) -> str:
    """A stamp of the family's state, made from those of its members."""
    return stable_guid("revision", family.name,
                       *(row.cells["MEMBER_REVISION"] for row in family.rows))


# ---- the family document


def family_document(family: Family) -> Element:
    """The family document of a family."""
    root = Element("Family", _family_attributes(family))
    root.append(_categories(family))
    strings = SubElement(root, "FamilyStrings")
    for language in family.languages:
        SubElement(strings, "File", FullFileName=strings_file_name(language))
    table = SubElement(root, "FamilyTable")
    table.append(_columns(family))
    table.append(_rows(family))
    root.append(_templates(family))
    root.append(_parameter_map(family))
    SubElement(SubElement(root, "Thumbnail"), "File", FullFileName=THUMBNAIL)
    return root


def _family_attributes(family: Family) -> dict[str, str]:
    attributes = {
        "InternalName": family.id,
        "DisplayName": family.titles[BASE_LANGUAGE],
        "Description": _description(family, BASE_LANGUAGE),
        "Standard": family.standard,
        "StandardsOrg": family.organization,
        "Manufacturer": MANUFACTURER,
        "FolderName": family.name,
        "RevisionId": revision_id(family),
        "Library": LIBRARY_ID,
    }
    if family.is_feature:
        attributes["DataTypeCategory"] = FEATURE_CATEGORY_TYPE
    return attributes


def _description(family: Family, language: str) -> str:
    return _DESCRIPTIONS[language].format(title=family.titles[language],
                                          standard=family.standard)


def _constants(family: Family) -> dict[str, str]:
    """The constant value of each category parameter that has one, by its key."""
    constants = {
        "display-name": family.titles[BASE_LANGUAGE],
        "description": _description(family, BASE_LANGUAGE),
        "manufacturer": MANUFACTURER,
        "organization": family.organization,
        "standard": family.standard,
        "standard-revision": family.standard_revision,
        "family-revision": FAMILY_REVISION,
        "folder-name": family.name,
        "internal-name": family.id,
    }
    if family.hidden_domain:
        constants.update(family.hidden_domain.constants)
    return {key: value for key, value in constants.items() if value}


def _categories(family: Family) -> Element:
    """The visible categories, each in the one above, and the hidden ones."""
    categories = parent = Element("Categories")
    for depth in range(len(family.category)):
        parent = SubElement(parent, "Category", Hidden="false",
                            InternalName=category_id(family.category[:depth + 1]))
    supplied = [column.parameter for column in family.columns if column.parameter]
    own = family.hidden_domain.parameters if family.hidden_domain else {}
    known = {key: family.parameters()[key] for key in [*FAMILY_PARAMETERS, *supplied]
             if key not in own}
    _add_parameters(parent, (item for item in known.values() if not item.hidden))
    kept = SubElement(categories, "Category", Hidden="true", InternalName=KEPT_HIDDEN_CATEGORY)
    _add_parameters(kept, (item for item in known.values() if item.hidden))
    if family.hidden_domain:
        domain = SubElement(categories, "Category", Hidden="true",
                            InternalName=family.hidden_domain.id)
        _add_parameters(domain, own.values())
    return categories


def _add_parameters(category: Element, parameters: Iterable[CategoryParameter]) -> None:
    for parameter in parameters:
        SubElement(category, "CategoryParameter", InternalName=parameter.id,
                   Mnemonic=parameter.mnemonic, DataType=parameter.data_type,
                   AppliesToMember=_word(parameter.member), Optional="true",
                   ValueLocalized=_word(parameter.localized))


def _columns(family: Family) -> Element:
    columns = Element("Columns")
    for column in family.columns:
        attributes = {"ColumnId": column.id, "Title": column.title, "ValueType": column.type,
                      "UnitType": column.unit}
        if column.formula:
            attributes["ColumnwideValue"] = column.formula
        attributes |= {"Hidden": _word(column.hidden), "Custom": _word(column.custom),
                       "KeyWeight": str(column.key)}
        SubElement(columns, "Column", attributes)
    return columns


def _rows(family: Family) -> Element:
    rows = Element("Rows")
    for row in family.rows:
        element = SubElement(rows, "Row", RowId=row.id)
        for column_id, text in row.cells.items():
            SubElement(element, "Cell", ColumnId=column_id).text = text
    return rows


# ---- templates and maps


def _templates(family: Family) -> Element:
    templates = Element("FamilyTemplates")
    for template in family.templates:
        element = SubElement(templates, "FamilyTemplate", Name=template.name,
                             FileName=template.file_name)
        driving = _driving_columns(family, template)
        first_id = 0
        if template.nested:
            element = SubElement(element, "GeneralizedParameter", Id="0",
                                 ObjectType="kPartDocumentObject", ObjectReferenceKey="Document",
                                 SubObjectId="", ValueType="string", UnitType="ul")
            first_id = 1
        for parameter_id, column in enumerate(driving, start=first_id):
            SubElement(element, "GeneralizedParameter", Id=str(parameter_id),
                       **_target_object(column))
        SubElement(element, "GeneralizedParameter", Id=str(first_id + len(driving)),
                   ObjectType="kPropertyObject", ObjectReferenceKey=_DOCUMENT_PROPERTY,
                   SubObjectId="", ValueType="string", UnitType="ul")
    return templates


def _target_object(column: Column) -> dict[str, str]:
    """The attributes of the template parameter that a column drives."""
    kind, _, key = column.drives.partition(":")
    value = {"ValueType": column.type, "UnitType": column.unit}
    if kind == "geometry":
        return {"ObjectType": "kUserParameterObject", "ObjectReferenceKey": column.id,
                "SubObjectId": "", **value}
    if kind == "feature":
        return {"ObjectType": "kPartFeatureObject", "ObjectReferenceKey": key,
                "SubObjectId": "Visible", **value}
    if kind == "material":
        return {"ObjectType": "kPartComponentDefinitionObject", "ObjectReferenceKey": "",
                "SubObjectId": "Material", **value}
    return {"ObjectType": "kPropertyObject", "ObjectReferenceKey": key, "SubObjectId": "",
            "ValueType": "string", "UnitType": "ul"}


def _driving_columns(family: Family, template: Template) -> list[Column]:
    return [column for column in family.columns
            if column.drives and (not template.columns or column.id in template.columns)]


def _driven_parameters(family: Family, column: Column | None) -> list[tuple[str, int]]:
    """Template names and parameter ids that a column, or else the standard, drives."""
    driven = []
    for template in family.templates:
        driving = _driving_columns(family, template)
        first_id = 1 if template.nested else 0
        if column is None:
            driven.append((template.name, first_id + len(driving)))
        elif column in driving:
            driven.append((template.name, first_id + driving.index(column)))
    return driven


def _parameter_map(family: Family) -> Element:
    root = Element("ParameterMap")
    constants = SubElement(SubElement(root, "FamilyParametersMap"), "ParamsToTemplate")
    for key, value in _constants(family).items():
        entry = SubElement(constants, "ParamTemplateValue", ConstantValue=value)
        SubElement(entry, "CategoryParameterRef", Category=_category_of(family, key),
                   CategoryParameter=family.parameters()[key].id)
        if key == "standard":
            _add_driven(entry, _driven_parameters(family, None))
    member = SubElement(root, "MemberParametersMap")
    to_column = SubElement(member, "ParamsToColumn")
    for column in family.columns:
        if column.parameter:
            entry = SubElement(to_column, "ParamToColumn", TableColumn=column.id)
            SubElement(entry, "CategoryParameterRef",
                       Category=_category_of(family, column.parameter),
                       CategoryParameter=family.parameters()[column.parameter].id)
    to_template = SubElement(member, "ColumnsToTemplate")
    for column in family.columns:
        if driven := _driven_parameters(family, column):
            entry = SubElement(to_template, "ColumnToTemplate", TableColumn=column.id)
            _add_driven(entry, driven)
    return root


def _category_of(family: Family, key: str) -> str:
    """The identifier of the category in which a parameter is defined."""
    if family.hidden_domain and key in family.hidden_domain.parameters:
        return family.hidden_domain.id
    is_hidden = family.parameters()[key].hidden
    return KEPT_HIDDEN_CATEGORY if is_hidden else category_id(family.category)


def _add_driven(entry: Element, driven: list[tuple[str, int]]) -> None:
    parameters = SubElement(entry, "TemplatesParameter")
    for template_name, parameter_id in driven:
        SubElement(parameters, "TemplateParameter", TemplateName=template_name,
                   ParameterId=str(parameter_id))


# ---- the strings documents


def strings_document(family: Family, language: str) -> Element:
    """The texts of a family in one language."""
    root = Element("LocalizedStrings", {_LANGUAGE_ATTRIBUTE: language})
    texts = {"DisplayName": family.titles[language], "Description": _description(family, language)}
    for name, text in texts.items():
        SubElement(root, name).text = text
    constants = SubElement(root, "ConstantValues")
    for key, text in zip(("display-name", "description"), texts.values()):
        SubElement(constants, "ConstantValue",
                   CategoryParameter=FAMILY_PARAMETERS[key].id).text = text
    table = SubElement(root, "Table")
    for column in family.columns:
        if not column.hidden:
            table.append(_column_strings(column, family.rows, language))
    return root


def _column_strings(column: Column, rows: list[Row], language: str) -> Element:
    strings = Element("ColumnStrings", ColumnId=column.id)
    SubElement(strings, "Title").text = term(column.title, language)
    if language in column.formulas:
        SubElement(strings, "ColumnwideValue").text = column.formulas[language]
    localized = {row.id: row.strings[language][column.id] for row in rows
                 if column.id in row.strings.get(language, {})}
    if localized:
        cells = SubElement(strings, "Rows")
        for row_id, text in localized.items():
            SubElement(cells, "CellString", RowId=row_id).text = text
    return strings


# ---- the table of contents


def contents_document(families: list[Family]) -> Element:
    """The table of contents: every family, and the tree of their categories.

    One hidden category lists families once more whose tables are compiled, not published.
    """
    root = Element("TableOfContents")
    listed = SubElement(root, "Families")
    for family in families:
        SubElement(listed, "Family", _family_attributes(family), LastModifiedTime=LAST_MODIFIED)
    categories = SubElement(root, "Categories")
    nodes: dict[tuple[str, ...], Element] = {(): categories}
    for family in families:
        for depth in range(1, len(family.category) + 1):
            path = family.category[:depth]
            if path not in nodes:
                nodes[path] = _category_node(nodes[path[:-1]], path)
        SubElement(nodes[family.category], "FamilyReference", InternalName=family.id)
    compiled = _category_node(categories, ("Review",), is_hidden=True)
    tables = _category_node(compiled, ("Review", "Compiled tables"), is_hidden=True)
    for family in families:
        if family.group in ("gears", "chains"):
            SubElement(tables, "FamilyReference", InternalName=family.id)
    return root


def _category_node(parent: Element, path: tuple[str, ...], is_hidden: bool = False) -> Element:
    return SubElement(parent, "Category", InternalName=category_id(path), DisplayName=path[-1],
                      RevisionId=stable_guid("category-revision", *path), Library=LIBRARY_ID,
                      Domain="Mechanical", Hidden=_word(is_hidden),
                      SpecialAuthoring=_word(path[0] == "Threads and holes"))


def _word(value: bool) -> str:
    return "true" if value else "false"
