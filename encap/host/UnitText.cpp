#include "encap/host/UnitText.h"

#include "encap/host/Words.h"

#include <algorithm>

namespace encap::host {

namespace {

/// Multiplies the names of one unit text, and refuses what cannot stand in a product.
class UnitProduct {
public:
    UnitProduct(Scanner& scanner, UnitTable& table, EvaluationError& error)
        : m_scanner(scanner), m_table(table), m_error(error)
    {
    }

    /// Reads a name and its power, and multiplies by it (sign 1) or divides (sign -1).
    bool ReadFactor(int sign, bool allowCaret);
    [[nodiscard]] const Unit& Product() const { return m_product; }
    bool Fail(ErrorKind kind, std::size_t position, std::wstring_view token = {});

private:
    bool ReadPower(std::wstring_view digits, bool allowCaret, int& power);
    bool ReadCaretPower(int& power);
    bool Multiply(Unit factor, int power, std::size_t position, std::wstring_view name);

    Scanner& m_scanner;
    UnitTable& m_table;
    EvaluationError& m_error;
    Unit m_product;
    std::size_t m_firstPosition = 0;
    std::wstring_view m_firstName;
    int m_factors = 0;
};

bool UnitProduct::Fail(ErrorKind kind, std::size_t position, std::wstring_view token)
{
    m_error.kind = kind;
    m_error.position = position;
    m_error.token.Assign(token);
    return false;
}

bool UnitProduct::ReadFactor(int sign, bool allowCaret)
{
    const std::size_t start = m_scanner.Position();
    std::wstring_view name = m_scanner.NameAt();
    if (name.empty() && allowCaret && m_scanner.Peek() == L'%') {
        name = L"%";
    }
    if (name.empty()) {
        return m_scanner.AtEnd() ? Fail(ErrorKind::UnitNameExpected, start)
                                 : Fail(ErrorKind::UnitCharacter, start, m_scanner.TokenHere());
    }
    m_scanner.Skip(name.size());
    std::size_t length = name.size();
    while (IsDigit(name[length - 1])) {
        --length;
    }
    Unit factor;
    m_error.position = start;
    int power = 1;
    if (!m_table.FindName(name.substr(0, length), factor, m_error) ||
        !ReadPower(name.substr(length), allowCaret, power)) {
        return false;
    }
    return Multiply(factor, sign * power, start, name);
}

bool UnitProduct::ReadPower(std::wstring_view digits, bool allowCaret, int& power)
{
    if (!digits.empty()) {
        power = 0;
        for (const wchar_t digit : digits) {
            power =
                std::min(power * 10 + static_cast<int>(digit - L'0'), Dimensions::kMaxPower + 1);
        }
    } else if (allowCaret && m_scanner.Peek() == L'^') {
        m_scanner.Skip(1);
        return ReadCaretPower(power);
    }
    if (power == 0 || power > Dimensions::kMaxPower) {
        return Fail(ErrorKind::UnitPower, m_scanner.Position() - digits.size());
    }
    return true;
}

bool UnitProduct::ReadCaretPower(int& power)
{
    const int sign = m_scanner.Peek() == L'-' ? -1 : 1;
    if (sign < 0 || m_scanner.Peek() == L'+') {
        m_scanner.Skip(1);
    }
    const std::size_t start = m_scanner.Position();
    while (IsDigit(m_scanner.Peek())) {
        m_scanner.Skip(1);
    }
    const std::wstring_view digits = m_scanner.Since(start);
    if (digits.empty()) {
        return Fail(ErrorKind::UnitPower, start);
    }
    if (!ReadPower(digits, false, power)) {
        return false;
    }
    power *= sign;
    return true;
}

bool UnitProduct::Multiply(Unit factor, int power, std::size_t position, std::wstring_view name)
{
    if (m_factors++ == 0) {
        m_firstPosition = position;
        m_firstName = name;
        if (power == 1) {
            m_product = factor;
            return true;
        }
    }
    if (factor.isUnitless || (m_factors > 1 && m_product.isUnitless)) {
        return Fail(ErrorKind::UnitlessNotAlone, position);
    }
    if (m_product.HasOffset()) {
        return Fail(ErrorKind::OffsetUnitUse, m_firstPosition, m_firstName);
    }
    if (factor.HasOffset()) {
        return Fail(ErrorKind::OffsetUnitUse, position, name);
    }
    const auto dimensions = m_product.dimensions.Times(factor.dimensions, power);
    if (!dimensions) {
        return Fail(ErrorKind::PowerTooLarge, position);
    }
    const Scale raised = power == 1    ? factor.scale
                         : power == -1 ? Scale{}.Over(factor.scale)
                                       : factor.scale.Raised(power);
    m_product = {m_product.scale.Times(raised), 0.0, *dimensions, false};
    return true;
}

bool SkipLeadingOne(Scanner& scanner)
{
    if (scanner.Peek() != L'1' || scanner.TokenHere().size() != 1) {
        return false;
    }
    scanner.Skip(1);
    return true;
}

// Moves past what joins the next name: "*" or "/" with blanks around, or blanks. Gives 1 or -1, and
// 0 where there is neither.
int SkipJoint(Scanner& scanner)
{
    const std::size_t start = scanner.Position();
    scanner.SkipBlanks();
    const wchar_t joint = scanner.Peek();
    if (joint != L'*' && joint != L'/') {
        return scanner.Position() > start ? 1 : 0;
    }
    scanner.Skip(1);
    scanner.SkipBlanks();
    return joint == L'*' ? 1 : -1;
}

} // namespace

bool ReadUnitOfQuantity(Scanner& scanner, UnitTable& table, Unit& unit, EvaluationError& error)
{
    UnitProduct product(scanner, table, error);
    int sign = 1;
    while (product.ReadFactor(sign, false)) {
        const wchar_t joint = scanner.Peek();
        const std::wstring_view name =
            joint == L'*' || joint == L'/' ? scanner.NameAt(1) : std::wstring_view();
        if (name.empty() || IsReservedName(name) || scanner.CallFollows(1 + name.size())) {
            unit = product.Product();
            return true;
        }
        sign = joint == L'*' ? 1 : -1;
        scanner.Skip(1);
    }
    return false;
}

bool ReadUnitArgument(std::wstring_view text, UnitTable& table, Unit& unit, EvaluationError& error)
{
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    Scanner scanner(text, false);
    scanner.SkipBlanks();
    UnitProduct product(scanner, table, error);
    bool isFirst = !SkipLeadingOne(scanner);
    while (!scanner.AtEnd()) {
        const int sign = isFirst ? 1 : SkipJoint(scanner);
        if (sign == 0) {
            return product.Fail(ErrorKind::UnitCharacter, scanner.Position(), scanner.TokenHere());
        }
        if (!product.ReadFactor(sign, true)) {
            return false;
        }
        isFirst = false;
    }
    unit = product.Product();
    return true;
}

} // namespace encap::host
