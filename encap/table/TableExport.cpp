#include "encap/family/Vocabulary.h"
#include "encap/foundation/StringMap.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"
#include "encap/xml/NodeAccess.h"
#include "encap/xml/XMLParser.h"

#include <unordered_set>

using encap::EvaluationScope;
namespace vocabulary = encap::vocabulary;

namespace {

// Evaluates the cells that a row of the copied table holds, and remembers their columns; false when
// a cell names no column.
bool EvaluateOwnCells(CEncapFamilyTable& table, XMLNode& row, const CString& rowId,
                      std::unordered_set<CString>& seen)
{
    IXMLDOMNode* element = encap::FirstChildElement(encap::Raw(row), {});
    for (; element != nullptr; element = encap::NextElement(element, {})) {
        XMLNode cell = encap::Wrap(element);
        CString columnId;
        if (!cell.GetProperty(vocabulary::kColumnId, columnId)) {
            return false;
        }
        CString value;
        if (table.GetValue(rowId.c_str(), columnId.c_str(), value) == CTableEvaluator::EvaluateOK) {
            cell.SetNodeText(value);
        }
        seen.insert(std::move(columnId));
    }
    return true;
}

void AddOtherCells(CEncapFamilyTable& table, XMLNode& row, const CString& rowId,
                   const std::vector<CString>& columnIds, const std::unordered_set<CString>& seen)
{
    for (const CString& columnId : columnIds) {
        CString value;
        if (seen.count(columnId) == 0 &&
            table.GetValue(rowId.c_str(), columnId.c_str(), value) == CTableEvaluator::EvaluateOK) {
            // Text and attribute apart: an empty value is a cell without text.
            row.AddNode(vocabulary::kCell, value.c_str(), vocabulary::kColumnId, columnId.c_str());
        }
    }
}

} // namespace

bool CEncapFamilyTable::GetXml(CComBSTR& xml) const
{
    return m_state->node.GetXml(xml);
}

bool CEncapFamilyTable::GetEvaluatedXml(CComBSTR& xml)
{
    const EvaluationScope scope(*this);
    CComBSTR text;
    XMLParser document;
    if (!m_state->node.GetXml(text) || !document.SetXml(static_cast<const wchar_t*>(text)) ||
        !document.CreateXmlDocument(vocabulary::kDocumentEncoding)) {
        return false;
    }
    const std::vector<CString> columnIds = GetAllColumnIDs();
    XMLNode rows;
    document.GetRootNode().GetChildNode(vocabulary::kRows, rows);
    IXMLDOMNode* element = encap::FirstChildElement(encap::Raw(rows), {});
    std::unordered_set<CString> seen;
    for (; element != nullptr; element = encap::NextElement(element, {})) {
        XMLNode row = encap::Wrap(element);
        CString rowId;
        seen.clear();
        if (!row.GetProperty(vocabulary::kRowId, rowId) ||
            !EvaluateOwnCells(*this, row, rowId, seen)) {
            return false;
        }
        AddOtherCells(*this, row, rowId, columnIds, seen);
    }
    return document.GetXml(xml);
}
