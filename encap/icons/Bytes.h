#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// Little-endian numbers in byte buffers of any alignment.
namespace encap {

using ByteView = std::span<const unsigned char>;

[[nodiscard]] inline ByteView AsBytes(std::string_view text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// Whether count bytes from offset lie within the bytes.
[[nodiscard]] inline bool Holds(ByteView bytes, uint64_t offset, uint64_t count)
{
    return offset <= bytes.size() && count <= bytes.size() - offset;
}

/// REQUIRES (of all below): the bytes read or written lie within the buffer.
[[nodiscard]] inline uint16_t ReadU16(const unsigned char* at)
{
    return static_cast<uint16_t>(at[0] | at[1] << 8);
}

[[nodiscard]] inline uint32_t ReadU32(const unsigned char* at)
{
    return ReadU16(at) | static_cast<uint32_t>(ReadU16(at + 2)) << 16;
}

inline void WriteU16(unsigned char* at, uint16_t value)
{
    at[0] = static_cast<unsigned char>(value & 0xFF);
    at[1] = static_cast<unsigned char>(value >> 8);
}

inline void WriteU32(unsigned char* at, uint32_t value)
{
    WriteU16(at, static_cast<uint16_t>(value & 0xFFFF));
    WriteU16(at + 2, static_cast<uint16_t>(value >> 16));
}

} // namespace encap
