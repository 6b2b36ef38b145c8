#pragma once

#include "cli/icon/ImageChoice.h"
#include "cli/icon/OwnedImage.h"

namespace encap::cli {

/// --bits: the depth that images are converted to.
class ImageDepth {
public:
    void Declare(Options& options);
    /// Bits per pixel for a conversion of the image: what was asked for, else its own; 32 of a PNG
    /// image.
    [[nodiscard]] uint32_t BitsFor(const ICONIMAGE& image) const;

private:
    int m_choice = -1;
};

/// The image that the size is best made of: the smallest that is at least as large, else the
/// largest; of equals the deepest. REQUIRES: there are images.
[[nodiscard]] const ICONIMAGE& BestFor(const std::vector<ICONIMAGE*>& images,
                                       const ImageSize& size);

/// The image, which the file is named for, at a size and depth: byte for byte where it has both
/// already (a PNG image counts as one of 32 bits). Throws FileError for a damaged one.
[[nodiscard]] OwnedImage Converted(const ICONIMAGE& image, const ImageSize& size,
                                   uint32_t bitsPerPixel, const CString& path);
/// The image stored as a whole PNG file or as rows. Throws as above.
[[nodiscard]] OwnedImage Stored(const ICONIMAGE& image, bool asPng, const CString& path);

} // namespace encap::cli
