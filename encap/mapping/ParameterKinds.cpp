#include "encap/mapping/ParameterKinds.h"

#include "encap/foundation/CaseFolding.h"

#include <algorithm>

namespace encap {

namespace {

struct ParameterKind {
    ObjectType type;
    std::wstring_view subObjectId; ///< empty: any
    BindingKind kind;
};

// The first row that fits holds. Types and sub-objects without a row bind nothing.
constexpr std::array<ParameterKind, 7> kParameterKinds{{
    {CEncapFamilyColVexilData::kUserParameterObject, L"", BindingKind::Geometry},
    {CEncapFamilyColVexilData::kPartFeatureObject, kVisibleSubObject, BindingKind::Geometry},
    {CEncapFamilyColVexilData::kPartFeatureObject, kSuppressedSubObject, BindingKind::Geometry},
    {CEncapFamilyColVexilData::kPropertyObject, L"", BindingKind::Property},
    {CEncapFamilyColVexilData::kPartDocumentObject, L"", BindingKind::Property},
    {CEncapFamilyColVexilData::kRenderStyleObject, L"", BindingKind::Property},
    {CEncapFamilyColVexilData::kPartComponentDefinitionObject, kMaterialSubObject,
     BindingKind::Material},
}};

} // namespace

ObjectType ObjectTypeOf(std::wstring_view text)
{
    const auto found =
        std::find_if(kObjectTypeNames.begin(), kObjectTypeNames.end(),
                     [text](const ObjectTypeName& name) { return EqualNoCase(name.text, text); });
    return found != kObjectTypeNames.end() ? found->type : CEncapFamilyColVexilData::kUnknownObject;
}

std::wstring_view ObjectTypeText(ObjectType type)
{
    const auto found =
        std::find_if(kObjectTypeNames.begin(), kObjectTypeNames.end(),
                     [type](const ObjectTypeName& name) { return name.type == type; });
    return found != kObjectTypeNames.end() ? found->text : std::wstring_view(L"Unknown");
}

BindingKind ClassifyParameter(std::wstring_view objectType, std::wstring_view subObjectId)
{
    const ObjectType type = ObjectTypeOf(objectType);
    if (type == CEncapFamilyColVexilData::kUnknownObject) {
        return BindingKind::PlainProperty;
    }
    const auto found =
        std::find_if(kParameterKinds.begin(), kParameterKinds.end(), [&](const ParameterKind& row) {
            return row.type == type &&
                   (row.subObjectId.empty() || EqualNoCase(row.subObjectId, subObjectId));
        });
    return found != kParameterKinds.end() ? found->kind : BindingKind::None;
}

bool IsPropertyKind(BindingKind kind)
{
    return kind == BindingKind::Property || kind == BindingKind::Material;
}

} // namespace encap
