#pragma once

#include "encap/mapping/FamilyColVexilData.h"

#include <array>
#include <string_view>

// The object types of template parameters and what a column drives through each of them: the one
// table behind loading, re-mapping and the texts of the types.
namespace encap {

using ObjectType = CEncapFamilyColVexilData::ColPropertyObjectType;

/// What a template parameter makes of the column that drives it.
enum class BindingKind {
    None,         ///< nothing
    Geometry,     ///< a geometry column: a model parameter or the state of a feature
    Property,     ///< a host property column: a document property or a render style
    Material,     ///< a host property column: the material
    PlainProperty ///< a property column; the object type is none of the known ones
};

inline constexpr std::wstring_view kMaterialSubObject = L"Material";
inline constexpr std::wstring_view kVisibleSubObject = L"Visible";
inline constexpr std::wstring_view kSuppressedSubObject = L"Suppressed";

struct ObjectTypeName {
    ObjectType type;
    std::wstring_view text;
};

/// In the order in which texts are compared.
inline constexpr std::array<ObjectTypeName, 7> kObjectTypeNames{{
    {CEncapFamilyColVexilData::kUserParameterObject, L"kUserParameterObject"},
    {CEncapFamilyColVexilData::kPropertyObject, L"kPropertyObject"},
    {CEncapFamilyColVexilData::kPartComponentDefinitionObject, L"kPartComponentDefinitionObject"},
    {CEncapFamilyColVexilData::kPartDocumentObject, L"kPartDocumentObject"},
    {CEncapFamilyColVexilData::kModelParameterObject, L"kModelParameterObject"},
    {CEncapFamilyColVexilData::kPartFeatureObject, L"kPartFeatureObject"},
    {CEncapFamilyColVexilData::kRenderStyleObject, L"kRenderStyleObject"},
}};

/// The type of a text without regard to case; kUnknownObject for any other text.
[[nodiscard]] ObjectType ObjectTypeOf(std::wstring_view text);
/// The text of a type; "Unknown" for any other number.
[[nodiscard]] std::wstring_view ObjectTypeText(ObjectType type);

/// How a parameter with this object type and sub-object binds its column; case is ignored.
[[nodiscard]] BindingKind ClassifyParameter(std::wstring_view objectType,
                                            std::wstring_view subObjectId);
/// Property or Material: the kinds that make a host property column.
[[nodiscard]] bool IsPropertyKind(BindingKind kind);

} // namespace encap
