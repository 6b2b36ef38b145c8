#pragma once

#include "cli/FamilyList.h"
#include "encap/foundation/Types.h"

#include <optional>
#include <vector>

namespace encap::cli {

class Condition;
class FamilyHost;

/// A member for which a condition holds.
struct FoundMember {
    CString rowId;
    bool isSuppressed = false;
    CString designation;
    std::vector<CString> values; ///< of the condition's columns
};

/// What a condition finds in one family.
struct FoundMembers {
    CString file;
    CString displayName;
    CString internalName;
    bool hasColumns = false;    ///< else the family has no part in the question
    std::vector<CString> units; ///< of the condition's columns; empty for those without one
    std::vector<FoundMember> members;
    /// Why it cannot be told whether members are meant, of the family or of the first such member.
    CString problem;
    std::size_t unjudged = 0; ///< such members
    CString failure;          ///< why the family was not opened; empty when it was

    /// What is wrong, as one sentence; empty when nothing is.
    [[nodiscard]] CString Sentence() const;
};

/// Opens a family, asks the condition of each member and closes it.
[[nodiscard]] FoundMembers FindMembers(const ListedFamily& family, const Condition& condition,
                                       const std::optional<CString>& language, FamilyHost& host);

} // namespace encap::cli
