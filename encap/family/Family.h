#pragma once

#include "encap/family/FamilyPropType.h"
#include "encap/foundation/StringMap.h"
#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLParser.h"

#include <map>
#include <memory>
#include <vector>

class CEncapFamilyColumn;
class CEncapFamilyMapping;
class CEncapFamilyTable;
class IEvaluatorProvider;

namespace encap {
class FamilyStrings;
} // namespace encap

/// One open family: the family document, the strings documents (one per language), the table and
/// the mapping, all owned by it. Every change is written into the documents at once; the host takes
/// them back and stores them. The evaluator provider is the host's and must outlive the family.
/// A family whose text did not parse, or that was made without a text, is empty: it has no table
/// and no mapping, its getters give empty text and its setters change nothing. Null texts count as
/// empty. One thread at a time per family; families on different threads do not meet.
class ENCAP_API CEncapFamily {
public:
    /// An empty family. provider may be null: numeric formulas then fail.
    CEncapFamily(IEvaluatorProvider* provider, bool localizeDecimalSeparator);
    /// Opens a family from texts (not file names). A strings text that does not parse is skipped.
    /// cacheDirectory is the table's (CEncapFamilyTable); empty or null: no cache file.
    CEncapFamily(const wchar_t* familyXml, const std::vector<CString>& stringsXmls,
                 const wchar_t* cacheDirectory, IEvaluatorProvider* provider,
                 bool localizeDecimalSeparator);
    /// The same with documents that are parsed already, as from files: the family shares them with
    /// the caller and edits them; none may be given to two families. A parser without a document or
    /// without a document element makes an empty family; among the strings it is skipped. A
    /// document without a declaration gets the one of family documents.
    CEncapFamily(const XMLParser& family, const std::vector<XMLParser>& strings,
                 const wchar_t* cacheDirectory, IEvaluatorProvider* provider,
                 bool localizeDecimalSeparator);
    CEncapFamily(const CEncapFamily&) = delete;
    CEncapFamily& operator=(const CEncapFamily&) = delete;
    virtual ~CEncapFamily();

    // Parts. Pointers are null in an empty family and valid as long as the family.
    XMLParser& GetFamilyXML();
    CEncapFamilyTable* GetEncapFamilyTable() const;
    CEncapFamilyMapping* GetEncapFamilyMapping() const;
    IEvaluatorProvider* GetEvaluatorProvider() const;
    bool LocalizeDecimalSeparator() const;
    /// The user's decimal separator when the family was made; 0 unless it localizes.
    wchar_t GetDecimalSeparator() const;

    // Properties. An absent one reads as empty text.
    /// False, with value unchanged, for types other than 0 to 11.
    bool GetFamilyProperty(FamilyPropType type, CString& value) const;
    /// False, with nothing changed, for types other than 0 to 8 and 11. The descriptive ones (0 to
    /// 5 and 7) also give every member one new revision; the single setters below do not.
    bool SetFamilyProperty(FamilyPropType type, const wchar_t* value);
    /// The first language's text, else the constant value, else the attribute.
    void GetDisplayName(CString& value) const;
    /// Sets the attribute, the constant value and the text of every language.
    void SetDisplayName(const wchar_t* value);
    /// As GetDisplayName and SetDisplayName.
    void GetDescription(CString& value) const;
    void SetDescription(const wchar_t* value);
    void GetInternalName(CString& value) const;
    /// Also removes the hidden categories that the family does not need
    /// (RemoveUnnecessaryHiddenDomains).
    void SetInternalName(const wchar_t* value);
    /// The constant value of the property; the setters write its attribute too.
    void GetManufacturer(CString& value) const;
    void SetManufacturer(const wchar_t* value);
    void GetStandard(CString& value) const;
    void SetStandard(const wchar_t* value);
    void GetStandardOrg(CString& value) const;
    void SetStandardOrg(const wchar_t* value);
    void GetFolderName(CString& value) const;
    void SetFolderName(const wchar_t* value);
    /// Held as constant values only.
    void GetFamilyRevision(CString& value) const;
    void SetFamilyRevision(const wchar_t* value);
    void GetStandardRevision(CString& value) const;
    void SetStandardRevision(const wchar_t* value);
    void GetRevisionID(CString& value) const;
    void SetRevisionID(const wchar_t* value);
    void GetLibInterName(CString& value) const;
    void SetLibInterName(const wchar_t* value);
    void GetThumbnailPath(CString& value) const;
    /// Also sets bit 0x1 of the edit status.
    void SetThumbnailPath(const wchar_t* value);
    void GetHealthStatus(CString& value) const;
    void SetHealthStatus(const wchar_t* value);
    /// Whether the health status, read as a hexadecimal number, has bit 0x2.
    bool IsSickFamilyTable() const;
    void GetEditStatus(CString& value) const;
    /// The edit status as a number: its leading hexadecimal digits, at most 32 bits; 0 without any.
    void GetEditStatus(unsigned long& bits) const;
    /// Adds bits (the low 32) to the edit status, stored as upper-case hexadecimal digits.
    void UpdateEditStatus(unsigned long bits);
    void GetParenLibName(CString& value) const;
    void GetParentFamilyName(CString& value) const;
    /// The InternalName of the first visible category's deepest first sub-category.
    void GetCategoryID(CString& value) const;
    bool IsFeature() const;

