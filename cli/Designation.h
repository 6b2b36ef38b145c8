#pragma once

#include "encap/foundation/Types.h"

#include <vector>

class CEncapFamilyColumn;

namespace encap::cli {

class OpenFamily;

/// What a family's members are called: the value of the column that supplies the category parameter
/// with the mnemonic DESIGNATION (in any case), else the values of the key columns, in the order of
/// their weights, with commas between them. Refers to the family.
class Designation {
public:
    explicit Designation(const OpenFamily& family);

    /// Values that cannot be computed are left out.
    [[nodiscard]] CString Of(const CString& rowId) const;

private:
    const OpenFamily& m_family;
    std::vector<CEncapFamilyColumn*> m_columns;
};

} // namespace encap::cli
