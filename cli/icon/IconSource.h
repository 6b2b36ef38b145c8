#pragma once

#include "cli/icon/OwnedImage.h"
#include "encap/icons/Icons.h"

#include <vector>

namespace encap::cli {

class LibraryMessages;

enum class SourceKind { Ico, Bmp, Png, Executable };

/// The icons of a file that an action reads: those of an executable, or the one of an ICO, BMP or
/// PNG file, which has no name. What the file is its first bytes tell, or else its name's ending.
class IconSource {
public:
    /// Throws FileError or MessagesShown.
    IconSource(CString path, LibraryMessages& messages);

    [[nodiscard]] const CString& Path() const { return m_path; }
    [[nodiscard]] SourceKind Kind() const { return m_kind; }
    [[nodiscard]] const std::vector<NamedIconResource>& Icons() const { return m_icons; }

private:
    void ReadIco(LibraryMessages& messages);
    void ReadBmp(const std::string& bytes, LibraryMessages& messages);
    void ReadPng(const std::string& bytes);
    void Add(OwnedImage image);

    CString m_path;
    SourceKind m_kind = SourceKind::Ico;
    std::vector<NamedIconResource> m_icons;
};

/// The images of a record, which it keeps.
[[nodiscard]] std::vector<ICONIMAGE*> ImagesOf(ICONRESOURCE& icon);
/// Whether the image is stored as a whole PNG file.
[[nodiscard]] bool IsPngImage(const ICONIMAGE& image);

} // namespace encap::cli