    // Links. A family may follow a source family of another library, but no linked one.
    bool IsLinked() const;
    /// False only when the attribute reads "false" (any case).
    bool IsSrcActive() const;
    void GetSourceMoniker(CString& value) const;
    /// The source library of a linked family.
    void GetCopyFrom(CString& value) const;
    void SetCopyFrom(const wchar_t* value);
    /// Links to source: copies its member revisions into "SOURCE_MEMBER_REVISION", which is made
    /// when missing, and writes the link. Nothing for null, this family, a linked source or one
    /// without a table; no link is written when a revision cannot be read.
    void SetLink(CEncapFamily* source, bool active);
    void ClearLink();

    // Category parameters, by identifier (exact).
    /// The constant value, localized where the parameter is (first language). True when the
    /// parameter has one; else false and empty.
    bool GetCatParamConstValue(const wchar_t* id, CString& value) const;
    /// Creates what is missing in the parameter map and, for a localized parameter, in every
    /// strings document.
    void SetCatParamConstValue(const wchar_t* id, const wchar_t* value);
    bool IsCatParamLocalized(const wchar_t* id) const;
    /// The column that supplies a category parameter: a column of the table, a constant column that
    /// the family owns, or null. A column of the table is valid until it is deleted, a constant
    /// one as long as the family.
    CEncapFamilyColumn* GetCategoryParamColumn(const wchar_t* id);
    /// The first category parameter that a column supplies; false when there is none.
    bool GetColumnCategory(const wchar_t* column, CString& id) const;
    /// Sets the constant of the element that feeds a template parameter and gives every member one
    /// new revision. 0, or 1 when there is no such element or no table.
    long SetTemplateParameterValue(const wchar_t* templateName, const wchar_t* parameterId,
                                   const wchar_t* value);
    /// Chosen values of range columns, by exact column identifier.
    void SetRangeColumnValues(const std::map<CString, CString>& values);

    // Columns and the mapping.
    /// Sets the flags and the property data of a column that is being loaded, from the mapping.
    void InitializeColumnData(CEncapFamilyColumn* column);
    /// Drops everything that maps a column; the column itself stays.
    void RemoveAllColumnMapping(CEncapFamilyColumn* column);
    /// Whether the column keeps its cell values in the strings documents. Cheap: called per cell.
    bool IsFamilyColumnLocalized(const wchar_t* column) const;
    /// Called when the mapping of a category parameter has changed: the next
    /// GetCategoryParamColumn looks it up again.
    void ForgetCategoryParamColumn(const wchar_t* id);

