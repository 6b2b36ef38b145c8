#pragma once

#include "encap/host/Dimensions.h"

#include <string_view>

namespace encap::host {

/// Everything that the standalone provider refuses. None is success.
enum class ErrorKind : uint8_t {
    None,
    // Syntax
    EmptyExpression,
    OperandExpected,
    OperandMissing,
    OperatorExpected,
    NotAnOperator,
    ClosingMissing,
    ClosingUnmatched,
    SeparatorOutside,
    ChainedComparison,
    NotInsideOperand,
    PowerBehindUnit,
    NestedTooDeep,
    ArgumentCount,
    CallExpected,
    UnitWithoutNumber,
    UnitNameExpected,
    UnitCharacter,
    UnitPower,
    UnitlessNotAlone,
    NotANumber,
    MaterialCells,
    MaterialQuotes,
    // Unknown names
    UnknownName,
    UnknownFunction,
    UnknownUnit,
    ReservedUnit,
    UnusableUnit,
    UnknownMaterialKey,
    UnknownMaterialName,
    // Dimensions
    DimensionsDiffer,
    DimensionlessExpected,
    ExponentUnit,
    AngleExpected,
    PowerNotWhole,
    PowerTooLarge,
    CountMisfit,
    ResultMisfit,
    ConversionMisfit,
    OffsetUnitUse,
    BareBesideOffset,
    // The unit database
    NoUnitDatabase,
};

/// The text that a position counts in.
enum class ErrorSource : uint8_t { Expression, Value, Unit, None };

/// A piece of the user's text in an error, cut where it is long. Never allocates, so that a refused
/// expression costs little until somebody asks why.
class ErrorToken {
public:
    void Assign(std::wstring_view text);
    [[nodiscard]] std::wstring_view View() const { return {m_text.data(), m_size}; }

private:
    std::array<wchar_t, 48> m_text{};
    std::size_t m_size = 0;
};

/// Why a call failed, as facts; the sentence is made on demand.
struct EvaluationError {
    ErrorKind kind = ErrorKind::None;
    ErrorSource source = ErrorSource::Expression;
    std::size_t position = 0; ///< 0-based, in the source
    ErrorToken token;         ///< what the error is about
    ErrorToken detail;        ///< a second text: a number of arguments, a power, the whole unit
    Dimensions left, right;

    /// Negative; one of CStandaloneEvaluatorProvider::Status.
    [[nodiscard]] int32_t Status() const;
    /// The sentence, with "(at character N)" where there is a source.
    [[nodiscard]] CString Sentence() const;
};

} // namespace encap::host
