#include "cli/DocumentHead.h"

#include "cli/CommandError.h"
#include "cli/Paths.h"
#include "cli/TextFile.h"
#include "cli/XmlTags.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/XMLParser.h"

#include <fstream>
#include <optional>
#include <string>

namespace encap::cli {
namespace {

constexpr std::size_t kHeadSize = std::size_t{16} << 10;

std::string FirstBytes(const CString& path)
{
    std::ifstream file(NativePath(path), std::ios::binary);
    std::string bytes(kHeadSize, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

/// The document element without its children, with what its start tag says.
XMLNode ElementOf(const XmlTags& tags, XMLParser& parser)
{
    CString tag(tags.Whole());
    if (tags.Kind() == XmlTags::Tag::Opening) {
        tag.insert(tag.size() - 1, 1, L'/');
    }
    parser = XMLParser(tag);
    return parser.GetRootNode();
}

/// The kind that the document element's name and attributes tell; Other when they tell none.
DocumentHead HeadOfElement(const XmlTags& tags)
{
    DocumentHead head;
    XMLParser parser;
    const XMLNode element = ElementOf(tags, parser);
    CString language;
    element.GetProperty(L"InternalName", head.internalName);
    const bool isStrings = element.GetProperty(L"xml:lang", language);
    const bool isToc = tags.Name() == L"TableOfContents";
    head.kind = isToc       ? DocumentKind::TableOfContents
                : isStrings ? DocumentKind::Strings
                            : DocumentKind::Other;
    return head;
}

/// Nothing when the text ends before it is clear.
std::optional<DocumentHead> HeadOf(std::wstring_view text)
{
    XmlTags tags(text);
    if (!tags.Next() || tags.Kind() == XmlTags::Tag::DocumentType) {
        return std::nullopt;
    }
    DocumentHead head = HeadOfElement(tags);
    if (head.kind != DocumentKind::Other || tags.Kind() == XmlTags::Tag::Empty) {
        return head;
    }
    while (tags.Next()) {
        const bool isOpening = tags.Kind() == XmlTags::Tag::Opening;
        const bool isChild =
            isOpening ? tags.Depth() == 2 : tags.Kind() == XmlTags::Tag::Empty && tags.Depth() == 1;
        if (isChild && tags.Name() == L"FamilyTable") {
            head.kind = DocumentKind::Family;
            return head;
        }
        if (tags.Depth() == 0) {
            return head;
        }
    }
    return std::nullopt;
}

/// UTF-16 and the like, which show zeros among their first bytes.
bool IsByteText(std::string_view bytes)
{
    return bytes.substr(0, 4).find('\0') == std::string_view::npos &&
           !bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF");
}

} // namespace

DocumentHead ReadDocumentHead(const CString& path)
{
    const std::string bytes = FirstBytes(path);
    if (bytes.empty()) {
        return {};
    }
    // Names and tags are ASCII in every encoding of bytes that is used.
    if (IsByteText(bytes)) {
        const std::size_t mark = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
        const auto head = HeadOf(platform::Utf8ToWide(std::string_view(bytes).substr(mark)));
        if (head || bytes.size() < kHeadSize) {
            return head.value_or(DocumentHead());
        }
    }
    try {
        return HeadOf(ReadXmlFile(path, nullptr)).value_or(DocumentHead());
    } catch (const FileError&) {
        return {};
    }
}

} // namespace encap::cli
