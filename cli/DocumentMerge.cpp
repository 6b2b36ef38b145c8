#include "cli/DocumentMerge.h"

#include "cli/ElementMatch.h"
#include "cli/NodeReads.h"
#include "cli/XmlTags.h"
#include "encap/foundation/TextFormat.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr std::wstring_view kBlanks = L" \t\r\n";

/// Where an element stands in a text.
struct Place {
    std::size_t begin = 0;
    std::size_t tagEnd = 0;  ///< behind its opening tag
    std::size_t closing = 0; ///< its closing tag; its end when it has none
    std::size_t end = 0;
    std::vector<Place> children;
};

/// The document element's.
Place PlaceOfRoot(std::wstring_view text)
{
    std::vector<Place> open(1);
    for (XmlTags tags(text); tags.Next();) {
        if (tags.Kind() == XmlTags::Tag::Opening || tags.Kind() == XmlTags::Tag::Empty) {
            open.push_back({tags.Begin(), tags.End(), tags.End(), tags.End(), {}});
        }
        if (tags.Kind() == XmlTags::Tag::Opening || open.size() < 2) {
            continue;
        }
        Place closed = std::move(open.back());
        open.pop_back();
        if (tags.Kind() == XmlTags::Tag::Closing) {
            closed.closing = tags.Begin();
            closed.end = tags.End();
        }
        open.back().children.push_back(std::move(closed));
    }
    return open.front().children.empty() ? Place() : std::move(open.front().children.front());
}

CString Escaped(std::wstring_view text, bool isAttribute)
{
    CString out;
    for (const wchar_t character : text) {
        switch (character) {
        case L'&': out += L"&amp;"; break;
        case L'<': out += L"&lt;"; break;
        case L'>': out += L"&gt;"; break;
        case L'\r': out += L"&#13;"; break;
        case L'"': out += isAttribute ? L"&quot;" : L"\""; break;
        case L'\'': out += isAttribute ? L"&apos;" : L"'"; break;
        case L'\t': out += isAttribute ? L"&#9;" : L"\t"; break;
        case L'\n': out += isAttribute ? L"&#10;" : L"\n"; break;
        default: out += character;
        }
    }
    return out;
}

/// The line break and the blanks at the end of a gap between two tags; empty when they stand on
/// one line.
CString IndentationIn(std::wstring_view gap)
{
    const std::size_t line = gap.rfind(L'\n');
    if (line == std::wstring_view::npos || !TrimView(gap.substr(line)).empty()) {
        return {};
    }
    return CString(gap.substr(line > 0 && gap[line - 1] == L'\r' ? line - 1 : line));
}

CStringArray PropertyNames(const XMLNode& node)
{
    CStringArray names;
    node.GetProperties(names);
    return names;
}

