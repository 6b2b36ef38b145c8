#include "encap/family/Family.h"

#include "encap/family/FamilyStrings.h"
#include "encap/family/Queries.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/QueryLiteral.h"

using namespace encap;

namespace {

constexpr uint32_t kThumbnailChanged = 0x1;
constexpr uint32_t kSickTable = 0x2;

int HexadecimalDigit(wchar_t character)
{
    if (character >= L'0' && character <= L'9') {
        return character - L'0';
    }
    if (character >= L'A' && character <= L'F') {
        return character - L'A' + 10;
    }
    if (character >= L'a' && character <= L'f') {
        return character - L'a' + 10;
    }
    return -1;
}

/// The number that the leading hexadecimal digits of a text give, at most 32 bits; 0 without any.
uint32_t ReadHexadecimal(std::wstring_view text)
{
    constexpr uint32_t kLargest = 0xFFFFFFFF;
    uint32_t number = 0;
    for (const wchar_t character : TrimView(text)) {
        const int digit = HexadecimalDigit(character);
        if (digit < 0) {
            break;
        }
        if (number > (kLargest >> 4)) {
            return kLargest;
        }
        number = (number << 4) | static_cast<uint32_t>(digit);
    }
    return number;
}

/// What one property number reads, sets, and whether a change of it changes every member.
struct PropertyAccess {
    void (CEncapFamily::*get)(CString&) const;
    void (CEncapFamily::*set)(const wchar_t*);
    bool changesMembers;
};

using F = CEncapFamily;

constexpr PropertyAccess kProperties[] = {
    {&F::GetDisplayName, &F::SetDisplayName, true},
    {&F::GetDescription, &F::SetDescription, true},
    {&F::GetStandard, &F::SetStandard, true},
    {&F::GetStandardOrg, &F::SetStandardOrg, true},
    {&F::GetManufacturer, &F::SetManufacturer, true},
    {&F::GetStandardRevision, &F::SetStandardRevision, true},
    {&F::GetFamilyRevision, &F::SetFamilyRevision, false},
    {&F::GetFolderName, &F::SetFolderName, true},
    {&F::GetRevisionID, &F::SetRevisionID, false},
    {&F::GetInternalName, nullptr, false},
    {&F::GetLibInterName, nullptr, false},
    {&F::GetThumbnailPath, &F::SetThumbnailPath, false},
};

const PropertyAccess* FindProperty(FamilyPropType type)
{
    const auto number = static_cast<int32_t>(type);
    if (number < 0 || number >= static_cast<int32_t>(std::size(kProperties))) {
        return nullptr;
    }
    return &kProperties[number];
}

} // namespace

bool CEncapFamily::GetFamilyProperty(FamilyPropType type, CString& value) const
{
    const PropertyAccess* property = FindProperty(type);
    if (property == nullptr) {
        return false;
    }
    (this->*property->get)(value);
    return true;
}

bool CEncapFamily::SetFamilyProperty(FamilyPropType type, const wchar_t* value)
{
    const PropertyAccess* property = FindProperty(type);
    if (property == nullptr || property->set == nullptr) {
        return false;
    }
    (this->*property->set)(value);
    if (property->changesMembers && m_table != nullptr) {
        m_table->BumpAllMemberRevisions(nullptr);
    }
    return true;
}

void CEncapFamily::ReadAttribute(const wchar_t* name, CString& value) const
{
    value.clear();
    m_document.GetRootNode().GetProperty(name, value);
}

void CEncapFamily::WriteAttribute(const wchar_t* name, const wchar_t* value)
{
    m_document.GetRootNode().SetProperty(name, TextOrEmpty(value));
}

void CEncapFamily::GetFromAnywhere(const wchar_t* name, const wchar_t* id, CString& value) const
{
    value.clear();
    const StringsDocument* strings = m_strings->Find(m_strings->ActualLanguage());
    if (strings != nullptr) {
        strings->GetText(name, value);
    }
    if (value.empty()) {
        GetCatParamConstValue(id, value);
    }
    if (value.empty()) {
        ReadAttribute(name, value);
    }
}

