#include "encap/mapping/ChangeClock.h"

#include "encap/family/Vocabulary.h"
#include "encap/xml/NodeAccess.h"

#include <exception>

namespace encap {

ChangeClock::OwnEdit::OwnEdit(ChangeClock& clock)
    : m_clock(clock), m_exceptions(std::uncaught_exceptions())
{
    // What others did before shows in the reading now: it must not pass as part of this edit.
    static_cast<void>(m_clock.Reading());
    ++m_clock.m_ownEdits;
}

ChangeClock::OwnEdit::~OwnEdit()
{
    if (std::uncaught_exceptions() > m_exceptions) {
        ++m_clock.m_reading; // memory ran out: what was kept in step may not be
    }
    m_clock.m_seen = m_clock.Count();
    --m_clock.m_ownEdits;
}

void ChangeClock::Watch(const XMLNode& node)
{
    m_node = node;
    m_table = Wrap(FirstChildElement(ParentElement(Raw(node)), vocabulary::kFamilyTable.utf8));
    m_seen = Count();
    ++m_reading;
}

uint64_t ChangeClock::Count() const
{
    return m_table.IsNode() ? ChangeCountOutside(m_table) : ChangeCount(m_node);
}

uint64_t ChangeClock::Reading()
{
    const uint64_t count = Count();
    if (m_ownEdits == 0 && count != m_seen) {
        m_seen = count;
        ++m_reading;
    }
    return m_reading;
}

} // namespace encap
