#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/StringUtil.h"

#include <algorithm>

namespace encap::cli {
namespace {

/// Looks for rows with the same key in any language. Keeps the keys that there were.
class KeyCheck : public FamilyCheck {
public:
    explicit KeyCheck(const CheckedFamily& family);

    void VisitRow(const CheckedRow& row, const FindingReport& report) override;

private:
    [[nodiscard]] bool ReadKey(const CheckedRow& row, std::size_t language);
    [[nodiscard]] CString KeyWords(const CheckedRow& row, std::size_t language) const;

    const CheckedFamily& m_family;
    std::vector<const CheckedColumn*> m_columns; ///< by weight
    CString m_key;
    std::vector<ExactMap<CString>> m_rowOfKey; ///< by language
};

KeyCheck::KeyCheck(const CheckedFamily& family) : m_family(family)
{
    for (const CheckedColumn& column : family.Columns()) {
        if (column.column->IsKeyColumn() && !column.isShadowed) {
            m_columns.push_back(&column);
        }
    }
    std::stable_sort(m_columns.begin(), m_columns.end(),
                     [](const CheckedColumn* left, const CheckedColumn* right) {
                         return left->column->GetKeyWeight() < right->column->GetKeyWeight();
                     });
    const bool varies =
        std::any_of(m_columns.begin(), m_columns.end(),
                    [](const CheckedColumn* column) { return column->variesByLanguage; });
    m_rowOfKey.resize(varies ? family.Languages().size() : 1);
}

const CellValue& ValueOf(const CheckedRow& row, std::size_t language, const CheckedColumn& column)
{
    const CellValue& value = row.values[language][column.index];
    return value.isRead ? value : row.values.front()[column.index];
}

/// Numbers compare as numbers: 10 is 10.0.
void AppendToKey(CString& key, const CheckedColumn& column, CString text)
{
    constexpr int kAllDigits = 17;
    if (column.holdsNumbers && !text.empty() && CStringUtil::IsNumericValue(text.c_str())) {
        CStringUtil::ReplaceDecimalPointOfCell(text);
        text = FormatGeneral(CStringUtil::ToDouble(text.c_str()), kAllDigits);
    }
    key.append(FormatInteger(static_cast<int64_t>(text.size()))).append(1, L':').append(text);
}

/// False when the row has no whole key.
bool KeyCheck::ReadKey(const CheckedRow& row, std::size_t language)
{
    m_key.clear();
    for (const CheckedColumn* column : m_columns) {
        const CellValue& value = ValueOf(row, language, *column);
        if (HasNoValue(value.result)) {
            return false;
        }
        AppendToKey(m_key, *column, value.text);
    }
    return true;
}

CString KeyCheck::KeyWords(const CheckedRow& row, std::size_t language) const
{
    CString words;
    for (const CheckedColumn* column : m_columns) {
        words.append(words.empty() ? L"" : L", ").append(column->id).append(L" ");
        words.append(L"\"").append(Shortened(ValueOf(row, language, *column).text)).append(L"\"");
    }
    return words;
}

void KeyCheck::VisitRow(const CheckedRow& row, const FindingReport& report)
{
    if (m_columns.empty() || !row.HasValues()) {
        return;
    }
    bool isReported = false;
    for (std::size_t language = 0; language < m_rowOfKey.size(); ++language) {
        if (!ReadKey(row, language)) {
            continue;
        }
        const auto [known, isNew] = m_rowOfKey[language].emplace(m_key, row.id);
        if (!isNew && !isReported) {
            const CString tag = language > 0 ? m_family.Languages()[language] : CString();
            report.Add(Rule::KeyDuplicate, {.row = row.id, .language = tag},
                       {KeyWords(row, language), known->second});
            isReported = true;
        }
    }
}

} // namespace

std::unique_ptr<FamilyCheck> MakeKeyCheck(const CheckedFamily& family)
{
    return std::make_unique<KeyCheck>(family);
}

} // namespace encap::cli
