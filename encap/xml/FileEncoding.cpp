#include "encap/xml/FileEncoding.h"

#include "encap/platform/Encoding.h"
#include "encap/xml/SilentErrors.h"

#include <algorithm>
#include <new>

#include <libxml/encoding.h>
#include <libxml/xmlIO.h>

namespace encap {
namespace {

constexpr std::size_t kBlock = 1 << 20;

bool EqualAsciiNoCase(std::string_view left, std::string_view right)
{
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

std::string Utf16Bytes(std::string_view utf8)
{
    const std::u16string units = platform::WideToUtf16(platform::Utf8ToWide(utf8));
    std::string bytes("\xFF\xFE");
    bytes.reserve(2 * units.size() + 2);
    for (const char16_t unit : units) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

int AppendBytes(void* context, const char* bytes, int size)
{
    try {
        static_cast<std::string*>(context)->append(bytes, static_cast<std::size_t>(size));
        return size;
    } catch (...) {
        return -1;
    }
}

/// The end of the block that begins at the position, not inside a character.
std::size_t BlockEnd(std::string_view utf8, std::size_t position)
{
    std::size_t end = std::min(position + kBlock, utf8.size());
    while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) {
        --end;
    }
    return end;
}

/// Converts through a new converter of that name; characters that are missing become character
/// references.
bool Convert(std::string_view utf8, const std::string& encoding, std::string& bytes)
{
    xmlCharEncodingHandler* handler = xmlFindCharEncodingHandler(encoding.c_str());
    if (handler == nullptr) {
        return false;
    }
    xmlOutputBuffer* output = xmlOutputBufferCreateIO(AppendBytes, nullptr, &bytes, handler);
    if (output == nullptr) {
        throw std::bad_alloc();
    }
    bool isWritten = true;
    for (std::size_t position = 0; isWritten && position < utf8.size();) {
        const std::size_t end = BlockEnd(utf8, position);
        const int size = static_cast<int>(end - position);
        isWritten = xmlOutputBufferWrite(output, size, utf8.data() + position) >= 0;
        position = end;
    }
    return xmlOutputBufferClose(output) >= 0 && isWritten;
}

/// The text of the bytes; empty when they do not convert.
std::string Decode(const std::string& bytes, const std::string& encoding)
{
    constexpr std::size_t kMostGrowth = 4;
    xmlCharEncodingHandler* handler = xmlFindCharEncodingHandler(encoding.c_str());
    xmlBuffer* in = xmlBufferCreateSize(bytes.size() + 1);
    xmlBuffer* out = xmlBufferCreateSize(kMostGrowth * bytes.size() + 1);
    std::string text;
    if (handler != nullptr && in != nullptr && out != nullptr &&
        xmlBufferAdd(in, reinterpret_cast<const xmlChar*>(bytes.data()),
                     static_cast<int>(bytes.size())) == 0 &&
        xmlCharEncInFunc(handler, out, in) >= 0) {
        text.assign(reinterpret_cast<const char*>(xmlBufferContent(out)),
                    static_cast<std::size_t>(xmlBufferLength(out)));
    }
    xmlBufferFree(in);
    xmlBufferFree(out);
    if (handler != nullptr) {
        xmlCharEncCloseFunc(handler);
    }
    return text;
}

/// What is converted without loss comes back as it was.
bool HoldsAll(const std::string& encoding, std::string_view text)
{
    std::string bytes;
    return text.empty() || (Convert(text, encoding, bytes) && Decode(bytes, encoding) == text);
}

} // namespace

bool EncodeForFile(std::string_view utf8, std::string_view bareText, const std::string& encoding,
                   std::string& bytes)
{
    bytes.clear();
    if (encoding.empty() || EqualAsciiNoCase(encoding, "UTF-8")) {
        bytes = utf8;
        return true;
    }
    if (EqualAsciiNoCase(encoding, "UTF-16")) {
        bytes = Utf16Bytes(utf8);
        return true;
    }
    const SilentErrors silent;
    return HoldsAll(encoding, bareText) && Convert(utf8, encoding, bytes);
}

} // namespace encap
