#pragma once

namespace encap::host {

/// base to the exponent as std::pow, which C libraries round differently in the last bit. Whole
/// exponents up to 64 and square roots, of which table formulas are full, are rounded as well as
/// a double can hold them, and so are the same on every platform.
[[nodiscard]] double Power(double base, double exponent);

} // namespace encap::host
