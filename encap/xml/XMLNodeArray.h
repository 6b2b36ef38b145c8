#pragma once

#include "encap/xml/XMLNode.h"

#include <cstddef>
#include <vector>

/// An ordered list of nodes by value: copies of the array refer to the same nodes. It does not
/// follow later edits of the document. Threads: as XMLNode.
class ENCAP_API XMLNodeArray {
public:
    using const_iterator = std::vector<XMLNode>::const_iterator;
    using iterator = std::vector<XMLNode>::iterator;

    XMLNodeArray() = default;
    XMLNodeArray(const XMLNodeArray&) = default;
    XMLNodeArray(XMLNodeArray&&) noexcept = default;
    XMLNodeArray& operator=(const XMLNodeArray&) = default;
    XMLNodeArray& operator=(XMLNodeArray&&) noexcept = default;
    virtual ~XMLNodeArray();

    [[nodiscard]] std::size_t size() const { return m_nodes.size(); }
    [[nodiscard]] bool empty() const { return m_nodes.empty(); }
    /// REQUIRES: index < size().
    [[nodiscard]] const XMLNode& operator[](std::size_t index) const { return m_nodes[index]; }
    [[nodiscard]] XMLNode& operator[](std::size_t index) { return m_nodes[index]; }
    [[nodiscard]] const_iterator begin() const { return m_nodes.begin(); }
    [[nodiscard]] const_iterator end() const { return m_nodes.end(); }
    [[nodiscard]] iterator begin() { return m_nodes.begin(); }
    [[nodiscard]] iterator end() { return m_nodes.end(); }

    void push_back(XMLNode node) { m_nodes.push_back(std::move(node)); }
    void reserve(std::size_t count) { m_nodes.reserve(count); }
    void clear() { m_nodes.clear(); }

    /// Appends the name of every node in order; an empty node gives an empty name.
    void GetNodeNames(CStringArray& names) const;

private:
    std::vector<XMLNode> m_nodes;
};