void CEncapFamily::SetEverywhere(const wchar_t* name, const wchar_t* id, const wchar_t* value)
{
    SetConstantProperty(name, id, value);
    for (auto& [language, strings] : m_strings->Documents()) {
        strings.SetText(name, TextOrEmpty(value));
    }
}

void CEncapFamily::SetConstantProperty(const wchar_t* attribute, const wchar_t* id,
                                       const wchar_t* value)
{
    WriteAttribute(attribute, value);
    SetCatParamConstValue(id, value);
}

void CEncapFamily::GetDisplayName(CString& value) const
{
    GetFromAnywhere(vocabulary::kDisplayName, vocabulary::kDisplayNameParameter, value);
}

void CEncapFamily::SetDisplayName(const wchar_t* value)
{
    SetEverywhere(vocabulary::kDisplayName, vocabulary::kDisplayNameParameter, value);
}

void CEncapFamily::GetDescription(CString& value) const
{
    GetFromAnywhere(vocabulary::kDescription, vocabulary::kDescriptionParameter, value);
}

void CEncapFamily::SetDescription(const wchar_t* value)
{
    SetEverywhere(vocabulary::kDescription, vocabulary::kDescriptionParameter, value);
}

void CEncapFamily::GetInternalName(CString& value) const
{
    ReadAttribute(vocabulary::kInternalName, value);
}

void CEncapFamily::SetInternalName(const wchar_t* value)
{
    SetConstantProperty(vocabulary::kInternalName, vocabulary::kInternalNameParameter, value);
    RemoveUnnecessaryHiddenDomains();
}

void CEncapFamily::GetManufacturer(CString& value) const
{
    GetCatParamConstValue(vocabulary::kManufacturerParameter, value);
}

void CEncapFamily::SetManufacturer(const wchar_t* value)
{
    SetConstantProperty(vocabulary::kManufacturer, vocabulary::kManufacturerParameter, value);
}

void CEncapFamily::GetStandard(CString& value) const
{
    GetCatParamConstValue(vocabulary::kStandardParameter, value);
}

void CEncapFamily::SetStandard(const wchar_t* value)
{
    SetConstantProperty(vocabulary::kStandard, vocabulary::kStandardParameter, value);
}

void CEncapFamily::GetStandardOrg(CString& value) const
{
    GetCatParamConstValue(vocabulary::kStandardsOrgParameter, value);
}

void CEncapFamily::SetStandardOrg(const wchar_t* value)
{
    SetConstantProperty(vocabulary::kStandardsOrg, vocabulary::kStandardsOrgParameter, value);
}

void CEncapFamily::GetFolderName(CString& value) const
{
    GetCatParamConstValue(vocabulary::kFolderNameParameter, value);
}

void CEncapFamily::SetFolderName(const wchar_t* value)
{
    SetConstantProperty(vocabulary::kFolderName, vocabulary::kFolderNameParameter, value);
}

void CEncapFamily::GetFamilyRevision(CString& value) const
{
    GetCatParamConstValue(vocabulary::kFamilyRevisionParameter, value);
}

void CEncapFamily::SetFamilyRevision(const wchar_t* value)
{
    SetCatParamConstValue(vocabulary::kFamilyRevisionParameter, value);
}

void CEncapFamily::GetStandardRevision(CString& value) const
{
    GetCatParamConstValue(vocabulary::kStandardRevisionParameter, value);
}

void CEncapFamily::SetStandardRevision(const wchar_t* value)
{
    SetCatParamConstValue(vocabulary::kStandardRevisionParameter, value);
}

void CEncapFamily::GetRevisionID(CString& value) const
{
    ReadAttribute(vocabulary::kRevisionId, value);
}

void CEncapFamily::SetRevisionID(const wchar_t* value)
{
    WriteAttribute(vocabulary::kRevisionId, value);
}

void CEncapFamily::GetLibInterName(CString& value) const
{
    ReadAttribute(vocabulary::kLibrary, value);
}

