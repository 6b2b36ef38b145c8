#pragma once

#include "encap/family/Family.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FakeProvider.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace encap::test {

/// An open family with its host.
struct TestFamily {
    explicit TestFamily(const CString& xml, const std::vector<CString>& strings = {})
        : family(xml.c_str(), strings, L"", &provider, false)
    {
    }

    CEncapFamily* operator->() { return &family; }
    [[nodiscard]] XMLNode Root() { return family.GetFamilyXML().GetRootNode(); }
    [[nodiscard]] CEncapFamilyTable& Table() { return *family.GetEncapFamilyTable(); }
    /// The evaluated value of a cell, or "#" and the code.
    [[nodiscard]] CString Cell(const wchar_t* row, const wchar_t* column)
    {
        CString value;
        const auto result = Table().GetValue(row, column, value);
        return result == 0 ? value : L"#" + std::to_wstring(static_cast<int>(result));
    }
    /// The strings document at an index.
    [[nodiscard]] XMLNode Strings(int index)
    {
        XMLParser document;
        EXPECT_TRUE(family.GetStringsFamilyXML(index, document));
        return document.GetRootNode();
    }

    FakeProvider provider;
    CEncapFamily family;
};

/// What a getter with a text output gives.
template <class Getter>
CString TextOf(CEncapFamily& family, Getter getter)
{
    CString text = L"left over";
    (family.*getter)(text);
    return text;
}

inline std::size_t CountOf(const XMLNode& node, const wchar_t* path)
{
    XMLNodeArray nodes;
    node.SelectChildNodes(path, nodes);
    return nodes.size();
}

inline CString TextAt(const XMLNode& node, const wchar_t* path)
{
    XMLNode found;
    CString text;
    if (!node.GetChildNode(path, found)) {
        return L"(none)";
    }
    found.GetNodeText(text);
    return text;
}

inline CString Attribute(const XMLNode& node, const wchar_t* name)
{
    CString value;
    return node.GetProperty(name, value) ? value : L"(none)";
}

/// A strings document of a language with a body.
inline CString StringsXml(const CString& language, const CString& body = L"")
{
    return L"<Strings xml:lang=\"" + language + L"\">" + body + L"</Strings>";
}

} // namespace encap::test
