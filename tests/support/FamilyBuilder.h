#pragma once

#include "encap/family/Family.h"
#include "encap/table/FamilyTable.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace encap::test {

/// Puts a family document together for a test: columns, then rows with their cells.
class FamilyBuilder {
public:
    struct ColumnText {
        CString id;
        CString type = L"double"; ///< the stored type word
        CString unit{};
        CString formula{};
        CString more{}; ///< further attributes, as XML
    };

    FamilyBuilder& Column(const ColumnText& column)
    {
        m_columns += L"<Column ColumnId=\"" + column.id + L"\" Title=\"" + column.id +
                     L"\" Hidden=\"false\" ValueType=\"" + column.type + L"\" UnitType=\"" +
                     column.unit + L"\" ColumnwideValue=\"" + Escaped(column.formula) + L"\" " +
                     column.more + L"/>";
        return *this;
    }
    FamilyBuilder& Row(const CString& id,
                       const std::vector<std::pair<CString, CString>>& cells = {})
    {
        m_rows += L"<Row RowId=\"" + id + L"\">";
        for (const auto& [column, text] : cells) {
            m_rows += L"<Cell ColumnId=\"" + column + L"\">" + Escaped(text) + L"</Cell>";
        }
        m_rows += L"</Row>";
        return *this;
    }
    /// XML beside the table, such as a parameter map.
    FamilyBuilder& Beside(const CString& xml)
    {
        m_beside += xml;
        return *this;
    }
    FamilyBuilder& Attributes(const CString& xml)
    {
        m_attributes += L" " + xml;
        return *this;
    }
    /// Makes a column supply a category parameter.
    FamilyBuilder& Supplies(const CString& column, const CString& categoryParameter)
    {
        m_maps += L"<ParamToColumn TableColumn=\"" + column +
                  L"\"><CategoryParameterRef "
                  L"Category=\"c\" CategoryParameter=\"" +
                  categoryParameter + L"\"/></ParamToColumn>";
        return *this;
    }

    [[nodiscard]] CString Xml() const
    {
        return L"<Family" + m_attributes + L">" + m_beside +
               L"<ParameterMap><MemberParametersMap><ParamsToColumn>" + m_maps +
               L"</ParamsToColumn></MemberParametersMap></ParameterMap>"
               L"<FamilyTable><Columns>" +
               m_columns + L"</Columns><Rows>" + m_rows + L"</Rows></FamilyTable></Family>";
    }
    [[nodiscard]] std::unique_ptr<CEncapFamily> Open(IEvaluatorProvider* provider,
                                                     const std::vector<CString>& strings = {},
                                                     bool localizeDecimals = false,
                                                     const CString& cacheDirectory = L"") const
    {
        return std::make_unique<CEncapFamily>(Xml().c_str(), strings, cacheDirectory.c_str(),
                                              provider, localizeDecimals);
    }

    [[nodiscard]] static CString Escaped(const CString& text)
    {
        CString out;
        for (const wchar_t character : text) {
            switch (character) {
            case L'&': out += L"&amp;"; break;
            case L'<': out += L"&lt;"; break;
            case L'"': out += L"&quot;"; break;
            default: out += character;
            }
        }
        return out;
    }

private:
    CString m_attributes;
    CString m_beside;
    CString m_maps;
    CString m_columns;
    CString m_rows;
};

/// A cell's value in the family's language, or "#" and the result code; a value that comes with a
/// warning is followed by "#8".
inline CString CellText(CEncapFamily& family, const CString& row, const CString& column)
{
    CString value;
    const auto result = family.GetEncapFamilyTable()->GetValue(row.c_str(), column.c_str(), value);
    if (result == CTableEvaluator::EvaluateOK) {
        return value;
    }
    const CString code = L"#" + std::to_wstring(static_cast<int>(result));
    return result == CTableEvaluator::EvaluateUnitlessFallback ? value + code : code;
}

inline CEncapFamilyColumn& ColumnOf(CEncapFamily& family, const CString& column)
{
    CEncapFamilyColumn* found = family.GetEncapFamilyTable()->GetFamilyColumnByID(column.c_str());
    EXPECT_NE(found, nullptr);
    return *found;
}

} // namespace encap::test
