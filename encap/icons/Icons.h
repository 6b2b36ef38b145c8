#pragma once

#include "encap/icons/IconRecords.h"

#include <vector>

/// Reads and writes icons: ICO files, icon resources of executables, bitmaps and the clipboard.
/// Failures that the user should see are shown in message boxes (encap/platform/MessageBox.h) whose
/// caption is the file as the caller named it; away from Windows a host decides how. A null file
/// name counts as empty. An object has no state; different threads may use different objects, and
/// one object as well, as long as they do not share images.
///
/// Sizes that a file claims are checked against the file before memory is asked for. The images of
/// a file together have at most 16 times the file's bytes; the pixel limits are those of
/// MakeIconFromResource.
class ENCAP_API CIcons {
public:
    CIcons() = default;
    CIcons(const CIcons&) = default;
    CIcons& operator=(const CIcons&) = default;
    virtual ~CIcons();

    // ICO files. A returned record belongs to the caller (FreeIconResource). Null on failure.

    /// Shows what failed.
    [[nodiscard]] ICONRESOURCE* ReadIconFromICOFile(const wchar_t* file) const;
    /// As the next, and shows the message of the code on failure.
    [[nodiscard]] ICONRESOURCE* ReadIconFromICOFile(const wchar_t* file, HICON* icons) const;
    /// Shows nothing: sets the code, to ReadIcon_Success on success. On success icons[i] is the
    /// handle of image i or null where none can be made, also once the file's images have 16 Mi
    /// pixels together; each belongs to the caller (ReleaseIcon). A null icons makes no handles.
    /// REQUIRES: icons is null or has room for every image of the file, whose count the caller
    /// knows; the library cannot check it.
    [[nodiscard]] ICONRESOURCE* ReadIconFromICOFile(const wchar_t* file, HICON* icons,
                                                    Error_ReadIconFromICOFile& error) const;

    /// Writes the images in their order in place of an old file; nonzero on success. Shows when the
    /// file cannot be created, when nothing can be written to it, or when it has more images than
    /// its header can count (65535). A write that fails later, a null icon, a null image, or an
    /// image without a whole header gives 0 without a message. PNG images are written byte for
    /// byte. A failed write leaves an old file as it was.
    int WriteIconToICOFile(const ICONRESOURCE* icon, const wchar_t* file) const;
    int WriteIconToICOFile(const std::vector<ICONIMAGE*>& images, const wchar_t* file) const;

    /// The offset in a written file of image number index (0-based). An index past the end gives
    /// the file's length, null gives 0; offsets past 32 bits give the largest number.
    [[nodiscard]] uint32_t CalculateImageOffset(const ICONRESOURCE* icon, unsigned int index) const;
    [[nodiscard]] uint32_t CalculateImageOffset(const std::vector<ICONIMAGE*>& images,
                                                unsigned int index) const;

    // Executables and libraries, 32 and 64 bit. The name of an icon group ignores case; a pointer
    // below 0x10000, and a text such as "#12", name it by number.

    /// The group with all its images; the caller frees it. Shows two messages when the file cannot
    /// be read or is no such executable, or when an image is malformed; a group or image that is
    /// missing or damaged gives null without a message.
    [[nodiscard]] ICONRESOURCE* ReadIconFromEXEFile(const wchar_t* file,
                                                    const wchar_t* groupName) const;
    /// All groups of the file in its order: those named by text first. True, with no groups where
    /// there are none, unless the file cannot be read, which shows the two messages. Damaged groups
    /// are there without an icon and show nothing. All records and names together are limited as
    /// the images of one icon are: the group that passes the limit has no icon and is the last.
    [[nodiscard]] bool ReadIconsFromEXEFile(const wchar_t* file,
                                            std::vector<NamedIconResource>& icons) const;
    /// A handle for the group's image that is nearest to 32 x 32 pixels, the deepest of those up to
    /// 32 bits per pixel; the caller releases it. Null, without a message, if anything is missing.
    [[nodiscard]] HICON GetIconFromInstance(HINSTANCE executable, const wchar_t* groupName) const;

    /// A handle of the image's pixels and transparency at the image's own size; the caller releases
    /// it. An image of more than 4 Mi pixels is averaged to 32 x 32, except at 16 bits; that, a PNG
    /// image of more pixels, and missing or damaged bits give null.
    [[nodiscard]] HICON MakeIconFromResource(const ICONIMAGE* image) const;

    // Bitmaps. All are nonzero on success. Where an image is the target, its width, height and
    // colours (1, 4, 8, 16, 24 or 32) say what the bitmap is converted to, as CDib::Convert does,
    // with every pixel opaque (alpha 255 at 32 bits); its bits must be null or come from malloc,
    // and are replaced. On failure the image is as before. Where it is the source, the colour rows
    // alone are the bitmap, and a PNG image gives its 32-bit pixels.

    /// Puts the image's bitmap on the clipboard, which is emptied even when there are no bits.
    int IconImageToClipBoard(const ICONIMAGE* image) const;
    int IconImageFromClipBoard(ICONIMAGE* image, int stretch) const;
    /// REQUIRES: dib is null or a whole packed bitmap: all bytes that its header states are there.
    int DIBToIconImage(ICONIMAGE* image, const unsigned char* dib, int stretch) const;
    /// As DIBToIconImage for a bitmap of unknown origin in a buffer of size bytes.
    int DIBToIconImage(ICONIMAGE* image, const unsigned char* dib, std::size_t size,
                       int stretch) const;
    /// Shows what fails in the file, as CDib does.
    int IconImageFromBMPFile(const wchar_t* file, ICONIMAGE* image, int stretch) const;
    int IconImageToBMPFile(const wchar_t* file, const ICONIMAGE* image) const;

    // Images with their transparency; targets as above, results and sources of at most 4 Mi pixels.

    /// Fills the image with another's pixels and transparency. Another size is averaged over areas,
    /// colours weighed by alpha. At 32 bits the alpha is kept; below, pixels of less than half of
    /// it are transparent. A source of rows that has the format already is copied as it is.
    int ConvertIconImage(ICONIMAGE* image, const ICONIMAGE* source) const;
    /// Makes the image of a whole PNG file, kept byte for byte: sets width, height and colours.
    /// Looks at its first chunk only; 0 when that is not there.
    int IconImageFromPNG(ICONIMAGE* image, const unsigned char* png, std::size_t size) const;
    /// The image as a whole PNG file: a PNG image as it is, another at 32 bits per pixel. Empty
    /// when it is damaged.
    [[nodiscard]] std::vector<unsigned char> IconImageToPNG(const ICONIMAGE* image) const;
};
