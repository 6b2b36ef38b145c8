#include "encap/mapping/ChangeClock.h"

#include "encap/xml/NodeAccess.h"

namespace encap {

ChangeClock::OwnEdit::OwnEdit(ChangeClock& clock) : m_clock(clock)
{
    // What others did before shows in the reading now: it must not pass as part of this edit.
    static_cast<void>(m_clock.Reading());
    ++m_clock.m_ownEdits;
}

ChangeClock::OwnEdit::~OwnEdit()
{
    m_clock.m_seen = ChangeCount(m_clock.m_node);
    --m_clock.m_ownEdits;
}

void ChangeClock::Watch(const XMLNode& node)
{
    m_node = node;
    m_seen = ChangeCount(node);
    ++m_reading;
}

uint64_t ChangeClock::Reading()
{
    const uint64_t count = ChangeCount(m_node);
    if (m_ownEdits == 0 && count != m_seen) {
        m_seen = count;
        ++m_reading;
    }
    return m_reading;
}

} // namespace encap
