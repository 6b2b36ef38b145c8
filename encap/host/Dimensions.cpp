#include "encap/host/Dimensions.h"

#include <cmath>
#include <string_view>

namespace encap::host {

namespace {

constexpr std::array<std::wstring_view, 8> kDatabaseUnits{L"kg", L"cm",  L"s",  L"A",
                                                          L"K",  L"mol", L"cd", L"rad"};

void AppendFactor(CString& text, std::size_t quantity, int power)
{
    text += kDatabaseUnits[quantity];
    if (power != 1) {
        text += L'^';
        text += std::to_wstring(power);
    }
}

} // namespace

std::optional<Dimensions> Dimensions::Times(Dimensions other, int power) const
{
    if (other.IsNone()) {
        return *this;
    }
    if (IsUndetermined() || other.IsUndetermined()) {
        return Undetermined();
    }
    Dimensions result;
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        const int sum = m_powers[i] + other.m_powers[i] * power;
        if (sum < -kMaxPower || sum > kMaxPower) {
            return std::nullopt;
        }
        result.m_powers[i] = static_cast<int8_t>(sum);
    }
    return result;
}

std::optional<Dimensions> Dimensions::Raised(double exponent) const
{
    // An exponent such as 1/3 is not exact, so a product this close to a whole number is one.
    constexpr double kTolerance = 1e-12;
    if (IsUndetermined()) {
        return *this;
    }
    Dimensions result;
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        const double power = m_powers[i] * exponent;
        const double whole = std::round(power);
        if (!(std::abs(power - whole) <= kTolerance) || std::abs(whole) > kMaxPower) {
            return std::nullopt;
        }
        result.m_powers[i] = static_cast<int8_t>(whole);
    }
    return result;
}

CString Dimensions::DatabaseUnit() const
{
    if (IsNone()) {
        return L"ul";
    }
    CString text;
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        if (m_powers[i] > 0) {
            text += text.empty() ? L"" : L"*";
            AppendFactor(text, i, m_powers[i]);
        }
    }
    if (text.empty()) {
        text = L"1";
    }
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        if (m_powers[i] < 0) {
            text += L'/';
            AppendFactor(text, i, -m_powers[i]);
        }
    }
    return text;
}

} // namespace encap::host
