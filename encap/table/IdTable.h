#pragma once

#include "encap/foundation/StringMap.h"
#include "encap/foundation/Types.h"
#include "encap/table/IdList.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace encap {

/// Owned objects in an order, each under an ID: the rows or the columns of a table. IDs are found
/// without regard to case in O(1); indices count from 0. Two objects may have the same ID (a
/// document may repeat one): both keep their places, the latest answers by ID, and when it goes the
/// other answers again. Adding or erasing costs the shifting of the ID list, nothing more.
template <class T>
class IdTable {
public:
    struct Entry {
        CString id;
        std::unique_ptr<T> object;
        mutable std::size_t position = 0; ///< where it was when last looked for
    };

    [[nodiscard]] std::size_t Count() const { return m_entries.size(); }
    /// The IDs in order, brought up to date by the call.
    [[nodiscard]] const std::vector<CString>& Ids() const
    {
        return m_ids.Get(
            [this](std::size_t index) -> const CString& { return m_entries[index]->id; });
    }
    [[nodiscard]] bool HasIndex(int index) const
    {
        return index >= 0 && static_cast<std::size_t>(index) < m_entries.size();
    }
    /// REQUIRES: HasIndex(index).
    [[nodiscard]] const Entry& EntryAt(int index) const
    {
        return *m_entries[static_cast<std::size_t>(index)];
    }
    /// Null when the index is out of range.
    [[nodiscard]] T* At(int index) const
    {
        return HasIndex(index) ? EntryAt(index).object.get() : nullptr;
    }

    [[nodiscard]] const Entry* FindEntry(std::wstring_view id) const
    {
        if (m_lastFound != nullptr && m_lastFound->id == id) {
            return m_lastFound;
        }
        // Tables are mostly read in their order.
        if (const Entry* next = NextOfLastFound(); next != nullptr && next->id == id) {
            m_lastFound = next;
            return next;
        }
        const auto found = m_byId.find(id);
        if (found == m_byId.end()) {
            return nullptr;
        }
        m_lastFound = found->second;
        return found->second;
    }
    [[nodiscard]] T* Find(std::wstring_view id) const
    {
        const Entry* entry = FindEntry(id);
        return entry != nullptr ? entry->object.get() : nullptr;
    }
    /// The first index with the ID, -1 when there is none.
    [[nodiscard]] int IndexOf(std::wstring_view id) const
    {
        if (m_shadowed > 0) {
            return FirstIndex([&](const CString& other) { return EqualNoCase(other, id); });
        }
        const Entry* entry = FindEntry(id);
        return entry != nullptr ? static_cast<int>(PositionOf(*entry)) : -1;
    }
    /// As IndexOf, comparing exactly.
    [[nodiscard]] int IndexOfExact(std::wstring_view id) const
    {
        if (m_shadowed > 0) {
            return FirstIndex([&](const CString& other) { return other == id; });
        }
        const Entry* entry = FindEntry(id);
        return entry != nullptr && entry->id == id ? static_cast<int>(PositionOf(*entry)) : -1;
    }

    /// Puts the object at an index (at most the count) and lets it answer for the ID.
    T* Insert(std::size_t index, CString id, std::unique_ptr<T> object)
    {
        auto entry = std::make_unique<Entry>(Entry{std::move(id), std::move(object), index});
        Entry* added = entry.get();
        CString listed = added->id;
        // Nothing is entered anywhere before everything has its memory.
        m_ids.MakeRoom();
        const auto place =
            m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(index), nullptr);
        try {
            Register(*added);
        } catch (...) {
            m_entries.erase(place);
            throw;
        }
        m_ids.Insert(index, std::move(listed));
        *place = std::move(entry);
        return added->object.get();
    }
    T* Append(CString id, std::unique_ptr<T> object)
    {
        return Insert(m_entries.size(), std::move(id), std::move(object));
    }

    /// Takes the object at an index out of the table. REQUIRES: HasIndex(index).
    std::unique_ptr<Entry> Take(int index)
    {
        const std::ptrdiff_t offset = index;
        std::unique_ptr<Entry> entry = std::move(m_entries[static_cast<std::size_t>(index)]);
        m_ids.Erase(static_cast<std::size_t>(index));
        m_entries.erase(m_entries.begin() + offset);
        Unregister(*entry);
        return entry;
    }

    /// Moves the object at one index to another, counted after its removal. REQUIRES: both valid.
    void Move(int from, int to)
    {
        m_ids.NoteMove();
        std::unique_ptr<Entry> entry = std::move(m_entries[static_cast<std::size_t>(from)]);
        m_entries.erase(m_entries.begin() + from);
        m_entries.insert(m_entries.begin() + to, std::move(entry));
    }

    void Clear()
    {
        m_lastFound = nullptr;
        m_shadowed = 0;
        m_byId.clear();
        m_ids.Clear();
        m_entries.clear();
    }

