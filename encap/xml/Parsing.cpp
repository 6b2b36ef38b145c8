#include "encap/xml/Parsing.h"

#include "encap/platform/Encoding.h"
#include "encap/xml/SilentErrors.h"
#include "encap/xml/TreeBuilder.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include <libxml/parser.h>

namespace encap {
namespace {

constexpr wchar_t kByteOrderMark = L'\xFEFF';

struct ContextDeleter {
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};

constexpr int kOptions =
    XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;

/// Hands a wide text to the parser in UTF-8 piece by piece: the whole text never stands in memory a
/// second time.
class Utf8Source {
public:
    explicit Utf8Source(std::wstring_view text) : m_rest(text) {}

    static int Read(void* self, char* buffer, int size)
    {
        auto& source = *static_cast<Utf8Source*>(self);
        try {
            return source.Give(buffer, static_cast<std::size_t>(size));
        } catch (...) {
            source.m_failure = std::current_exception();
            return -1;
        }
    }

    void ThrowFailure() const
    {
        if (m_failure != nullptr) {
            std::rethrow_exception(m_failure);
        }
    }

private:
    static constexpr std::size_t kPiece = 4096;

    // As much as is asked for while there is any: behind a short piece, libxml2 2.9 may lose its
    // place between the bytes of a character.
    int Give(char* buffer, std::size_t size)
    {
        std::size_t given = 0;
        while (given < size && (m_position < m_piece.size() || !m_rest.empty())) {
            if (m_position == m_piece.size()) {
                Convert();
            }
            const std::size_t count = std::min(size - given, m_piece.size() - m_position);
            std::copy_n(m_piece.data() + m_position, count, buffer + given);
            m_position += count;
            given += count;
        }
        return static_cast<int>(given);
    }

    void Convert()
    {
        std::size_t size = std::min(kPiece, m_rest.size());
        const auto last = size != 0 ? static_cast<uint32_t>(m_rest[size - 1]) : 0;
        if (size < m_rest.size() && last >= 0xD800 && last < 0xDC00) {
            ++size; // both halves of a surrogate pair belong to one piece
        }
        m_piece.clear();
        m_position = 0;
        platform::AppendUtf8(m_piece, m_rest.substr(0, size));
        m_rest.remove_prefix(size);
    }

    std::wstring_view m_rest;
    std::string m_piece;
    std::size_t m_position = 0;
    std::exception_ptr m_failure;
};

template <class Read>
ParsedDocument Parse(Read read)
{
    InitializeLibrary();
    const std::unique_ptr<xmlParserCtxt, ContextDeleter> context(xmlNewParserCtxt());
    if (context == nullptr) {
        throw std::bad_alloc();
    }
    TreeBuilder builder(context.get());
    // The builder makes the document; the parser has none of its own to give.
    static_cast<void>(read(context.get()));
    if (context->errNo == XML_ERR_NO_MEMORY) {
        throw std::bad_alloc();
    }
    return builder.Take();
}

/// The encoding name in the declaration of a text that parses; empty when it names none.
std::string NamedEncoding(std::string_view xml)
{
    const std::string_view declaration = xml.substr(0, xml.find("?>"));
    const std::size_t quote = declaration.find_first_of("\"'", declaration.find("encoding"));
    if (quote == std::string_view::npos) {
        return {};
    }
    const std::string_view name = declaration.substr(quote + 1);
    return std::string(name.substr(0, name.find(declaration[quote])));
}

/// Hands out bytes piece by piece, of which the parser copies no more than it needs at a time.
int ReadBytes(void* rest, char* buffer, int size)
{
    auto& bytes = *static_cast<std::string_view*>(rest);
    const std::size_t given = bytes.copy(buffer, static_cast<std::size_t>(size));
    bytes.remove_prefix(given);
    return static_cast<int>(given);
}

ParsedDocument ParseBytes(std::string_view bytes, int options)
{
    return Parse([&](xmlParserCtxt* context) {
        return xmlCtxtReadIO(context, ReadBytes, nullptr, &bytes, nullptr, nullptr, options);
    });
}

} // namespace

ParsedDocument ParseText(std::wstring_view xml)
{
    if (!xml.empty() && xml.front() == kByteOrderMark) {
        xml.remove_prefix(1);
    }
    Utf8Source source(xml);
    ParsedDocument parsed = Parse([&](xmlParserCtxt* context) {
        return xmlCtxtReadIO(context, Utf8Source::Read, nullptr, &source, nullptr, nullptr,
                             kOptions | XML_PARSE_IGNORE_ENC);
    });
    source.ThrowFailure();
    if (parsed.declaration.isPresent) {
        parsed.declaration.encoding =
            NamedEncoding(platform::WideToUtf8(xml.substr(0, xml.find(L"?>") + 2)));
    }
    return parsed;
}

ParsedDocument ParseUtf8Text(std::string_view xml)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (xml.starts_with(kMark)) {
        xml.remove_prefix(kMark.size());
    }
    ParsedDocument parsed = ParseBytes(xml, kOptions | XML_PARSE_IGNORE_ENC);
    if (parsed.declaration.isPresent) {
        parsed.declaration.encoding = NamedEncoding(xml);
    }
    return parsed;
}

ParsedDocument ParseFileBytes(std::string_view bytes)
{
    const SilentErrors silent;
    return ParseBytes(bytes, kOptions);
}

} // namespace encap