bool Holds(const CStringArray& names, std::wstring_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

class Merge {
public:
    explicit Merge(std::wstring_view text) : m_text(text), m_root(PlaceOfRoot(text))
    {
        m_emptyEnd = text.find(L" />") != std::wstring_view::npos ? L" />" : L"/>";
        if (!m_root.children.empty()) {
            const CString first = IndentationIn(GapBefore(m_root, 0));
            m_step = first.substr(std::min(first.size(), first.find_first_of(L" \t")));
        }
    }
    CString Text(const XMLNode& before, const XMLNode& after)
    {
        m_out.assign(m_text.substr(0, m_root.begin));
        WriteElement(m_root, before, after);
        m_out += m_text.substr(m_root.end);
        return std::move(m_out);
    }

private:
    [[nodiscard]] std::wstring_view Slice(std::size_t begin, std::size_t end) const
    {
        return m_text.substr(begin, end - begin);
    }
    [[nodiscard]] std::wstring_view GapBefore(const Place& parent, std::size_t child) const
    {
        const std::size_t begin = child == 0 ? parent.tagEnd : parent.children[child - 1].end;
        return Slice(begin, parent.children[child].begin);
    }
    [[nodiscard]] CString IndentationOf(const Place& place) const
    {
        return IndentationIn(m_text.substr(0, place.begin));
    }

    void WriteElement(const Place& place, const XMLNode& before, const XMLNode& after);
    std::wstring_view WriteTag(const Place& place, const XMLNode& before, const XMLNode& after);
    void WriteChildren(const Place& place, const std::vector<XMLNode>& was,
                       const std::vector<XMLNode>& is);
    void WriteCommentsBefore(const Place& place, const ElementMatch& match, std::size_t child,
                             std::size_t& next);
    void WriteLostGaps(const Place& place, std::size_t& next, std::size_t end);
    void WriteNew(const XMLNode& element, const CString& indentation, bool isIndented);
    [[nodiscard]] bool IsLaidOut(const Place& parent, const std::vector<XMLNode>& was,
                                 const XMLNode& element, const CString& indentation) const;

    std::wstring_view m_text;
    Place m_root;
    const wchar_t* m_emptyEnd;
    CString m_step = L"  ";
    CString m_out;
};

void Merge::WriteElement(const Place& place, const XMLNode& before, const XMLNode& after)
{
    if (IsSameXml(before, after)) {
        m_out += Slice(place.begin, place.end);
        return;
    }
    const std::vector<XMLNode> was = ElementsOf(before);
    const std::vector<XMLNode> is = ElementsOf(after);
    const std::wstring_view tagEnd = WriteTag(place, before, after);
    const bool isLeaf = was.empty() && is.empty();
    if (isLeaf && TextOf(before) == TextOf(after)) {
        m_out += tagEnd;
        m_out += Slice(place.tagEnd, place.end);
        return;
    }
    const bool hasClosingTag = place.closing != place.end;
    m_out += hasClosingTag ? tagEnd : std::wstring_view(L">");
    if (isLeaf) {
        m_out += Escaped(TextOf(after), false);
    } else {
        WriteChildren(place, was, is);
    }
    CString name;
    after.GetNodeName(name);
    m_out += hasClosingTag ? CString(Slice(place.closing, place.end)) : L"</" + name + L'>';
}

/// The opening tag with the attributes as they are now, up to its end (">", "/>" with blanks
/// before), which is returned.
std::wstring_view Merge::WriteTag(const Place& place, const XMLNode& before, const XMLNode& after)
{
    const std::wstring_view tag = Slice(place.begin, place.tagEnd);
    const CStringArray names = PropertyNames(after);
    const CStringArray oldNames = PropertyNames(before);
    std::size_t position = tag.find_first_of(L" \t\r\n/>");
    m_out += tag.substr(0, position);
    while (true) {
        const std::size_t start = tag.find_first_not_of(kBlanks, position);
        if (tag[start] == L'/' || tag[start] == L'>') {
            break;
        }
        const CString name(tag.substr(start, tag.find_first_of(L" \t\r\n=", start) - start));
        const std::size_t quote = tag.find_first_of(L"\"'", start);
        const std::size_t end = tag.find(tag[quote], quote + 1) + 1;
        if (PropertyOf(before, name.c_str()) == PropertyOf(after, name.c_str()) &&
            Holds(names, name)) {
            m_out += tag.substr(position, end - position);
        } else if (Holds(names, name)) {
            m_out += tag.substr(position, quote + 1 - position);
            m_out += Escaped(PropertyOf(after, name.c_str()), true) + tag[quote];
        }
        position = end;
    }
    for (const CString& name : names) {
        if (!Holds(oldNames, name)) {
            m_out += L' ' + name + L"=\"" + Escaped(PropertyOf(after, name.c_str()), true) + L'"';
        }
    }
    return tag.substr(position);
}

void Merge::WriteChildren(const Place& place, const std::vector<XMLNode>& was,
                          const std::vector<XMLNode>& is)
{
    const ElementMatch match(was, is);
    CString indentation = was.empty() ? IndentationOf(place) : IndentationIn(GapBefore(place, 0));
    const CString closing = indentation;
    if (was.empty() && !indentation.empty()) {
        indentation += m_step;
    }
    std::size_t next = 0; // the old child whose gap comes next
    for (std::size_t i = 0; i < is.size(); ++i) {
        const std::size_t origin = match.origins[i];
        if (origin == ElementMatch::kNone || match.isMoved[i]) {
            WriteCommentsBefore(place, match, i, next);
        }
        if (origin == ElementMatch::kNone) {
            m_out += indentation;
            WriteNew(is[i], indentation, IsLaidOut(place, was, is[i], indentation));
            continue;
        }
        if (match.isMoved[i] || next > origin) {
            m_out += indentation;
        } else {
            WriteLostGaps(place, next, origin);
            m_out += GapBefore(place, origin);
            next = origin + 1;
        }
        WriteElement(place.children[origin], was[origin], is[i]);
    }
    WriteLostGaps(place, next, was.size());
    if (was.empty()) {
        m_out += closing;
    } else {
        m_out += Slice(place.children.back().end, place.closing);
    }
}

/// Elements are put between a comment and the element that it stands before.
void Merge::WriteCommentsBefore(const Place& place, const ElementMatch& match, std::size_t child,
                                std::size_t& next)
{
    while (child < match.origins.size() &&
           (match.origins[child] == ElementMatch::kNone || match.isMoved[child])) {
        ++child;
    }
    const std::size_t follower =
        child < match.origins.size() ? match.origins[child] : place.children.size();
    if (follower < place.children.size() && !TrimView(GapBefore(place, follower)).empty()) {
        WriteLostGaps(place, next, follower + 1);
    }
}

/// What stood before children that are gone or have moved away stays when it is not blank: a
/// comment.
void Merge::WriteLostGaps(const Place& place, std::size_t& next, std::size_t end)
{
    for (; next < end; ++next) {
        const std::wstring_view gap = GapBefore(place, next);
        const std::wstring_view content = TrimView(gap);
        if (!content.empty()) {
            m_out += gap.substr(0, static_cast<std::size_t>(content.data() - gap.data()) +
                                       content.size());
        }
    }
}

/// Whether the children of a new element stand on lines of their own: as in a sibling of that name.
bool Merge::IsLaidOut(const Place& parent, const std::vector<XMLNode>& was, const XMLNode& element,
                      const CString& indentation) const
{
    CString name;
    element.GetNodeName(name);
    for (std::size_t i = 0; i < was.size(); ++i) {
        CString other;
        was[i].GetNodeName(other);
        if (other == name && !parent.children[i].children.empty()) {
            return !IndentationIn(GapBefore(parent.children[i], 0)).empty();
        }
    }
    return !indentation.empty();
}

void Merge::WriteNew(const XMLNode& element, const CString& indentation, bool isIndented)
{
    CString name;
    element.GetNodeName(name);
    m_out += L'<' + name;
    for (const CString& property : PropertyNames(element)) {
        m_out +=
            L' ' + property + L"=\"" + Escaped(PropertyOf(element, property.c_str()), true) + L'"';
    }
    const std::vector<XMLNode> children = ElementsOf(element);
    const CString text = children.empty() ? TextOf(element) : CString();
    if (children.empty() && text.empty()) {
        m_out += m_emptyEnd;
        return;
    }
    m_out += L'>' + Escaped(text, false);
    for (const XMLNode& child : children) {
        m_out += isIndented ? indentation + m_step : CString();
        WriteNew(child, indentation + m_step, isIndented);
    }
    m_out += (isIndented && !children.empty() ? indentation : CString()) + L"</" + name + L'>';
}

} // namespace

std::optional<CString> MergeIntoText(const CString& oldText, const XMLParser& changed)
{
    const XMLParser before(oldText);
    CString text = Merge(oldText).Text(before.GetRootNode(), changed.GetRootNode());
    const bool isSame = IsSameXml(XMLParser(text).GetRootNode(), changed.GetRootNode());
    return isSame ? std::optional<CString>(std::move(text)) : std::nullopt;
}

} // namespace encap::cli
