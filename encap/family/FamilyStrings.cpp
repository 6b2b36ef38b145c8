#include "encap/family/FamilyStrings.h"

namespace encap {

void FamilyStrings::Add(const XMLParser& document)
{
    CString language;
    document.GetRootNode().GetProperty(vocabulary::kXmlLang, language);
    m_documents.insert_or_assign(language, StringsDocument(document));
    m_languages.push_back(std::move(language));
}

void FamilyStrings::Clear()
{
    m_documents.clear();
    m_languages.clear();
}

std::wstring_view FamilyStrings::ActualLanguage() const
{
    return m_languages.empty() ? std::wstring_view() : std::wstring_view(m_languages.front());
}

StringsDocument* FamilyStrings::Find(std::wstring_view language)
{
    const auto found = m_documents.find(language);
    return found != m_documents.end() ? &found->second : nullptr;
}

} // namespace encap
