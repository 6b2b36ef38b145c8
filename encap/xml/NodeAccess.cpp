#include "encap/xml/NodeAccess.h"

#include "encap/platform/Encoding.h"
#include "encap/xml/Document.h"
#include "encap/xml/Nodes.h"

#include <cstring>

namespace encap {
namespace {

/// A zero-terminated text equals a view.
bool Equals(const xmlChar* text, std::string_view view)
{
    const auto* characters = reinterpret_cast<const char*>(text);
    return std::strncmp(characters, view.data(), view.size()) == 0 && text[view.size()] == 0;
}

/// Tells elements of one name among siblings: names of one tree are equal where their pointers are,
/// so that the text is compared only until the pointer is known.
class NameMatcher {
public:
    explicit NameMatcher(std::string_view name) : m_name(name) {}

    bool operator()(const xmlNode* node)
    {
        if (node->type != XML_ELEMENT_NODE) {
            return false;
        }
        if (m_name.empty()) {
            return true;
        }
        if (node->name != m_known && (m_known != nullptr || !Equals(node->name, m_name))) {
            return false;
        }
        m_known = node->name;
        return node->ns == nullptr;
    }

private:
    std::string_view m_name;
    const xmlChar* m_known = nullptr;
};

/// The attribute of that name; one with a prefix is looked for by its qualified name.
const xmlAttr* Find(const xmlNode* element, std::string_view name)
{
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (attribute->ns == nullptr ? Equals(attribute->name, name)
                                     : HasName(reinterpret_cast<const xmlNode*>(attribute), name)) {
            return attribute;
        }
    }
    return nullptr;
}

bool HasValue(const xmlNode* element, std::string_view name, std::string_view value)
{
    const xmlAttr* attribute = Find(element, name);
    if (attribute == nullptr) {
        return false;
    }
    const xmlNode* text = attribute->children;
    return text != nullptr ? Equals(text->content, value) : value.empty();
}

xmlNode* NextMatch(xmlNode* node, NameMatcher& matches)
{
    while (node != nullptr && !matches(node)) {
        node = node->next;
    }
    return node;
}

} // namespace

IXMLDOMNode* FirstChildElement(IXMLDOMNode* parent, std::string_view name)
{
    NameMatcher matches(name);
    return parent != nullptr ? ToOpaque(NextMatch(FromOpaque(parent)->children, matches)) : nullptr;
}

IXMLDOMNode* NextElement(IXMLDOMNode* sibling, std::string_view name)
{
    NameMatcher matches(name);
    return sibling != nullptr ? ToOpaque(NextMatch(FromOpaque(sibling)->next, matches)) : nullptr;
}

IXMLDOMNode* ParentElement(IXMLDOMNode* node)
{
    xmlNode* parent = node != nullptr ? FromOpaque(node)->parent : nullptr;
    return parent != nullptr && parent->type == XML_ELEMENT_NODE ? ToOpaque(parent) : nullptr;
}

bool NameEquals(IXMLDOMNode* element, std::string_view name)
{
    return element != nullptr && FromOpaque(element)->type == XML_ELEMENT_NODE &&
           HasName(FromOpaque(element), name);
}

std::string_view AttributeView(IXMLDOMNode* element, std::string_view name)
{
    if (element == nullptr || FromOpaque(element)->type != XML_ELEMENT_NODE) {
        return {};
    }
    const xmlAttr* attribute = Find(FromOpaque(element), name);
    return attribute != nullptr ? ValueOf(attribute) : std::string_view();
}

bool AttributeEquals(IXMLDOMNode* element, std::string_view name, std::string_view utf8Value)
{
    return element != nullptr && FromOpaque(element)->type == XML_ELEMENT_NODE &&
           HasValue(FromOpaque(element), name, utf8Value);
}

bool AttributeEquals(const XMLNode& element, std::string_view name, std::string_view utf8Value)
{
    return AttributeEquals(Raw(element), name, utf8Value);
}

IXMLDOMNode* FindChildByAttribute(IXMLDOMNode* parent, std::string_view element,
                                  std::string_view attribute, std::string_view utf8Value,
                                  IXMLDOMNode* hint)
{
    if (parent == nullptr) {
        return nullptr;
    }
    NameMatcher matches(element);
    xmlNode* const first = FromOpaque(parent)->children;
    const bool isHint = hint != nullptr && FromOpaque(hint)->parent == FromOpaque(parent);
    xmlNode* const start = isHint ? FromOpaque(hint) : first;
    for (xmlNode* child = start; child != nullptr; child = child->next) {
        if (matches(child) && HasValue(child, attribute, utf8Value)) {
            return ToOpaque(child);
        }
    }
    for (xmlNode* child = first; child != start; child = child->next) {
        if (matches(child) && HasValue(child, attribute, utf8Value)) {
            return ToOpaque(child);
        }
    }
    return nullptr;
}

bool TextView(IXMLDOMNode* element, std::string_view& text)
{
    text = kEmptyText;
    if (element == nullptr || FromOpaque(element)->type != XML_ELEMENT_NODE) {
        return false;
    }
    const xmlNode* only = FromOpaque(element)->children;
    if (only == nullptr) {
        return true;
    }
    if (only->next != nullptr || only->type != XML_TEXT_NODE) {
        return false;
    }
    text = ViewOf(only->content);
    return true;
}

void AppendNodeText(IXMLDOMNode* node, CString& out)
{
    if (node != nullptr) {
        std::string utf8;
        AppendText(FromOpaque(node), utf8);
        platform::AppendWide(out, utf8);
    }
}

uint64_t ChangeCount(const XMLNode& node)
{
    return node.IsNode() ? Tree::Of(NodeOf(node)).Changes() : 0;
}

uint64_t ChangeCountOutside(const XMLNode& section)
{
    if (!section.IsNode()) {
        return 0;
    }
    const Tree& tree = Tree::Of(NodeOf(section));
    return tree.Changes() - tree.ChangesIn(NodeOf(section));
}

uint64_t ChangeCount(const XMLParser& parser)
{
    const XMLDocumentHandle document = parser.GetDocument();
    return document ? document.Get()->tree->Changes() : 0;
}

} // namespace encap
