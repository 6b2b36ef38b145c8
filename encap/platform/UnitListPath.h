#pragma once

#include "encap/foundation/Types.h"

namespace encap::platform {

/// The file that holds the list of units, on Windows: the one that the environment variable
/// ENCAP_UNITS names, else encap-units.tsv beside the library or program that this code is in: in
/// its folder, or in share/encap/ beside that. Of a missing one the first of these places is given.
[[nodiscard]] CString UnitListPath();

} // namespace encap::platform
