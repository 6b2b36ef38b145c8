#pragma once

#include "encap/foundation/Types.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace encap {

/// The list of IDs that a table hands out. An edit in the middle keeps only the size of the list
/// right until the list is asked for, so that many edits in turn do not each shift all of it.
class IdList {
public:
    /// Brings the list up to date; idAt gives the ID that belongs at an index.
    template <class IdAt>
    [[nodiscard]] const std::vector<CString>& Get(IdAt idAt) const
    {
        const auto place = m_ids.begin() + static_cast<std::ptrdiff_t>(m_place);
        if (m_state == State::OneInserted) {
            std::rotate(place, m_ids.end() - 1, m_ids.end());
        } else if (m_state == State::OneErased) {
            std::rotate(place, place + 1, m_ids.end());
            m_ids.back() = idAt(m_ids.size() - 1);
        } else if (m_state == State::Stale) {
            for (std::size_t index = 0; index < m_ids.size(); ++index) {
                m_ids[index] = idAt(index);
            }
        }
        m_state = State::Current;
        return m_ids;
    }

    /// Makes room for one more, so that adding it cannot fail.
    void MakeRoom()
    {
        if (m_ids.size() == m_ids.capacity()) {
            m_ids.reserve(2 * m_ids.size() + 8);
        }
    }
    void Insert(std::size_t index, CString id)
    {
        Note(index == m_ids.size(), State::OneInserted, index);
        m_ids.push_back(std::move(id));
    }
    void Erase(std::size_t index)
    {
        Note(index + 1 == m_ids.size(), State::OneErased, index);
        m_ids.pop_back();
    }
    void NoteMove() { m_state = State::Stale; }
    void Clear()
    {
        m_ids.clear();
        m_state = State::Current;
    }

private:
    /// How the list differs from the table: not, by one edit, or beyond telling.
    enum class State { Current, OneInserted, OneErased, Stale };

    void Note(bool atTheEnd, State edit, std::size_t index)
    {
        if (m_state != State::Current) {
            m_state = State::Stale;
        } else if (!atTheEnd) {
            m_state = edit;
            m_place = index;
        }
    }

    mutable std::vector<CString> m_ids; ///< always as many as the table has items
    mutable State m_state = State::Current;
    std::size_t m_place = 0; ///< of the one edit
};

} // namespace encap