void CEncapFamily::SetLibInterName(const wchar_t* value)
{
    WriteAttribute(vocabulary::kLibrary, value);
}

void CEncapFamily::GetThumbnailPath(CString& value) const
{
    value.clear();
    const CString query =
        FormatText(query::kTwoSteps, {vocabulary::kThumbnail.View(), vocabulary::kFile.View()});
    XMLNode file;
    if (m_document.GetRootNode().GetChildNode(query.c_str(), file)) {
        file.GetProperty(vocabulary::kFullFileName, value);
    }
}

void CEncapFamily::SetThumbnailPath(const wchar_t* value)
{
    XMLNode root = m_document.GetRootNode();
    if (!root.IsNode()) {
        return;
    }
    XMLNode file = root.GetOrAddNode(vocabulary::kThumbnail).GetOrAddNode(vocabulary::kFile);
    file.SetProperty(vocabulary::kFullFileName, TextOrEmpty(value));
    UpdateEditStatus(kThumbnailChanged);
}

void CEncapFamily::GetHealthStatus(CString& value) const
{
    ReadAttribute(vocabulary::kHealthStatus, value);
}

void CEncapFamily::SetHealthStatus(const wchar_t* value)
{
    WriteAttribute(vocabulary::kHealthStatus, value);
}

bool CEncapFamily::IsSickFamilyTable() const
{
    CString status;
    GetHealthStatus(status);
    return (ReadHexadecimal(status) & kSickTable) != 0;
}

void CEncapFamily::GetEditStatus(CString& value) const
{
    ReadAttribute(vocabulary::kEditStatus, value);
}

void CEncapFamily::GetEditStatus(unsigned long& bits) const
{
    CString status;
    GetEditStatus(status);
    bits = ReadHexadecimal(status);
}

void CEncapFamily::UpdateEditStatus(unsigned long bits)
{
    CString status;
    GetEditStatus(status);
    const uint32_t combined = ReadHexadecimal(status) | static_cast<uint32_t>(bits & 0xFFFFFFFFUL);
    WriteAttribute(vocabulary::kEditStatus, FormatHexadecimal(combined).c_str());
}

void CEncapFamily::GetParenLibName(CString& value) const
{
    ReadAttribute(vocabulary::kParentLibraryName, value);
}

void CEncapFamily::GetParentFamilyName(CString& value) const
{
    ReadAttribute(vocabulary::kParentFamilyName, value);
}

void CEncapFamily::GetSourceMoniker(CString& value) const
{
    ReadAttribute(vocabulary::kSourceMoniker, value);
}

void CEncapFamily::GetCopyFrom(CString& value) const
{
    ReadAttribute(vocabulary::kFromSource, value);
}

void CEncapFamily::SetCopyFrom(const wchar_t* value)
{
    WriteAttribute(vocabulary::kFromSource, value);
}

void CEncapFamily::GetCategoryID(CString& value) const
{
    value.clear();
    const CString query =
        FormatText(query::kTopCategories,
                   {vocabulary::kCategories.View(), vocabulary::kCategory.View(),
                    vocabulary::kHidden.View(), QueryLiteral(vocabulary::kFalse.View())});
    XMLNode category;
    if (!m_document.GetRootNode().GetChildNode(query.c_str(), category)) {
        return;
    }
    XMLNode child;
    while (category.GetChildNode(vocabulary::kCategory, child)) {
        category = child;
    }
    category.GetProperty(vocabulary::kInternalName, value);
}

bool CEncapFamily::IsFeature() const
{
    CString category;
    ReadAttribute(vocabulary::kDataTypeCategory, category);
    return category == vocabulary::kFeatureFamily.View();
}

bool CEncapFamily::IsLinked() const
{
    CString source;
    return m_document.GetRootNode().GetProperty(vocabulary::kFromSource, source);
}

bool CEncapFamily::IsSrcActive() const
{
    CString active;
    ReadAttribute(vocabulary::kSrcActive, active);
    return !EqualNoCase(active, vocabulary::kFalse.View());
}
