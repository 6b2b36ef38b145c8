#include "encap/xml/XMLParser.h"

#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/platform/Guid.h"
#include "encap/xml/Document.h"
#include "encap/xml/FileEncoding.h"
#include "encap/xml/Format.h"
#include "encap/xml/Nodes.h"
#include "encap/xml/Texts.h"

#include <algorithm>
#include <cstdlib>
#include <new>

using encap::NodeOf;
using encap::Tree;
using encap::WrapperOf;

namespace {

bool IsTag(const xmlNode* node, std::string_view tag)
{
    return node->type == XML_ELEMENT_NODE && (tag == "*" || encap::HasName(node, tag));
}

std::vector<xmlNode*> ElementsByTag(const Tree& tree, const wchar_t* tag)
{
    const encap::Utf8Text wanted(tag);
    xmlNode* top = encap::AsNode(tree.Document());
    std::vector<xmlNode*> elements;
    for (xmlNode* node = top; node != nullptr; node = encap::NextInSubtree(node, top)) {
        if (IsTag(node, wanted.View())) {
            elements.push_back(node);
        }
    }
    return elements;
}

void AppendHexadecimal(CString& out, uint32_t value, int digits)
{
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        out += kDigits[(value >> shift) & 0xF];
    }
}

/// The registry form: {8-4-4-4-12} in upper-case hexadecimal digits.
CString BracedText(const encap::platform::Guid& guid)
{
    CString text = L"{";
    AppendHexadecimal(text, guid.data1, 8);
    text += L'-';
    AppendHexadecimal(text, guid.data2, 4);
    text += L'-';
    AppendHexadecimal(text, guid.data3, 4);
    for (std::size_t i = 0; i < guid.data4.size(); ++i) {
        text += i == 0 || i == 2 ? L"-" : L"";
        AppendHexadecimal(text, guid.data4[i], 2);
    }
    return text + L'}';
}

} // namespace

XMLParser::XMLParser() : m_document(new IXMLDOMDocument) {}

XMLParser::XMLParser(const wchar_t* xml)
    : m_document(new IXMLDOMDocument(encap::ParseText(encap::ViewOf(xml))))
{
}

XMLParser::XMLParser(const CString& xml) : m_document(new IXMLDOMDocument(encap::ParseText(xml))) {}

XMLParser::~XMLParser() = default;

bool XMLParser::CreateXmlDocument(const wchar_t* encoding)
{
    const std::string name = encap::platform::WideToUtf8(encap::ViewOf(encoding));
    if (!m_document || !(name.empty() || encap::IsEncodingName(name))) {
        return false;
    }
    m_document.Get()->declaration = encap::XmlDeclaration();
    m_document.Get()->declaration.isPresent = true;
    m_document.Get()->declaration.encoding = name;
    m_document.Get()->tree->NoteChange(nullptr);
    return true;
}

bool XMLParser::HasDeclaration() const
{
    return m_document && m_document.Get()->declaration.isPresent;
}

bool XMLParser::LoadXmlDocument(const wchar_t* path)
{
    std::string bytes;
    if (!m_document || path == nullptr || !encap::platform::ReadWholeFile(path, bytes)) {
        return false;
    }
    return m_document.Get()->Replace(encap::ParseFileBytes(bytes));
}

bool XMLParser::SaveXmlDocument(const wchar_t* path, bool format)
{
    CString target(encap::ViewOf(path));
    if (!m_document || (path == nullptr && !GenericXmlFilename(target))) {
        return false;
    }
    if (format) {
        FormatXml(m_document, nullptr, 0);
    }
    const encap::XmlDeclaration& declaration = m_document.Get()->declaration;
    std::string text;
    encap::Serializer serializer(text);
    serializer.WriteDeclaration(declaration);
    serializer.WriteDocument(m_document.Get()->tree->Document());
    std::string bytes;
    return encap::EncodeForFile(text, serializer.BareText(), declaration.encoding, bytes) &&
           encap::platform::ReplaceFileContent(target, bytes);
}

bool XMLParser::GetXml(CComBSTR& xml) const
{
    CString text;
    const bool isThere = GetXml(text);
    xml = std::move(text);
    return isThere;
}

bool XMLParser::GetXml(CString& xml) const
{
    xml.clear();
    if (!m_document) {
        return false;
    }
    std::string text;
    encap::Serializer serializer(text);
    serializer.WriteDeclaration(m_document.Get()->declaration);
    serializer.WriteDocument(m_document.Get()->tree->Document());
    encap::platform::AssignWide(xml, text);
    return true;
}

