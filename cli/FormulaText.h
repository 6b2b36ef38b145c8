#pragma once

#include "encap/foundation/Types.h"

#include <optional>
#include <vector>

// The column references of a formula's text: column IDs in braces, compared without regard to
// case, blanks around them not counting.
namespace encap::cli {

/// A brace that has no partner.
struct BraceFault {
    wchar_t brace = 0;
    std::size_t position = 0; ///< characters before it
};

/// The first brace that does not pair up.
[[nodiscard]] std::optional<BraceFault> FindBraceFault(const CString& formula);
/// The IDs in braces in their order, each as often as it stands there; empty when a brace does not
/// pair up.
[[nodiscard]] std::vector<CString> ReferencesOf(const CString& formula);
/// The formula with its references to one column as references to another; everything else, blanks
/// in braces included, stands as it stood. A formula whose braces do not pair up stays.
[[nodiscard]] CString RenameReferences(const CString& formula, const CString& from,
                                       const CString& to);

} // namespace encap::cli
