#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <libxml/xpath.h>

namespace encap {

/// The XPath engine of one tree, with the expressions it has compiled so far; a bounded number is
/// kept. Owned by the tree.
class XPathQueries {
public:
    /// For the nodes of this document.
    explicit XPathQueries(xmlDoc* document);
    XPathQueries(const XPathQueries&) = delete;
    XPathQueries& operator=(const XPathQueries&) = delete;

    /// Appends the nodes that the expression selects from the context node, in document order,
    /// namespace nodes left out; nothing for an expression that is not valid, does not give
    /// nodes or asks for more work than any real query needs.
    void Select(xmlNode* context, std::string_view expression, std::vector<xmlNode*>& nodes);

private:
    [[nodiscard]] xmlXPathCompExpr* Compiled(std::string_view expression);
    void ResetLimits();

    struct ContextDeleter {
        void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
    };
    struct ExpressionDeleter {
        void operator()(xmlXPathCompExpr* compiled) const { xmlXPathFreeCompExpr(compiled); }
    };

    std::unique_ptr<xmlXPathContext, ContextDeleter> m_context;
    std::unordered_map<std::string, std::unique_ptr<xmlXPathCompExpr, ExpressionDeleter>>
        m_compiled;
};

} // namespace encap
