#include "cli/ElementMatch.h"

#include "cli/NodeReads.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace encap::cli {
namespace {

// The first of them that an element has identifies it among its siblings.
constexpr const wchar_t* kIdentities[] = {
    L"ColumnId", L"RowId", L"InternalName", L"TableColumn", L"CategoryParameter", L"Name", L"Id"};

CString NameOf(const XMLNode& element)
{
    CString name;
    element.GetNodeName(name);
    return name;
}

/// They differ in their attributes at most.
bool HaveSameContent(const XMLNode& left, const XMLNode& right)
{
    return NameOf(left) == NameOf(right) && TextOf(left) == TextOf(right) &&
           left.GetChildCount() == right.GetChildCount();
}

} // namespace

std::vector<XMLNode> ElementsOf(const XMLNode& parent)
{
    const XMLNodeArray elements = Selected(parent, L"*");
    return {elements.begin(), elements.end()};
}

CString LabelOf(const XMLNode& element)
{
    CString label = NameOf(element);
    CString value;
    for (const wchar_t* identity : kIdentities) {
        if (element.GetProperty(identity, value)) {
            return label.append(L"[").append(value).append(L"]");
        }
    }
    return label;
}

bool IsSameXml(const XMLNode& left, const XMLNode& right)
{
    CComBSTR leftXml;
    CComBSTR rightXml;
    left.GetXml(leftXml);
    right.GetXml(rightXml);
    return std::wstring_view(leftXml, leftXml.Length()) ==
           std::wstring_view(rightXml, rightXml.Length());
}

ElementMatch::ElementMatch(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is)
    : origins(is.size(), kNone), isMoved(is.size(), false), isRemoved(was.size(), true)
{
    MatchLabels(was, is);
    MatchRenamed(was, is);
    FindMoved();
}

void ElementMatch::MatchLabels(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is)
{
    struct Candidates {
        std::vector<std::size_t> indices;
        std::size_t used = 0;
    };
    std::unordered_map<CString, Candidates> byLabel;
    for (std::size_t i = 0; i < was.size(); ++i) {
        byLabel[LabelOf(was[i])].indices.push_back(i);
    }
    for (std::size_t i = 0; i < is.size(); ++i) {
        const auto found = byLabel.find(LabelOf(is[i]));
        if (found != byLabel.end() && found->second.used < found->second.indices.size()) {
            origins[i] = found->second.indices[found->second.used++];
            isRemoved[origins[i]] = false;
        }
    }
}

void ElementMatch::MatchRenamed(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is)
{
    for (std::size_t i = 0; i < is.size(); ++i) {
        const std::size_t place = i == 0 ? 0 : origins[i - 1] + 1; // kNone + 1 is 0
        if (origins[i] == kNone && place < was.size() && isRemoved[place] &&
            (i == 0 || origins[i - 1] != kNone) && HaveSameContent(was[place], is[i])) {
            origins[i] = place;
            isRemoved[place] = false;
        }
    }
}

/// Moved is what is not in the longest run of children that kept their order.
void ElementMatch::FindMoved()
{
    std::vector<std::size_t> tails; // by length of a run less one: the new child that ends it
    std::vector<std::size_t> previous(origins.size(), kNone);
    for (std::size_t i = 0; i < origins.size(); ++i) {
        if (origins[i] == kNone) {
            continue;
        }
        const auto place = std::lower_bound(
            tails.begin(), tails.end(), i,
            [this](std::size_t tail, std::size_t at) { return origins[tail] < origins[at]; });
        previous[i] = place == tails.begin() ? kNone : *(place - 1);
        if (place == tails.end()) {
            tails.push_back(i);
        } else {
            *place = i;
        }
        isMoved[i] = true;
    }
    for (std::size_t i = tails.empty() ? kNone : tails.back(); i != kNone; i = previous[i]) {
        isMoved[i] = false;
    }
}

} // namespace encap::cli
