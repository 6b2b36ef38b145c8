#pragma once

#include "encap/family/StringsDocument.h"

#include <functional>
#include <map>
#include <string_view>
#include <vector>

namespace encap {

/// The languages of a family and their strings documents; owned by the family.
class FamilyStrings {
public:
    using DocumentMap = std::map<CString, StringsDocument, std::less<>>;

    /// Adds a document under the language that it names ("" when it names none); a later one of
    /// the same language takes the earlier one's place, and the language is listed again.
    void Add(const XMLParser& document);
    void Clear();

    /// In the order in which the documents were added.
    [[nodiscard]] const std::vector<CString>& Languages() const { return m_languages; }
    /// The first language; empty when there is none.
    [[nodiscard]] std::wstring_view ActualLanguage() const;

    /// Null when the language has no document.
    [[nodiscard]] StringsDocument* Find(std::wstring_view language);
    /// One document for each language, in the order of the tags.
    [[nodiscard]] DocumentMap& Documents() { return m_documents; }

    /// Visits every document, or the actual language's only.
    template <class Visitor>
    void ForEach(bool allLanguages, Visitor visit)
    {
        if (!allLanguages) {
            if (StringsDocument* actual = Find(ActualLanguage())) {
                visit(*actual);
            }
            return;
        }
        for (auto& [language, document] : m_documents) {
            visit(document);
        }
    }

private:
    std::vector<CString> m_languages;
    DocumentMap m_documents;
};

} // namespace encap
