#pragma once

#include "cli/icon/IconSource.h"

#include <optional>

namespace encap::cli {

class Options;

/// Width and height of an image in pixels.
struct ImageSize {
    uint32_t width = 0;
    uint32_t height = 0;
    friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// "32x32", or "32" for a square; sides from 1 to 2048. Throws UsageError that names the option.
[[nodiscard]] ImageSize ParseSize(const CString& text);
/// "32x32".
[[nodiscard]] CString SizeText(const ImageSize& size);
[[nodiscard]] ImageSize SizeOf(const ICONIMAGE& image);

/// The arguments that choose images of a source: which icon of an executable, and which image.
class ImageChoice {
public:
    void DeclareIcon(Options& options);
    /// --image, --size and --bits
    void DeclareImage(Options& options);
    /// --image alone, where size and depth say what to convert to
    void DeclareNumber(Options& options);

    /// Whether one image is asked for.
    [[nodiscard]] bool IsOfImage() const;
    /// The icon that is meant: without a name the first. Throws UsageError, FileError or
    /// MessagesShown.
    [[nodiscard]] ICONRESOURCE& Icon(const IconSource& source, LibraryMessages& messages) const;
    /// The images that fit what is asked for; at least one. Throws UsageError.
    [[nodiscard]] std::vector<ICONIMAGE*> Images(const IconSource& source,
                                                 LibraryMessages& messages) const;
    /// Of these the one that is asked for: the largest, and of those the deepest.
    [[nodiscard]] ICONIMAGE& Image(const IconSource& source, LibraryMessages& messages) const;

private:
    std::optional<CString> m_name;
    int m_number = 0;
    std::optional<CString> m_size;
    int m_bits = 0;
};

/// Pixels of an image as its header states them.
[[nodiscard]] uint64_t PixelCount(const ICONIMAGE& image);
/// Whether the left image is larger than the right one, or deeper at the same size.
[[nodiscard]] bool IsBetterImage(const ICONIMAGE* left, const ICONIMAGE* right);
/// The best image, the first of equals; null without images.
[[nodiscard]] ICONIMAGE* BestImage(const std::vector<ICONIMAGE*>& images);
/// Throws the FileError of an image, of the file at the path, that cannot be decoded.
[[noreturn]] void ThrowDamaged(const ICONIMAGE& image, const CString& path);

} // namespace encap::cli
