#include "cli/TocFile.h"

#include "cli/CommandError.h"
#include "cli/NodeReads.h"
#include "cli/TextFile.h"
#include "cli/XmlTags.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/toc/TocCategory.h"
#include "encap/xml/XMLNodeArray.h"

#include <set>

namespace encap::cli {
namespace {

/// Tells of the names that occur twice among some entries, and of those without one.
void CheckNames(const XMLNodeArray& entries, const wchar_t* kind, std::vector<CString>& problems)
{
    std::set<CString> names;
    std::set<CString> told;
    int64_t nameless = 0;
    for (const XMLNode& entry : entries) {
        CString name;
        if (!entry.GetProperty(L"InternalName", name)) {
            ++nameless;
        } else if (!names.insert(name).second && told.insert(name).second) {
            problems.push_back(FormatText(L"there is more than one %s with the internal name "
                                          L"\"%s\": the last one holds",
                                          {kind, name}));
        }
    }
    if (nameless > 0) {
        problems.push_back(FormatInteger(nameless) + L" " + kind +
                           (nameless == 1 ? L" entry has" : L" entries have") +
                           L" no internal name and cannot be found");
    }
}

void CheckReferences(const CToc& toc, const XMLNodeArray& categories,
                     std::vector<CString>& problems)
{
    XMLNode found;
    for (const XMLNode& node : categories) {
        std::set<CString> families;
        CTocCategory(node).GetReferencedFamilies(families);
        for (const CString& family : families) {
            if (!toc.GetFamilyInfo(family.c_str(), found)) {
                problems.push_back(FormatText(L"the category \"%s\" refers to the family \"%s\", "
                                              L"which is not listed",
                                              {TitleOf(node), family}));
            }
        }
    }
}

} // namespace

CToc ReadToc(const CString& path)
{
    const CString text = ReadXmlFile(path, nullptr);
    const XMLParser document(text);
    CString name;
    if (!document.GetRootNode().GetNodeName(name)) {
        throw FileError(path, L"not a table of contents: " + ReasonOfRefusal(text));
    }
    if (name != L"TableOfContents") {
        throw FileError(path, L"not a table of contents: its document element is \"" + name +
                                  L"\", not \"TableOfContents\"");
    }
    CToc toc;
    toc.SetToc(document);
    return toc;
}

std::vector<CString> ProblemsOf(const CToc& toc)
{
    std::vector<CString> problems;
    const XMLNode root = toc.GetToc().GetRootNode();
    XMLNodeArray families;
    XMLNodeArray categories;
    root.SelectChildNodes(L"Families/*", families);
    root.SelectChildNodes(L"//Category", categories);
    CheckNames(families, L"family", problems);
    CheckNames(categories, L"category", problems);
    CheckReferences(toc, categories, problems);
    return problems;
}

CString InternalNameOf(const XMLNode& entry)
{
    return PropertyOf(entry, L"InternalName");
}

CString TitleOf(const XMLNode& entry)
{
    CString title;
    return entry.GetProperty(L"DisplayName", title) && !title.empty() ? title
                                                                      : InternalNameOf(entry);
}

} // namespace encap::cli
