#include "cli/EditedDocument.h"

#include "cli/CommandError.h"
#include "cli/DocumentChanges.h"
#include "cli/DocumentMerge.h"
#include "cli/ElementMatch.h"
#include "cli/TextFile.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/StringUtil.h"
#include "encap/platform/Files.h"

#include <algorithm>

namespace encap::cli {
namespace {

using namespace std::string_view_literals;

/// A way to hold a text in a file.
struct Form {
    std::string_view mark;
    bool isUtf16;
    bool isBigEndian;
};

constexpr Form kForms[] = {
    {""sv, false, false},        {"\xEF\xBB\xBF"sv, false, false},
    {"\xFF\xFE"sv, true, false}, {"\xFE\xFF"sv, true, true},
    {""sv, true, false},         {""sv, true, true},
};

std::string Encoded(const CString& text, const Form& form)
{
    std::string bytes(form.mark);
    if (!form.isUtf16) {
        platform::AppendUtf8(bytes, text);
        return bytes;
    }
    for (const char16_t unit : platform::WideToUtf16(text)) {
        const char high = static_cast<char>(unit >> 8U);
        const char low = static_cast<char>(unit & 0xFFU);
        bytes += form.isBigEndian ? high : low;
        bytes += form.isBigEndian ? low : high;
    }
    return bytes;
}

/// The way in which a file holds its text; null when it is another encoding.
const Form* FormOf(const std::string& bytes, const CString& text)
{
    const auto* const found =
        std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& form) {
            return bytes.size() >= text.size() && Encoded(text, form) == bytes;
        });
    return found != std::end(kForms) ? found : nullptr;
}

/// A declaration of ASCII is read as UTF-8, which it may not become.
bool DeclaresAscii(const CString& text)
{
    return FoldCase(text.substr(0, text.find(L"?>"))).find(L"us-ascii") != CString::npos;
}

CString XmlOf(const XMLParser& document)
{
    CString xml;
    document.GetXml(xml);
    return xml;
}

/// Tags stand on lines of their own.
bool IsLaidOut(const CString& text)
{
    const std::size_t line = text.find(L'\n', text.find(L"?>") + 3);
    const std::size_t next = text.find_first_not_of(L" \t\r\n", line);
    return line != CString::npos && next != CString::npos && text[next] == L'<';
}

} // namespace

EditedDocument::EditedDocument(CString path, XMLParser document)
    : m_path(std::move(path)), m_oldText(ReadXmlFile(m_path, nullptr)),
      m_document(std::move(document))
{
    if (!platform::ReadWholeFile(m_path, m_oldBytes)) {
        throw FileError(m_path, L"the file cannot be read");
    }
}

bool EditedDocument::IsChanged() const
{
    return !IsSameXml(XMLParser(m_oldText).GetRootNode(), m_document.GetRootNode());
}

std::vector<CString> EditedDocument::Changes() const
{
    return ChangesBetween(XMLParser(m_oldText), m_document);
}

std::string EditedDocument::NewBytes() const
{
    if (!IsChanged()) {
        return m_oldBytes;
    }
    const Form* const form = FormOf(m_oldBytes, m_oldText);
    if (form == nullptr || DeclaresAscii(m_oldText)) {
        return BytesByLibrary();
    }
    const auto merged = MergeIntoText(m_oldText, m_document);
    return merged ? Encoded(*merged, *form) : BytesByLibrary();
}

std::string EditedDocument::BytesByLibrary() const
{
    CString xml = XmlOf(m_document);
    if (!m_oldText.starts_with(L"<?xml")) {
        xml.erase(0, xml.starts_with(L"<?xml") ? xml.find(L"?>") + 2 : 0);
    }
    XMLParser copy(xml);
    const CString temporary = platform::WithTrailingSeparator(platform::TemporaryDirectory()) +
                              CStringUtil::NewGuid() + L".xml";
    std::string bytes;
    const bool isDone = copy.SaveXmlDocument(temporary.c_str(), IsLaidOut(m_oldText)) &&
                        platform::ReadWholeFile(temporary, bytes);
    platform::DeleteFileIfPresent(temporary);
    if (!isDone) {
        throw FileError(m_path, L"the document cannot be written in the encoding that it declares");
    }
    return bytes;
}

} // namespace encap::cli
