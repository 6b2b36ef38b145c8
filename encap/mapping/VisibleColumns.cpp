#include "encap/mapping/VisibleColumns.h"

#include "encap/mapping/MapWalk.h"
#include "encap/platform/Encoding.h"

namespace encap {

XMLNode VisibleColumns::Find(const XMLNode& root, std::wstring_view columnId)
{
    const uint64_t changeCount = ChangeCount(root);
    if (Raw(root) != m_root || changeCount != m_changeCount) {
        Read(Raw(root));
        m_root = Raw(root);
        m_changeCount = changeCount;
    }
    const auto found = m_columns.find(platform::WideToUtf8(columnId));
    return found != m_columns.end() ? Wrap(found->second) : XMLNode();
}

void VisibleColumns::Read(IXMLDOMNode* root)
{
    m_columns.clear();
    const auto enter = [this](IXMLDOMNode* column) {
        const std::string_view id = AttributeView(column, vocabulary::kColumnId.utf8);
        if (id.data() != nullptr &&
            AttributeEquals(column, vocabulary::kHidden.utf8, vocabulary::kFalse.utf8)) {
            m_columns.try_emplace(std::string(id), column);
        }
    };
    ForEachGrandchild(
        root, vocabulary::kFamilyTable.utf8, vocabulary::kColumns.utf8,
        [&enter](IXMLDOMNode* columns) { ForEachChild(columns, vocabulary::kColumn.utf8, enter); });
}

} // namespace encap
