#pragma once

#include "encap/foundation/Export.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The Windows types that stand in the signatures of the icon helpers, and what a host does with
// handles. The types are the very ones that the Windows headers declare, so both may be included in
// one source, in either order.

struct HICON__;
using HICON = HICON__*;
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;

#ifdef _WIN32
struct tagBITMAPINFOHEADER;
#else
/// The 40-byte header of a device-independent bitmap, in the byte order of the BMP format (little
/// endian), without padding.
struct tagBITMAPINFOHEADER {
    uint32_t biSize;        ///< bytes of this header
    int32_t biWidth;        ///< pixels
    int32_t biHeight;       ///< rows, the lowest first; negative: the topmost first
    uint16_t biPlanes;      ///< 1
    uint16_t biBitCount;    ///< bits per pixel
    uint32_t biCompression; ///< 0: none; 3: channel masks follow the header
    uint32_t biSizeImage;   ///< bytes of the rows; 0 is allowed without compression
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed; ///< entries of the colour table; 0: all that the depth tells apart
    uint32_t biClrImportant;
};
static_assert(sizeof(tagBITMAPINFOHEADER) == 40);
#endif
using BITMAPINFOHEADER = tagBITMAPINFOHEADER;

/// The pixels of an icon: width x height values 0xAARRGGBB (bytes B, G, R, A on a little-endian
/// machine), the topmost row first, alpha not multiplied in. A null handle gives false and leaves
/// the outputs.
ENCAP_API bool GetIconPixels(HICON icon, uint32_t& width, uint32_t& height,
                             std::vector<uint32_t>& bgra);
/// Frees a handle that this library made; null is allowed.
ENCAP_API void ReleaseIcon(HICON icon);

/// Opens an executable or library file as data; its code is never run. Null when the file cannot be
/// read; whether it is an executable is seen when something is looked up in it. The caller closes
/// it. On Windows the handle of any loaded module serves as well and is not to be closed here.
ENCAP_API HINSTANCE OpenExecutable(const wchar_t* file);
/// Closes what OpenExecutable gave; null is allowed.
ENCAP_API void CloseExecutable(HINSTANCE executable);

namespace encap::platform {

/// A handle of width x height pixels as GetIconPixels gives them, to be freed with ReleaseIcon;
/// null when the platform cannot make one. REQUIRES: bgra holds width x height values, at least
/// one.
[[nodiscard]] HICON CreateIconHandle(uint32_t width, uint32_t height, std::vector<uint32_t> bgra);

/// The bytes of the file behind the handle; empty for null. They lie in the handle or, where that
/// does not hold them (a loaded module), in the given text, which must live as long.
[[nodiscard]] std::string_view ExecutableContent(HINSTANCE executable, std::string& storage);

} // namespace encap::platform
