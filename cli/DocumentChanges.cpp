#include "cli/DocumentChanges.h"

#include "cli/ElementMatch.h"
#include "cli/NodeReads.h"
#include "encap/foundation/NumberText.h"

#include <algorithm>

namespace encap::cli {
namespace {

CString Quoted(const CString& text)
{
    constexpr std::size_t kMost = 200;
    return L'"' + (text.size() <= kMost ? text : text.substr(0, kMost) + L"...") + L'"';
}

/// But for the one that is in the label.
CString AttributesOf(const XMLNode& element)
{
    const CString label = LabelOf(element);
    CStringArray names;
    element.GetProperties(names);
    CString list;
    bool isShown = false;
    for (const CString& name : names) {
        CString value;
        element.GetProperty(name.c_str(), value);
        if (!isShown && label.ends_with(L'[' + value + L']')) {
            isShown = true;
        } else {
            list += L' ' + name + L'=' + Quoted(value);
        }
    }
    return list;
}

/// What an element that came or went holds, in short.
CString SummaryOf(const XMLNode& element)
{
    const std::vector<XMLNode> children = ElementsOf(element);
    if (children.empty()) {
        const CString text = TextOf(element);
        return AttributesOf(element) + (text.empty() ? CString() : L' ' + Quoted(text));
    }
    CString labels;
    for (const XMLNode& child : children) {
        if (labels.size() > 150) {
            labels += L", ...";
            break;
        }
        const CString text = ElementsOf(child).empty() ? TextOf(child) : CString();
        labels += (labels.empty() ? L"" : L", ") + LabelOf(child);
        labels += text.empty() ? CString() : L' ' + Quoted(text);
    }
    return L" with " + labels;
}

class Comparison {
public:
    void Compare(const XMLNode& before, const XMLNode& after, const CString& path)
    {
        if (IsSameXml(before, after)) {
            return;
        }
        CompareAttributes(before, after, path);
        const std::vector<XMLNode> was = ElementsOf(before);
        const std::vector<XMLNode> is = ElementsOf(after);
        if (was.empty() && is.empty()) {
            Add(path, L"", TextOf(before), TextOf(after));
        } else {
            CompareChildren(was, is, path);
        }
    }
    std::vector<CString> lines;

private:
    void Add(const CString& path, const CString& what, const CString& before, const CString& after)
    {
        if (before != after) {
            lines.push_back(path + what + L": " + Quoted(before) + L" -> " + Quoted(after));
        }
    }
    void CompareAttributes(const XMLNode& before, const XMLNode& after, const CString& path);
    void CompareChildren(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is,
                         const CString& path);
};

void Comparison::CompareAttributes(const XMLNode& before, const XMLNode& after, const CString& path)
{
    CStringArray names;
    before.GetProperties(names);
    after.GetProperties(names);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (std::find(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(i), names[i]) !=
            names.begin() + static_cast<std::ptrdiff_t>(i)) {
            continue;
        }
        CString was;
        CString is;
        before.GetProperty(names[i].c_str(), was);
        after.GetProperty(names[i].c_str(), is);
        Add(path, (path.empty() ? L"@" : L"/@") + names[i], was, is);
    }
}

void Comparison::CompareChildren(const std::vector<XMLNode>& was, const std::vector<XMLNode>& is,
                                 const CString& path)
{
    const CString prefix = path.empty() ? path : path + L'/';
    const ElementMatch match(was, is);
    for (std::size_t i = 0; i < was.size(); ++i) {
        if (match.isRemoved[i]) {
            lines.push_back(prefix + LabelOf(was[i]) + L": removed" + SummaryOf(was[i]));
        }
    }
    for (std::size_t i = 0; i < is.size(); ++i) {
        const std::size_t origin = match.origins[i];
        const auto position = static_cast<int64_t>(i) + 1;
        if (origin == ElementMatch::kNone) {
            lines.push_back(prefix + LabelOf(is[i]) + L": added at position " +
                            FormatInteger(position) + SummaryOf(is[i]));
            continue;
        }
        const CString label = prefix + LabelOf(was[origin]);
        if (match.isMoved[i]) {
            lines.push_back(label + L": moved from position " +
                            FormatInteger(static_cast<int64_t>(origin) + 1) + L" to " +
                            FormatInteger(position));
        }
        Compare(was[origin], is[i], label);
    }
}

} // namespace

std::vector<CString> ChangesBetween(const XMLParser& before, const XMLParser& after)
{
    Comparison comparison;
    comparison.Compare(before.GetRootNode(), after.GetRootNode(), {});
    return std::move(comparison.lines);
}

} // namespace encap::cli
