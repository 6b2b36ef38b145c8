#include "encap/family/StringsDocument.h"

#include "encap/family/Queries.h"
#include "encap/foundation/TextFormat.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/NodeAccess.h"
#include "encap/xml/QueryLiteral.h"

#include <array>
#include <exception>
#include <string>

namespace encap {

namespace {

/// A wide text as UTF-8; on the stack when it is short ASCII, as identifiers are.
class Utf8Text {
public:
    explicit Utf8Text(std::wstring_view text)
    {
        if (text.size() > m_short.size() || !CopyAscii(text)) {
            platform::AppendUtf8(m_long, text);
            m_view = m_long;
        }
    }
    Utf8Text(const Utf8Text&) = delete;
    Utf8Text& operator=(const Utf8Text&) = delete;

    [[nodiscard]] std::string_view View() const { return m_view; }

private:
    bool CopyAscii(std::wstring_view text)
    {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (static_cast<uint32_t>(text[i]) > 0x7F) {
                return false;
            }
            m_short[i] = static_cast<char>(text[i]);
        }
        m_view = std::string_view(m_short.data(), text.size());
        return true;
    }

    std::array<char, 64> m_short;
    std::string m_long;
    std::string_view m_view;
};

void ReadText(IXMLDOMNode* element, CString& value)
{
    std::string_view text;
    if (TextView(element, text)) {
        platform::AssignWide(value, text);
        return;
    }
    value.clear();
    AppendNodeText(element, value);
}

CString ConstantQuery(std::wstring_view categoryParameter)
{
    return FormatText(query::kLocalizedConstant,
                      {vocabulary::kConstantValues.View(), vocabulary::kConstantValue.View(),
                       vocabulary::kCategoryParameter.View(), QueryLiteral(categoryParameter)});
}

/// Removes every child of that name whose attribute has the value; without an attribute, every
/// child of that name.
void RemoveChildren(IXMLDOMNode* parent, std::string_view name, std::string_view attribute = {},
                    std::string_view value = {})
{
    IXMLDOMNode* child = FirstChildElement(parent, name);
    while (child != nullptr) {
        IXMLDOMNode* next = NextElement(child, name);
        if (attribute.empty() || AttributeEquals(child, attribute, value)) {
            Wrap(child).RemoveThisNode(true);
        }
        child = next;
    }
}

/// Visits the children of all children: those named inner below those named outer.
template <class Visitor>
void ForEachGrandchild(IXMLDOMNode* parent, const Name& outer, const Name& inner, Visitor visit)
{
    for (IXMLDOMNode* child = FirstChildElement(parent, outer.utf8); child != nullptr;
         child = NextElement(child, outer.utf8)) {
        for (IXMLDOMNode* grandchild = FirstChildElement(child, inner.utf8); grandchild != nullptr;
             grandchild = NextElement(grandchild, inner.utf8)) {
            visit(grandchild);
        }
    }
}

} // namespace

StringsDocument::Edit::Edit(StringsDocument& document)
    : m_document(document), m_exceptions(std::uncaught_exceptions())
{
    m_document.DropIndexIfStale();
}

StringsDocument::Edit::~Edit()
{
    if (std::uncaught_exceptions() > m_exceptions) {
        m_document.DropIndex(); // memory ran out between the document and the index
    }
    m_document.m_indexedChange = ChangeCount(m_document.m_document);
}

void StringsDocument::DropIndexIfStale() const
{
    if (m_indexedRoot.IsNode() && ChangeCount(m_document) != m_indexedChange) {
        DropIndex();
    }
}

void StringsDocument::DropIndex() const
{
    m_columns.clear();
    m_indexedRoot = XMLNode();
}

void StringsDocument::IndexColumns() const
{
    const XMLNode root = m_document.GetRootNode();
    m_columns.clear(); // what a try left behind for which there was no memory
    ForEachGrandchild(
        Raw(root), vocabulary::kTable, vocabulary::kColumnStrings, [this](IXMLDOMNode* element) {
            const std::string_view id = AttributeView(element, vocabulary::kColumnId.utf8);
            if (id.data() != nullptr) {
                m_columns[platform::Utf8ToWide(id)].elements.push_back(element);
            }
        });
    m_indexedRoot = root;
    m_indexedChange = ChangeCount(m_document);
}

