#include "encap/host/UnitList.h"

#include "encap/host/Power.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace encap::host {

namespace {

/// In the order of BaseQuantity.
constexpr std::string_view kBases[] = {"kg", "m", "s", "A", "K", "mol", "cd", "rad"};

// Base lengths are metres, database lengths are centimetres.
constexpr double kCentimetresInMetre = 100.0;

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        pieces.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return pieces;
}

template <class Number>
bool ReadNumber(std::string_view text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

/// Powers of base units such as "kg1 m-1 s-2", none in an empty text. lengthScale is multiplied by
/// what base units are in database units.
bool ReadPowers(std::string_view text, Dimensions& dimensions, double& lengthScale)
{
    for (const std::string_view piece : Split(text, ' ')) {
        const std::size_t nameSize = std::min(piece.find_first_of("-0123456789"), piece.size());
        const auto* const base =
            std::find(std::begin(kBases), std::end(kBases), piece.substr(0, nameSize));
        int power = 0;
        if (piece.empty()) {
            continue;
        }
        if (base == std::end(kBases) || !ReadNumber(piece.substr(nameSize), power) ||
            std::abs(power) > Dimensions::kMaxPower) {
            return false;
        }
        const auto quantity = static_cast<BaseQuantity>(base - std::begin(kBases));
        const auto product = dimensions.Times(Dimensions::Of(quantity), power);
        if (!product) {
            return false;
        }
        dimensions = *product;
        lengthScale *= quantity == BaseQuantity::Length ? Power(kCentimetresInMetre, power) : 1.0;
    }
    return true;
}

/// The longest name of the table that the text begins with; the end of the table when none does.
template <class Map>
typename Map::const_iterator LongestPrefix(const Map& prefixes, std::string_view text)
{
    constexpr std::size_t kLongest = 8;
    auto found = prefixes.end();
    for (std::size_t size = std::min(text.size(), kLongest); size > 0 && found == prefixes.end();
         --size) {
        found = prefixes.find(text.substr(0, size));
    }
    return found;
}

} // namespace

bool UnitList::Read(std::string_view utf8)
{
    m_units = {};
    m_prefixes = {};
    for (std::string_view line : Split(utf8, '\n')) {
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (!line.empty() && !line.starts_with('#') && !ReadLine(line)) {
            m_units = {};
            m_prefixes = {};
            return false;
        }
    }
    return !m_units.names.empty();
}

bool UnitList::ReadLine(std::string_view line)
{
    constexpr std::string_view kSymbol = "-symbol";
    const std::vector<std::string_view> cells = Split(line, '\t');
    std::string_view kind = cells[0];
    const bool isSymbol = kind.ends_with(kSymbol);
    kind.remove_suffix(isSymbol ? kSymbol.size() : 0);
    if (cells.size() < 2) {
        return false;
    }
    const std::string name = isSymbol ? std::string(cells[1]) : LowerCase(cells[1]);
    auto& units = isSymbol ? m_units.symbols : m_units.names;
    if (kind == "prefix" && cells.size() == 3) {
        auto& prefixes = isSymbol ? m_prefixes.symbols : m_prefixes.names;
        return ReadNumber(cells[2], prefixes[name]);
    }
    if (kind == "other" && cells.size() == 2) {
        units[name] = {};
        return true;
    }
    Entry entry;
    entry.isPlain = true;
    const bool isRead = kind == "unit" && cells.size() == 5 && ReadNumber(cells[2], entry.scale) &&
                        ReadNumber(cells[3], entry.offset) &&
                        ReadPowers(cells[4], entry.dimensions, entry.lengthScale);
    units[name] = entry;
    return isRead;
}

const UnitList::Entry* UnitList::FindEntry(std::string_view name) const
{
    const auto named = m_units.names.find(LowerCase(name));
    if (named != m_units.names.end()) {
        return &named->second;
    }
    const auto symbol = m_units.symbols.find(name);
    return symbol != m_units.symbols.end() ? &symbol->second : nullptr;
}

ErrorKind UnitList::Find(std::string_view name, Unit& unit) const
{
    double prefix = 1.0;
    bool hasPrefixSymbol = false;
    const Entry* entry = FindEntry(name);
    while (entry == nullptr) {
        // Any number of prefixes that are names, and one that is a symbol.
        const std::string lower = LowerCase(name);
        const auto prefixName = LongestPrefix(m_prefixes.names, lower);
        const auto prefixSymbol = LongestPrefix(m_prefixes.symbols, name);
        if (prefixName != m_prefixes.names.end()) {
            prefix *= prefixName->second;
            name.remove_prefix(prefixName->first.size());
        } else if (!hasPrefixSymbol && prefixSymbol != m_prefixes.symbols.end()) {
            hasPrefixSymbol = true;
            prefix *= prefixSymbol->second;
            name.remove_prefix(prefixSymbol->first.size());
        } else {
            return ErrorKind::UnknownUnit;
        }
        entry = FindEntry(name);
    }
    if (!entry->isPlain) {
        return ErrorKind::UnusableUnit;
    }
    const double scale = prefix * entry->scale;
    unit = {Scale::FromFactor(entry->lengthScale * scale), entry->scale * entry->offset / scale,
            entry->dimensions, false};
    return ErrorKind::None;
}

} // namespace encap::host
