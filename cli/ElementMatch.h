#pragma once

#include "encap/xml/XMLNode.h"

#include <cstddef>
#include <vector>

// What has become of the elements of a document: the basis of the list of changes and of writing a
// changed document into its old text.
namespace encap::cli {

/// The child elements in order.
[[nodiscard]] std::vector<XMLNode> ElementsOf(const XMLNode& parent);
/// The element's name with what identifies it: "Cell[D]", "Column[D]", "Rows".
[[nodiscard]] CString LabelOf(const XMLNode& element);
/// The two subtrees are written alike.
[[nodiscard]] bool IsSameXml(const XMLNode& left, const XMLNode& right);

/// Which of the old child elements each new one comes from: the one of the same label, of several
/// the first that is left; then, where an old one is gone and a new one of the same name and
/// content stands in its place, that one (an element that was renamed).
struct ElementMatch {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    ElementMatch(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is);

    /// By new child: the index of the old one, or kNone.
    std::vector<std::size_t> origins;
    /// By new child: it comes from an old one and stands at another place among the others.
    std::vector<bool> isMoved;
    /// By old child: it is gone.
    std::vector<bool> isRemoved;

private:
    void MatchLabels(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is);
    void MatchRenamed(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is);
    void FindMoved();
};

} // namespace encap::cli
