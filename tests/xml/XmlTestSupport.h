#pragma once

#include "encap/platform/Encoding.h"
#include "encap/xml/XMLParser.h"

#include <string>

#include <gtest/gtest.h>

// Texts of nodes in UTF-8, so that failures print them.

inline std::string XmlOf(const XMLNode& node)
{
    CComBSTR xml;
    node.GetXml(xml);
    return encap::platform::WideToUtf8(static_cast<const wchar_t*>(xml));
}

inline std::string XmlOf(const XMLParser& parser)
{
    CString xml;
    parser.GetXml(xml);
    return encap::platform::WideToUtf8(xml);
}

/// The document element as XML text, without the declaration.
inline std::string RootXmlOf(const XMLParser& parser)
{
    return XmlOf(parser.GetRootNode());
}

inline std::string TextOf(const XMLNode& node)
{
    CString text;
    node.GetNodeText(text);
    return encap::platform::WideToUtf8(text);
}

inline CString PropertyOf(const XMLNode& node, const wchar_t* name)
{
    CString value;
    node.GetProperty(name, value);
    return value;
}

inline XMLNode ChildOf(const XMLNode& node, const wchar_t* path)
{
    XMLNode child;
    node.GetChildNode(path, child);
    return child;
}

inline XMLNode ChildOf(const XMLParser& parser, const wchar_t* path)
{
    return ChildOf(parser.GetRootNode(), path);
}
