#pragma once

#include "encap/xml/XMLNode.h"

#include <cstdint>

namespace encap {

/// Tells an index that is kept beside the document when somebody else has edited the document:
/// edits made within an OwnEdit, whose maker corrects the indexes, do not count. One clock serves
/// all the indexes of a mapping.
class ChangeClock {
public:
    /// An edit that leaves every index right, or changes nothing that an index holds.
    class OwnEdit {
    public:
        explicit OwnEdit(ChangeClock& clock);
        OwnEdit(const OwnEdit&) = delete;
        OwnEdit& operator=(const OwnEdit&) = delete;
        ~OwnEdit();

    private:
        ChangeClock& m_clock;
        int m_exceptions; ///< in flight when it began
    };

    ChangeClock() = default;
    /// node: a child of the document element; an empty one counts nothing. Edits of the table
    /// beside it do not count: they are many, and no index of a mapping looks there.
    explicit ChangeClock(const XMLNode& node) { Watch(node); }

    void Watch(const XMLNode& node);
    /// Never 0; differs from every earlier answer once another's edit came between. Stands still
    /// within an own edit.
    [[nodiscard]] uint64_t Reading();

private:
    [[nodiscard]] uint64_t Count() const;

    XMLNode m_node;
    XMLNode m_table;
    uint64_t m_seen = 0;
    uint64_t m_reading = 1;
    int m_ownEdits = 0;
};

} // namespace encap
