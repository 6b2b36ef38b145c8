#pragma once

#include "cli/check/Rules.h"
#include "encap/foundation/Types.h"

#include <functional>
#include <vector>

namespace encap::cli {

class FamilyHost;
class OpenFamily;

/// One thing that is wrong with a family.
struct Finding {
    Rule rule = Rule::CellFails;
    CString row;      ///< its ID; empty when the finding is not about a row
    CString column;   ///< its ID; empty when the finding is not about a column
    CString language; ///< empty when the finding holds in all languages
    CString message;  ///< one sentence, without a full stop

    [[nodiscard]] const RuleEntry& Entry() const { return EntryOf(rule); }
};

using FindingSink = std::function<void(const Finding&)>;

struct CheckOptions {
    /// What FamilyFile told of strings documents that are missing: findings of their own.
    std::vector<CString> stringsProblems;
    /// Compares the values of the cache file that the family was opened with to newly computed
    /// ones, which take their place.
    bool verifyCache = false;
};

/// Hands over every finding of a family in the order of its documents: what is about the family,
/// then column by column, then row by row. Evaluates every cell in every language. Time and memory
/// grow with the cells, memory as it does for evaluating them.
void CheckFamily(OpenFamily& family, const CheckOptions& options, const FindingSink& sink);

/// Opens the family document at a path and collects its findings; missing strings documents are
/// findings too. Throws FileError when the document cannot be read.
[[nodiscard]] std::vector<Finding> CheckFamilyFile(const CString& path, FamilyHost& host);

} // namespace encap::cli
