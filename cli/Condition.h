#pragma once

#include "encap/foundation/Types.h"

#include <optional>
#include <string_view>
#include <vector>

class CEncapFamilyColumn;

namespace encap::cli {

class OpenFamily;
class RecordingProvider;

/// A condition over the members of families: an expression of the host's language with column IDs
/// in braces, in which text columns may be compared with quoted texts: {D} >= 8mm and {STD} ==
/// "ISO".
class Condition {
public:
    /// One piece of the text, in order.
    struct Piece {
        enum class Kind { Literal, Number, TextEquals, TextDiffers };
        Kind kind = Kind::Literal;
        CString text;           ///< of a literal, or the text that is compared with
        std::size_t column = 0; ///< of the others: its place in Columns()
    };

    /// Throws UsageError for a text that is no condition, as far as can be told without a family.
    explicit Condition(const CString& text);

    /// The columns it names, as it first writes them, each once without regard to case.
    [[nodiscard]] const std::vector<CString>& Columns() const { return m_columns; }
    [[nodiscard]] const std::vector<Piece>& Pieces() const { return m_pieces; }
    /// Throws UsageError when the host does not understand it, whatever the values are.
    void RequireUnderstood(RecordingProvider& host) const;

private:
    friend class ConditionParser;

    CString m_text;
    std::vector<CString> m_columns;
    std::vector<Piece> m_pieces;
};

/// A condition asked of the members of one open family. Refers to both.
class FamilyCondition {
public:
    FamilyCondition(const Condition& condition, OpenFamily& family);

    /// Without all the columns the family has no part in the question.
    [[nodiscard]] bool HasColumns() const { return m_hasColumns; }
    /// Why the condition fits none of the family's members: a text column used as a number, the
    /// other way round, or what the host does not understand of it with the columns' units. Empty
    /// when it fits.
    [[nodiscard]] const CString& Misfit() const { return m_misfit; }
    /// The columns, in the condition's order. REQUIRES: HasColumns.
    [[nodiscard]] const std::vector<CEncapFamilyColumn*>& Columns() const { return m_columns; }
    /// Whether the condition holds for a member; nothing, with the reason, when that cannot be
    /// told. values are those of the columns. REQUIRES: HasColumns and no misfit.
    [[nodiscard]] std::optional<bool> Holds(const CString& rowId, std::vector<CString>& values,
                                            CString& failure);

private:
    void FindColumns();
    void FindMisfit();
    void FindMisunderstanding();
    [[nodiscard]] bool ReadValues(const CString& rowId, std::vector<CString>& values,
                                  CString& failure);
    [[nodiscard]] CString Question(const std::vector<CString>& values) const;

    const Condition& m_condition;
    OpenFamily& m_family;
    std::vector<CEncapFamilyColumn*> m_columns;
    bool m_hasColumns = true;
    CString m_misfit;
};

} // namespace encap::cli
