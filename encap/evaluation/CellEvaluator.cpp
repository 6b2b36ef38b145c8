#include "encap/evaluation/CellEvaluator.h"

#include "encap/evaluation/ValueText.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/foundation/TextFormat.h"

#include <cmath>

namespace encap {

namespace {

constexpr std::size_t kFramesToKeep = 64;
// A host that edits the family in its calls keeps values from being kept; such an evaluation ends.
constexpr std::size_t kMostCellsAcrossEdits = 200'000;

} // namespace

std::size_t CellEvaluator::CellKeyHash::operator()(const CellKey& key) const
{
    const std::size_t row = std::hash<CString>{}(key.rowId);
    const std::size_t column = std::hash<const void*>{}(key.column);
    return row ^ (column * 31) ^ (std::hash<CString>{}(key.language) * 17);
}

/// Takes the frames of an evaluation away however it ends.
class CellEvaluator::Unwinding {
public:
    Unwinding(CellEvaluator& evaluator, std::size_t base) : m_evaluator(evaluator), m_base(base) {}
    ~Unwinding()
    {
        while (m_evaluator.m_depth > m_base) {
            m_evaluator.Pop();
        }
        if (m_base == 0) {
            m_evaluator.m_passing.clear();
            if (m_evaluator.m_frames.size() > kFramesToKeep) {
                m_evaluator.m_frames.resize(kFramesToKeep);
            }
        }
    }
    Unwinding(const Unwinding&) = delete;
    Unwinding& operator=(const Unwinding&) = delete;

private:
    CellEvaluator& m_evaluator;
    std::size_t m_base;
};

CellEvaluator::CellEvaluator(CEncapFamilyTable& table, const HostCalls& host, TokenCache& tokens)
    : m_table(table), m_state(TableAccess::Of(table)), m_host(host), m_tokens(tokens)
{
}

std::optional<CellEvaluator::Result> CellEvaluator::ReadAtHand(const RowReference& row,
                                                               CEncapFamilyColumn& column,
                                                               LanguageReference& language,
                                                               CString& value)
{
    const ColumnState& state = TableAccess::Of(column);
    ValueCacheStore& cache = *m_state.cacheStore;
    if (cache.Get(row.id, state.cacheNumber, language, value) == 0) {
        return CTableEvaluator::EvaluateOK;
    }
    if (state.bookkeeping) {
        value.clear();
        if (row.entry != nullptr) {
            TableAccess::ReadCell(m_table, *row.Row(), state, value);
        }
        cache.Set(row.id, state.cacheNumber, language, value);
        return CTableEvaluator::EvaluateOK;
    }
    if (m_passing.empty() || m_passingVersion != m_state.editVersion) {
        return std::nullopt;
    }
    const auto found = m_passing.find({&column, CString(row.id), CString(language.text)});
    if (found == m_passing.end()) {
        return std::nullopt;
    }
    value = found->second.value;
    return found->second.result;
}

CellEvaluator::Result CellEvaluator::Evaluate(const RowReference& row, CEncapFamilyColumn& column,
                                              LanguageReference& language, CString& value)
{
    if (EvaluatePlainCell(row, column, language, value)) {
        return CTableEvaluator::EvaluateOK;
    }
    const std::size_t base = m_depth;
    if (base == 0) {
        m_startVersion = m_state.editVersion;
        m_cellsAcrossEdits = 0;
    }
    const Unwinding unwinding(*this, base);
    const Result pushed = Push(row, column, language);
    return pushed == CTableEvaluator::EvaluateOK ? Run(base, value) : pushed;
}

CellEvaluator::Result CellEvaluator::Run(std::size_t base, CString& value)
{
    while (true) {
        Frame& frame = m_frames[m_depth - 1];
        const std::optional<Result> collected = Collect(frame);
        if (!collected) {
            continue; // the referenced cell's frame is on top now
        }
        const bool outermost = m_depth == base + 1;
        Result result = *collected;
        if (result == CTableEvaluator::EvaluateOK) {
            result = Finish(frame, m_value);
            result = Keep(frame, result, outermost, m_value);
            if (outermost && HasValue(result)) {
                value = m_value;
            }
        }
        Pop();
        while (m_depth > base) {
            Frame& waiting = m_frames[m_depth - 1];
            result = AddReference(waiting, result, m_value);
            if (result == CTableEvaluator::EvaluateOK) {
                break;
            }
            Pop(); // every cell on the way to a failing one fails alike
        }
        if (m_depth == base) {
            return result;
        }
    }
}

// Most cells hold a text of their own that is the value as it stands: they need no frame. Others,
// and those that will fail, are left to the steps below.
bool CellEvaluator::EvaluatePlainCell(const RowReference& row, CEncapFamilyColumn& column,
                                      LanguageReference& language, CString& value)
{
    ColumnState& state = TableAccess::Of(column);
    if (row.entry == nullptr || state.custom || state.visiting > 0 || column.IsMaterial() ||
        TableAccess::IsLocalized(m_table, state) || LocalizedSeparator() != L'\0' ||
        !TableAccess::ReadCell(m_table, *row.Row(), state, m_source) ||
        m_source.size() > kLongestCachedValue || HoldsEither(m_source, L'{', L'}') ||
        !FinishWithoutHost(state, m_source, value)) {
        return false;
    }
    m_state.cacheStore->Set(row.id, state.cacheNumber, language, value);
    return true;
}

CellEvaluator::Result CellEvaluator::Push(const RowReference& row, CEncapFamilyColumn& column,
                                          const LanguageReference& language)
{
    if (m_state.editVersion != m_startVersion && ++m_cellsAcrossEdits > kMostCellsAcrossEdits) {
        return CTableEvaluator::EvaluateFailed;
    }
    if (m_depth == m_frames.size()) {
        m_frames.emplace_back();
    }
    Frame& frame = m_frames[m_depth++];
    frame.row = row;
    frame.column = &column;
    frame.language = language;
    frame.tokens.reset();
    frame.nextToken = 0;
    frame.expression.clear();
    frame.fallback.clear();
    frame.running = CTableEvaluator::EvaluateOK;
    frame.editVersion = m_state.editVersion;
    frame.hasHiddenReferences = false;
    frame.guard.emplace(row.id, column, m_visiting);
    const Result result = frame.guard->IsAlreadyVisiting()
                              ? CTableEvaluator::EvaluateCircularReference
                              : Begin(frame);
    if (result != CTableEvaluator::EvaluateOK) {
        Pop();
    }
    return result;
}

void CellEvaluator::Pop()
{
    m_frames[--m_depth].guard.reset();
}

// Finds the cell's source text and splits it.
CellEvaluator::Result CellEvaluator::Begin(Frame& frame)
{
    ColumnState& column = TableAccess::Of(*frame.column);
    const bool localized = TableAccess::IsLocalized(m_table, column);
    const bool ownText = FindOwnText(frame, localized, m_source);
    frame.hasHiddenReferences = ownText;
    if (!ownText && !column.custom) {
        if (column.tokens == nullptr) {
            column.tokens = m_tokens.Get(column.formula);
        }
        frame.tokens = column.tokens;
        return frame.tokens != nullptr ? CTableEvaluator::EvaluateOK
                                       : CTableEvaluator::EvaluateSyntaxError;
    }
    if (!ownText) {
        m_source = column.formula;
    }
    if (column.custom) {
        ChooseRangeValue(frame, m_source);
    }
    return BeginWithText(frame, m_source);
}

// Text that is not the column's formula as it stands: the cell's own or the language's.
bool CellEvaluator::FindOwnText(const Frame& frame, bool localized, CString& source)
{
    const ColumnState& column = TableAccess::Of(*frame.column);
    if (localized) {
        const CString row(frame.row.id);
        const CString language(frame.language.text);
        if (m_state.family->GetLocalizedCellValue(column.id.c_str(), row.c_str(), language.c_str(),
                                                  source) == 0) {
            return true;
        }
    }
    if (frame.row.entry != nullptr &&
        TableAccess::ReadCell(m_table, *frame.row.Row(), column, source)) {
        return true;
    }
    if (!localized) {
        return false;
    }
    const CString language(frame.language.text);
    return m_state.family->GetLocalizedColumnPropertyValue(
               column.id.c_str(), vocabulary::kColumnwideValue, language.c_str(), source) == 0;
}

void CellEvaluator::ChooseRangeValue(Frame& frame, CString& source)
{
    const ColumnState& column = TableAccess::Of(*frame.column);
    const auto chosen = m_state.rangeColumnValues.find(column.id);
    if (chosen != m_state.rangeColumnValues.end()) {
        source = chosen->second;
        frame.hasHiddenReferences = true;
        return;
    }
    if (CRangeParser::IsRange(source)) {
        const CRangeParser range(source.c_str());
        source = range.hasDefault() ? range.getDefault() : range.getMin();
    }
}

CellEvaluator::Result CellEvaluator::BeginWithText(Frame& frame, const CString& source)
{
    if (!HoldsEither(source, L'{', L'}')) {
        frame.hasHiddenReferences = false;
        return AddLiteral(frame, source);
    }
    frame.tokens = m_tokens.Get(source);
    return frame.tokens != nullptr ? CTableEvaluator::EvaluateOK
                                   : CTableEvaluator::EvaluateSyntaxError;
}

// Puts the tokens' texts together; nothing when a referenced cell has to be evaluated first.
std::optional<CellEvaluator::Result> CellEvaluator::Collect(Frame& frame)
{
    Result result = CTableEvaluator::EvaluateOK;
    while (result == CTableEvaluator::EvaluateOK && frame.tokens != nullptr &&
           frame.nextToken < frame.tokens->tokens.size()) {
        const Token& token = frame.tokens->tokens[frame.nextToken];
        if (!token.isReference) {
            result = AddLiteral(frame, token.text);
            ++frame.nextToken;
            continue;
        }
        CEncapFamilyColumn* column = ColumnOf(token);
        if (column == nullptr) {
            return CTableEvaluator::EvaluateFailed;
        }
        if (const auto known = ReadAtHand(frame.row, *column, frame.language, m_value)) {
            result = AddReference(frame, *known, m_value);
            continue;
        }
        if (EvaluatePlainCell(frame.row, *column, frame.language, m_value)) {
            result = AddReference(frame, CTableEvaluator::EvaluateOK, m_value);
            continue;
        }
        result = Push(frame.row, *column, frame.language);
        if (result == CTableEvaluator::EvaluateOK) {
            return std::nullopt;
        }
    }
    return result;
}

CellEvaluator::Result CellEvaluator::AddLiteral(Frame& frame, const CString& text)
{
    const ColumnState& column = TableAccess::Of(*frame.column);
    if (column.dataType == DataTypes::ColumnDataTypeReal && LocalizedSeparator() != L'\0' &&
        CStringUtil::IsNumericValue(text.c_str())) {
        const CString localized = WithSeparator(text, LocalizedSeparator());
        frame.expression += localized;
        frame.fallback += localized;
    } else if (frame.column->IsMaterial()) {
        frame.number = text; // the text may stand in a buffer that a nested read uses
        frame.expression += m_host.MaterialName(frame.number.c_str());
    } else {
        frame.expression += text;
        frame.fallback += text;
    }
    return frame.expression.size() <= kLongestExpression ? CTableEvaluator::EvaluateOK
                                                         : CTableEvaluator::EvaluateFailed;
}

CellEvaluator::Result CellEvaluator::AddReference(Frame& frame, Result result, const CString& value)
{
    if (!HasValue(result)) {
        return result;
    }
    const Token& token = frame.tokens->tokens[frame.nextToken++];
    frame.running = result;
    if (!IsNumericType(TableAccess::Of(*frame.column).dataType)) {
        frame.expression += value;
    } else if (AppendReferencedValue(frame.expression, value,
                                     TableAccess::Of(*token.column).unit)) {
        frame.fallback += value;
    }
    return frame.expression.size() <= kLongestExpression ? CTableEvaluator::EvaluateOK
                                                         : CTableEvaluator::EvaluateFailed;
}

CellEvaluator::Result CellEvaluator::Finish(Frame& frame, CString& value)
{
    const ColumnState& column = TableAccess::Of(*frame.column);
    if (FinishWithoutHost(column, frame.expression, value)) {
        return frame.running;
    }
    if (!IsNumericType(column.dataType)) {
        return CTableEvaluator::EvaluateTypeMismatch;
    }
    double number = 0.0;
    const Result result = ComputeNumber(frame, number);
    if (HasValue(result)) {
        AssignNumberValue(number, LocalizedSeparator(), value);
    }
    return result;
}

// The value of a finished expression; false when it is no value of the column's type as it stands.
bool CellEvaluator::FinishWithoutHost(const ColumnState& column, const CString& expression,
                                      CString& value) const
{
    switch (column.dataType) {
    case DataTypes::ColumnDataTypeReal:
    case DataTypes::ColumnDataTypeInteger:
        if (!CStringUtil::IsNumericValue(std::wstring_view(expression))) {
            return false;
        }
        break;
    case DataTypes::ColumnDataTypeBoolean:
        if (!CStringUtil::IsLogicalValue(expression.c_str())) {
            return false;
        }
        break;
    default: JoinTextPieces(expression, value); return true;
    }
    value = expression;
    return true;
}

// Has the host compute the expression, with units and failing that without; the number is in the
// column's unit. The frame's own copies of the texts stay while the host edits the family.
CellEvaluator::Result CellEvaluator::ComputeNumber(Frame& frame, double& number)
{
    const CString& columnUnit = TableAccess::Of(*frame.column).unit;
    columnUnit.empty() ? frame.unit = kUnitless : frame.unit = columnUnit;
    if (!m_host.DatabaseUnit(frame.unit, frame.databaseUnit)) {
        return CTableEvaluator::EvaluateFailed;
    }
    if (m_host.Evaluate(frame.expression, frame.unit, number) < 0 || !std::isfinite(number)) {
        number = 0.0;
        if (m_host.Evaluate(frame.fallback, kUnitless, number) < 0 || !std::isfinite(number)) {
            return CTableEvaluator::EvaluateFailed;
        }
        return CTableEvaluator::EvaluateUnitlessFallback;
    }
    if (frame.unit == frame.databaseUnit) {
        return frame.running;
    }
    frame.number.clear();
    AppendGeneral(frame.number, number, kHostDigits);
    const bool converted = m_host.Convert(frame.number, frame.databaseUnit, frame.unit, number);
    return converted ? frame.running : CTableEvaluator::EvaluateFailed;
}

// Stores a value that is still one of the table's, and gives the code under which it is handed out.
CellEvaluator::Result CellEvaluator::Keep(Frame& frame, Result result, bool outermost,
                                          const CString& value)
{
    if (!HasValue(result)) {
        return result;
    }
    const ColumnState& column = TableAccess::Of(*frame.column);
    if (value.size() > kLongestExpression) {
        return CTableEvaluator::EvaluateFailed;
    }
    if (frame.editVersion != m_state.editVersion) {
        // A host call edited the family: the next read computes it anew.
        return column.removed || RowIsGone(frame.row) ? CTableEvaluator::EvaluateColumnNotFound
                                                      : result;
    }
    const bool passing = result == CTableEvaluator::EvaluateUnitlessFallback && !outermost;
    if (passing || value.size() > kLongestCachedValue) {
        KeepForThisChain(frame, result, value);
        return result;
    }
    CValueCacheLoc& cache = *m_state.cacheStore->RowCache(frame.row.id, true);
    cache.Set(m_state.cacheStore->LanguageNumber(frame.language), column.cacheNumber, value);
    if (frame.hasHiddenReferences) {
        cache.MarkHiddenReferences();
    }
    return result;
}

void CellEvaluator::KeepForThisChain(const Frame& frame, Result result, const CString& value)
{
    // In the cache the value would have come and gone.
    m_state.cacheStore->MarkChanged();
    if (frame.hasHiddenReferences) {
        m_state.cacheStore->RowCache(frame.row.id, true)->MarkHiddenReferences();
    }
    if (m_passingVersion != m_state.editVersion) {
        m_passing.clear();
        m_passingVersion = m_state.editVersion;
    }
    m_passing.insert_or_assign({frame.column, CString(frame.row.id), CString(frame.language.text)},
                               PassingValue{result, value});
}

CEncapFamilyColumn* CellEvaluator::ColumnOf(const Token& token)
{
    if (token.column == nullptr || token.structureVersion != m_state.structureVersion) {
        token.column = m_state.columns.Find(token.text);
        token.structureVersion = m_state.structureVersion;
    }
    return token.column;
}

bool CellEvaluator::RowIsGone(const RowReference& row) const
{
    return row.entry != nullptr && m_state.rows.FindEntry(row.id) != row.entry;
}

wchar_t CellEvaluator::LocalizedSeparator() const
{
    const CEncapFamily* family = m_state.family;
    return family != nullptr && family->LocalizeDecimalSeparator() ? family->GetDecimalSeparator()
                                                                   : L'\0';
}

} // namespace encap
