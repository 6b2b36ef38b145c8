#pragma once

// The queries over the family document and its strings documents, as formats for FormatText. They
// are filled with names of the vocabulary; where a value stands (literal, in the comments), the
// argument is the value as an XPath literal with its quotes, double ones unless the comment says
// single, so that no value can change what a query means. Relative to the document element unless
// the comment says otherwise.
namespace encap::query {

/// Two names.
inline constexpr const wchar_t* kTwoSteps = L"%s/%s";
/// Three names.
inline constexpr const wchar_t* kThreeSteps = L"%s/%s/%s";

/// ParameterMap, FamilyParametersMap, ParamsToTemplate, ParamTemplateValue, CategoryParameterRef,
/// CategoryParameter, literal: the constant of one category parameter.
inline constexpr const wchar_t* kConstantMapping = L"%s/%s/%s/%s[%s/@%s = %s]";
/// ParamTemplateValue, CategoryParameterRef, CategoryParameter, literal: the same, below
/// ParamsToTemplate.
inline constexpr const wchar_t* kConstantMappingStep = L"%s[%s/@%s = %s]";
/// FamilyParametersMap, ParamsToTemplate, ParamTemplateValue, CategoryParameterRef,
/// CategoryParameter, literal: the same, below ParameterMap.
inline constexpr const wchar_t* kConstantMappingBelowMap = L"%s/%s/%s[%s/@%s = %s]";
/// As kConstantMappingBelowMap with a single-quoted literal: ignores case.
inline constexpr const wchar_t* kConstantMappingBelowMapNoCase =
    L"%s/%s/%s[ms:string-compare(%s/@%s, %s, '' , 'i' ) = 0 ]";

/// ParamTemplateValue, TemplatesParameter, TemplateParameter, ParameterId, literal,
/// TemplateParameter, TemplateName, literal; below ParamsToTemplate: the TemplatesParameter that
/// feeds a given parameter of a given template.
inline constexpr const wchar_t* kTemplatesParameterOf = L"%s/%s[%s/@%s = %s][%s/@%s = %s]";

/// ConstantValues, ConstantValue, CategoryParameter, literal: a localized constant value.
inline constexpr const wchar_t* kLocalizedConstant = L"%s/%s[@%s = %s]";

/// Categories, Category, CategoryParameter: every definition of a category parameter.
inline constexpr const wchar_t* kCategoryParameters = L"%s/%s//%s";
/// Categories, Category, Hidden, literal: the top-level categories with that word.
inline constexpr const wchar_t* kTopCategories = L"%s/%s[@%s=%s]";

/// Literal; below ParameterMap: the element that maps a category parameter to a column.
inline constexpr const wchar_t* kColumnMapping = L"MemberParametersMap/ParamsToColumn/ParamToColumn"
                                                 L"[CategoryParameterRef/@CategoryParameter = %s]";
/// As kColumnMapping with a single-quoted literal: ignores case.
inline constexpr const wchar_t* kColumnMappingNoCase =
    L"MemberParametersMap/ParamsToColumn/ParamToColumn"
    L"[ms:string-compare(CategoryParameterRef/@CategoryParameter, %s, '', 'i') = 0 ]";
/// Literal; below ParameterMap: the category parameters that a column supplies.
inline constexpr const wchar_t* kColumnCategories =
    L"MemberParametersMap/ParamsToColumn/ParamToColumn[@TableColumn= %s]/CategoryParameterRef";

/// Table, ColumnStrings, ColumnId, literal, an element's name: a localized column text.
inline constexpr const wchar_t* kColumnText = L"%s/%s[@%s=%s]/%s";
/// Table, ColumnStrings, ColumnId, literal, Rows, CellString, RowId, literal: a localized cell.
inline constexpr const wchar_t* kCellText = L"%s/%s[@%s=%s]/%s/%s[@%s=%s]";
/// Table, ColumnStrings, Rows, CellString, RowId, literal: a row's localized cells.
inline constexpr const wchar_t* kRowTexts = L"%s/%s/%s/%s[@%s=%s]";

/// The references to strings documents.
inline constexpr const wchar_t* kStringsFiles = L"FamilyStrings/File";
/// The same, anywhere in a document.
inline constexpr const wchar_t* kAllFamilyStrings = L"//FamilyStrings";

} // namespace encap::query
