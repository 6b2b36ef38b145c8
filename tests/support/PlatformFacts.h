#pragma once

// What the tests have to know of the platform they run on. The header of bitmaps is the system's
// own where there is one.

#ifdef _WIN32
#include "encap/platform/windows/WindowsHeaders.h"

inline constexpr bool kFileNamesIgnoreCase = true;
/// The C library prints no sign of a NaN, reads no "nan(...)" as the standard has it, and gives -0
/// for a sign alone.
inline constexpr bool kCLibraryIsExact = false;
/// Windows converts GB18030, Wine 8 does not.
inline const bool kSystemKnowsGb18030 = IsValidCodePage(54936) != 0;
#else
inline constexpr bool kFileNamesIgnoreCase = false;
inline constexpr bool kCLibraryIsExact = true;
inline const bool kSystemKnowsGb18030 = true;
#endif
