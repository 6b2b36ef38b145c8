#pragma once

#include "encap/host/EvaluationError.h"
#include "encap/host/Unit.h"

#include <string>
#include <string_view>

struct ut_system;

namespace encap::host {

/// The units of UDUNITS-2, as conversions to database units. Owned by a provider's UnitTable;
/// reads the unit database (about 4 ms) when the first name is looked up. Different objects may be
/// used on different threads: every call into UDUNITS-2 is made under one lock of the process.
class UnitDatabase {
public:
    /// path: the database's XML file; empty leaves it to UDUNITS-2 (its environment variable, else
    /// its installed file).
    explicit UnitDatabase(std::string path = {}) : m_path(std::move(path)) {}
    ~UnitDatabase();
    UnitDatabase(const UnitDatabase&) = delete;
    UnitDatabase& operator=(const UnitDatabase&) = delete;

    /// A single unit name, with or without a metric prefix. Gives None, UnknownUnit, UnusableUnit
    /// (decibels, dates) or NoUnitDatabase; unit is set with None only.
    [[nodiscard]] ErrorKind Find(std::wstring_view name, Unit& unit);

private:
    enum class State { NotRead, Read, Missing };

    void Read();

    std::string m_path;
    ut_system* m_system = nullptr;
    State m_state = State::NotRead;
};

} // namespace encap::host
