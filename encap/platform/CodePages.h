#pragma once

#include <span>

namespace encap::platform {

/// Converts bytes as a filter does, in the form in which libxml2 takes a conversion: on entry the
/// sizes are those of the buffers, on return the bytes made and the bytes used. Gives the bytes
/// made, -1 when the output is full, -2 when what follows cannot be converted. A character that is
/// cut off at the end of the input is left for the next call. A null input makes nothing.
using ConvertBytes = int (*)(unsigned char* out, int* outSize, const unsigned char* in,
                             int* inSize);

/// An encoding of documents that the system can convert.
struct SystemEncoding {
    const char* name; ///< as registered at IANA, in capitals
    ConvertBytes toUtf8;
    ConvertBytes fromUtf8;
};

/// The encodings for which the XML library needs the system; none where its own conversions (iconv)
/// know them all.
[[nodiscard]] std::span<const SystemEncoding> SystemEncodings();

} // namespace encap::platform
