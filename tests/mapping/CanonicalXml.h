#pragma once

#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace encap::test {

inline CString Escaped(const CString& text)
{
    CString out;
    for (const wchar_t character : text) {
        switch (character) {
        case L'&': out += L"&amp;"; break;
        case L'<': out += L"&lt;"; break;
        case L'"': out += L"&quot;"; break;
        default: out += character;
        }
    }
    return out;
}

/// The element as XML in which equal documents have equal texts: an element a line, attributes in
/// the order of their names, comments left out. REQUIRES: elements have either elements or text.
inline CString CanonicalXml(const XMLNode& element, const CString& indent = {})
{
    CString name;
    element.GetNodeName(name);
    CStringArray attributes;
    element.GetProperties(attributes);
    std::sort(attributes.begin(), attributes.end());
    CString out = indent + L"<" + name;
    for (const CString& attribute : attributes) {
        CString value;
        element.GetProperty(attribute.c_str(), value);
        out += L" " + attribute + L"=\"" + Escaped(value) + L"\"";
    }
    XMLNodeArray children;
    element.SelectChildNodes(L"*", children);
    CString text;
    element.GetNodeText(text);
    if (children.empty()) {
        return out + (text.empty() ? L"/>" : L">" + Escaped(text) + L"</" + name + L">") + L"\n";
    }
    out += L">\n";
    for (const XMLNode& child : children) {
        out += CanonicalXml(child, indent + L"  ");
    }
    return out + indent + L"</" + name + L">\n";
}

} // namespace encap::test
