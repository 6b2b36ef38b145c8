#pragma once

#include "encap/foundation/Export.h"
#include "encap/foundation/Types.h"
#include "encap/platform/IconHandles.h"

#include <cstdint>
#include <memory>

// The records in which icons are handed over. A record and the bits of its images come from malloc
// and belong to the caller: free each image's bits, then the record, with std::free, or both with
// FreeIconResource.

/// One image of an icon. The bits are the image exactly as an ICO file or an icon resource stores
/// it: a 40-byte bitmap information header, its colour table, the colour rows and the mask rows, or
/// a whole PNG image. The three pointers lie within the bits (their end included), whatever the
/// bits claim.
struct ICONIMAGE {
    uint32_t width;            ///< pixels
    uint32_t height;           ///< pixels: half the rows of the header, which counts the mask too
    uint32_t colours;          ///< bits per pixel: planes x bit count of the header
    unsigned char* bits;       ///< owned
    uint32_t byteCount;        ///< bytes at bits
    BITMAPINFOHEADER* header;  ///< equals bits; of a PNG image, not a header to be read
    unsigned char* colourBits; ///< the first colour row; of a PNG image, the end of the bits
    unsigned char* maskBits;   ///< the first mask row; of a PNG image, the end of the bits
};

/// An icon with all its images, in one allocation. The file names are closed by a zero; a longer
/// name is cut.
struct ICONRESOURCE {
    int32_t changed;          ///< 0 as read; the caller's own flag
    wchar_t icoFileName[260]; ///< the ICO file it was read from; else empty
    wchar_t exeFileName[260]; ///< the executable or library it was read from; else empty
    uint32_t imageCount;
    ICONIMAGE images[1]; ///< imageCount of them; room for one where there is none
};

/// What the reporting read of an ICO file found.
enum Error_ReadIconFromICOFile : int32_t {
    ReadIcon_Success = 0,
    ReadIcon_OpenFailed = 1, ///< the file cannot be opened
    ReadIcon_AllocateRecordFailed = 2,
    ReadIcon_BadHeader = 3, ///< wrong, or shorter than 6 bytes
    ReadIcon_EnlargeRecordFailed = 4,
    ReadIcon_AllocateDirectoryFailed = 5,
    ReadIcon_DirectoryUnreadable = 6, ///< or shorter than 16 bytes an image
    ReadIcon_ImageUnreachable = 7,    ///< no memory for an image, or more than a file may hold
    ReadIcon_ImageShort = 8,          ///< the file ends before the image does
    ReadIcon_ImageMalformed = 9,      ///< shorter than its header, or a PNG image without one
};

/// Frees the bits of all images and the record; null is allowed.
ENCAP_API void FreeIconResource(ICONRESOURCE* icon);

/// Owns a record and its images.
struct IconResourceDeleter {
    void operator()(ICONRESOURCE* icon) const { FreeIconResource(icon); }
};
using IconResourceOwner = std::unique_ptr<ICONRESOURCE, IconResourceDeleter>;

/// One icon group of an executable.
struct NamedIconResource {
    CString name;           ///< as ReadIconFromEXEFile takes it: a text, or "#12" for a number
    IconResourceOwner icon; ///< null when the group or one of its images is missing or damaged
};
