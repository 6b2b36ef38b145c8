#include "encap/host/Calculator.h"

#include "encap/host/UnitText.h"

#include <functional>
#include <numbers>

namespace encap::host {

namespace {

bool IsExtreme(Word function)
{
    return function == Word::Min || function == Word::Max;
}

} // namespace

/// Counts a level of nesting while it lives.
class Calculator::Level {
public:
    Level(Calculator& evaluator, std::size_t position) : m_evaluator(evaluator)
    {
        if (++m_evaluator.m_level > kMostLevels) {
            m_evaluator.Fail(ErrorKind::NestedTooDeep, position);
        }
    }
    ~Level() { --m_evaluator.m_level; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    Calculator& m_evaluator;
};

bool Calculator::Run(double& value)
{
    m_scanner.SkipBlanks();
    if (m_scanner.AtEnd()) {
        Fail(ErrorKind::EmptyExpression, 0);
        return false;
    }
    Value result = ReadOperation(OrPrecedence);
    if (m_here.op == Operator::Close) {
        Fail(ErrorKind::ClosingUnmatched, m_here.position);
    } else if (m_here.op == Operator::Separator) {
        Fail(ErrorKind::SeparatorOutside, m_here.position);
    }
    if (HasFailed()) {
        return false;
    }
    if (m_offsetQuantity) {
        result = *m_offsetQuantity;
    }
    const ErrorKind kind = m_arithmetic.Answer(result, value);
    if (kind != ErrorKind::None) {
        FailUnits(kind, 0, {}, result.dimensions, m_request.asked.dimensions);
    }
    return !HasFailed();
}

Value Calculator::ReadOperation(Precedence least)
{
    m_scanner.SkipBlanks();
    Value left = least <= NotPrecedence && IsNotHere() ? ReadNot() : ReadSigned();
    while (PrecedenceOf(m_here.op) >= least) {
        const OperatorHere here = m_here;
        const Value right = ReadOperation(static_cast<Precedence>(PrecedenceOf(here.op) + 1));
        Apply(here, left, right);
        if (IsComparison(here.op) && IsComparison(m_here.op)) {
            Fail(ErrorKind::ChainedComparison, m_here.position);
        }
    }
    return left;
}

Value Calculator::ReadNot()
{
    const std::size_t start = m_scanner.Position();
    const Level level(*this, start);
    const std::wstring_view name = m_scanner.NameAt();
    m_scanner.Skip(name.size());
    Value operand = ReadOperation(NotPrecedence);
    const Dimensions dimensions = operand.dimensions;
    FailUnits(m_arithmetic.Not(operand), start, name, dimensions, {});
    return operand;
}

Value Calculator::ReadSigned()
{
    m_scanner.SkipBlanks();
    const wchar_t sign = m_scanner.Peek();
    if (sign != L'-' && sign != L'+') {
        return ReadPower();
    }
    const Level level(*this, m_scanner.Position());
    if (HasFailed()) {
        return {};
    }
    m_scanner.Skip(1);
    Value operand = ReadSigned();
    operand.number = sign == L'-' ? -operand.number : operand.number;
    return operand;
}

Value Calculator::ReadPower()
{
    const std::size_t start = m_scanner.Position();
    bool hasUnit = false;
    Value base = ReadOperand(hasUnit);
    if (m_here.op != Operator::Caret) {
        return base;
    }
    if (hasUnit) {
        FailPowerBehindUnit(start);
        return base;
    }
    const OperatorHere here = m_here;
    const Level level(*this, here.position);
    const Value exponent = ReadSigned();
    Apply(here, base, exponent);
    return base;
}

Value Calculator::ReadOperand(bool& hasUnit)
{
    if (m_scanner.AtNumber()) {
        return ReadQuantity(hasUnit);
    }
    if (m_scanner.Peek() == L'(') {
        return ReadGroup();
    }
    if (IsNameStart(m_scanner.Peek())) {
        return ReadName();
    }
    const std::size_t position = m_scanner.Position();
    if (m_scanner.AtEnd()) {
        Fail(ErrorKind::OperandMissing, position);
    } else {
        Fail(ErrorKind::OperandExpected, position, m_scanner.TokenHere());
    }
    return {};
}

Value Calculator::ReadQuantity(bool& hasUnit)
{
    const std::size_t start = m_scanner.Position();
    const double number = Arithmetic::FiniteOrNaN(m_scanner.ReadNumber());
    m_scanner.SkipBlanks();
    const std::wstring_view name = m_scanner.NameAt();
    if (name.empty()) {
        ReadOperator();
        return Value::Number(number);
    }
    const Word word = FindWord(name);
    if (IsOperatorWord(word)) {
        ReadOperator();
        return Value::Number(number);
    }
    if (IsConstant(word) || m_scanner.CallFollows(name.size())) {
        Fail(ErrorKind::OperatorExpected, m_scanner.Position(), name);
        return {};
    }
    Unit unit;
    if (!ReadUnitOfQuantity(m_scanner, m_units, unit, m_error)) {
        Stop();
        return {};
    }
    hasUnit = true;
    if (unit.HasOffset()) {
        return ReadOffsetQuantity(start, number, unit);
    }
    ReadOperator();
    if (unit.dimensions.IsNone()) {
        return {Arithmetic::FiniteOrNaN(unit.scale.Apply(number)), {}, {}, unit.isUnitless};
    }
    return {number, unit.scale, unit.dimensions, false};
}

// The quantity must be the whole expression but for blanks and one sign, which is a part of the
// number: -20degC is 20 degrees below zero, not the negative of a temperature.
Value Calculator::ReadOffsetQuantity(std::size_t start, double number, const Unit& unit)
{
    const std::size_t end = m_scanner.Position();
    Scanner before(m_request.expression.substr(0, start), false);
    before.SkipBlanks();
    const bool isNegative = before.Peek() == L'-';
    if (isNegative || before.Peek() == L'+') {
        before.Skip(1);
    }
    before.SkipBlanks();
    m_scanner.SkipBlanks();
    if (!before.AtEnd() || !m_scanner.AtEnd()) {
        Fail(ErrorKind::OffsetUnitUse, start, m_request.expression.substr(start, end - start));
        return {};
    }
    m_here = {};
    m_offsetQuantity =
        Value{(isNegative ? -number : number) + unit.offset, unit.scale, unit.dimensions, false};
    return *m_offsetQuantity;
}

Value Calculator::ReadGroup()
{
    const std::size_t start = m_scanner.Position();
    const Level level(*this, start);
    if (HasFailed()) {
        return {};
    }
    m_scanner.Skip(1);
    const Value value = ReadOperation(OrPrecedence);
    if (m_here.op == Operator::Close) {
        ReadOperator();
    } else if (m_here.op == Operator::Separator) {
        Fail(ErrorKind::SeparatorOutside, m_here.position);
    } else {
        Fail(ErrorKind::ClosingMissing, start);
    }
    return value;
}

Value Calculator::ReadName()
{
    const std::wstring_view name = m_scanner.NameAt();
    const bool isCalled = m_scanner.CallFollows(name.size());
    const Word word = FindWord(name);
    if (IsConstant(word)) {
        return ReadConstant(word, name);
    }
    if (IsFunction(word) && isCalled) {
        return ReadCall(word, name);
    }
    return FailAtName(name);
}

Value Calculator::ReadConstant(Word word, std::wstring_view name)
{
    m_scanner.Skip(name.size());
    if (word == Word::Pi && m_scanner.CallFollows(0)) {
        m_scanner.SkipBlanks();
        const std::size_t open = m_scanner.Position();
        m_scanner.Skip(1);
        m_scanner.SkipBlanks();
        if (m_scanner.Peek() != L')') {
            Fail(m_scanner.AtEnd() ? ErrorKind::ClosingMissing : ErrorKind::ArgumentCount, open,
                 name, L"no arguments");
            return {};
        }
        m_scanner.Skip(1);
    }
    ReadOperator();
    return Value::Number(word == Word::Pi ? std::numbers::pi : std::numbers::e);
}

Value Calculator::FailAtName(std::wstring_view name)
{
    const std::size_t position = m_scanner.Position();
    const Word word = FindWord(name);
    Unit unit;
    EvaluationError ignored;
    if (word == Word::Not) {
        Fail(ErrorKind::NotInsideOperand, position);
    } else if (IsOperatorWord(word)) {
        Fail(ErrorKind::OperandExpected, position, name);
    } else if (m_scanner.CallFollows(name.size())) {
        Fail(ErrorKind::UnknownFunction, position, name);
    } else if (IsReservedName(name)) {
        Fail(ErrorKind::CallExpected, position, name);
    } else if (ReadUnitOfQuantity(m_scanner, m_units, unit, ignored)) {
        Fail(ErrorKind::UnitWithoutNumber, position, m_scanner.Since(position));
    } else {
        Fail(ErrorKind::UnknownName, position, name);
    }
    return {};
}

Value Calculator::ReadCall(Word function, std::wstring_view name)
{
    const std::size_t start = m_scanner.Position();
    const Level level(*this, start);
    if (HasFailed()) {
        return {};
    }
    m_scanner.Skip(name.size());
    m_scanner.SkipBlanks();
    std::array<Value, 3> arguments;
    const int count = ReadArguments(function, name, start, arguments);
    if (HasFailed()) {
        return {};
    }
    const Dimensions left = arguments[0].dimensions;
    const Dimensions right = count == 2 ? arguments[1].dimensions : m_request.asked.dimensions;
    if (function == Word::If) {
        const bool isPlain = Arithmetic::IsPlainNumber(arguments[0]);
        FailUnits(Choose(arguments[0], arguments[1], arguments[2], m_arithmetic), start, name,
                  isPlain ? arguments[1].dimensions : left, arguments[2].dimensions);
        return arguments[1];
    }
    if (count == 1) {
        FailUnits(CallUnary(function, arguments[0], m_arithmetic), start, name, left, right);
    } else if (!IsExtreme(function)) {
        FailUnits(CallBinary(function, arguments[0], arguments[1], m_arithmetic), start, name, left,
                  right);
    }
    return arguments[0];
}

// Of min and max any number may come, so theirs are taken together as they are read.
int Calculator::ReadArguments(Word function, std::wstring_view name, std::size_t start,
                              std::array<Value, 3>& arguments)
{
    const Arity arity = ArityOf(function);
    const std::size_t open = m_scanner.Position();
    m_scanner.Skip(1);
    int count = 0;
    do {
        const Value next = ReadOperation(OrPrecedence);
        if (count == arity.most) {
            FailArity(arity, start, name);
        } else if (count > 0 && IsExtreme(function)) {
            const Dimensions left = arguments[0].dimensions;
            FailUnits(CallBinary(function, arguments[0], next, m_arithmetic), start, name, left,
                      next.dimensions);
        } else {
            arguments[static_cast<std::size_t>(count)] = next;
        }
        ++count;
    } while (m_here.op == Operator::Separator);
    if (m_here.op != Operator::Close) {
        Fail(ErrorKind::ClosingMissing, open);
    } else if (count < arity.least) {
        FailArity(arity, start, name);
    } else {
        ReadOperator();
    }
    return count;
}

void Calculator::ReadOperator()
{
    m_scanner.SkipBlanks();
    const bool equalFollows = m_scanner.Peek(1) == L'=';
    switch (m_scanner.Peek()) {
    case L'+': return TakeOperator(Operator::Plus, 1);
    case L'-': return TakeOperator(Operator::Minus, 1);
    case L'*': return TakeOperator(Operator::Times, 1);
    case L'/': return TakeOperator(Operator::Over, 1);
    case L'%': return TakeOperator(Operator::Remainder, 1);
    case L'^': return TakeOperator(Operator::Caret, 1);
    case L')': return TakeOperator(Operator::Close, 1);
    case L';': return TakeOperator(Operator::Separator, 1);
    case L'<':
        return equalFollows ? TakeOperator(Operator::LessOrEqual, 2)
                            : TakeOperator(Operator::Less, 1);
    case L'>':
        return equalFollows ? TakeOperator(Operator::GreaterOrEqual, 2)
                            : TakeOperator(Operator::Greater, 1);
    case L'=':
        return equalFollows ? TakeOperator(Operator::Equal, 2)
                            : Fail(ErrorKind::NotAnOperator, m_scanner.Position(), L"=",
                                   L": \"==\" compares");
    default: break;
    }
    if (m_scanner.Peek() == L'!' && equalFollows) {
        return TakeOperator(Operator::NotEqual, 2);
    }
    ReadWordOperator();
}

void Calculator::ReadWordOperator()
{
    const std::size_t position = m_scanner.Position();
    if (m_scanner.AtEnd()) {
        m_here = {};
        return;
    }
    const std::wstring_view name = m_scanner.NameAt();
    const Word word = FindWord(name);
    if (word == Word::And || word == Word::Or) {
        TakeOperator(word == Word::And ? Operator::And : Operator::Or, name.size());
    } else if (!name.empty() || m_scanner.AtNumber() || m_scanner.Peek() == L'(') {
        Fail(ErrorKind::OperatorExpected, position, m_scanner.TokenHere());
    } else {
        Fail(ErrorKind::NotAnOperator, position, m_scanner.TokenHere(),
             m_scanner.Peek() == L',' ? L": \";\" separates arguments" : L"");
    }
}

void Calculator::TakeOperator(Operator op, std::size_t length)
{
    m_here = {op, m_scanner.Position(), length};
    m_scanner.Skip(length);
}

Calculator::Precedence Calculator::PrecedenceOf(Operator op)
{
    switch (op) {
    case Operator::Or: return OrPrecedence;
    case Operator::And: return AndPrecedence;
    case Operator::Less:
    case Operator::LessOrEqual:
    case Operator::Greater:
    case Operator::GreaterOrEqual:
    case Operator::Equal:
    case Operator::NotEqual: return ComparisonPrecedence;
    case Operator::Plus:
    case Operator::Minus: return SumPrecedence;
    case Operator::Times:
    case Operator::Over:
    case Operator::Remainder: return ProductPrecedence;
    default: return NoPrecedence;
    }
}

void Calculator::Apply(const OperatorHere& here, Value& left, const Value& right)
{
    if (HasFailed()) {
        return;
    }
    const Dimensions leftDimensions = left.dimensions;
    const ErrorKind kind = Compute(here.op, left, right);
    if (kind != ErrorKind::None) {
        FailUnits(kind, here.position, m_request.expression.substr(here.position, here.length),
                  leftDimensions, right.dimensions);
    }
}

ErrorKind Calculator::Compute(Operator op, Value& left, const Value& right) const
{
    switch (op) {
    case Operator::Or: return m_arithmetic.Or(left, right);
    case Operator::And: return m_arithmetic.And(left, right);
    case Operator::Less: return m_arithmetic.Compare(left, right, std::less<>());
    case Operator::LessOrEqual: return m_arithmetic.Compare(left, right, std::less_equal<>());
    case Operator::Greater: return m_arithmetic.Compare(left, right, std::greater<>());
    case Operator::GreaterOrEqual: return m_arithmetic.Compare(left, right, std::greater_equal<>());
    case Operator::Equal: return m_arithmetic.Compare(left, right, std::equal_to<>());
    case Operator::NotEqual: return m_arithmetic.Compare(left, right, std::not_equal_to<>());
    case Operator::Plus: return m_arithmetic.Add(left, right);
    case Operator::Minus: return m_arithmetic.Subtract(left, right);
    case Operator::Times: return m_arithmetic.Multiply(left, right);
    case Operator::Over: return m_arithmetic.Divide(left, right);
    case Operator::Remainder: return m_arithmetic.Remainder(left, right);
    default: return m_arithmetic.Power(left, right);
    }
}

bool Calculator::IsNotHere() const
{
    return (m_scanner.Peek() == L'n' || m_scanner.Peek() == L'N') &&
           FindWord(m_scanner.NameAt()) == Word::Not;
}

void Calculator::Fail(ErrorKind kind, std::size_t position, std::wstring_view token,
                      std::wstring_view detail)
{
    if (HasFailed()) {
        return;
    }
    m_error.kind = kind;
    m_error.position = position;
    m_error.token.Assign(token);
    m_error.detail.Assign(detail);
    Stop();
}

void Calculator::FailUnits(ErrorKind kind, std::size_t position, std::wstring_view token,
                           Dimensions left, Dimensions right)
{
    if (kind == ErrorKind::None || HasFailed()) {
        return;
    }
    // Of two operands one is plain: the other one is meant.
    const bool meansRight = kind == ErrorKind::DimensionlessExpected && left.IsNone();
    m_error.left = meansRight ? right : left;
    m_error.right = right;
    Fail(kind, position, token,
         kind == ErrorKind::BareBesideOffset ? m_request.askedText : std::wstring_view());
}

void Calculator::FailArity(Arity arity, std::size_t position, std::wstring_view name)
{
    constexpr std::wstring_view kCounts[] = {L"no arguments", L"one argument", L"two arguments",
                                             L"three arguments"};
    Fail(ErrorKind::ArgumentCount, position, name,
         arity.least == arity.most ? kCounts[arity.least] : L"two or more arguments");
}

// Proposes the quantity in parentheses, with the exponent where it is a plain number.
void Calculator::FailPowerBehindUnit(std::size_t start)
{
    std::wstring_view quantity = m_request.expression.substr(start, m_here.position - start);
    while (IsBlank(quantity.back())) {
        quantity.remove_suffix(1);
    }
    m_scanner.SkipBlanks();
    const std::size_t exponent = m_scanner.Position();
    if (m_scanner.Peek() == L'-') {
        m_scanner.Skip(1);
    }
    const std::size_t digits = m_scanner.Position();
    while (IsDigit(m_scanner.Peek())) {
        m_scanner.Skip(1);
    }
    const bool isPlain = m_scanner.Position() > digits;
    Fail(ErrorKind::PowerBehindUnit, m_here.position, quantity,
         isPlain ? m_scanner.Since(exponent) : L"2");
}

// At the end there is nothing to read or to apply, so that everything that is under way ends.
void Calculator::Stop()
{
    m_scanner.MoveTo(m_request.expression.size());
    m_here = {};
}

} // namespace encap::host
