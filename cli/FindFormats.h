#pragma once

#include "cli/FoundMembers.h"

#include <memory>

namespace encap::cli {

class Results;

/// Prints the members that a condition finds, family by family, in one of the forms. Refers to the
/// results.
class FindFormat {
public:
    FindFormat() = default;
    FindFormat(const FindFormat&) = delete;
    FindFormat& operator=(const FindFormat&) = delete;
    virtual ~FindFormat() = default;

    virtual void Add(const FoundMembers& found) = 0;
    /// Behind the last family.
    virtual void Finish() {}
};

/// columns: as the condition names them.
using MakeFindFormat = std::unique_ptr<FindFormat> (*)(const std::vector<CString>& columns,
                                                       Results& results);

/// For people: aligned columns, values with their units; printed at the end.
[[nodiscard]] std::unique_ptr<FindFormat> MakeFindText(const std::vector<CString>& columns,
                                                       Results& results);
/// RFC 4180: a line a member, behind the value of each column its unit.
[[nodiscard]] std::unique_ptr<FindFormat> MakeFindCsv(const std::vector<CString>& columns,
                                                      Results& results);
/// An object a line for each member.
[[nodiscard]] std::unique_ptr<FindFormat> MakeFindJson(const std::vector<CString>& columns,
                                                       Results& results);

} // namespace encap::cli
