#pragma once

#include "encap/xml/XMLNode.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace encap {

/// Elements by the value of one of their attributes. It keeps no copy of the values, so that an
/// entry costs a few words; the owner drops or corrects it when elements or values change. Each
/// look-up compares with the attribute itself.
class NodeIndex {
public:
    /// REQUIRES: attribute lives as long as the index (a name of the vocabulary does).
    explicit NodeIndex(std::string_view attribute) : m_attribute(attribute) {}

    [[nodiscard]] IXMLDOMNode* Find(std::string_view utf8Value) const;
    /// False, with nothing changed, when an element with the same value is there already.
    bool Add(IXMLDOMNode* element);
    /// Takes out the element with this value and gives it, null when there is none.
    IXMLDOMNode* Remove(std::string_view utf8Value);
    void Clear();

private:
    struct Slot {
        IXMLDOMNode* element = nullptr; ///< null: free
        uint32_t hash = 0;
    };

    [[nodiscard]] std::size_t FindSlot(std::string_view utf8Value, uint32_t hash) const;
    [[nodiscard]] std::size_t Next(std::size_t slot) const;
    void Grow();
    void CloseGap(std::size_t gap);

    std::string_view m_attribute;
    std::vector<Slot> m_slots; ///< empty, or a power of two of them, at least a quarter free
    std::size_t m_count = 0;
};

} // namespace encap
