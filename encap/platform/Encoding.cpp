#include "encap/platform/Encoding.h"

#include "encap/foundation/CodePoints.h"

#include <algorithm>

namespace encap::platform {
namespace {

constexpr std::size_t kBlock = 16;
constexpr std::size_t kMostBytesOfUnit = sizeof(wchar_t) == 2 ? 3 : 4;

/// Copies the ASCII characters at the start, as many as there are, and returns their number. Whole
/// blocks are judged and copied without a branch per character, which compilers turn into vectors.
template <class From, class To>
std::size_t CopyAscii(const From* from, std::size_t count, To* to)
{
    std::size_t done = 0;
    for (; done + kBlock <= count; done += kBlock) {
        uint32_t all = 0;
        for (std::size_t i = 0; i < kBlock; ++i) {
            all |= static_cast<uint32_t>(from[done + i]);
        }
        if ((all & ~uint32_t{0x7F}) != 0) {
            break;
        }
        for (std::size_t i = 0; i < kBlock; ++i) {
            to[done + i] = static_cast<To>(from[done + i]);
        }
    }
    for (; done < count && static_cast<uint32_t>(from[done]) < 0x80; ++done) {
        to[done] = static_cast<To>(from[done]);
    }
    return done;
}

char* WriteUtf8(char* out, char32_t codePoint)
{
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
    const auto putRest = [&](int shift) { put(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0 | (codePoint >> 6));
        putRest(0);
    } else if (codePoint < 0x10000) {
        put(0xE0 | (codePoint >> 12));
        putRest(6);
        putRest(0);
    } else {
        put(0xF0 | (codePoint >> 18));
        putRest(12);
        putRest(6);
        putRest(0);
    }
    return out;
}

/// What a first byte asks of the bytes behind it: their number, and the range of the second byte,
/// which shuts out overlong forms, surrogates and values past U+10FFFF (the Unicode Standard,
/// table "Well-Formed UTF-8 Byte Sequences").
struct Utf8Lead {
    int following = 0; ///< 0: not a first byte
    unsigned char lowestSecond = 0x80;
    unsigned char highestSecond = 0xBF;
    char32_t bits = 0;
};

Utf8Lead LeadOf(unsigned char byte)
{
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {1, 0x80, 0xBF, byte & 0x1FU};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        const auto lowest = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80);
        const auto highest = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF);
        return {2, lowest, highest, byte & 0x0FU};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        const auto lowest = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80);
        const auto highest = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF);
        return {3, lowest, highest, byte & 0x07U};
    }
    return {};
}

/// Reads one character beyond ASCII; U+FFFD for each longest piece that begins a sequence and does
/// not complete it. REQUIRES: position != end.
char32_t NextUtf8(const char*& position, const char* end)
{
    const Utf8Lead lead = LeadOf(static_cast<unsigned char>(*position++));
    if (lead.following == 0) {
        return kReplacementCharacter;
    }
    char32_t codePoint = lead.bits;
    for (int i = 0; i < lead.following; ++i) {
        const int lowest = i == 0 ? lead.lowestSecond : 0x80;
        const int highest = i == 0 ? lead.highestSecond : 0xBF;
        const int byte = position != end ? static_cast<unsigned char>(*position) : -1;
        if (byte < lowest || byte > highest) {
            return kReplacementCharacter;
        }
        codePoint = (codePoint << 6) | (static_cast<char32_t>(byte) & 0x3F);
        ++position;
    }
    return codePoint;
}

} // namespace

std::string WideToUtf8(std::wstring_view text)
{
    std::string out;
    AppendUtf8(out, text);
    return out;
}

void AppendUtf8(std::string& out, std::wstring_view text)
{
    const std::size_t size = out.size();
    out.resize(size + text.size());
    const std::size_t ascii = CopyAscii(text.data(), text.size(), out.data() + size);
    if (ascii == text.size()) {
        return;
    }

    out.resize(size + ascii + (text.size() - ascii) * kMostBytesOfUnit);
    char* write = out.data() + size + ascii;
    const wchar_t* const end = text.data() + text.size();
    for (const wchar_t* position = text.data() + ascii; position != end;) {
        const char32_t codePoint = NextCodePoint(position, end);
        const bool valid = codePoint <= kLastCodePoint && !IsSurrogate(codePoint);
        write = WriteUtf8(write, valid ? codePoint : kReplacementCharacter);
    }
    out.resize(static_cast<std::size_t>(write - out.data()));
}

CString Utf8ToWide(std::string_view bytes)
{
    CString out;
    AppendWide(out, bytes);
    return out;
}

void AssignWide(CString& out, std::string_view utf8)
{
    out.clear();
    AppendWide(out, utf8);
}

void AppendWide(CString& out, std::string_view utf8)
{
    // No character takes more wide units than bytes.
    const std::size_t size = out.size();
    out.resize(size + utf8.size());
    wchar_t* write = out.data() + size;
    const char* position = utf8.data();
    const char* const end = position + utf8.size();
    for (;;) {
        const std::size_t ascii =
            CopyAscii(position, static_cast<std::size_t>(end - position), write);
        position += ascii;
        write += ascii;
        if (position == end) {
            break;
        }
        write = WriteCodePoint(write, NextUtf8(position, end));
    }
    out.resize(static_cast<std::size_t>(write - out.data()));
}

std::u16string WideToUtf16(std::wstring_view text)
{
    std::u16string out(text.size() * (sizeof(wchar_t) == 2 ? 1 : 2), u'\0');
    char16_t* write = out.data();
    for (const wchar_t unit : text) {
        const auto value = static_cast<char32_t>(unit);
        write = WriteCodePoint(write, value <= kLastCodePoint ? value : kReplacementCharacter);
    }
    out.resize(static_cast<std::size_t>(write - out.data()));
    return out;
}

CString Utf16ToWide(std::u16string_view units)
{
    CString out(units.size(), L'\0');
    wchar_t* write = out.data();
    const char16_t* const end = units.data() + units.size();
    for (const char16_t* position = units.data(); position != end;) {
        write = WriteCodePoint(write, NextCodePoint(position, end));
    }
    out.resize(static_cast<std::size_t>(write - out.data()));
    return out;
}

} // namespace encap::platform
