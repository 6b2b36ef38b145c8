#include "encap/toc/Toc.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/toc/TocCategory.h"
#include "encap/toc/TocNames.h"
#include "encap/xml/NodeAccess.h"

#include <string_view>

using namespace encap;

CToc::CToc() = default;
CToc::CToc(const CToc& other) = default;
CToc& CToc::operator=(const CToc& other) = default;
CToc::~CToc() = default;

void CToc::SetToc(const XMLParser& toc)
{
    m_document = toc.GetDocument();
    CreateFamiliesMap();
    CreateCategoryMap();
}

XMLParser CToc::GetToc() const
{
    XMLParser parser;
    parser.SetDocument(m_document);
    return parser;
}

XMLDocumentHandle CToc::GetDocument() const
{
    return m_document;
}

int CToc::GetCategoryCount() const
{
    return static_cast<int>(m_categories.size());
}

bool CToc::GetFamilyInfo(const wchar_t* internalName, XMLNode& node) const
{
    return GetInfo(m_families, internalName, node);
}

bool CToc::GetCategoryInfo(const wchar_t* internalName, XMLNode& node) const
{
    return GetInfo(m_categories, internalName, node);
}

void CToc::ResetIter()
{
    Reset(m_familyCursor);
}

bool CToc::NextNode(XMLNode& node)
{
    return Next(m_families, m_familyCursor, node);
}

void CToc::ResetCatIter()
{
    Reset(m_categoryCursor);
}

bool CToc::NextCategory(XMLNode& node)
{
    return Next(m_categories, m_categoryCursor, node);
}

bool CToc::GetCategoryPath(const wchar_t* internalName, XMLNodeArray& path) const
{
    path.clear();
    XMLNode current;
    if (!GetCategoryInfo(internalName, current)) {
        return false;
    }
    CString name;
    do {
        path.push_back(current);
        current = current.GetParentNode();
        if (current.IsNode() && !current.GetNodeName(name)) {
            return false;
        }
    } while (current.IsNode() && EqualNoCase(name, vocabulary::kCategory.View()));
    return true;
}

bool CToc::GetFirstLevelCategories(XMLNodeArray& categories) const
{
    categories.clear();
    XMLNode container;
    return GetToc().GetRootNode().GetChildNode(vocabulary::kCategories, container) &&
           container.SelectChildNodes(vocabulary::kCategory, categories);
}

bool CToc::GetFam2CatMap(std::map<CString, CString>& familyToCategory, bool skipHidden) const
{
    std::vector<CString> families;
    for (const auto& [internalName, node] : m_categories) {
        const CTocCategory category(node);
        if (!category.IsNode() || (skipHidden && category.IsHidden())) {
            continue;
        }
        category.GetReferencedFamilies(families);
        CString name;
        category.GetInternalName(name);
        for (const CString& family : families) {
            familyToCategory[family] = name;
        }
    }
    return true;
}

bool CToc::CreateFamiliesMap()
{
    m_families.clear();
    XMLNode families;
    XMLNode root = GetToc().GetRootNode();
    if (!NameEquals(Raw(root), toc::kTableOfContents.utf8) ||
        !root.GetChildNode(toc::kFamilies, families)) {
        return false;
    }
    IXMLDOMNode* child = FirstChildElement(Raw(families), {});
    if (child == nullptr) {
        return false;
    }
    CString name;
    for (; child != nullptr; child = NextElement(child, {})) {
        XMLNode family = Wrap(child);
        if (family.GetProperty(vocabulary::kInternalName, name)) {
            m_families.insert_or_assign(name, std::move(family));
        }
    }
    return true;
}

// The categories of the whole document, so that sub-categories are found by name too.
bool CToc::CreateCategoryMap()
{
    m_categories.clear();
    XMLNode categories;
    XMLNodeArray nodes;
    const XMLNode root = GetToc().GetRootNode();
    if (!NameEquals(Raw(root), toc::kTableOfContents.utf8) ||
        !root.GetChildNode(vocabulary::kCategories, categories)) {
        return false;
    }
    categories.SelectChildNodes(toc::kAllCategories, nodes);
    CString name;
    for (XMLNode& category : nodes) {
        if (category.GetProperty(vocabulary::kInternalName, name)) {
            m_categories.insert_or_assign(name, std::move(category));
        }
    }
    return true;
}

bool CToc::GetInfo(const NodeMap& map, const wchar_t* key, XMLNode& node)
{
    const auto found = map.find(key != nullptr ? std::wstring_view(key) : std::wstring_view());
    if (found == map.end()) {
        return false;
    }
    node = found->second;
    return true;
}

void CToc::Reset(Cursor& cursor)
{
    cursor = Cursor{true, true, {}};
}

bool CToc::Next(const NodeMap& map, Cursor& cursor, XMLNode& node)
{
    if (!cursor.isRunning) {
        return false;
    }
    const auto next = cursor.isFirstStep ? map.begin() : map.upper_bound(cursor.name);
    cursor.isFirstStep = false;
    if (next == map.end()) {
        cursor.isRunning = false;
        return false;
    }
    cursor.name = next->first;
    node = next->second;
    return true;
}
