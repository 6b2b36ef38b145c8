#pragma once

#include "encap/host/UnitDatabase.h"

#include <functional>
#include <unordered_map>
#include <utility>

namespace encap::host {

struct WideHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const
    {
        return std::hash<std::wstring_view>()(text);
    }
};

/// What is known about texts, by text. Stops adding at bounds, since texts come from documents.
template <class Value>
class BoundedTextCache {
public:
    /// Null where the text is not in the cache; valid until the cache is destroyed.
    [[nodiscard]] const Value* Find(std::wstring_view text)
    {
        if (m_last != nullptr && m_last->first == text) {
            return &m_last->second;
        }
        std::swap(m_last, m_lastButOne);
        if (m_last != nullptr && m_last->first == text) {
            return &m_last->second;
        }
        const auto found = m_values.find(text);
        if (found == m_values.end()) {
            return nullptr;
        }
        m_last = &*found;
        return &found->second;
    }
    void Add(std::wstring_view text, const Value& value)
    {
        if (m_values.size() < kMostTexts && text.size() <= kLongestText) {
            m_values.emplace(text, value);
        }
    }

private:
    static constexpr std::size_t kMostTexts = 4096;
    static constexpr std::size_t kLongestText = 256;

    std::unordered_map<CString, Value, WideHash, std::equal_to<>> m_values;
    // The texts asked for last, which the next question is mostly about too: a column's unit and
    // its database unit take turns.
    const std::pair<const CString, Value>* m_last = nullptr;
    const std::pair<const CString, Value>* m_lastButOne = nullptr;
};

/// The units that a provider knows: "ul", "deg", "grad" and "rad" by definition, all others from
/// the unit database. Each name is looked up once, whether it is a unit or not. Owned by the
/// provider.
class UnitTable {
public:
    explicit UnitTable(std::string databasePath = {}) : m_database(std::move(databasePath)) {}

    /// The unit of a single name without powers; sets an error's kind and token where it is none.
    [[nodiscard]] bool FindName(std::wstring_view name, Unit& unit, EvaluationError& error);
    /// The unit of a whole unit text as the interface takes it: "mm2", "kg m^-3", "1/s", "ul" or
    /// empty.
    [[nodiscard]] bool FindText(std::wstring_view text, Unit& unit, EvaluationError& error);

private:
    struct Named {
        ErrorKind kind = ErrorKind::None;
        Unit unit;
    };

    Named LookUp(std::wstring_view name);

    BoundedTextCache<Named> m_names;
    BoundedTextCache<Unit> m_texts;
    UnitDatabase m_database;
};

} // namespace encap::host
