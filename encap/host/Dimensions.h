#pragma once

#include "encap/foundation/Types.h"

#include <array>
#include <bit>
#include <optional>

namespace encap::host {

/// The quantities that every unit is a product of, in the order of a database unit's text.
enum class BaseQuantity { Mass, Length, Time, Current, Temperature, Amount, Luminosity, Angle };

/// The powers of the eight base quantities of a value or a unit. A plain value of eight bytes.
/// "None" are all zero. "Undetermined" are those of a power whose exponent has no value: they fit
/// everything, and the number beside them is always NaN.
class Dimensions {
public:
    static constexpr int kMaxPower = 127;

    constexpr Dimensions() = default;
    /// REQUIRES: power within +-kMaxPower.
    static constexpr Dimensions Of(BaseQuantity quantity, int power = 1)
    {
        Dimensions result;
        result.m_powers[static_cast<std::size_t>(quantity)] = static_cast<int8_t>(power);
        return result;
    }
    static constexpr Dimensions Undetermined()
    {
        Dimensions result;
        result.m_powers[0] = kUndetermined;
        return result;
    }

    [[nodiscard]] constexpr bool IsNone() const { return *this == Dimensions(); }
    [[nodiscard]] constexpr bool IsUndetermined() const { return m_powers[0] == kUndetermined; }
    friend constexpr bool operator==(Dimensions a, Dimensions b) { return a.Bits() == b.Bits(); }

    /// This times other to the power; undetermined when either is. Nothing where a power would pass
    /// kMaxPower.
    [[nodiscard]] std::optional<Dimensions> Times(Dimensions other, int power) const;
    /// All powers times the exponent; nothing where one is not whole or passes kMaxPower.
    [[nodiscard]] std::optional<Dimensions> Raised(double exponent) const;

    /// The database unit with these dimensions: "kg*cm/s^2", "1/s", "ul" for none.
    [[nodiscard]] CString DatabaseUnit() const;

private:
    static constexpr int8_t kUndetermined = -128;

    // All powers as one number: compared several times per operator.
    [[nodiscard]] constexpr uint64_t Bits() const { return std::bit_cast<uint64_t>(m_powers); }

    std::array<int8_t, 8> m_powers{};
};

} // namespace encap::host
