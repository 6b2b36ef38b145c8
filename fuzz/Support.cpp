#include "fuzz/Support.h"

#include "encap/platform/Encoding.h"
#include "encap/xml/Document.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace encap::fuzz {

void Require(bool holds, const char* promise)
{
    if (!holds) {
        std::fprintf(stderr, "a promise does not hold: %s\n", promise);
        std::abort();
    }
}

XMLParser ParseBytes(std::string_view bytes)
{
    XMLParser parser;
    parser.SetDocument(XMLDocumentHandle(new IXMLDOMDocument(ParseFileBytes(bytes))));
    return parser;
}

CString XmlOf(const XMLParser& document)
{
    CString xml;
    document.GetXml(xml);
    return xml;
}

CStandaloneEvaluatorProvider& SharedProvider()
{
    static CStandaloneEvaluatorProvider provider;
    return provider;
}

std::pair<std::string_view, std::string_view> SplitAt(std::string_view input, char separator)
{
    const std::size_t place = input.find(separator);
    if (place == std::string_view::npos) {
        return {input, {}};
    }
    return {input.substr(0, place), input.substr(place + 1)};
}

uint8_t Choices::Byte()
{
    if (m_rest.empty()) {
        return 0;
    }
    const auto byte = static_cast<uint8_t>(m_rest.front());
    m_rest.remove_prefix(1);
    return byte;
}

uint32_t Choices::Number()
{
    uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        number = number << 8 | Byte();
    }
    return number;
}

int Choices::Below(int limit)
{
    return limit < 2 ? 0 : (limit > 256 ? static_cast<int>(Number() % 0x7FFFFFFF) : Byte()) % limit;
}

CString Choices::Text()
{
    const uint8_t length = Byte();
    const std::string_view piece = m_rest.substr(0, length % 32);
    m_rest.remove_prefix(piece.size());
    const CString text = platform::Utf8ToWide(piece);
    CString repeated;
    for (std::size_t i = length < 248 ? 1 : 300; i > 0; --i) {
        repeated += text;
    }
    return repeated;
}

} // namespace encap::fuzz
