#pragma once

#include "encap/foundation/Types.h"

#include <string>
#include <string_view>

// The byte form of the value cache file: little-endian integers, and counted UTF-16 texts behind a
// Unicode marker.
namespace encap {

/// Collects the bytes of a file.
class ArchiveWriter {
public:
    void WriteUInt16(uint16_t value);
    void WriteInt32(int32_t value);
    void WriteText(std::wstring_view text);
    [[nodiscard]] const std::string& Bytes() const { return m_bytes; }

private:
    void WriteLittleEndian(uint32_t value, int byteCount);
    void WriteLength(std::size_t units);

    std::string m_bytes;
};

/// Reads what ArchiveWriter writes. Each read is checked against the bytes that are left; one that
/// fails gives false and leaves its output as it was.
class ArchiveReader {
public:
    explicit ArchiveReader(std::string_view bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool ReadUInt16(uint16_t& value);
    [[nodiscard]] bool ReadInt32(int32_t& value);
    [[nodiscard]] bool ReadText(CString& text);
    /// The bytes that are left.
    [[nodiscard]] std::size_t Left() const { return m_bytes.size(); }

private:
    [[nodiscard]] bool ReadLittleEndian(int byteCount, uint32_t& value);
    [[nodiscard]] bool ReadLength(std::size_t& units);
    void AssignUnits(std::string_view bytes, CString& text);

    std::string_view m_bytes; ///< what is left
};

} // namespace encap
