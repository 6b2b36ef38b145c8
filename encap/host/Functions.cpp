#include "encap/host/Functions.h"

#include <cmath>
#include <functional>
#include <limits>

namespace encap::host {

namespace {

constexpr double kNoResult = std::numeric_limits<double>::quiet_NaN();

double Sign(double number)
{
    if (std::isnan(number)) {
        return number;
    }
    return static_cast<double>(number > 0.0) - static_cast<double>(number < 0.0);
}

double Apply(Word function, double x)
{
    switch (function) {
    case Word::Sqrt: return std::sqrt(x);
    case Word::Cbrt: return std::cbrt(x);
    case Word::Exp: return std::exp(x);
    case Word::Ln: return std::log(x);
    case Word::Log: return std::log10(x);
    case Word::Sin: return std::sin(x);
    case Word::Cos: return std::cos(x);
    case Word::Tan: return std::tan(x);
    case Word::Asin: return std::asin(x);
    case Word::Acos: return std::acos(x);
    case Word::Atan: return std::atan(x);
    case Word::Sinh: return std::sinh(x);
    case Word::Cosh: return std::cosh(x);
    case Word::Tanh: return std::tanh(x);
    case Word::Floor: return std::floor(x);
    case Word::Ceil: return std::ceil(x);
    case Word::Round: return std::round(x);
    case Word::Trunc: return std::trunc(x);
    default: return kNoResult;
    }
}

Value Angle(double radians)
{
    return {Arithmetic::FiniteOrNaN(radians), {}, Dimensions::Of(BaseQuantity::Angle), false};
}

ErrorKind CallTrigonometric(Word function, Value& argument, const Unit& asked)
{
    constexpr Dimensions kAngle = Dimensions::Of(BaseQuantity::Angle);
    double radians = argument.number;
    if (argument.dimensions == kAngle) {
        radians = argument.scale.Apply(radians);
    } else if (!Arithmetic::IsPlainNumber(argument)) {
        return ErrorKind::AngleExpected;
    } else if (asked.dimensions == kAngle) {
        radians = asked.ToDatabase(radians);
    }
    argument = Value::Number(Arithmetic::FiniteOrNaN(Apply(function, radians)));
    return ErrorKind::None;
}

// A whole number beside which a conversion of units ended.
double WithoutNoise(double count)
{
    constexpr double kNoise = 8 * std::numeric_limits<double>::epsilon();
    const double whole = std::round(count);
    return std::abs(count - whole) <= kNoise * std::abs(count) ? whole : count;
}

ErrorKind CallCounting(Word function, Value& argument, const Unit& asked)
{
    if (Arithmetic::IsPlainNumber(argument)) {
        argument.number = Apply(function, argument.number);
        return ErrorKind::None;
    }
    if (argument.dimensions != asked.dimensions) {
        return ErrorKind::CountMisfit;
    }
    double count = argument.number;
    if (argument.scale != asked.scale || asked.HasOffset()) {
        count = WithoutNoise(argument.scale.Over(asked.scale).Apply(count) - asked.offset);
    }
    argument.number = Arithmetic::FiniteOrNaN(Apply(function, count) + asked.offset);
    argument.scale = asked.scale;
    return ErrorKind::None;
}

ErrorKind CallRoot(Word function, Value& argument)
{
    argument.number = Arithmetic::FiniteOrNaN(Apply(function, argument.number));
    return Arithmetic::RaiseUnits(argument, function == Word::Sqrt ? 0.5 : 1.0 / 3.0);
}

ErrorKind CallPlain(Word function, Value& argument)
{
    if (!Arithmetic::IsPlainNumber(argument)) {
        return ErrorKind::DimensionlessExpected;
    }
    const double result = Apply(function, argument.number);
    const bool isInverse =
        function == Word::Asin || function == Word::Acos || function == Word::Atan;
    argument = isInverse ? Angle(result) : Value::Number(Arithmetic::FiniteOrNaN(result));
    return ErrorKind::None;
}

template <class IsBetter>
ErrorKind CallExtreme(Value& left, Value right, const Arithmetic& arithmetic, IsBetter isBetter)
{
    const ErrorKind kind = arithmetic.Align(left, right, Arithmetic::Common::LargerUnit);
    if (std::isnan(right.number) || isBetter(right.number, left.number)) {
        left.number = right.number;
    }
    left.isBare = left.isBare && right.isBare;
    return kind;
}

} // namespace

ErrorKind CallUnary(Word function, Value& argument, const Arithmetic& arithmetic)
{
    switch (function) {
    case Word::Abs: argument.number = std::abs(argument.number); return ErrorKind::None;
    case Word::Sign: argument = Value::Number(Sign(argument.number)); return ErrorKind::None;
    case Word::Sqrt:
    case Word::Cbrt: return CallRoot(function, argument);
    case Word::Sin:
    case Word::Cos:
    case Word::Tan: return CallTrigonometric(function, argument, arithmetic.Asked());
    case Word::Floor:
    case Word::Ceil:
    case Word::Round:
    case Word::Trunc: return CallCounting(function, argument, arithmetic.Asked());
    default: return CallPlain(function, argument);
    }
}

ErrorKind CallBinary(Word function, Value& left, Value right, const Arithmetic& arithmetic)
{
    switch (function) {
    case Word::Pow: return arithmetic.Power(left, right);
    case Word::Mod: return arithmetic.Remainder(left, right);
    case Word::Min: return CallExtreme(left, right, arithmetic, std::less<>());
    case Word::Max: return CallExtreme(left, right, arithmetic, std::greater<>());
    default: break;
    }
    const ErrorKind kind = arithmetic.Align(left, right, Arithmetic::Common::LargerUnit);
    if (function == Word::Atan2) {
        left = Angle(std::atan2(left.number, right.number));
    } else {
        left.number = Arithmetic::FiniteOrNaN(std::hypot(left.number, right.number));
        left.isBare = left.isBare && right.isBare;
    }
    return kind;
}

ErrorKind Choose(const Value& condition, Value& then, Value otherwise, const Arithmetic& arithmetic)
{
    if (!Arithmetic::IsPlainNumber(condition)) {
        return ErrorKind::DimensionlessExpected;
    }
    const ErrorKind kind = arithmetic.Align(then, otherwise, Arithmetic::Common::LargerUnit);
    if (std::isnan(condition.number)) {
        then.number = kNoResult;
    } else if (condition.number == 0.0) {
        then = otherwise;
    }
    return kind;
}

} // namespace encap::host
