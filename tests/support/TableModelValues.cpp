#include "tests/support/TableModel.h"

#include "tests/support/SumProvider.h"

namespace encap::test {

TableModel::Value TableModel::Read(const Row& row, const CString& columnId, const CString& language)
{
    Column* column = Find(columns, columnId);
    if (column == nullptr) {
        return {3};
    }
    const CString source = Source(row, *column, language);
    if (SameId(column->id, L"RID") || SameId(column->id, L"STATUS")) {
        const auto cell = row.cells.find(column->id);
        return {0, cell != row.cells.end() ? cell->second : CString()};
    }
    if (!m_visiting.insert(column->id).second) {
        return {1};
    }
    const Value value = Evaluate(row, *column, source, language);
    m_visiting.erase(column->id);
    return value;
}

CString TableModel::FormulaIn(const Column& column, const CString& language) const
{
    const auto document = strings.find(language);
    if (Localized(column) && document != strings.end()) {
        const auto text = document->second.texts.find({column.id, L"ColumnwideValue"});
        if (text != document->second.texts.end()) {
            return text->second;
        }
    }
    return column.formula;
}

int TableModel::Check(const Column& column, const CString& formula)
{
    if (!column.custom) {
        return CheckNormal(column, formula);
    }
    const auto parts = RangeParts(formula);
    if (!parts) {
        return 4;
    }
    if (column.type == 0) {
        return 6;
    }
    for (const CString& part : *parts) {
        const int unfit = part.empty() ? 0 : CheckNormal(column, part);
        if (unfit != 0) {
            return unfit;
        }
    }
    std::vector<double> numbers;
    for (const CString& part : *parts) {
        const auto number = Sum(part);
        if (!number) {
            return 0; // absent or with references: not compared
        }
        numbers.push_back(*number);
    }
    return numbers[0] > numbers[1] || numbers[2] > numbers[1] - numbers[0] ||
                   numbers[3] < numbers[0] || numbers[3] > numbers[1]
               ? 4
               : 0;
}

CString TableModel::Source(const Row& row, const Column& column, const CString& language) const
{
    const auto document = strings.find(language);
    if (Localized(column) && document != strings.end()) {
        const auto text = document->second.cells.find({column.id, row.id});
        if (text != document->second.cells.end()) {
            return text->second;
        }
    }
    const auto cell = row.cells.find(column.id);
    return cell != row.cells.end() ? cell->second : FormulaIn(column, language);
}

std::optional<std::vector<std::pair<bool, CString>>> TableModel::Tokens(const CString& text)
{
    std::vector<std::pair<bool, CString>> tokens;
    for (std::size_t place = 0; place < text.size();) {
        const bool reference = text[place] == L'{';
        const std::size_t end = text.find_first_of(reference ? L"}" : L"{}", place);
        if (reference ? end == CString::npos : end != CString::npos && text[end] == L'}') {
            return std::nullopt;
        }
        const std::size_t stop = std::min(end, text.size());
        const std::size_t from = place + (reference ? 1 : 0);
        tokens.emplace_back(reference, text.substr(from, stop - from));
        place = stop + (reference ? 1 : 0);
    }
    return tokens;
}

std::optional<std::vector<CString>> TableModel::RangeParts(const CString& text)
{
    if (text.size() < 2 || text.front() != L'[' || text.back() != L']') {
        return std::nullopt;
    }
    std::vector<CString> parts(1);
    for (const wchar_t character : text.substr(1, text.size() - 2)) {
        if (character == L';') {
            parts.emplace_back();
        } else {
            parts.back() += character;
        }
    }
    return parts.size() == 4 ? std::optional(parts) : std::nullopt;
}

bool TableModel::IsNumber(const CString& text)
{
    const std::size_t sign = !text.empty() && (text[0] == L'+' || text[0] == L'-') ? 1 : 0;
    return text.empty() ||
           (text.size() > sign && sign + NumberAt(text, sign).second == text.size());
}

CString TableModel::Joined(const CString& text)
{
    if (text.empty() || text[0] == L'&') {
        return text;
    }
    CString joined;
    for (std::size_t place = 0; place <= text.size();) {
        const std::size_t end = std::min(text.find(L'&', place), text.size());
        const CString piece = text.substr(place, end - place);
        const std::size_t first = piece.find_first_not_of(L' ');
        if (first != CString::npos) {
            joined += piece.substr(first, piece.find_last_not_of(L' ') - first + 1);
        }
        place = end + 1;
    }
    return joined;
}

TableModel::Value TableModel::Evaluate(const Row& row, const Column& column, CString source,
                                       const CString& language)
{
    const auto range = column.custom ? RangeParts(source) : std::nullopt;
    if (range) {
        source = (*range)[3].empty() ? (*range)[0] : (*range)[3];
    }
    const auto tokens = Tokens(source);
    if (!tokens) {
        return {2};
    }
    Value result;
    CString plain; // the expression without units
    for (const auto& [isReference, text] : *tokens) {
        if (!isReference) {
            result.text += text;
            plain += text;
            continue;
        }
        const Value part = Read(row, text, language);
        if (!HasValue(part)) {
            return {part.code};
        }
        result.code = part.code;
        result.text += part.text;
        if (column.type != 0 && IsNumber(part.text)) {
            const CString& unit = Find(columns, text)->unit;
            plain += part.text;
            result.text += unit.empty() ? L"ul" : unit;
        }
    }
    return column.type == 0 ? Value{result.code, Joined(result.text)} : Number(result, plain);
}

TableModel::Value TableModel::Number(const Value& expression, const CString& plain)
{
    if (IsNumber(expression.text)) {
        return expression;
    }
    const auto exact = Sum(expression.text);
    const auto number = exact ? exact : Sum(plain);
    if (!number) {
        return {3};
    }
    return {exact ? expression.code : 8, NumberText(*number)};
}

int TableModel::CheckNormal(const Column& column, const CString& formula)
{
    const auto tokens = Tokens(formula);
    if (!tokens) {
        return 2;
    }
    CString sample;
    bool fits = true;
    for (const auto& [isReference, text] : *tokens) {
        const Column* referenced = isReference ? Find(columns, text) : nullptr;
        if (isReference && referenced == nullptr) {
            return 5;
        }
        if (!isReference) {
            sample += text;
            continue;
        }
        fits = fits && (referenced->type == 2 || (referenced->type == 1 && column.type == 1));
        sample += L"1" + (column.unit.empty() ? referenced->unit : CString());
    }
    return column.type == 0 || (fits && Sum(sample)) ? 0 : 6;
}

} // namespace encap::test
