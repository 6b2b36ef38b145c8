#pragma once

#include "encap/mapping/OrderedNodes.h"

#include <string_view>
#include <vector>

namespace encap {

/// Elements that name category parameters in "CategoryParameterRef" children: by the exact
/// identifier (any of the children) and by the folded one (the first attribute).
class CategoryReferences {
public:
    void Add(IXMLDOMNode* element, uint64_t order);
    void Remove(IXMLDOMNode* element, uint64_t order);
    /// The elements with exactly this identifier; when there are none, those without regard to
    /// case. In document order.
    [[nodiscard]] std::vector<IXMLDOMNode*> Find(std::wstring_view id) const;
    [[nodiscard]] IXMLDOMNode* FindFirst(std::wstring_view id) const;
    void Clear();

private:
    OrderedNodes m_exact;
    OrderedNodes m_folded;
};

} // namespace encap
