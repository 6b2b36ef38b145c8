#pragma once

#include "encap/mapping/CategoryReferences.h"
#include "encap/mapping/ChangeClock.h"
#include "encap/mapping/OrderedNodes.h"
#include "encap/mapping/VisibleColumns.h"
#include "encap/xml/XMLNode.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace encap {

/// Answers about the parameter map and the templates that would otherwise each be a query over the
/// whole document, so that thousands of columns are bound and released in linear time. The answers
/// are those of the queries at any time: the mapping reports its own edits, any other edit makes
/// the index read the document again. Owned by the mapping.
class MappingIndex {
public:
    MappingIndex(const XMLNode& templates, const XMLNode& parameterMap);
    void SetTemplates(const XMLNode& templates);
    void SetParameterMap(const XMLNode& parameterMap);
    [[nodiscard]] ChangeClock& Clock() { return m_clock; }
    /// The table's columns by identifier.
    [[nodiscard]] VisibleColumns& Columns() { return m_visibleColumns; }

    // Answers.
    /// How many "TemplateParameter" elements in a "TemplatesParameter" element, anywhere in the
    /// document but in the table, name this parameter: mapped columns and constants.
    [[nodiscard]] std::size_t CountUses(std::wstring_view templateName, int32_t parameterId);
    /// Whether one of them stands in a "ColumnToTemplate" element.
    [[nodiscard]] bool IsDrivenByColumn(std::wstring_view templateName, int32_t parameterId);
    /// The first top-level parameter of a template, in document order, for this object; case is
    /// ignored in ASCII letters.
    [[nodiscard]] XMLNode FirstParameter(std::wstring_view objectRefKey,
                                         std::wstring_view subObjectId);
    /// The first "ParamToColumn" element of a category parameter (exactly, else in any case).
    [[nodiscard]] XMLNode ColumnOfParameter(std::wstring_view categoryParameter);
    /// The first "CategoryParameterRef" in the "ParamToColumn" elements of a column (exactly).
    [[nodiscard]] XMLNode ParameterOfColumn(std::wstring_view columnId);
    /// Every "ParamTemplateValue" element of a category parameter (exactly, else in any case).
    [[nodiscard]] std::vector<XMLNode> ConstantsOfParameter(std::wstring_view categoryParameter);

    // Own edits. Made while an OwnEdit of the clock lives; Removing comes before the edit.
    /// A "TemplateParameter", "GeneralizedParameter", "FamilyTemplate" or "ParamToColumn" element
    /// was added as the last child of its parent.
    void Added(const XMLNode& element);
    /// Such an element, or one that holds such elements, is about to go.
    void Removing(const XMLNode& element);
    /// The attributes of a "GeneralizedParameter" element are about to change, or have changed.
    void Changing(const XMLNode& parameter);
    void Changed(const XMLNode& parameter);

private:
    struct Uses {
        std::size_t all = 0;
        std::size_t byColumns = 0;
    };

    void Refresh();
    [[nodiscard]] bool IsFresh() { return m_reading == m_clock.Reading(); }
    void ReadUses();
    void ReadTemplates();
    void ReadCategoryReferences();
    void AddUse(IXMLDOMNode* element);
    void RemoveUse(IXMLDOMNode* element);
    void AddParameter(IXMLDOMNode* element, IXMLDOMNode* familyTemplate);
    bool AddColumnReference(IXMLDOMNode* element, IXMLDOMNode* container);
    void RemoveColumnReference(IXMLDOMNode* element);
    void RemoveConstantReference(IXMLDOMNode* element);

    ChangeClock m_clock;
    uint64_t m_reading = 0;
    XMLNode m_templates;
    XMLNode m_parameterMap;

    std::unordered_map<std::string, Uses> m_uses;
    DocumentOrder m_parameterOrder;
    OrderedNodes m_parameters;
    DocumentOrder m_referenceOrder;
    CategoryReferences m_columnReferences;
    OrderedNodes m_columns;
    DocumentOrder m_constantOrder;
    CategoryReferences m_constantReferences;
    VisibleColumns m_visibleColumns;
};

} // namespace encap
