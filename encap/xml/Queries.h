#pragma once

#include "encap/xml/Tree.h"

#include <vector>

namespace encap {

/// The first node that a query selects from a context node, in document order, or null: by a
/// direct walk where the query's shape allows it, else by XPath. A null text selects nothing.
[[nodiscard]] xmlNode* SelectFirst(xmlNode* context, const wchar_t* query);
/// All selected nodes in document order.
[[nodiscard]] std::vector<xmlNode*> SelectAll(xmlNode* context, const wchar_t* query);
/// What XPath alone gives, for comparison with the direct walk.
[[nodiscard]] std::vector<xmlNode*> SelectAllByXPath(xmlNode* context, const wchar_t* query);

} // namespace encap
