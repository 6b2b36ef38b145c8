#pragma once

#include "cli/FamilyList.h"
#include "encap/foundation/Types.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>

namespace encap::cli {

class FamilyHost;
class JsonWriter;

/// What a batch does with each family.
struct RecordOptions {
    /// Of texts; none: the family's first. A family without it is not opened.
    std::optional<CString> language;
    /// Runs the checks, in all languages, instead of evaluating one.
    bool isCheck = false;
};

/// What a batch tells of one family. Counts are 0 for a family that was not opened.
struct FamilyRecord {
    static constexpr std::size_t kResultCodes = 9;

    CString file;
    CString internalName;
    CString language;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::array<std::size_t, kResultCodes> results{}; ///< evaluated cells by result code
    std::map<CString, std::size_t> findings;         ///< of the checks, by rule
    std::size_t errors = 0;                          ///< findings of that severity
    std::size_t warnings = 0;
    CString problem; ///< the first error, else warning, or the first cell that is not right
    CString failure; ///< why the family was not opened; empty when it was
    int64_t microseconds = 0;

    [[nodiscard]] bool WasOpened() const { return failure.empty(); }
    [[nodiscard]] std::size_t Cells() const { return rows * columns; }
    /// Evaluated cells without a value, and those with one that was computed without units.
    [[nodiscard]] std::size_t Failed() const;
    [[nodiscard]] std::size_t Unitless() const;
    /// What is wrong, with the first example, as one sentence; empty when nothing is.
    [[nodiscard]] CString Sentence() const;
};

/// Opens a family, evaluates or checks it and closes it. What is wrong with it is in the record.
[[nodiscard]] FamilyRecord MakeFamilyRecord(const ListedFamily& family,
                                            const RecordOptions& options, FamilyHost& host);

/// One object on one line; all keys are always there.
void WriteFamilyRecord(JsonWriter& json, const FamilyRecord& record, const RecordOptions& options,
                       bool withTime);

} // namespace encap::cli
