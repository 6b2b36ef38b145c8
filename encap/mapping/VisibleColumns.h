#pragma once

#include "encap/xml/XMLNode.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace encap {

/// The visible columns of a family's table by identifier (exactly), read from the document and read
/// again when it has changed. Owned by the mapping's index.
class VisibleColumns {
public:
    /// The first "Column" element with this identifier whose "Hidden" is "false", in
    /// "FamilyTable/Columns" below the document element; an empty node when there is none.
    [[nodiscard]] XMLNode Find(const XMLNode& root, std::wstring_view columnId);

private:
    void Read(IXMLDOMNode* root);

    std::unordered_map<std::string, IXMLDOMNode*> m_columns;
    IXMLDOMNode* m_root = nullptr;
    uint64_t m_changeCount = 0;
};

} // namespace encap