bool XMLParser::GetXml(wchar_t** xml) const
{
    CString text;
    if (xml == nullptr) {
        return false;
    }
    *xml = nullptr;
    if (!GetXml(text)) {
        return false;
    }
    *xml = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (*xml == nullptr) {
        throw std::bad_alloc();
    }
    std::copy_n(text.c_str(), text.size() + 1, *xml);
    return true;
}

void XMLParser::FreeXml(wchar_t* xml)
{
    std::free(xml);
}

bool XMLParser::SetXml(const wchar_t* xml)
{
    return m_document && m_document.Get()->Replace(encap::ParseText(encap::ViewOf(xml)));
}

bool XMLParser::SetXml(const CString& xml)
{
    return m_document && m_document.Get()->Replace(encap::ParseText(xml));
}

bool XMLParser::SetXml(std::string_view utf8)
{
    return m_document && m_document.Get()->Replace(encap::ParseUtf8Text(utf8));
}

XMLNode XMLParser::GetRootNode() const
{
    return m_document ? WrapperOf(m_document.Get()->tree->RootElement()) : XMLNode();
}

bool XMLParser::GetNode(XMLNode& node) const
{
    node = GetRootNode();
    return node.IsNode();
}

bool XMLParser::GetNode(const wchar_t* name, XMLNode& node) const
{
    XMLNode candidate = GetRootNode();
    CString candidateName;
    while (name != nullptr && candidate.GetNodeName(candidateName) && candidateName != name) {
        candidate.GetNextSibling(candidate);
    }
    node = candidate;
    return node.IsNode();
}

XMLNode XMLParser::AddNode(const wchar_t* name, const wchar_t* text, const wchar_t* attr1,
                           const wchar_t* value1, const wchar_t* attr2, const wchar_t* value2)
{
    XMLNode parent(CheckPtr(nullptr));
    return parent.AddNode(name, text, attr1, value1, attr2, value2);
}

bool XMLParser::GetNodesByTag(const wchar_t* tag, XMLNodeArray& nodes) const
{
    XMLNodeArray found;
    if (m_document) {
        for (xmlNode* element : ElementsByTag(*m_document.Get()->tree, tag)) {
            found.push_back(WrapperOf(element));
        }
    }
    nodes = std::move(found);
    return !nodes.empty();
}

bool XMLParser::RemoveNodesByTag(const wchar_t* tag)
{
    if (!m_document) {
        return false;
    }
    // From the last to the first, so that an element is taken out before the ones around it go.
    std::vector<xmlNode*> elements = ElementsByTag(*m_document.Get()->tree, tag);
    std::reverse(elements.begin(), elements.end());
    for (xmlNode* element : elements) {
        m_document.Get()->tree->Remove(element);
    }
    return !elements.empty();
}

int XMLParser::GetNodesCount() const
{
    return GetRootNode().GetChildCount();
}

void XMLParser::FormatXml(const XMLDocumentHandle& document, const XMLNodeArray* list, int level)
{
    if (!document) {
        return;
    }
    if (list == nullptr) {
        const xmlNode* root = document.Get()->tree->RootElement();
        encap::FormatSiblings(root != nullptr ? root->children : nullptr, level);
        return;
    }
    for (const XMLNode& node : *list) {
        if (node.IsNode()) {
            encap::FormatNode(NodeOf(node), level);
        }
    }
}

/// The node; without one the document element, and without that the document itself.
IXMLDOMNode* XMLParser::CheckPtr(IXMLDOMNode* node) const
{
    if (node != nullptr || !m_document) {
        return node;
    }
    Tree& tree = *m_document.Get()->tree;
    xmlNode* root = tree.RootElement();
    return encap::ToOpaque(root != nullptr ? root : encap::AsNode(tree.Document()));
}

bool XMLParser::GenericXmlFilename(CString& path)
{
    constexpr std::size_t kMostDirectory = 260;
    const encap::platform::Guid guid = encap::platform::CreateGuid();
    const CString directory = encap::platform::TemporaryDirectory();
    if (guid == encap::platform::Guid() || directory.size() > kMostDirectory) {
        return false;
    }
    path = encap::platform::WithTrailingSeparator(directory) + BracedText(guid) + L".xml";
    return true;
}