void StringsDocument::PrepareIndex() const
{
    DropIndexIfStale();
    if (!m_indexedRoot.IsNode()) {
        IndexColumns();
    }
}

StringsDocument::ColumnEntry* StringsDocument::FindColumn(std::wstring_view column) const
{
    PrepareIndex();
    const auto found = m_columns.find(column);
    return found != m_columns.end() ? &found->second : nullptr;
}

NodeIndex& StringsDocument::CellsOf(ColumnEntry& entry)
{
    if (entry.cellsKnown) {
        return entry.cells;
    }
    entry.cells.Clear();
    entry.rowsRepeat = false;
    for (IXMLDOMNode* element : entry.elements) {
        ForEachGrandchild(element, vocabulary::kRows, vocabulary::kCellString,
                          [&entry](IXMLDOMNode* cell) {
                              if (AttributeView(cell, vocabulary::kRowId.utf8).data() != nullptr &&
                                  !entry.cells.Add(cell)) {
                                  entry.rowsRepeat = true;
                              }
                          });
    }
    entry.cellsKnown = true;
    return entry.cells;
}

StringsDocument::ColumnEntry* StringsDocument::GetOrAddColumn(const CString& column)
{
    if (ColumnEntry* known = FindColumn(column)) {
        return known;
    }
    const XMLNode element =
        m_document.GetRootNode()
            .GetOrAddNode(vocabulary::kTable)
            .AddNode(vocabulary::kColumnStrings, nullptr, vocabulary::kColumnId, column.c_str());
    if (!element.IsNode()) {
        return nullptr;
    }
    m_indexedChange = ChangeCount(m_document);
    ColumnEntry& entry = m_columns[column];
    entry.elements.push_back(Raw(element));
    entry.cellsKnown = true;
    return &entry;
}

bool StringsDocument::GetText(const wchar_t* name, CString& value) const
{
    XMLNode element;
    return m_document.GetRootNode().GetChildNode(name, element) && element.GetNodeText(value);
}

void StringsDocument::SetText(const wchar_t* name, const CString& value)
{
    const Edit edit(*this);
    XMLNode root = m_document.GetRootNode();
    XMLNode element;
    if (root.GetChildNode(name, element)) {
        element.SetNodeText(value);
    } else {
        root.AddNode(name, value.c_str());
    }
}

bool StringsDocument::GetConstant(std::wstring_view categoryParameter, CString& value) const
{
    XMLNode element;
    return m_document.GetRootNode().GetChildNode(ConstantQuery(categoryParameter).c_str(),
                                                 element) &&
           element.GetNodeText(value);
}

void StringsDocument::SetConstant(const CString& categoryParameter, const CString& value)
{
    const Edit edit(*this);
    XMLNode root = m_document.GetRootNode();
    XMLNode element;
    if (root.GetChildNode(ConstantQuery(categoryParameter).c_str(), element)) {
        element.SetNodeText(value);
        return;
    }
    root.GetOrAddNode(vocabulary::kConstantValues)
        .AddNode(vocabulary::kConstantValue, value.c_str(), vocabulary::kCategoryParameter,
                 categoryParameter.c_str());
}

bool StringsDocument::GetColumnText(std::wstring_view column, std::wstring_view property,
                                    CString& value) const
{
    const ColumnEntry* entry = property.empty() ? nullptr : FindColumn(column);
    if (entry == nullptr) {
        return false;
    }
    const Utf8Text name(property);
    for (IXMLDOMNode* element : entry->elements) {
        if (IXMLDOMNode* text = FirstChildElement(element, name.View())) {
            ReadText(text, value);
            return true;
        }
    }
    return false;
}

