#pragma once

#include "encap/host/Functions.h"
#include "encap/host/Scanner.h"
#include "encap/host/UnitTable.h"

#include <optional>

namespace encap::host {

/// Reads and computes one expression in one pass over its text, without a tree and without
/// allocating (but for very long numbers). The first error ends it: the cursor moves to the end of
/// the text, so that every loop and every expectation ends by itself. Made for one call; refers to
/// its arguments.
class Calculator {
public:
    struct Request {
        std::wstring_view expression;
        std::wstring_view askedText;
        const Unit& asked;
        bool acceptComma;
    };

    Calculator(const Request& request, UnitTable& units, EvaluationError& error)
        : m_request(request), m_scanner(request.expression, request.acceptComma), m_units(units),
          m_error(error), m_arithmetic(request.asked)
    {
    }

    /// False on failure, with the error set. Otherwise the value in database units; NaN is "no
    /// result".
    [[nodiscard]] bool Run(double& value);

private:
    static constexpr int kMostLevels = 256;

    /// What joins or ends operands, by rising precedence of groups.
    enum class Operator : uint8_t {
        End,
        Close,
        Separator,
        Or,
        And,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual,
        Equal,
        NotEqual,
        Plus,
        Minus,
        Times,
        Over,
        Remainder,
        Caret,
    };
    enum Precedence : int {
        NoPrecedence,
        OrPrecedence,
        AndPrecedence,
        NotPrecedence,
        ComparisonPrecedence,
        SumPrecedence,
        ProductPrecedence,
        OperandPrecedence,
    };
    /// The operator behind the operand that was read last.
    struct OperatorHere {
        Operator op = Operator::End;
        std::size_t position = 0;
        std::size_t length = 0;
    };
    class Level;

    static Precedence PrecedenceOf(Operator op);
    static bool IsComparison(Operator op)
    {
        return op >= Operator::Less && op <= Operator::NotEqual;
    }

    Value ReadOperation(Precedence least);
    Value ReadNot();
    Value ReadSigned();
    Value ReadPower();
    Value ReadOperand(bool& hasUnit);
    Value ReadQuantity(bool& hasUnit);
    Value ReadOffsetQuantity(std::size_t start, double number, const Unit& unit);
    Value ReadGroup();
    Value ReadName();
    Value ReadConstant(Word word, std::wstring_view name);
    Value ReadCall(Word function, std::wstring_view name);
    int ReadArguments(Word function, std::wstring_view name, std::size_t start,
                      std::array<Value, 3>& arguments);
    Value FailAtName(std::wstring_view name);

    void ReadOperator();
    void ReadWordOperator();
    void TakeOperator(Operator op, std::size_t length);
    void Apply(const OperatorHere& here, Value& left, const Value& right);
    ErrorKind Compute(Operator op, Value& left, const Value& right) const;

    bool IsNotHere() const;
    bool HasFailed() const { return m_error.kind != ErrorKind::None; }
    void Fail(ErrorKind kind, std::size_t position, std::wstring_view token = {},
              std::wstring_view detail = {});
    void FailUnits(ErrorKind kind, std::size_t position, std::wstring_view token, Dimensions left,
                   Dimensions right);
    void FailArity(Arity arity, std::size_t position, std::wstring_view name);
    void FailPowerBehindUnit(std::size_t start);
    void Stop();

    const Request m_request;
    Scanner m_scanner;
    UnitTable& m_units;
    EvaluationError& m_error;
    const Arithmetic m_arithmetic;
    OperatorHere m_here;
    int m_level = 0;
    std::optional<Value> m_offsetQuantity;
};

} // namespace encap::host
