#pragma once

#include "cli/icon/ImageChoice.h"

namespace encap::cli {

enum class ImageFormat { Ico, Bmp, Png };

/// Where images go: -o, whose ending says the format.
class ImageOutput {
public:
    void Declare(Options& options, const std::string& help);

    /// The format of the file. Throws UsageError without a file, or with an ending of another kind.
    [[nodiscard]] ImageFormat Format() const;
    /// Throws UsageError when the file is one that is read.
    void RefuseToReplace(const IconSource& source) const;

    /// Replaces an ICO file as one step. Throws FileError or MessagesShown.
    void WriteIco(const std::vector<ICONIMAGE*>& images, LibraryMessages& messages) const;
    /// Replaces a file of the format by one of this image, which was taken from the named source.
    /// As WriteIco; throws FileError for a damaged image too.
    void WriteImage(ICONIMAGE& image, const CString& source, LibraryMessages& messages) const;

private:
    CString m_path;
};

/// Throws FileError when the image is larger than an icon's may be.
void RequireIconSize(const ICONIMAGE& image, const CString& source);
/// The same, and when the source is a damaged PNG file, whose bytes would come into an icon.
void RequireIconImage(const ICONIMAGE& image, const IconSource& source);
/// Whether the image has pixels that can be decoded.
[[nodiscard]] bool IsWholeImage(const ICONIMAGE& image);

} // namespace encap::cli
