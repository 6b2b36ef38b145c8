#pragma once

#include <array>
#include <cstddef>
#include <string_view>

// Every name of the family document and of its strings documents, in one place: elements,
// attributes, fixed identifiers and the queries over them. Names are case-sensitive.
namespace encap {

/// A name in the two forms in which the library needs it; both live for the whole program.
struct Name {
    const wchar_t* wide;
    std::string_view utf8;

    operator const wchar_t*() const { return wide; }
    [[nodiscard]] constexpr std::wstring_view View() const { return {wide, utf8.size()}; }
};

/// An ASCII literal as a template argument.
template <std::size_t N>
struct AsciiLiteral {
    char text[N];

    consteval AsciiLiteral(const char (&literal)[N])
    {
        for (std::size_t i = 0; i < N; ++i) {
            text[i] = literal[i];
        }
    }
};

/// Holds both forms of one literal.
template <AsciiLiteral literal>
class NameStorage {
    static constexpr std::size_t kSize = sizeof(literal.text);

    static constexpr std::array<wchar_t, kSize> Widen()
    {
        std::array<wchar_t, kSize> wide{};
        for (std::size_t i = 0; i < kSize; ++i) {
            wide[i] = static_cast<wchar_t>(literal.text[i]);
        }
        return wide;
    }
    static constexpr std::array<char, kSize> Copy()
    {
        std::array<char, kSize> narrow{};
        for (std::size_t i = 0; i < kSize; ++i) {
            narrow[i] = literal.text[i];
        }
        return narrow;
    }

    static constexpr std::array<wchar_t, kSize> kWide = Widen();
    static constexpr std::array<char, kSize> kNarrow = Copy();

public:
    static constexpr Name kName{kWide.data(), std::string_view(kNarrow.data(), kSize - 1)};
};

template <AsciiLiteral literal>
consteval Name MakeName()
{
    return NameStorage<literal>::kName;
}

} // namespace encap

