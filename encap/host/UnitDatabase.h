#pragma once

#include "encap/host/EvaluationError.h"
#include "encap/host/Unit.h"

#include <memory>
#include <string>
#include <string_view>

namespace encap::host {

/// The units of UDUNITS-2, as conversions to database units. Owned by a provider's UnitTable;
/// reads the unit database (about 4 ms) when the first name is looked up. Different objects may be
/// used on different threads: every call into UDUNITS-2 is made under one lock of the process. On
/// Windows, where that library is not at home, its units are read from a list (UnitList).
class UnitDatabase {
public:
    /// path: the database's file, in UTF-8. Empty: the one that the environment variable of
    /// UDUNITS-2 names, else the installed one; on Windows that of ENCAP_UNITS, else the one beside
    /// this library.
    explicit UnitDatabase(std::string path = {});
    ~UnitDatabase();
    UnitDatabase(const UnitDatabase&) = delete;
    UnitDatabase& operator=(const UnitDatabase&) = delete;

    /// A single unit name, with or without a metric prefix. Gives None, UnknownUnit, UnusableUnit
    /// (decibels, dates) or NoUnitDatabase; unit is set with None only.
    [[nodiscard]] ErrorKind Find(std::wstring_view name, Unit& unit);

private:
    enum class State { NotRead, Read, Missing };

    void Read();

    struct Content;

    std::string m_path;
    std::unique_ptr<Content> m_content;
    State m_state = State::NotRead;
};

} // namespace encap::host
