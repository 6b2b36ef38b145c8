#include "encap/toc/TocFamily.h"

#include "encap/family/Vocabulary.h"
#include "encap/toc/TocNames.h"

#include <algorithm>
#include <array>

using namespace encap;

namespace {

struct PropertyAttribute {
    FamilyPropType type;
    Name attribute;
};

constexpr std::array<PropertyAttribute, 12> kPropertyAttributes{{
    {FamilyPropDisplayName, vocabulary::kDisplayName},
    {FamilyPropDescription, vocabulary::kDescription},
    {FamilyPropStandard, vocabulary::kStandard},
    {FamilyPropStandardsOrg, vocabulary::kStandardsOrg},
    {FamilyPropManufacturer, vocabulary::kManufacturer},
    {FamilyPropFolderName, vocabulary::kFolderName},
    {FamilyPropRevisionID, vocabulary::kRevisionId},
    {FamilyPropInternalName, vocabulary::kInternalName},
    {FamilyPropLibInterName, vocabulary::kLibrary},
    {FamilyPropSourceMoniker, vocabulary::kSourceMoniker},
    {FamilyPropSrcActive, vocabulary::kSrcActive},
    {FamilyPropLastModifiedTime, toc::kLastModifiedTime},
}};

} // namespace

CTocFamily::CTocFamily() = default;
CTocFamily::CTocFamily(const XMLNode& node) : XMLNode(node) {}
CTocFamily::CTocFamily(const CTocFamily& other) = default;
CTocFamily& CTocFamily::operator=(const CTocFamily& other) = default;
CTocFamily::~CTocFamily() = default;

bool CTocFamily::GetInternalName(CString& value) const
{
    return GetProperty(vocabulary::kInternalName, value);
}

bool CTocFamily::GetDisplayName(CString& value) const
{
    return GetProperty(vocabulary::kDisplayName, value);
}

bool CTocFamily::GetSourceLib(CString& value) const
{
    return GetProperty(vocabulary::kFromSource, value);
}

bool CTocFamily::GetSourceFamily(CString& value) const
{
    return GetProperty(vocabulary::kSourceMoniker, value);
}

bool CTocFamily::GetSourceRevision(CString& value) const
{
    return GetProperty(toc::kSourceRevisionId, value);
}

bool CTocFamily::GetStandardOrg(CString& value) const
{
    return GetProperty(vocabulary::kStandardsOrg, value);
}

bool CTocFamily::GetRevision(CString& value) const
{
    return GetProperty(vocabulary::kRevisionId, value);
}

bool CTocFamily::GetFamilyProperty(FamilyPropType type, CString& value) const
{
    value.clear();
    const auto found =
        std::find_if(kPropertyAttributes.begin(), kPropertyAttributes.end(),
                     [type](const PropertyAttribute& property) { return property.type == type; });
    return found != kPropertyAttributes.end() && GetProperty(found->attribute, value);
}
