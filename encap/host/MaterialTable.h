#pragma once

#include "encap/host/EvaluationError.h"
#include "encap/host/UnitTable.h"

namespace encap::host {

/// Materials by key and by name. Owned by the provider.
class MaterialTable {
public:
    /// Replaces the table by the lines of a text in RFC 4180's form: key and name, LF, CRLF or CR
    /// at a line's end, a byte order mark and a heading "key,name" skipped. False, with the error
    /// set and the table as it was, where a line does not have two cells or quotes do not match.
    [[nodiscard]] bool Load(std::wstring_view csvText, EvaluationError& error);

    /// Null where there is none.
    [[nodiscard]] const CString* NameOf(std::wstring_view key) const;
    [[nodiscard]] const CString* KeyOf(std::wstring_view name) const;

private:
    using Map = std::unordered_map<CString, CString, WideHash, std::equal_to<>>;

    Map m_names; // by key
    Map m_keys;  // by name
};

} // namespace encap::host
