#include "encap/table/Archive.h"

#include "encap/platform/Encoding.h"

namespace encap {

namespace {

constexpr uint32_t kMarkerByte = 0xFF; // announces the marker of a Unicode text
constexpr uint32_t kUnicodeMarker = 0xFFFE;
constexpr uint32_t kLongByte = 0xFF;   // the length stands in the next 16 bits
constexpr uint32_t kLongWord = 0xFFFF; // the length stands in the next 32 bits

} // namespace

void ArchiveWriter::WriteLittleEndian(uint32_t value, int byteCount)
{
    for (int i = 0; i < byteCount; ++i) {
        m_bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFFU));
    }
}

void ArchiveWriter::WriteUInt16(uint16_t value)
{
    WriteLittleEndian(value, 2);
}

void ArchiveWriter::WriteInt32(int32_t value)
{
    WriteLittleEndian(static_cast<uint32_t>(value), 4);
}

void ArchiveWriter::WriteLength(std::size_t units)
{
    if (units < kLongByte) {
        WriteLittleEndian(static_cast<uint32_t>(units), 1);
        return;
    }
    WriteLittleEndian(kLongByte, 1);
    // 0xFFFE would read as a second Unicode marker.
    if (units < kUnicodeMarker) {
        WriteLittleEndian(static_cast<uint32_t>(units), 2);
        return;
    }
    WriteLittleEndian(kLongWord, 2);
    WriteLittleEndian(static_cast<uint32_t>(units), 4);
}

void ArchiveWriter::WriteText(std::wstring_view text)
{
    const std::u16string units = platform::WideToUtf16(text);
    WriteLittleEndian(kMarkerByte, 1);
    WriteLittleEndian(kUnicodeMarker, 2);
    WriteLength(units.size());
    for (const char16_t unit : units) {
        WriteLittleEndian(unit, 2);
    }
}

bool ArchiveReader::ReadLittleEndian(int byteCount, uint32_t& value)
{
    const auto count = static_cast<std::size_t>(byteCount);
    if (m_bytes.size() < count) {
        return false;
    }
    value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value |= static_cast<uint32_t>(static_cast<unsigned char>(m_bytes[i])) << (8 * i);
    }
    m_bytes.remove_prefix(count);
    return true;
}

bool ArchiveReader::ReadUInt16(uint16_t& value)
{
    uint32_t bits = 0;
    if (!ReadLittleEndian(2, bits)) {
        return false;
    }
    value = static_cast<uint16_t>(bits);
    return true;
}

bool ArchiveReader::ReadInt32(int32_t& value)
{
    uint32_t bits = 0;
    if (!ReadLittleEndian(4, bits)) {
        return false;
    }
    value = static_cast<int32_t>(bits);
    return true;
}

bool ArchiveReader::ReadLength(std::size_t& units)
{
    uint32_t marker = 0;
    uint32_t length = 0;
    if (!ReadLittleEndian(1, marker) || marker != kMarkerByte || !ReadLittleEndian(2, marker) ||
        marker != kUnicodeMarker || !ReadLittleEndian(1, length)) {
        return false;
    }
    if (length == kLongByte && !ReadLittleEndian(2, length)) {
        return false;
    }
    if (length == kLongWord && !ReadLittleEndian(4, length)) {
        return false;
    }
    units = length;
    return true;
}

bool ArchiveReader::ReadText(CString& text)
{
    std::size_t units = 0;
    if (!ReadLength(units) || units > m_bytes.size() / 2) {
        return false;
    }
    AssignUnits(m_bytes.substr(0, 2 * units), text);
    m_bytes.remove_prefix(2 * units);
    return true;
}

void ArchiveReader::AssignUnits(std::string_view bytes, CString& text)
{
    text.resize(bytes.size() / 2);
    bool hasSurrogate = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i]);
        const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
        hasSurrogate = hasSurrogate || (high >= 0xD8 && high <= 0xDF);
        text[i] = static_cast<wchar_t>(low | (high << 8));
    }
    if (hasSurrogate) {
        std::u16string units;
        for (const wchar_t unit : text) {
            units.push_back(static_cast<char16_t>(unit));
        }
        text = platform::Utf16ToWide(units);
    }
}

} // namespace encap
