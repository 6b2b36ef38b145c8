#include "encap/family/NodeIndex.h"

#include "encap/xml/NodeAccess.h"

#include <functional>

namespace encap {

namespace {

constexpr std::size_t kFirstSize = 16;

uint32_t HashOf(std::string_view text)
{
    const uint64_t hash = std::hash<std::string_view>{}(text);
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

} // namespace

std::size_t NodeIndex::Next(std::size_t slot) const
{
    return (slot + 1) & (m_slots.size() - 1);
}

/// The slot of the value, or the free one where it belongs. REQUIRES: there are slots.
std::size_t NodeIndex::FindSlot(std::string_view utf8Value, uint32_t hash) const
{
    std::size_t slot = hash & (m_slots.size() - 1);
    while (m_slots[slot].element != nullptr &&
           (m_slots[slot].hash != hash ||
            !AttributeEquals(m_slots[slot].element, m_attribute, utf8Value))) {
        slot = Next(slot);
    }
    return slot;
}

IXMLDOMNode* NodeIndex::Find(std::string_view utf8Value) const
{
    return m_slots.empty() ? nullptr : m_slots[FindSlot(utf8Value, HashOf(utf8Value))].element;
}

bool NodeIndex::Add(IXMLDOMNode* element)
{
    if ((m_count + 1) * 4 > m_slots.size() * 3) {
        Grow();
    }
    const std::string_view value = AttributeView(element, m_attribute);
    const uint32_t hash = HashOf(value);
    Slot& slot = m_slots[FindSlot(value, hash)];
    if (slot.element != nullptr) {
        return false;
    }
    slot = {element, hash};
    ++m_count;
    return true;
}

IXMLDOMNode* NodeIndex::Remove(std::string_view utf8Value)
{
    if (m_slots.empty()) {
        return nullptr;
    }
    const std::size_t slot = FindSlot(utf8Value, HashOf(utf8Value));
    IXMLDOMNode* element = m_slots[slot].element;
    if (element != nullptr) {
        CloseGap(slot);
        --m_count;
    }
    return element;
}

void NodeIndex::Clear()
{
    m_slots.clear();
    m_count = 0;
}

void NodeIndex::Grow()
{
    std::vector<Slot> old(m_slots.empty() ? kFirstSize : m_slots.size() * 2);
    old.swap(m_slots);
    for (const Slot& entry : old) {
        if (entry.element == nullptr) {
            continue;
        }
        std::size_t slot = entry.hash & (m_slots.size() - 1);
        while (m_slots[slot].element != nullptr) {
            slot = Next(slot);
        }
        m_slots[slot] = entry;
    }
}

/// Frees a slot and moves up what probing would no longer reach across the gap.
void NodeIndex::CloseGap(std::size_t gap)
{
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = Next(gap); m_slots[slot].element != nullptr; slot = Next(slot)) {
        const std::size_t home = m_slots[slot].hash & mask;
        if (((slot - home) & mask) >= ((slot - gap) & mask)) {
            m_slots[gap] = m_slots[slot];
            gap = slot;
        }
    }
    m_slots[gap] = {};
}

} // namespace encap
