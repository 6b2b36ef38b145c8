#include "encap/host/UnitTable.h"

#include "encap/host/UnitText.h"
#include "encap/host/Words.h"

#include <algorithm>
#include <numbers>

namespace encap::host {

namespace {

struct OwnUnit {
    std::wstring_view name;
    Unit unit;
};

constexpr Unit AngleOfTurnPart(double halfTurn)
{
    return {{std::numbers::pi, halfTurn}, 0.0, Dimensions::Of(BaseQuantity::Angle), false};
}

// A half turn is 180 degrees, 200 grad and pi radians.
constexpr OwnUnit kOwnUnits[] = {{L"ul", {}},
                                 {L"deg", AngleOfTurnPart(180.0)},
                                 {L"grad", AngleOfTurnPart(200.0)},
                                 {L"rad", AngleOfTurnPart(std::numbers::pi)}};

} // namespace

UnitTable::Named UnitTable::LookUp(std::wstring_view name)
{
    const auto* const own = std::find_if(std::begin(kOwnUnits), std::end(kOwnUnits),
                                         [name](const OwnUnit& each) { return each.name == name; });
    if (own != std::end(kOwnUnits)) {
        return {ErrorKind::None, own->unit};
    }
    if (IsReservedName(name)) {
        return {ErrorKind::ReservedUnit, {}};
    }
    Named named;
    named.kind = m_database.Find(name, named.unit);
    return named;
}

bool UnitTable::FindName(std::wstring_view name, Unit& unit, EvaluationError& error)
{
    const Named* known = m_names.Find(name);
    const Named named = known != nullptr ? *known : LookUp(name);
    if (known == nullptr) {
        m_names.Add(name, named);
    }
    if (named.kind != ErrorKind::None) {
        error.kind = named.kind;
        error.token.Assign(name);
        return false;
    }
    unit = named.unit;
    return true;
}

bool UnitTable::FindText(std::wstring_view text, Unit& unit, EvaluationError& error)
{
    if (const Unit* known = m_texts.Find(text)) {
        unit = *known;
        return true;
    }
    if (!ReadUnitArgument(text, *this, unit, error)) {
        error.source = ErrorSource::Unit;
        return false;
    }
    m_texts.Add(text, unit);
    return true;
}

} // namespace encap::host