    // Languages, in the order of the strings texts; the first one is the actual language.
    /// Empty when there are no strings documents.
    void GetActualLanguage(CString& language) const;
    int GetFamStringsCount() const;
    /// A parser over the strings document of the language at index (from 0), or false.
    bool GetStringsFamilyXML(int index, XMLParser& document) const;

    // Localized texts. Without a language: the actual one, unless the comment says otherwise.
    /// 0 with the text, or 1 with value unchanged.
    long GetLocalizedCellValue(const wchar_t* column, const wchar_t* row, const wchar_t* language,
                               CString& value) const;
    long GetLocalizedCellValue(const wchar_t* column, const wchar_t* row, CString& value) const;
    /// Nothing unless the column is localized; an empty value removes the text.
    void SetLocalizedCellValue(const wchar_t* column, const wchar_t* row, const wchar_t* value,
                               const wchar_t* language);
    void SetLocalizedCellValue(const wchar_t* column, const wchar_t* row, const wchar_t* value);
    /// property: "Title" or "ColumnwideValue". 0 with the text, or 1 with value unchanged.
    long GetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                         const wchar_t* language, CString& value) const;
    long GetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                         CString& value) const;
    /// An empty value removes the text; without a language it goes to every language.
    void SetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                         const wchar_t* value, const wchar_t* language);
    void SetLocalizedColumnPropertyValue(const wchar_t* column, const wchar_t* property,
                                         const wchar_t* value);
    /// Removes a row's cell texts, of one column or (empty column) of all.
    void DeleteLocalizedCellsValues(const wchar_t* row, const wchar_t* column, bool allLanguages);
    /// Removes every cell text of a column, in time linear in their number.
    void DeleteLocalizedColumnCells(const wchar_t* column, bool allLanguages);
    /// Removes a column's title and column-wide value in every language.
    void DeleteLocalizedColumnPropertyValues(const wchar_t* column);

    // Storing.
    /// Makes target a copy of the family document in which the strings documents stand in place of
    /// the references to them. False when the family is empty.
    bool GetFamilyXMLCopyWithStrings(XMLParser& target);
    /// Writes each strings document beside the first referenced one, as
    /// "FamilyStrings.<language>.xml", in the encoding that it declares. False at the first file
    /// that cannot be written, and when no reference with a folder is there.
    bool SaveFamilyStringsXMLs();

private:
    friend class CEncapFamilyTable;

    void InitializeData(const XMLParser& family, const std::vector<XMLParser>& strings,
                        const wchar_t* cacheDirectory);
    void ClearData();
    void WriteLocalizedCell(const wchar_t* column, const wchar_t* row, const wchar_t* value,
                            const wchar_t* language);
    void DropColumnValues(const wchar_t* column, const wchar_t* property);
    void CollectCategoryParameters(const XMLNode& root);
    void ReadAttribute(const wchar_t* name, CString& value) const;
    void WriteAttribute(const wchar_t* name, const wchar_t* value);
    void SetConstantProperty(const wchar_t* attribute, const wchar_t* id, const wchar_t* value);
    void SetEverywhere(const wchar_t* name, const wchar_t* id, const wchar_t* value);
    void GetFromAnywhere(const wchar_t* name, const wchar_t* id, CString& value) const;
    bool CopySourceRevisions(CEncapFamily& source);
    void RemoveUnnecessaryHiddenDomains();
    bool RemoveHiddenCategory(XMLNode& category);
    void ReleaseCategoryParameter(const CString& id);

    IEvaluatorProvider* m_provider;
    bool m_localizeDecimalSeparator;
    wchar_t m_decimalSeparator;
    XMLParser m_document;
    std::unique_ptr<encap::FamilyStrings> m_strings;
    encap::ExactMap<XMLNode> m_categoryParameters;
    std::unique_ptr<CEncapFamilyMapping> m_mapping;
    std::unique_ptr<CEncapFamilyTable> m_table;
    encap::ExactMap<CEncapFamilyColumn*> m_categoryColumns;
    // The constant columns ever handed out: callers hold plain pointers to them.
    std::vector<std::unique_ptr<CEncapFamilyColumn>> m_constantColumns;
};
