#pragma once

#include "encap/foundation/Types.h"

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace encap {

/// An immutable text, or none, in 16 bytes: up to 15 characters below U+0100 lie inside, anything
/// else (lone surrogates included) in one heap block. Made for tables of evaluated values, most of
/// which are short numbers.
class CompactText {
public:
    CompactText() { m_bytes[kTag] = kNone; }
    explicit CompactText(std::wstring_view text);
    CompactText(CompactText&& other) noexcept : m_bytes(other.m_bytes)
    {
        other.m_bytes[kTag] = kNone;
    }
    CompactText& operator=(CompactText&& other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    CompactText(const CompactText&) = delete;
    CompactText& operator=(const CompactText&) = delete;
    ~CompactText()
    {
        if (m_bytes[kTag] == kHeap) {
            delete HeapText();
        }
    }

    [[nodiscard]] bool HasValue() const { return m_bytes[kTag] != kNone; }
    /// Replaces out by the text. REQUIRES: HasValue().
    void CopyTo(CString& out) const
    {
        const std::size_t length = m_bytes[kTag];
        if (length == kHeap) {
            out = *HeapText();
            return;
        }
        out.resize(length);
        for (std::size_t i = 0; i < length; ++i) {
            out[i] = static_cast<wchar_t>(m_bytes[i]);
        }
    }

private:
    static constexpr std::size_t kTag = 15;
    static constexpr unsigned char kHeap = 0xFE;
    static constexpr unsigned char kNone = 0xFF;

    [[nodiscard]] CString* HeapText() const
    {
        CString* text = nullptr;
        std::memcpy(&text, m_bytes.data(), sizeof(text));
        return text;
    }

    /// The characters, or the pointer to the heap block; the last byte is the length or a mark.
    std::array<unsigned char, 16> m_bytes;
};

inline CompactText::CompactText(std::wstring_view text)
{
    m_bytes[kTag] = kNone;
    bool fits = text.size() <= kTag;
    for (std::size_t i = 0; fits && i < text.size(); ++i) {
        fits = static_cast<uint32_t>(text[i]) < 0x100;
        m_bytes[i] = static_cast<unsigned char>(text[i]);
    }
    if (fits) {
        m_bytes[kTag] = static_cast<unsigned char>(text.size());
        return;
    }
    const auto* heapText = new CString(text);
    std::memcpy(m_bytes.data(), &heapText, sizeof(heapText));
    m_bytes[kTag] = kHeap;
}

} // namespace encap
