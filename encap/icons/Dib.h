#pragma once

#include "encap/foundation/Export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The arithmetic of device-independent bitmaps, their conversion, and BMP files. A packed bitmap
/// is one run of bytes: a header of 40 bytes, the colour table, the rows (the lowest first where
/// the height is positive), each row padded to whole 32-bit words. The class has no state; all
/// threads may use it.
class ENCAP_API CDib {
public:
    /// Bytes of one row of width pixels.
    [[nodiscard]] static uint64_t BytesPerLine(uint32_t width, uint32_t bitsPerPixel);

    // Parts of a packed bitmap. REQUIRES: dib points to 40 bytes at least.

    /// Entries of the colour table: the header's own count, at most what its depth can tell apart
    /// (256 above 8 bits, where the table is only a hint).
    [[nodiscard]] static uint32_t PaletteEntries(const unsigned char* dib);
    /// Bytes of the colour table.
    [[nodiscard]] static uint32_t PaletteSize(const unsigned char* dib);
    /// The offset of the first stored row.
    [[nodiscard]] static uint64_t BitsOffset(const unsigned char* dib);
    /// The length up to the last row's end, as the header states it. A header without rows, or of
    /// an unknown depth, gives the offset of the rows.
    [[nodiscard]] static uint64_t PackedSize(const unsigned char* dib);

    /// The bitmap at another size and depth (1, 4, 8, 16, 24 or 32 bits per pixel) as a new packed
    /// bitmap. Its colour table is black and white at 1 bit; at 4 and 8 bits the source's, if that
    /// has the same depth, else the 16 default colours or a fixed table of 256. Every pixel takes
    /// the nearest colour. A source of another size is averaged over areas when stretch is set;
    /// else its top left part is copied, and pixels that it does not cover are zero. The fourth
    /// byte of 32-bit pixels is zero.
    /// Empty when the source is null, damaged (its rows must lie within size bytes) or compressed,
    /// or the target has no pixels, another depth or more than 2 GiB.
    [[nodiscard]] static std::vector<unsigned char> Convert(const unsigned char* dib,
                                                            std::size_t size, uint32_t width,
                                                            uint32_t height, uint32_t bitsPerPixel,
                                                            bool stretch);

    /// The packed bitmap of a BMP file. Empty on failure, which is shown in a message box without
    /// owner whose caption is the file name as given. Only headers of 40 bytes and rows without
    /// compression are read.
    [[nodiscard]] static std::vector<unsigned char> ReadFile(const wchar_t* file);
    /// Writes a BMP file of the packed bitmap in place of an old file; what follows the rows is
    /// left out. False on failure, which is shown as above; an old file then stays as it was.
    [[nodiscard]] static bool WriteFile(const wchar_t* file, const unsigned char* dib,
                                        std::size_t size);

    /// As ReadFile and WriteFile, for the bytes of a BMP file in memory and without messages; empty
    /// on failure.
    [[nodiscard]] static std::vector<unsigned char> FromFileBytes(const unsigned char* bytes,
                                                                  std::size_t size);
    [[nodiscard]] static std::vector<unsigned char> ToFileBytes(const unsigned char* dib,
                                                                std::size_t size);
};
