#include "cli/Fingerprint.h"

namespace encap::cli {

void Fingerprint::Add(std::string_view bytes)
{
    for (uint64_t length = bytes.size(), i = 0; i < sizeof length; ++i, length >>= 8) {
        AddByte(static_cast<unsigned char>(length & 0xFF));
    }
    for (const char byte : bytes) {
        AddByte(static_cast<unsigned char>(byte));
    }
}

std::string Fingerprint::Hex() const
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const uint64_t half : {m_high, m_low}) {
        for (int shift = 60; shift >= 0; shift -= 4) {
            hex += kDigits[(half >> shift) & 0xF];
        }
    }
    return hex;
}

// The prime is 2^88 + 0x13B: the product is a shift and a product by a small number, made in two
// halves of the low word to keep its carry.
void Fingerprint::AddByte(unsigned char byte)
{
    constexpr uint64_t kSmall = 0x13B;
    constexpr int kShift = 88 - 64;
    m_low ^= byte;
    const uint64_t low = (m_low & 0xFFFFFFFF) * kSmall;
    const uint64_t high = (m_low >> 32) * kSmall + (low >> 32);
    m_high = m_high * kSmall + (high >> 32) + (m_low << kShift);
    m_low = (high << 32) | (low & 0xFFFFFFFF);
}

} // namespace encap::cli
