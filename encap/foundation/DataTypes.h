#pragma once

#include "encap/foundation/Types.h"

#include <memory>

/// What a table column holds: the kinds of values and of formulas, and the two texts of each kind
/// of value. The type word ("double") is stored in family documents, the display word ("Real") is
/// offered to users. Static members only; safe to call from any thread.
class ENCAP_API DataTypes {
public:
    enum ColumnDataType : int32_t {
        ColumnDataTypeString = 0,
        ColumnDataTypeReal = 1,
        ColumnDataTypeInteger = 2,
        ColumnDataTypeBoolean = 3,
    };

    enum ColumnFormulaType : int32_t {
        RangeFormula = 100,    ///< a range text: its default, else its minimum, is the value
        NormalFormula = 101,   ///< literal text with column references in braces
        MaterialFormula = 102, ///< as NormalFormula, the literal pieces being material names
    };

    /// A new list of the four type words, in the order of ColumnDataType.
    [[nodiscard]] static std::unique_ptr<CStringArray> GetTypes();
    /// A new list of the four display words, in the order of ColumnDataType.
    [[nodiscard]] static std::unique_ptr<CStringArray> GetItems();

    /// The kind with this type word in any case; ColumnDataTypeString for any other text.
    [[nodiscard]] static ColumnDataType DataTypeStr2Num(const CString& text);
    /// The kind with exactly this display word; ColumnDataTypeString for any other text.
    [[nodiscard]] static ColumnDataType ItemTypeStr2Num(const CString& text);
    /// The type word of a ColumnDataType; empty for any other number.
    [[nodiscard]] static CString DataTypeNum2Str(int32_t value);
    /// The display word of a ColumnDataType; empty for any other number.
    [[nodiscard]] static CString ItemTypeNum2Str(int32_t value);
};
