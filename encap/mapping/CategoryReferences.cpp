#include "encap/mapping/CategoryReferences.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/mapping/MapWalk.h"
#include "encap/platform/Encoding.h"

namespace encap {

using platform::Utf8ToWide;
using platform::WideToUtf8;

namespace {

std::string FoldedKey(std::wstring_view text)
{
    return WideToUtf8(FoldCase(text));
}

/// The texts of all the category parameters that an element names, and the first of them.
struct ReferenceTexts {
    std::vector<std::string_view> all;
    std::string_view first;
};

ReferenceTexts ReadReferences(IXMLDOMNode* element)
{
    ReferenceTexts texts;
    ForEachChild(element, vocabulary::kCategoryParameterRef.utf8, [&texts](IXMLDOMNode* reference) {
        const std::string_view text = AttributeView(reference, vocabulary::kCategoryParameter.utf8);
        if (text.data() != nullptr) {
            texts.first = texts.all.empty() ? text : texts.first;
            texts.all.push_back(text);
        }
    });
    return texts;
}

} // namespace

void CategoryReferences::Add(IXMLDOMNode* element, uint64_t order)
{
    const ReferenceTexts texts = ReadReferences(element);
    for (const std::string_view text : texts.all) {
        m_exact.Add(std::string(text), order, element);
    }
    m_folded.Add(FoldedKey(Utf8ToWide(texts.first)), order, element);
}

void CategoryReferences::Remove(IXMLDOMNode* element, uint64_t order)
{
    const ReferenceTexts texts = ReadReferences(element);
    for (const std::string_view text : texts.all) {
        m_exact.Remove(std::string(text), order);
    }
    m_folded.Remove(FoldedKey(Utf8ToWide(texts.first)), order);
}

std::vector<IXMLDOMNode*> CategoryReferences::Find(std::wstring_view id) const
{
    std::vector<IXMLDOMNode*> found = m_exact.All(WideToUtf8(id));
    return !found.empty() ? found : m_folded.All(FoldedKey(id));
}

IXMLDOMNode* CategoryReferences::FindFirst(std::wstring_view id) const
{
    IXMLDOMNode* found = m_exact.First(WideToUtf8(id));
    return found != nullptr ? found : m_folded.First(FoldedKey(id));
}

void CategoryReferences::Clear()
{
    m_exact.Clear();
    m_folded.Clear();
}

} // namespace encap
