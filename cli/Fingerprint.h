#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace encap::cli {

/// A number of 128 bits for a sequence of texts: equal sequences have equal ones, and two different
/// ones may be taken to have different ones. FNV-1a in its 128-bit form over each text behind its
/// length (https://www.ietf.org/archive/id/draft-eastlake-fnv-17.html).
class Fingerprint {
public:
    void Add(std::string_view bytes);
    /// 32 lower-case hexadecimal digits.
    [[nodiscard]] std::string Hex() const;

private:
    void AddByte(unsigned char byte);

    uint64_t m_high = 0x6c62272e07bb0142;
    uint64_t m_low = 0x62b821756295c58d;
};

} // namespace encap::cli
