#pragma once

#include "encap/host/Dimensions.h"

namespace encap::host {

/// A conversion factor as a quotient. Metric factors are whole numbers on one side, so 12 mm become
/// 12/10 cm with one rounding, where 12*0.1 would have two.
struct Scale {
    double numerator = 1.0;
    double denominator = 1.0;

    /// The quotient of whole numbers, or of a short decimal, that a computed factor stands for
    /// (0.001 is 1/1000, 0.025400000000000002 is 0.0254); the factor itself where there is none.
    [[nodiscard]] static Scale FromFactor(double factor);

    [[nodiscard]] double Apply(double number) const;
    [[nodiscard]] double Undo(double number) const
    {
        return Scale{denominator, numerator}.Apply(number);
    }
    [[nodiscard]] Scale Times(const Scale& other) const
    {
        return {numerator * other.numerator, denominator * other.denominator};
    }
    [[nodiscard]] Scale Over(const Scale& other) const
    {
        return {numerator * other.denominator, denominator * other.numerator};
    }
    [[nodiscard]] Scale Raised(double exponent) const;

    friend bool operator==(const Scale&, const Scale&) = default;
};

/// A unit as its conversion to database units: database = scale * (number + offset). The default is
/// unitless.
struct Unit {
    Scale scale;
    double offset = 0.0; ///< in this unit; 0 except for temperatures such as degC
    Dimensions dimensions;
    bool isUnitless = true; ///< "ul" or empty: not a unit such as percent, which has a scale

    [[nodiscard]] bool HasOffset() const { return offset != 0.0; }
    [[nodiscard]] double ToDatabase(double number) const { return scale.Apply(number + offset); }
    [[nodiscard]] double FromDatabase(double number) const { return scale.Undo(number) - offset; }
};

} // namespace encap::host
