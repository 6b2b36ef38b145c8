#include "encap/family/Family.h"

#include "encap/family/FamilyStrings.h"
#include "encap/family/Queries.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/StringUtil.h"
#include "encap/foundation/TextFormat.h"
#include "encap/platform/Files.h"
#include "encap/table/FamilyTable.h"

using namespace encap;

namespace {

constexpr long kFound = 0;
constexpr long kNotFound = 1;

long ReadCell(const StringsDocument* strings, const wchar_t* column, const wchar_t* row,
              CString& value)
{
    return strings != nullptr && strings->GetCell(TextOrEmpty(column), TextOrEmpty(row), value)
               ? kFound
               : kNotFound;
}

long ReadColumnText(const StringsDocument* strings, const wchar_t* column, const wchar_t* property,
                    CString& value)
{
    return strings != nullptr &&
                   strings->GetColumnText(TextOrEmpty(column), TextOrEmpty(property), value)
               ? kFound
               : kNotFound;
}

} // namespace

void CEncapFamily::GetActualLanguage(CString& language) const
{
    language = m_strings->ActualLanguage();
}

int CEncapFamily::GetFamStringsCount() const
{
    return static_cast<int>(m_strings->Languages().size());
}

bool CEncapFamily::GetStringsFamilyXML(int index, XMLParser& document) const
{
    if (index < 0 || index >= GetFamStringsCount()) {
        return false;
    }
    const CString& language = m_strings->Languages()[static_cast<std::size_t>(index)];
    const StringsDocument* strings = m_strings->Find(language);
    if (strings == nullptr) {
        return false;
    }
    document = strings->Document();
    return true;
}

long CEncapFamily::GetLocalizedCellValue(const wchar_t* column, const wchar_t* row,
                                         const wchar_t* language, CString& value) const
{
    return ReadCell(m_strings->Find(TextOrEmpty(language)), column, row, value);
}

long CEncapFamily::GetLocalizedCellValue(const wchar_t* column, const wchar_t* row,
                                         CString& value) const
{
    return ReadCell(m_strings->Find(m_strings->ActualLanguage()), column, row, value);
}

void CEncapFamily::SetLocalizedCellValue(const wchar_t* column, const wchar_t* row,
                                         const wchar_t* value, const wchar_t* language)
{
    WriteLocalizedCell(column, row, value, language);
    if (m_table != nullptr) {
        m_table->DropCellValues(TextOrEmpty(row), column);
    }
}

void CEncapFamily::WriteLocalizedCell(const wchar_t* column, const wchar_t* row,
                                      const wchar_t* value, const wchar_t* language)
{
    StringsDocument* strings = m_strings->Find(TextOrEmpty(language));
    if (strings != nullptr && IsFamilyColumnLocalized(column)) {
        strings->SetCell(TextOrEmpty(column), TextOrEmpty(row), TextOrEmpty(value));
    }
}

void CEncapFamily::SetLocalizedCellValue(const wchar_t* column, const wchar_t* row,
                                         const wchar_t* value)
{
    const CString language(m_strings->ActualLanguage());
    SetLocalizedCellValue(column, row, value, language.c_str());
}

long CEncapFamily::GetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                                   const wchar_t* language, CString& value) const
{
    return ReadColumnText(m_strings->Find(TextOrEmpty(language)), column, property, value);
}

long CEncapFamily::GetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                                   CString& value) const
{
    return ReadColumnText(m_strings->Find(m_strings->ActualLanguage()), column, property, value);
}

void CEncapFamily::SetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                                   const wchar_t* value, const wchar_t* language)
{
    if (StringsDocument* strings = m_strings->Find(TextOrEmpty(language))) {
        strings->SetColumnText(TextOrEmpty(column), TextOrEmpty(property), TextOrEmpty(value));
        DropColumnValues(column, property);
    }
}

void CEncapFamily::SetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                                   const wchar_t* value)
{
    m_strings->ForEach(true, [&](StringsDocument& strings) {
        strings.SetColumnText(TextOrEmpty(column), TextOrEmpty(property), TextOrEmpty(value));
    });
    DropColumnValues(column, property);
}

// The values of a column whose column-wide text has changed.
void CEncapFamily::DropColumnValues(const wchar_t* column, const wchar_t* property)
{
    if (m_table != nullptr && TextOrEmpty(property) == vocabulary::kColumnwideValue.View()) {
        m_table->DropColumnValues(TextOrEmpty(column));
    }
}

void CEncapFamily::DeleteLocalizedCellsValues(const wchar_t* row, const wchar_t* column,
                                              bool allLanguages)
{
    const CString columnId = TextOrEmpty(column);
    m_strings->ForEach(allLanguages, [&](StringsDocument& strings) {
        if (columnId.empty()) {
            strings.RemoveRow(TextOrEmpty(row));
        } else {
            strings.RemoveCell(columnId, TextOrEmpty(row));
        }
    });
    if (m_table != nullptr && columnId.empty()) {
        m_table->DropRowValues(TextOrEmpty(row));
    } else if (m_table != nullptr) {
        m_table->DropCellValues(TextOrEmpty(row), column);
    }
}

void CEncapFamily::DeleteLocalizedColumnCells(const wchar_t* column, bool allLanguages)
{
    m_strings->ForEach(allLanguages, [column](StringsDocument& strings) {
        strings.RemoveColumnCells(TextOrEmpty(column));
    });
    DropColumnValues(column, vocabulary::kColumnwideValue);
}

void CEncapFamily::DeleteLocalizedColumnPropertyValues(const wchar_t* column)
{
    m_strings->ForEach(true, [column](StringsDocument& strings) {
        strings.RemoveColumnText(TextOrEmpty(column), vocabulary::kColumnwideValue);
        strings.RemoveColumnText(TextOrEmpty(column), vocabulary::kTitle);
    });
    DropColumnValues(column, vocabulary::kColumnwideValue);
}

bool CEncapFamily::GetFamilyXMLCopyWithStrings(XMLParser& target)
{
    CString text;
    if (!m_document.GetRootNode().IsNode() || !m_document.GetXml(text) || !target.SetXml(text)) {
        return false;
    }
    XMLNode root = target.GetRootNode();
    XMLNodeArray references;
    root.SelectChildNodes(query::kAllFamilyStrings, references);
    for (XMLNode& reference : references) {
        reference.RemoveThisNode(true);
    }
    m_strings->ForEach(true, [&root](const StringsDocument& strings) {
        root.ImportNode(strings.Document().GetRootNode(), true);
    });
    return true;
}

bool CEncapFamily::SaveFamilyStringsXMLs()
{
    XMLNode reference;
    CString path;
    if (!m_document.GetRootNode().GetChildNode(query::kStringsFiles, reference) ||
        !reference.GetProperty(vocabulary::kFullFileName, path)) {
        return false;
    }
    const std::size_t folderLength = platform::FileNamePosition(path);
    if (folderLength == 0) {
        return false;
    }
    const CString folder = path.substr(0, folderLength);
    for (const auto& [language, strings] : m_strings->Documents()) {
        // The tag is the document's own text: it must not lead out of the folder.
        CString tag = language;
        CStringUtil::LegalizeForFileName(tag);
        const CString file =
            FormatText(L"%s%s.%s.xml", {folder, vocabulary::kFamilyStrings.View(), tag});
        XMLParser document = strings.Document();
        if (!document.SaveXmlDocument(file.c_str(), false)) {
            return false;
        }
    }
    return true;
}
