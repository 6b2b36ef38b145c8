#pragma once

#include "encap/xml/XMLNode.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace encap {

/// Elements by a text, each text's elements in document order.
class OrderedNodes {
public:
    void Add(std::string key, uint64_t order, IXMLDOMNode* node);
    void Remove(const std::string& key, uint64_t order);
    /// Null when there is none.
    [[nodiscard]] IXMLDOMNode* First(const std::string& key) const;
    [[nodiscard]] std::vector<IXMLDOMNode*> All(const std::string& key) const;
    void Clear() { m_nodes.clear(); }

private:
    std::map<std::pair<std::string, uint64_t>, IXMLDOMNode*> m_nodes;
};

/// Gives the children of a few parents numbers that grow in document order, as long as new children
/// come last.
class DocumentOrder {
public:
    /// The next parent in document order.
    void AddParent(IXMLDOMNode* parent);
    /// The number of a new last child; false when the parent is not one of them.
    bool AddChild(IXMLDOMNode* parent, IXMLDOMNode* child, uint64_t& order);
    [[nodiscard]] bool Find(IXMLDOMNode* child, uint64_t& order) const;
    void RemoveChild(IXMLDOMNode* child);
    void Clear();

private:
    struct Parent {
        uint64_t number = 0;
        uint64_t children = 0;
    };

    std::unordered_map<IXMLDOMNode*, Parent> m_parents;
    std::unordered_map<IXMLDOMNode*, uint64_t> m_children;
};

} // namespace encap
