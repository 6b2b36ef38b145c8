#pragma once

#include "encap/host/EvaluationError.h"
#include "encap/host/Unit.h"

namespace encap::host {

/// A number in the unit it was written in, so that 6in/2in is 3 and 12mm*3 equals 36mm without the
/// rounding of a conversion. NaN is "no result".
struct Value {
    double number = 0.0;
    Scale scale;           ///< to database units; 1 where there are no dimensions
    Dimensions dimensions; ///< none for a plain number
    bool isBare = true;    ///< no unit took part in it; not so for 3mm/2mm or 5percent

    [[nodiscard]] static Value Number(double number) { return {number, {}, {}, true}; }
};

/// The operators over values, with the rules of their dimensions. Each puts its result into left
/// and gives None, or the reason why the dimensions do not fit. A result that is not finite becomes
/// NaN, and NaN operands give NaN. Refers to the unit asked for, which must outlive it.
class Arithmetic {
public:
    /// Which of two units of one kind both values are brought to. The larger one is reached by a
    /// division, which rounds 29cm to the very 0.29 of 0.29m; the smaller one keeps whole counts.
    enum class Common { LargerUnit, SmallerUnit };

    explicit Arithmetic(const Unit& asked) : m_asked(asked) {}
    [[nodiscard]] const Unit& Asked() const { return m_asked; }

    [[nodiscard]] ErrorKind Add(Value& left, Value right) const;
    [[nodiscard]] ErrorKind Subtract(Value& left, Value right) const;
    [[nodiscard]] ErrorKind Multiply(Value& left, const Value& right) const;
    [[nodiscard]] ErrorKind Divide(Value& left, const Value& right) const;
    [[nodiscard]] ErrorKind Remainder(Value& left, Value right) const;
    [[nodiscard]] ErrorKind Power(Value& base, const Value& exponent) const;
    [[nodiscard]] ErrorKind And(Value& left, const Value& right) const;
    [[nodiscard]] ErrorKind Or(Value& left, const Value& right) const;
    [[nodiscard]] ErrorKind Not(Value& operand) const;
    /// holds: bool(double left, double right) over numbers in one unit.
    template <class Predicate>
    [[nodiscard]] ErrorKind Compare(Value& left, Value right, Predicate holds) const
    {
        const ErrorKind kind = Align(left, right, Common::LargerUnit);
        left = Truth(left, right, holds(left.number, right.number));
        return kind;
    }

    /// Gives two values one unit and dimensions; a dimensionless one takes the unit asked for.
    [[nodiscard]] ErrorKind Align(Value& left, Value& right, Common common) const;
    /// Raises dimensions and scale, not the number.
    [[nodiscard]] static ErrorKind RaiseUnits(Value& value, double exponent);
    /// The value in database units as the answer to the question in the unit asked for.
    [[nodiscard]] ErrorKind Answer(const Value& value, double& answer) const;

    [[nodiscard]] static bool IsPlainNumber(const Value& value)
    {
        return value.dimensions.IsNone() || value.dimensions.IsUndetermined();
    }
    [[nodiscard]] static double FiniteOrNaN(double number);

private:
    [[nodiscard]] static Value Truth(const Value& left, const Value& right, bool isTrue);
    [[nodiscard]] static ErrorKind Combine(Value& left, const Value& right, int power);
    [[nodiscard]] ErrorKind TakeAskedUnit(Value& plain, const Value& other) const;

    const Unit& m_asked;
};

} // namespace encap::host
