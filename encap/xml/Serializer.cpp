#include "encap/xml/Serializer.h"

#include "encap/xml/Nodes.h"
#include "encap/xml/Texts.h"

#include <algorithm>
#include <array>

namespace encap {
namespace {

enum Escaping : unsigned char { kNone = 0, kInText = 1, kInAttribute = 2 };

constexpr std::array<unsigned char, 256> MakeEscapingTable()
{
    std::array<unsigned char, 256> table{};
    table['&'] = table['<'] = table['>'] = table['\r'] = kInText | kInAttribute;
    table['"'] = table['\t'] = table['\n'] = kInAttribute;
    return table;
}

constexpr std::array<unsigned char, 256> kEscaping = MakeEscapingTable();

/// White space that is all an element holds. It would be taken for layout when it is read again; an
/// empty CDATA section before it tells that it is not.
bool IsBlankValue(const xmlNode* text)
{
    const std::string_view content = ViewOf(text->content);
    return text->prev == nullptr && text->next == nullptr && text->parent != nullptr &&
           text->parent->type == XML_ELEMENT_NODE && !content.empty() && IsBlank(content) &&
           xmlNodeGetSpacePreserve(text->parent) != 1;
}

std::string_view Escape(char character)
{
    switch (character) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\t': return "&#9;";
    case '\n': return "&#10;";
    default: return "&#13;";
    }
}

void AppendEscaped(std::string& out, std::string_view text, Escaping where)
{
    const char* plain = text.data();
    const char* const end = plain + text.size();
    for (const char* position = plain; position != end; ++position) {
        if ((kEscaping[static_cast<unsigned char>(*position)] & where) != 0) {
            out.append(plain, position);
            out += Escape(*position);
            plain = position + 1;
        }
    }
    out.append(plain, end);
}

} // namespace

void Serializer::WriteDeclaration(const XmlDeclaration& declaration)
{
    if (!declaration.isPresent) {
        return;
    }
    m_out += "<?xml version=\"" + declaration.version + "\"";
    if (!declaration.encoding.empty()) {
        m_out += " encoding=\"" + declaration.encoding + "\"";
    }
    if (declaration.standalone >= 0) {
        m_out += declaration.standalone != 0 ? " standalone=\"yes\"" : " standalone=\"no\"";
    }
    m_out += "?>\n";
}

void Serializer::WriteDocument(xmlDoc* document)
{
    for (xmlNode* node = document->children; node != nullptr; node = node->next) {
        WriteNode(node);
        m_out += '\n';
    }
}

void Serializer::WriteNode(xmlNode* root)
{
    xmlNode* node = root;
    while (true) {
        Open(node);
        if (node->type != XML_ATTRIBUTE_NODE && node->children != nullptr) {
            node = node->children;
            continue;
        }
        while (node != root && node->next == nullptr) {
            node = node->parent;
            Close(node);
        }
        if (node == root) {
            return;
        }
        node = node->next;
    }
}

void Serializer::Open(xmlNode* node)
{
    switch (node->type) {
    case XML_ELEMENT_NODE: OpenElement(node); break;
    case XML_TEXT_NODE:
        m_out += IsBlankValue(node) ? "<![CDATA[]]>" : "";
        AppendEscaped(m_out, ViewOf(node->content), kInText);
        break;
    case XML_COMMENT_NODE:
        m_out += "<!--";
        WriteBare(ViewOf(node->content));
        m_out += "-->";
        break;
    case XML_PI_NODE:
        m_out += "<?";
        WriteBare(ViewOf(node->name));
        if (node->content != nullptr && *node->content != 0) {
            m_out += ' ';
            WriteBare(ViewOf(node->content));
        }
        m_out += "?>";
        break;
    case XML_ATTRIBUTE_NODE: WriteAttribute(reinterpret_cast<xmlAttr*>(node)); break;
    default: break;
    }
}

/// Behind the children; an element without children is closed as it is opened.
void Serializer::Close(const xmlNode* node)
{
    if (node->type != XML_ELEMENT_NODE) {
        return;
    }
    m_out += "</";
    WriteQualifiedName(node);
    m_out += '>';
    while (!m_bindings.empty() && m_bindings.back().element == node) {
        m_bindings.pop_back();
    }
}

void Serializer::OpenElement(xmlNode* element)
{
    m_out += '<';
    WriteQualifiedName(element);
    BindNamespaces(element);
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        m_out += ' ';
        WriteAttribute(attribute);
    }
    if (element->children != nullptr) {
        m_out += '>';
        return;
    }
    m_out += "/>";
    while (!m_bindings.empty() && m_bindings.back().element == element) {
        m_bindings.pop_back();
    }
}

void Serializer::WriteAttribute(const xmlAttr* attribute)
{
    WriteQualifiedName(reinterpret_cast<const xmlNode*>(attribute));
    m_out += "=\"";
    AppendEscaped(m_out, ValueOf(attribute), kInAttribute);
    m_out += '"';
}

void Serializer::WriteQualifiedName(const xmlNode* node)
{
    const std::string_view prefix = Prefix(node);
    if (!prefix.empty()) {
        WriteBare(prefix);
        m_out += ':';
    }
    WriteBare(ViewOf(node->name));
}

void Serializer::WriteBare(std::string_view text)
{
    m_out += text;
    if (std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; })) {
        m_bareText += text;
    }
}

void Serializer::WriteBinding(const xmlNode* element, std::string_view prefix,
                              std::string_view href)
{
    m_out += prefix.empty() ? " xmlns" : " xmlns:";
    WriteBare(prefix);
    m_out += "=\"";
    AppendEscaped(m_out, href, kInAttribute);
    m_out += '"';
    m_bindings.push_back({prefix, href, element});
}

void Serializer::BindNamespaces(xmlNode* element)
{
    for (const xmlNs* space = element->nsDef; space != nullptr; space = space->next) {
        WriteBinding(element, ViewOf(space->prefix), ViewOf(space->href));
    }
    if (element->ns != nullptr || !m_bindings.empty()) {
        Require(element, element->ns);
    }
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (attribute->ns != nullptr) {
            Require(element, attribute->ns);
        }
    }
}

/// Declares a namespace (null: none, without a prefix) unless it is what its prefix means here.
void Serializer::Require(const xmlNode* element, const xmlNs* space)
{
    const std::string_view prefix = space != nullptr ? ViewOf(space->prefix) : std::string_view();
    const std::string_view href = space != nullptr ? ViewOf(space->href) : std::string_view();
    if (prefix == "xml") {
        return;
    }
    const auto bound =
        std::find_if(m_bindings.rbegin(), m_bindings.rend(),
                     [&](const Binding& binding) { return binding.prefix == prefix; });
    const std::string_view current = bound != m_bindings.rend() ? bound->href : std::string_view();
    if (current != href) {
        WriteBinding(element, prefix, href);
    }
}

} // namespace encap