private:
    using ByIdMap = std::unordered_map<std::wstring_view, Entry*, NoCaseHash, NoCaseEqual>;

    /// Looking further than this costs as much as noting every position anew.
    static constexpr std::size_t kFarAway = 256;

    template <class Predicate>
    [[nodiscard]] int FirstIndex(Predicate matches) const
    {
        const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                        [&](const auto& entry) { return matches(entry->id); });
        return found == m_entries.end() ? -1 : static_cast<int>(found - m_entries.begin());
    }

    // What stands behind the entry found last, if nothing has moved since; null when that is not
    // the only one of its ID.
    [[nodiscard]] const Entry* NextOfLastFound() const
    {
        if (m_lastFound == nullptr || m_shadowed > 0 ||
            m_lastFound->position + 1 >= m_entries.size()) {
            return nullptr;
        }
        const Entry* next = m_entries[m_lastFound->position + 1].get();
        next->position = m_lastFound->position + 1;
        return next;
    }

    // Looks outwards from where the entry was last: inserting and erasing near a place moves the
    // entries behind it by little between two look-ups.
    [[nodiscard]] std::size_t PositionOf(const Entry& entry) const
    {
        const std::size_t count = m_entries.size();
        const std::size_t start = std::min(entry.position, count - 1);
        for (std::size_t distance = 0; distance < kFarAway; ++distance) {
            if (start + distance < count && m_entries[start + distance].get() == &entry) {
                return entry.position = start + distance;
            }
            if (distance <= start && m_entries[start - distance].get() == &entry) {
                return entry.position = start - distance;
            }
        }
        for (std::size_t position = 0; position < count; ++position) {
            m_entries[position]->position = position;
        }
        return entry.position;
    }

    void Register(Entry& entry)
    {
        m_lastFound = nullptr;
        const auto [place, isNew] = m_byId.try_emplace(entry.id, &entry);
        if (!isNew) {
            Answer(place, entry);
            ++m_shadowed;
        }
    }

    // Lets an entry answer in the place of another one of its ID.
    void Answer(typename ByIdMap::iterator place, Entry& entry)
    {
        auto node = m_byId.extract(place);
        node.key() = entry.id;
        node.mapped() = &entry;
        m_byId.insert(std::move(node));
    }

    void Unregister(const Entry& entry)
    {
        m_lastFound = nullptr;
        const auto found = m_byId.find(entry.id);
        if (found == m_byId.end() || found->second != &entry) {
            --m_shadowed;
            return;
        }
        const auto same = [&](const auto& other) { return EqualNoCase(other->id, entry.id); };
        const auto shadowed = m_shadowed > 0
                                  ? std::find_if(m_entries.rbegin(), m_entries.rend(), same)
                                  : m_entries.rend();
        if (shadowed == m_entries.rend()) {
            m_byId.erase(found);
            return;
        }
        Answer(found, **shadowed);
        --m_shadowed;
    }

    IdList m_ids;
    std::deque<std::unique_ptr<Entry>> m_entries; ///< in order
    /// The keys are views of the entries' own IDs.
    ByIdMap m_byId;
    std::size_t m_shadowed = 0; ///< entries that another one of the same ID answers for
    mutable const Entry* m_lastFound = nullptr;
};

} // namespace encap