namespace encap::vocabulary {

// Children of the document element
inline constexpr Name kCategories = MakeName<"Categories">();
inline constexpr Name kFamilyStrings = MakeName<"FamilyStrings">();
inline constexpr Name kFamilyTable = MakeName<"FamilyTable">();
inline constexpr Name kFamilyTemplates = MakeName<"FamilyTemplates">();
inline constexpr Name kParameterMap = MakeName<"ParameterMap">();
inline constexpr Name kThumbnail = MakeName<"Thumbnail">();

// Attributes of the document element; DisplayName and Description are elements as well, in a
// strings document
inline constexpr Name kInternalName = MakeName<"InternalName">();
inline constexpr Name kDisplayName = MakeName<"DisplayName">();
inline constexpr Name kDescription = MakeName<"Description">();
inline constexpr Name kRevisionId = MakeName<"RevisionId">();
inline constexpr Name kManufacturer = MakeName<"Manufacturer">();
inline constexpr Name kStandardsOrg = MakeName<"StandardsOrg">();
inline constexpr Name kStandard = MakeName<"Standard">();
inline constexpr Name kFolderName = MakeName<"FolderName">();
inline constexpr Name kFromSource = MakeName<"FromSource">();
inline constexpr Name kSourceMoniker = MakeName<"SourceMoniker">();
inline constexpr Name kSrcActive = MakeName<"SrcActive">();
inline constexpr Name kLibrary = MakeName<"Library">();
inline constexpr Name kHealthStatus = MakeName<"HealthStatus">();
inline constexpr Name kEditStatus = MakeName<"EditStatus">();
inline constexpr Name kParentLibraryName = MakeName<"ParentLibraryName">();
inline constexpr Name kParentFamilyName = MakeName<"ParentFamilyName">();
inline constexpr Name kDataTypeCategory = MakeName<"DataTypeCategory">();

// Categories and the definitions of category parameters. Category and CategoryParameter are
// attributes as well, of CategoryParameterRef.
inline constexpr Name kCategory = MakeName<"Category">();
inline constexpr Name kCategoryParameter = MakeName<"CategoryParameter">();
inline constexpr Name kHidden = MakeName<"Hidden">();
inline constexpr Name kValueLocalized = MakeName<"ValueLocalized">();
inline constexpr Name kMnemonic = MakeName<"Mnemonic">();
inline constexpr Name kAppliesToMember = MakeName<"AppliesToMember">();
inline constexpr Name kDefinitionOnly = MakeName<"DefinitionOnly">();
inline constexpr Name kIndexedSearch = MakeName<"IndexedSearch">();
inline constexpr Name kOptional = MakeName<"Optional">();
inline constexpr Name kUsesDefinition = MakeName<"UsesDefinition">();
inline constexpr Name kRepeatable = MakeName<"Repeatable">();
inline constexpr Name kDefaultValue = MakeName<"DefaultValue">();
inline constexpr Name kDomain = MakeName<"Domain">();
inline constexpr Name kIcon = MakeName<"Icon">();
inline constexpr Name kSpecialAuthoring = MakeName<"SpecialAuthoring">();
inline constexpr Name kDataType = MakeName<"DataType">();

// Files that the family names
inline constexpr Name kFile = MakeName<"File">();
inline constexpr Name kFullFileName = MakeName<"FullFileName">();

// The table. Title and ColumnwideValue are attributes of Column, and elements in a strings
// document.
inline constexpr Name kColumns = MakeName<"Columns">();
inline constexpr Name kColumn = MakeName<"Column">();
inline constexpr Name kRows = MakeName<"Rows">();
inline constexpr Name kRow = MakeName<"Row">();
inline constexpr Name kCell = MakeName<"Cell">();
inline constexpr Name kColumnId = MakeName<"ColumnId">();
inline constexpr Name kRowId = MakeName<"RowId">();
inline constexpr Name kTitle = MakeName<"Title">();
inline constexpr Name kColumnwideValue = MakeName<"ColumnwideValue">();
inline constexpr Name kCustom = MakeName<"Custom">();
inline constexpr Name kKeyWeight = MakeName<"KeyWeight">();
inline constexpr Name kValueType = MakeName<"ValueType">();
inline constexpr Name kUnitType = MakeName<"UnitType">();

// Templates
inline constexpr Name kFamilyTemplate = MakeName<"FamilyTemplate">();
inline constexpr Name kGeneralizedParameter = MakeName<"GeneralizedParameter">();
inline constexpr Name kName = MakeName<"Name">();
inline constexpr Name kFileName = MakeName<"FileName">();
inline constexpr Name kId = MakeName<"Id">();
inline constexpr Name kObjectType = MakeName<"ObjectType">();
inline constexpr Name kObjectReferenceKey = MakeName<"ObjectReferenceKey">();
inline constexpr Name kSubObjectId = MakeName<"SubObjectId">();

// Parameter maps. ConstantValue is an attribute here, and an element in a strings document.
inline constexpr Name kFamilyParametersMap = MakeName<"FamilyParametersMap">();
inline constexpr Name kParamsToTemplate = MakeName<"ParamsToTemplate">();
inline constexpr Name kParamTemplateValue = MakeName<"ParamTemplateValue">();
inline constexpr Name kConstantValue = MakeName<"ConstantValue">();
inline constexpr Name kCategoryParameterRef = MakeName<"CategoryParameterRef">();
inline constexpr Name kTemplatesParameter = MakeName<"TemplatesParameter">();
inline constexpr Name kTemplateParameter = MakeName<"TemplateParameter">();
inline constexpr Name kTemplateName = MakeName<"TemplateName">();
inline constexpr Name kParameterId = MakeName<"ParameterId">();
inline constexpr Name kMemberParametersMap = MakeName<"MemberParametersMap">();
inline constexpr Name kParamsToColumn = MakeName<"ParamsToColumn">();
inline constexpr Name kParamToColumn = MakeName<"ParamToColumn">();
inline constexpr Name kColumnsToTemplate = MakeName<"ColumnsToTemplate">();
inline constexpr Name kColumnToTemplate = MakeName<"ColumnToTemplate">();
inline constexpr Name kTableColumn = MakeName<"TableColumn">();

// The strings document
inline constexpr Name kXmlLang = MakeName<"xml:lang">();
inline constexpr Name kConstantValues = MakeName<"ConstantValues">();
inline constexpr Name kTable = MakeName<"Table">();
inline constexpr Name kColumnStrings = MakeName<"ColumnStrings">();
inline constexpr Name kCellString = MakeName<"CellString">();

// Column identifiers that the library reserves
inline constexpr Name kStatusColumn = MakeName<"STATUS">();
inline constexpr Name kRidColumn = MakeName<"RID">();
inline constexpr Name kMemberRevisionColumn = MakeName<"MEMBER_REVISION">();
inline constexpr Name kSourceMemberRevisionColumn = MakeName<"SOURCE_MEMBER_REVISION">();
inline constexpr Name kMaterialAliasColumn = MakeName<"MATERIAL_ALIAS">();
inline constexpr Name kOriginalFileNameColumn = MakeName<"original_FILENAME">();

// Words that stand as values
inline constexpr Name kTrue = MakeName<"true">();
inline constexpr Name kFalse = MakeName<"false">();
inline constexpr Name kUnitless = MakeName<"ul">();

/// The encoding that new documents declare.
inline constexpr Name kDocumentEncoding = MakeName<"UTF-16">();

// Category parameters with a meaning of their own
inline constexpr Name kInternalNameParameter = MakeName<"cf1d0246-76d9-4b4a-8305-fa0409afb5c1">();
inline constexpr Name kDisplayNameParameter = MakeName<"05415f3d-3907-474b-a020-eb9d644f4cf3">();
inline constexpr Name kManufacturerParameter = MakeName<"cd6c7a72-a28a-4e50-99a9-2c7f4e13e5ad">();
inline constexpr Name kDescriptionParameter = MakeName<"13903e3d-64b1-4950-80da-f627842ea37f">();
inline constexpr Name kStandardsOrgParameter = MakeName<"8f5914e1-4693-403f-8ab5-d37768198c9d">();
inline constexpr Name kStandardParameter = MakeName<"0c0a119c-1e12-4c84-803f-101930972f5e">();
inline constexpr Name kFolderNameParameter = MakeName<"3f06958e-8713-4116-9be7-ed6184ecc97b">();
inline constexpr Name kFamilyRevisionParameter = MakeName<"914462f6-6e19-4b14-ba84-155b9680b1d0">();
inline constexpr Name kStandardRevisionParameter =
    MakeName<"91d5a463-65c2-4fde-b823-3b7fea5e8e17">();

/// The DataTypeCategory of a feature family.
inline constexpr Name kFeatureFamily = MakeName<"9ce1a3c8-5164-4421-8b65-e51b0a387cfc">();
/// The InternalName of the one hidden category that is never removed.
inline constexpr Name kPermanentHiddenCategory = MakeName<"23b78d0f-2648-40c6-8793-ca6db495c9e8">();

} // namespace encap::vocabulary
