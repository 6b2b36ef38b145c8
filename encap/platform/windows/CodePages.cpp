#include "encap/platform/CodePages.h"

#include "encap/foundation/CodePoints.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/windows/WindowsHeaders.h"

#include <algorithm>
#include <string_view>

namespace encap::platform {
namespace {

constexpr UINT kGb18030 = 54936;
constexpr int kOutputFull = -1;
constexpr int kNotConvertible = -2;
constexpr int kLongestCharacter = 4; ///< bytes, in UTF-8 and in every code page

/// A conversion under way: what is left of both buffers, and the sizes to report.
class Buffers {
public:
    Buffers(unsigned char* out, int* outSize, const unsigned char* in, int* inSize)
        : m_outSize(outSize), m_inSize(inSize), m_out(out), m_in(in),
          m_outEnd(out + (in != nullptr ? *outSize : 0)),
          m_inEnd(in + (in != nullptr ? *inSize : 0)), m_outBegin(out), m_inBegin(in)
    {
    }

    [[nodiscard]] int InputLeft() const { return static_cast<int>(m_inEnd - m_in); }
    [[nodiscard]] const unsigned char* Input() const { return m_in; }
    void Skip(int bytes) { m_in += bytes; }
    /// False when the output is full.
    bool Put(const void* bytes, int size)
    {
        if (m_outEnd - m_out < size) {
            return false;
        }
        m_out = std::copy_n(static_cast<const unsigned char*>(bytes), size, m_out);
        return true;
    }
    /// Copies the ASCII characters at the front, as many as there is room for.
    void CopyAscii()
    {
        while (m_in != m_inEnd && m_out != m_outEnd && *m_in < 0x80) {
            *m_out++ = *m_in++;
        }
    }
    /// Reports the sizes; `failure` is one of the codes above, or 0.
    [[nodiscard]] int Finish(int failure) const
    {
        *m_outSize = static_cast<int>(m_out - m_outBegin);
        *m_inSize = static_cast<int>(m_in - m_inBegin);
        return failure != 0 ? failure : *m_outSize;
    }

private:
    int* m_outSize;
    int* m_inSize;
    unsigned char* m_out;
    const unsigned char* m_in;
    unsigned char* m_outEnd;
    const unsigned char* m_inEnd;
    unsigned char* m_outBegin;
    const unsigned char* m_inBegin;
};

/// The bytes of the character at the front, whose first byte is no ASCII; of a character that is
/// cut off more than there are.
int CharacterSize(UINT page, const unsigned char* bytes, int left)
{
    if (page == kGb18030) {
        const bool isLong = left > 1 && bytes[1] >= '0' && bytes[1] <= '9';
        return isLong ? 4 : 2;
    }
    return IsDBCSLeadByteEx(page, bytes[0]) != 0 ? 2 : 1;
}

/// Bytes without a meaning are mapped to a control character or to the end of the private range, so
/// that they come back as they were. In a document they are errors.
bool IsStandIn(std::wstring_view character)
{
    const wchar_t first = character.front();
    return (first >= 0x80 && first < 0xA0) || (first >= 0xF8C0 && first <= 0xF8FF);
}

template <UINT page>
int ToUtf8(unsigned char* out, int* outSize, const unsigned char* in, int* inSize)
{
    Buffers buffers(out, outSize, in, inSize);
    for (buffers.CopyAscii(); buffers.InputLeft() > 0; buffers.CopyAscii()) {
        const unsigned char first = *buffers.Input();
        const int size =
            first < 0x80 ? 1 : CharacterSize(page, buffers.Input(), buffers.InputLeft());
        if (size > buffers.InputLeft()) {
            break;
        }
        wchar_t wide[kLongestCharacter];
        const int units = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS,
                                              reinterpret_cast<const char*>(buffers.Input()), size,
                                              wide, kLongestCharacter);
        const std::wstring_view character(wide, static_cast<std::size_t>(std::max(units, 0)));
        if (character.empty() || IsStandIn(character)) {
            return buffers.Finish(kNotConvertible);
        }
        const std::string utf8 = WideToUtf8(character);
        if (!buffers.Put(utf8.data(), static_cast<int>(utf8.size()))) {
            return buffers.Finish(kOutputFull);
        }
        buffers.Skip(size);
    }
    return buffers.Finish(0);
}

/// The bytes of a character in the code page; 0 for one that it does not have.
int Encode(UINT page, std::wstring_view character, char (&bytes)[kLongestCharacter])
{
    const auto units = static_cast<int>(character.size());
    if (page == kGb18030) {
        return WideCharToMultiByte(page, WC_ERR_INVALID_CHARS, character.data(), units, bytes,
                                   kLongestCharacter, nullptr, nullptr);
    }
    BOOL isReplaced = FALSE;
    const int size = WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, character.data(), units, bytes,
                                         kLongestCharacter, nullptr, &isReplaced);
    return isReplaced != 0 || IsStandIn(character) ? 0 : size;
}

int Utf8Size(unsigned char first)
{
    return first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

template <UINT page>
int FromUtf8(unsigned char* out, int* outSize, const unsigned char* in, int* inSize)
{
    Buffers buffers(out, outSize, in, inSize);
    for (buffers.CopyAscii(); buffers.InputLeft() > 0; buffers.CopyAscii()) {
        const int size = Utf8Size(*buffers.Input());
        if (size > buffers.InputLeft()) {
            break;
        }
        const CString character = Utf8ToWide(std::string_view(
            reinterpret_cast<const char*>(buffers.Input()), static_cast<std::size_t>(size)));
        char bytes[kLongestCharacter];
        const int count = Encode(page, character, bytes);
        if (count <= 0) {
            return buffers.Finish(kNotConvertible);
        }
        if (!buffers.Put(bytes, count)) {
            return buffers.Finish(kOutputFull);
        }
        buffers.Skip(size);
    }
    return buffers.Finish(0);
}

template <UINT page>
constexpr SystemEncoding Encoding(const char* name)
{
    return {name, ToUtf8<page>, FromUtf8<page>};
}

// The numbers are those of Windows' code page identifiers.
constexpr SystemEncoding kEncodings[] = {
    Encoding<1250>("WINDOWS-1250"), Encoding<1251>("WINDOWS-1251"), Encoding<1252>("WINDOWS-1252"),
    Encoding<1253>("WINDOWS-1253"), Encoding<1254>("WINDOWS-1254"), Encoding<1255>("WINDOWS-1255"),
    Encoding<1256>("WINDOWS-1256"), Encoding<1257>("WINDOWS-1257"), Encoding<1258>("WINDOWS-1258"),
    Encoding<874>("WINDOWS-874"),   Encoding<20866>("KOI8-R"),      Encoding<21866>("KOI8-U"),
    Encoding<437>("IBM437"),        Encoding<850>("IBM850"),        Encoding<932>("SHIFT_JIS"),
    Encoding<949>("EUC-KR"),        Encoding<950>("BIG5"),          Encoding<936>("GB2312"),
    Encoding<936>("GBK"),           Encoding<kGb18030>("GB18030"),
};

} // namespace

std::span<const SystemEncoding> SystemEncodings()
{
    return kEncodings;
}

} // namespace encap::platform
