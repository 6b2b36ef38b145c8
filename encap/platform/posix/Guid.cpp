#include "encap/platform/Guid.h"

#include <cstring>

#include <sys/random.h>
#include <unistd.h>

namespace encap::platform {

Guid CreateGuid()
{
    std::array<unsigned char, 16> random{};
    if (getentropy(random.data(), random.size()) != 0) {
        return {};
    }
    Guid guid;
    std::memcpy(&guid.data1, random.data(), 4);
    std::memcpy(&guid.data2, random.data() + 4, 2);
    std::memcpy(&guid.data3, random.data() + 6, 2);
    std::memcpy(guid.data4.data(), random.data() + 8, 8);
    // RFC 9562, section 5.4: the version is the high digit of the third field, the variant stands
    // in the two high bits of the byte behind it.
    guid.data3 = static_cast<uint16_t>((guid.data3 & 0x0FFF) | 0x4000);
    guid.data4[0] = static_cast<uint8_t>((guid.data4[0] & 0x3F) | 0x80);
    return guid;
}

} // namespace encap::platform