void StringsDocument::SetColumnText(const CString& column, const CString& property,
                                    const CString& value)
{
    const Edit edit(*this);
    const ColumnEntry* entry = property.empty() ? nullptr : GetOrAddColumn(column);
    if (entry == nullptr) {
        return;
    }
    const Utf8Text name(property);
    IXMLDOMNode* text = nullptr;
    for (IXMLDOMNode* element : entry->elements) {
        if (value.empty()) {
            RemoveChildren(element, name.View());
        } else if (text == nullptr) {
            text = FirstChildElement(element, name.View());
        }
    }
    if (text != nullptr) {
        Wrap(text).SetNodeText(value);
    } else if (!value.empty()) {
        Wrap(entry->elements.front()).AddNode(property.c_str(), value.c_str());
    }
}

void StringsDocument::RemoveColumnText(std::wstring_view column, const Name& property)
{
    const Edit edit(*this);
    if (const ColumnEntry* entry = FindColumn(column)) {
        for (IXMLDOMNode* element : entry->elements) {
            RemoveChildren(element, property.utf8);
        }
    }
}

bool StringsDocument::GetCell(std::wstring_view column, std::wstring_view row, CString& value) const
{
    ColumnEntry* entry = FindColumn(column);
    IXMLDOMNode* cell = entry != nullptr ? CellsOf(*entry).Find(Utf8Text(row).View()) : nullptr;
    if (cell == nullptr) {
        return false;
    }
    ReadText(cell, value);
    return true;
}

void StringsDocument::SetCell(const CString& column, const CString& row, const CString& value)
{
    const Edit edit(*this);
    ColumnEntry* entry = GetOrAddColumn(column);
    if (entry == nullptr) {
        return;
    }
    XMLNode rows = Wrap(entry->elements.front()).GetOrAddNode(vocabulary::kRows);
    const Utf8Text key(row);
    if (value.empty()) {
        RemoveCellFrom(*entry, key.View());
    } else if (IXMLDOMNode* cell = CellsOf(*entry).Find(key.View())) {
        Wrap(cell).SetNodeText(value);
    } else {
        const XMLNode added =
            rows.AddNode(vocabulary::kCellString, value.c_str(), vocabulary::kRowId, row.c_str());
        if (added.IsNode()) {
            entry->cells.Add(Raw(added));
        }
    }
}

void StringsDocument::RemoveCellFrom(ColumnEntry& entry, std::string_view row)
{
    if (IXMLDOMNode* cell = CellsOf(entry).Remove(row)) {
        Wrap(cell).RemoveThisNode(true);
    }
    if (!entry.rowsRepeat) {
        return;
    }
    for (IXMLDOMNode* element : entry.elements) {
        for (IXMLDOMNode* rows = FirstChildElement(element, vocabulary::kRows.utf8);
             rows != nullptr; rows = NextElement(rows, vocabulary::kRows.utf8)) {
            RemoveChildren(rows, vocabulary::kCellString.utf8, vocabulary::kRowId.utf8, row);
        }
    }
}

void StringsDocument::RemoveCell(std::wstring_view column, std::wstring_view row)
{
    const Edit edit(*this);
    if (ColumnEntry* entry = FindColumn(column)) {
        RemoveCellFrom(*entry, Utf8Text(row).View());
    }
}

void StringsDocument::RemoveRow(std::wstring_view row)
{
    const Edit edit(*this);
    const Utf8Text key(row);
    PrepareIndex();
    for (auto& [column, entry] : m_columns) {
        RemoveCellFrom(entry, key.View());
    }
}

void StringsDocument::RemoveColumnCells(std::wstring_view column)
{
    const Edit edit(*this);
    ColumnEntry* entry = FindColumn(column);
    if (entry == nullptr) {
        return;
    }
    for (IXMLDOMNode* element : entry->elements) {
        for (IXMLDOMNode* rows = FirstChildElement(element, vocabulary::kRows.utf8);
             rows != nullptr; rows = NextElement(rows, vocabulary::kRows.utf8)) {
            RemoveChildren(rows, vocabulary::kCellString.utf8);
        }
    }
    entry->cells.Clear();
    entry->cellsKnown = true;
    entry->rowsRepeat = false;
}

} // namespace encap
