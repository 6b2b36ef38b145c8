#include "encap/family/Family.h"

#include "encap/evaluation/EvaluatorProvider.h"
#include "encap/family/FamilyStrings.h"
#include "encap/family/Queries.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/StringUtil.h"
#include "encap/foundation/TextFormat.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/table/ConstFamilyColumn.h"
#include "encap/table/FamilyTable.h"

using namespace encap;

namespace {

/// A document that declares the encoding of family documents unless it names one itself.
XMLParser Declared(XMLParser document)
{
    if (!document.HasDeclaration()) {
        document.CreateXmlDocument(vocabulary::kDocumentEncoding);
    }
    return document;
}

std::vector<XMLParser> Parsed(const std::vector<CString>& texts)
{
    std::vector<XMLParser> documents;
    documents.reserve(texts.size());
    for (const CString& text : texts) {
        documents.emplace_back(text);
    }
    return documents;
}

} // namespace

CEncapFamily::CEncapFamily(IEvaluatorProvider* provider, bool localizeDecimalSeparator)
    : m_provider(provider), m_localizeDecimalSeparator(localizeDecimalSeparator),
      m_decimalSeparator(localizeDecimalSeparator ? CStringUtil::GetDecimalSeparator() : L'\0'),
      m_strings(std::make_unique<FamilyStrings>())
{
    if (m_provider != nullptr) {
        m_provider->SetEncapFamily(this);
    }
}

CEncapFamily::CEncapFamily(const wchar_t* familyXml, const std::vector<CString>& stringsXmls,
                           const wchar_t* cacheDirectory, IEvaluatorProvider* provider,
                           bool localizeDecimalSeparator)
    : CEncapFamily(XMLParser(TextOrEmpty(familyXml)), Parsed(stringsXmls), cacheDirectory, provider,
                   localizeDecimalSeparator)
{
}

CEncapFamily::CEncapFamily(const XMLParser& family, const std::vector<XMLParser>& strings,
                           const wchar_t* cacheDirectory, IEvaluatorProvider* provider,
                           bool localizeDecimalSeparator)
    : m_provider(provider), m_localizeDecimalSeparator(localizeDecimalSeparator),
      m_decimalSeparator(localizeDecimalSeparator ? CStringUtil::GetDecimalSeparator() : L'\0'),
      m_strings(std::make_unique<FamilyStrings>())
{
    InitializeData(family, strings, cacheDirectory);
    if (m_provider != nullptr) {
        m_provider->SetEncapFamily(this);
    }
}

CEncapFamily::~CEncapFamily()
{
    ClearData();
    // The provider may serve another family by now.
    if (m_provider != nullptr && m_provider->GetEncapFamily() == this) {
        m_provider->SetEncapFamily(nullptr);
    }
}

void CEncapFamily::InitializeData(const XMLParser& family, const std::vector<XMLParser>& strings,
                                  const wchar_t* cacheDirectory)
{
    ClearData();
    m_document = Declared(family);
    if (!m_document.GetRootNode().IsNode()) {
        return;
    }
    for (const XMLParser& document : strings) {
        if (document.GetRootNode().IsNode()) {
            m_strings->Add(Declared(document));
        }
    }
    const XMLNode root = m_document.GetRootNode();
    XMLNode templates;
    XMLNode parameterMap;
    root.GetChildNode(vocabulary::kFamilyTemplates, templates);
    root.GetChildNode(vocabulary::kParameterMap, parameterMap);
    m_mapping = std::make_unique<CEncapFamilyMapping>(templates, parameterMap, this);
    CollectCategoryParameters(root);
    XMLNode table;
    root.GetChildNode(vocabulary::kFamilyTable, table);
    m_table = std::make_unique<CEncapFamilyTable>(table, this, TextOrEmpty(cacheDirectory));
}

void CEncapFamily::CollectCategoryParameters(const XMLNode& root)
{
    m_categoryParameters.clear();
    const CString query = FormatText(query::kCategoryParameters,
                                     {vocabulary::kCategories.View(), vocabulary::kCategory.View(),
                                      vocabulary::kCategoryParameter.View()});
    XMLNodeArray definitions;
    root.SelectChildNodes(query.c_str(), definitions);
    for (const XMLNode& definition : definitions) {
        CString id;
        if (definition.GetProperty(vocabulary::kInternalName, id)) {
            m_categoryParameters.insert_or_assign(std::move(id), definition);
        }
    }
}

void CEncapFamily::ClearData()
{
    m_categoryColumns.clear();
    m_constantColumns.clear();
    m_table.reset();
    m_mapping.reset();
    m_categoryParameters.clear();
    m_strings->Clear();
}

XMLParser& CEncapFamily::GetFamilyXML()
{
    return m_document;
}

CEncapFamilyTable* CEncapFamily::GetEncapFamilyTable() const
{
    return m_table.get();
}

CEncapFamilyMapping* CEncapFamily::GetEncapFamilyMapping() const
{
    return m_mapping.get();
}

IEvaluatorProvider* CEncapFamily::GetEvaluatorProvider() const
{
    return m_provider;
}

bool CEncapFamily::LocalizeDecimalSeparator() const
{
    return m_localizeDecimalSeparator;
}

wchar_t CEncapFamily::GetDecimalSeparator() const
{
    return m_decimalSeparator;
}

void CEncapFamily::InitializeColumnData(CEncapFamilyColumn* column)
{
    if (m_mapping != nullptr) {
        m_mapping->InitializeColumnData(column);
    }
}

void CEncapFamily::RemoveAllColumnMapping(CEncapFamilyColumn* column)
{
    if (column == nullptr) {
        return;
    }
    std::erase_if(m_categoryColumns,
                  [column](const auto& entry) { return entry.second == column; });
    if (m_mapping != nullptr) {
        CString columnId;
        column->GetColumnID(columnId);
        m_mapping->RemoveColumnMapping(columnId.c_str());
    }
}

bool CEncapFamily::IsFamilyColumnLocalized(const wchar_t* column) const
{
    return m_mapping != nullptr && m_mapping->IsFamilyColumnLocalized(TextOrEmpty(column));
}
