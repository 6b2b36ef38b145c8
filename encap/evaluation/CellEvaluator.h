#pragma once

#include "encap/evaluation/HostCalls.h"
#include "encap/evaluation/TableEvaluator.h"
#include "encap/evaluation/Tokens.h"
#include "encap/evaluation/VisitingSet.h"
#include "encap/table/TableState.h"

#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace encap {

/// Evaluates cells. References are followed depth first on a stack of its own, not on the thread's,
/// so that chains of any length fit. Host calls may read, edit and delete what is in use: what they
/// delete stays in memory until the evaluation ends, and values computed across an edit are handed
/// out but not kept.
class CellEvaluator {
public:
    using Result = CTableEvaluator::EvaluateResult;

    CellEvaluator(CEncapFamilyTable& table, const HostCalls& host, TokenCache& tokens);

    /// The value where it needs no evaluation: cached, or a cell that only holds text of its own.
    [[nodiscard]] std::optional<Result> ReadAtHand(const RowReference& row,
                                                   CEncapFamilyColumn& column,
                                                   LanguageReference& language, CString& value);
    /// Evaluates the cell whatever the cache holds, and caches the value (0 and 8).
    Result Evaluate(const RowReference& row, CEncapFamilyColumn& column,
                    LanguageReference& language, CString& value);

private:
    /// One cell on the way to its value.
    struct Frame {
        RowReference row;
        CEncapFamilyColumn* column = nullptr;
        LanguageReference language;
        std::optional<CCircularDependencyChecker> guard;
        std::shared_ptr<const TokenList> tokens; ///< null for a text without references
        std::size_t nextToken = 0;
        CString expression;
        CString fallback; ///< the expression with referenced numbers without their units
        CString unit;     ///< what goes to the host and comes from it
        CString databaseUnit;
        CString number;
        Result running = CTableEvaluator::EvaluateOK;
        uint64_t editVersion = 0;
        bool hasHiddenReferences = false;
    };

    /// A cell in a language, as the key of a value that the cache does not keep.
    struct CellKey {
        const CEncapFamilyColumn* column;
        CString rowId;
        CString language;
        friend bool operator==(const CellKey&, const CellKey&) = default;
    };
    struct CellKeyHash {
        std::size_t operator()(const CellKey& key) const;
    };
    struct PassingValue {
        Result result;
        CString value;
    };

    class Unwinding;

    Result Run(std::size_t base, CString& value);
    Result Push(const RowReference& row, CEncapFamilyColumn& column,
                const LanguageReference& language);
    bool EvaluatePlainCell(const RowReference& row, CEncapFamilyColumn& column,
                           LanguageReference& language, CString& value);
    void Pop();

    // The steps of one cell.
    Result Begin(Frame& frame);
    Result BeginWithText(Frame& frame, const CString& source);
    bool FindOwnText(const Frame& frame, bool localized, CString& source);
    void ChooseRangeValue(Frame& frame, CString& source);
    std::optional<Result> Collect(Frame& frame);
    Result AddLiteral(Frame& frame, const CString& text);
    Result AddReference(Frame& frame, Result result, const CString& value);
    Result Finish(Frame& frame, CString& value);
    bool FinishWithoutHost(const ColumnState& column, const CString& expression,
                           CString& value) const;
    Result ComputeNumber(Frame& frame, double& number);
    Result Keep(Frame& frame, Result result, bool outermost, const CString& value);
    void KeepForThisChain(const Frame& frame, Result result, const CString& value);

    CEncapFamilyColumn* ColumnOf(const Token& token);
    [[nodiscard]] bool RowIsGone(const RowReference& row) const;
    [[nodiscard]] wchar_t LocalizedSeparator() const;

    CEncapFamilyTable& m_table;
    TableState& m_state;
    const HostCalls& m_host;
    TokenCache& m_tokens;
    VisitingSet m_visiting;
    std::deque<Frame> m_frames; ///< kept for their buffers; the first m_depth are in use
    std::size_t m_depth = 0;
    CString m_source;
    CString m_value;
    /// Values that the cache does not keep (computed without units, or too long), while a chain of
    /// evaluations lasts: else each of them would be computed again for every reference to it.
    std::unordered_map<CellKey, PassingValue, CellKeyHash> m_passing;
    uint64_t m_passingVersion = 0;
    uint64_t m_startVersion = 0; ///< of the edits, when the outermost evaluation began
    std::size_t m_cellsAcrossEdits = 0;
};

} // namespace encap
