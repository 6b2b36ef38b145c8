#include "encap/host/Arithmetic.h"

#include "encap/host/Power.h"

#include <cmath>
#include <limits>

namespace encap::host {

namespace {

void ConvertTo(const Scale& scale, Value& value)
{
    value.number = value.scale.Over(scale).Apply(value.number);
    value.scale = scale;
}

bool IsLarger(const Scale& left, const Scale& right)
{
    return left.numerator * right.denominator > right.numerator * left.denominator;
}

} // namespace

double Arithmetic::FiniteOrNaN(double number)
{
    return std::isfinite(number) ? number : std::numeric_limits<double>::quiet_NaN();
}

Value Arithmetic::Truth(const Value& left, const Value& right, bool isTrue)
{
    const bool hasResult = !std::isnan(left.number) && !std::isnan(right.number);
    return Value::Number(hasResult ? static_cast<double>(isTrue)
                                   : std::numeric_limits<double>::quiet_NaN());
}

ErrorKind Arithmetic::TakeAskedUnit(Value& plain, const Value& other) const
{
    if (!plain.dimensions.IsNone() || other.dimensions != m_asked.dimensions) {
        return ErrorKind::DimensionsDiffer;
    }
    if (m_asked.HasOffset()) {
        return ErrorKind::BareBesideOffset;
    }
    plain.scale = m_asked.scale;
    plain.dimensions = m_asked.dimensions;
    plain.isBare = false;
    return ErrorKind::None;
}

ErrorKind Arithmetic::Align(Value& left, Value& right, Common common) const
{
    if (left.dimensions.IsUndetermined() || right.dimensions.IsUndetermined()) {
        Value& unknown = left.dimensions.IsUndetermined() ? left : right;
        const Value& other = left.dimensions.IsUndetermined() ? right : left;
        const double number = unknown.number;
        unknown = other;
        unknown.number = number;
        return ErrorKind::None;
    }
    if (left.dimensions != right.dimensions) {
        const ErrorKind kind =
            left.dimensions.IsNone() ? TakeAskedUnit(left, right) : TakeAskedUnit(right, left);
        if (kind != ErrorKind::None) {
            return kind;
        }
    } else if (left.isBare != right.isBare && m_asked.dimensions.IsNone()) {
        // Beside 3percent, 5 is in the unit asked for as well: percent, or unitless.
        Value& bare = left.isBare ? left : right;
        bare.number = m_asked.ToDatabase(bare.number);
        bare.isBare = false;
    }
    if (left.scale != right.scale) {
        const bool toLeft = IsLarger(left.scale, right.scale) == (common == Common::LargerUnit);
        ConvertTo(toLeft ? left.scale : right.scale, toLeft ? right : left);
    }
    return ErrorKind::None;
}

ErrorKind Arithmetic::Add(Value& left, Value right) const
{
    const ErrorKind kind = Align(left, right, Common::LargerUnit);
    left.number = FiniteOrNaN(left.number + right.number);
    left.isBare = left.isBare && right.isBare;
    return kind;
}

ErrorKind Arithmetic::Subtract(Value& left, Value right) const
{
    right.number = -right.number;
    return Add(left, right);
}

ErrorKind Arithmetic::Remainder(Value& left, Value right) const
{
    const ErrorKind kind = Align(left, right, Common::SmallerUnit);
    left.number = FiniteOrNaN(std::fmod(left.number, right.number));
    left.isBare = left.isBare && right.isBare;
    return kind;
}

ErrorKind Arithmetic::Combine(Value& left, const Value& right, int power)
{
    left.isBare = left.isBare && right.isBare;
    if (right.dimensions.IsNone()) {
        return ErrorKind::None;
    }
    const auto dimensions = left.dimensions.Times(right.dimensions, power);
    if (!dimensions) {
        return ErrorKind::PowerTooLarge;
    }
    left.dimensions = *dimensions;
    left.scale = power > 0 ? left.scale.Times(right.scale) : left.scale.Over(right.scale);
    if (dimensions->IsNone()) {
        ConvertTo({}, left);
    }
    return ErrorKind::None;
}

ErrorKind Arithmetic::Multiply(Value& left, const Value& right) const
{
    left.number *= right.number;
    const ErrorKind kind = Combine(left, right, 1);
    left.number = FiniteOrNaN(left.number);
    return kind;
}

ErrorKind Arithmetic::Divide(Value& left, const Value& right) const
{
    left.number /= right.number;
    const ErrorKind kind = Combine(left, right, -1);
    left.number = FiniteOrNaN(left.number);
    return kind;
}

ErrorKind Arithmetic::RaiseUnits(Value& value, double exponent)
{
    if (value.dimensions.IsNone()) {
        return ErrorKind::None;
    }
    if (std::isnan(exponent)) {
        value.dimensions = Dimensions::Undetermined();
        return ErrorKind::None;
    }
    const auto dimensions = value.dimensions.Raised(exponent);
    if (!dimensions) {
        return ErrorKind::PowerNotWhole;
    }
    value.dimensions = *dimensions;
    value.scale = dimensions->IsNone() ? Scale{} : value.scale.Raised(exponent);
    return ErrorKind::None;
}

ErrorKind Arithmetic::Power(Value& base, const Value& exponent) const
{
    if (!IsPlainNumber(exponent)) {
        return ErrorKind::ExponentUnit;
    }
    // C gives 1 for NaN^0 and 1^NaN.
    const bool hasResult = !std::isnan(base.number) && !std::isnan(exponent.number);
    base.number = hasResult ? FiniteOrNaN(encap::host::Power(base.number, exponent.number))
                            : std::numeric_limits<double>::quiet_NaN();
    return RaiseUnits(base, exponent.number);
}

ErrorKind Arithmetic::And(Value& left, const Value& right) const
{
    if (!IsPlainNumber(left) || !IsPlainNumber(right)) {
        return ErrorKind::DimensionlessExpected;
    }
    left = Truth(left, right, left.number != 0.0 && right.number != 0.0);
    return ErrorKind::None;
}

ErrorKind Arithmetic::Or(Value& left, const Value& right) const
{
    if (!IsPlainNumber(left) || !IsPlainNumber(right)) {
        return ErrorKind::DimensionlessExpected;
    }
    left = Truth(left, right, left.number != 0.0 || right.number != 0.0);
    return ErrorKind::None;
}

ErrorKind Arithmetic::Not(Value& operand) const
{
    if (!IsPlainNumber(operand)) {
        return ErrorKind::DimensionlessExpected;
    }
    operand = Truth(operand, operand, operand.number == 0.0);
    return ErrorKind::None;
}

ErrorKind Arithmetic::Answer(const Value& value, double& answer) const
{
    const bool isInAskedUnit =
        value.dimensions.IsNone() && (value.isBare || !m_asked.dimensions.IsNone());
    const double number =
        isInAskedUnit ? m_asked.ToDatabase(value.number) : value.scale.Apply(value.number);
    answer = FiniteOrNaN(number) + 0.0; // no "-0" for users
    const bool fits = isInAskedUnit || value.dimensions == m_asked.dimensions ||
                      value.dimensions.IsUndetermined();
    return fits ? ErrorKind::None : ErrorKind::ResultMisfit;
}

} // namespace encap::host
