#include "encap/xml/XMLNodeArray.h"

XMLNodeArray::~XMLNodeArray() = default;

void XMLNodeArray::GetNodeNames(CStringArray& names) const
{
    for (const XMLNode& node : m_nodes) {
        CString name;
        node.GetNodeName(name);
        names.push_back(std::move(name));
    }
}
