#include "encap/mapping/OrderedNodes.h"

namespace encap {

void OrderedNodes::Add(std::string key, uint64_t order, IXMLDOMNode* node)
{
    m_nodes.insert_or_assign({std::move(key), order}, node);
}

void OrderedNodes::Remove(const std::string& key, uint64_t order)
{
    m_nodes.erase({key, order});
}

IXMLDOMNode* OrderedNodes::First(const std::string& key) const
{
    const auto found = m_nodes.lower_bound({key, 0});
    return found != m_nodes.end() && found->first.first == key ? found->second : nullptr;
}

std::vector<IXMLDOMNode*> OrderedNodes::All(const std::string& key) const
{
    std::vector<IXMLDOMNode*> nodes;
    for (auto found = m_nodes.lower_bound({key, 0});
         found != m_nodes.end() && found->first.first == key; ++found) {
        nodes.push_back(found->second);
    }
    return nodes;
}

void DocumentOrder::AddParent(IXMLDOMNode* parent)
{
    m_parents.try_emplace(parent, Parent{m_parents.size(), 0});
}

bool DocumentOrder::AddChild(IXMLDOMNode* parent, IXMLDOMNode* child, uint64_t& order)
{
    const auto found = m_parents.find(parent);
    if (found == m_parents.end()) {
        return false;
    }
    order = (found->second.number << 32U) + found->second.children++;
    m_children[child] = order;
    return true;
}

bool DocumentOrder::Find(IXMLDOMNode* child, uint64_t& order) const
{
    const auto found = m_children.find(child);
    if (found == m_children.end()) {
        return false;
    }
    order = found->second;
    return true;
}

void DocumentOrder::RemoveChild(IXMLDOMNode* child)
{
    m_children.erase(child);
}

void DocumentOrder::Clear()
{
    m_parents.clear();
    m_children.clear();
}

} // namespace encap
