#pragma once

#include "encap/host/EvaluationError.h"
#include "encap/host/Unit.h"

#include <map>
#include <string>
#include <string_view>

namespace encap::host {

/// The units of UDUNITS-2 as a list (encap-units.tsv, which scripts/unit-list writes and whose head
/// says what stands in it), for systems without that library. Names are looked up as the library
/// does it, prefixes included. Not changed once it is read.
class UnitList {
public:
    /// False for a text that is no such list; nothing is known then.
    [[nodiscard]] bool Read(std::string_view utf8);

    /// A single unit name in UTF-8, with or without prefixes. Gives None, UnknownUnit or
    /// UnusableUnit (decibels); unit is set with None only.
    [[nodiscard]] ErrorKind Find(std::string_view name, Unit& unit) const;

private:
    struct Entry {
        bool isPlain = false; ///< a conversion to base units; decibels are not
        double scale = 1.0;   ///< base units = scale * (number + offset)
        double offset = 0.0;
        double lengthScale = 1.0; ///< database units in a base unit, whose lengths are metres
        Dimensions dimensions;
    };
    /// Names without regard to the case of ASCII letters (they stand in lower case here), and
    /// symbols.
    template <class Value>
    struct Table {
        std::map<std::string, Value, std::less<>> names;
        std::map<std::string, Value, std::less<>> symbols;
    };

    [[nodiscard]] bool ReadLine(std::string_view line);
    [[nodiscard]] const Entry* FindEntry(std::string_view name) const;

    Table<Entry> m_units;
    Table<double> m_prefixes;
};

} // namespace encap::host
