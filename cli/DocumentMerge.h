#pragma once

#include "encap/xml/XMLParser.h"

#include <optional>

namespace encap::cli {

/// The text of a changed document in the form of its old text: what did not change stands as it
/// stood, with its white space, quotes and comments, and new elements are laid out as their
/// siblings are. Nothing when the text would not parse to exactly the changed document element.
/// REQUIRES: the old text parses; nothing but the document element has changed.
[[nodiscard]] std::optional<CString> MergeIntoText(const CString& oldText,
                                                   const XMLParser& changed);

} // namespace encap::cli
