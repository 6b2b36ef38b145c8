#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

#include <vector>

class CEncapFamilyMapping;

/// The template parameters that one column drives: one "ColumnToTemplate" element with its
/// "TemplateParameter" entries. Owned by the family mapping; shares the document's element.
/// Entries are found by the text of their attributes: "07" is another id than 7.
class ENCAP_API CEncapMemberColToTemplate {
public:
    /// One entry that can be read: a template and a parameter of it.
    struct Entry {
        CString templateName;
        int32_t parameterId = 0;
    };

    CEncapMemberColToTemplate();
    /// mapping may be null.
    CEncapMemberColToTemplate(const XMLNode& node, CEncapFamilyMapping* mapping);
    CEncapMemberColToTemplate(const CEncapMemberColToTemplate&) = delete;
    CEncapMemberColToTemplate& operator=(const CEncapMemberColToTemplate&) = delete;
    virtual ~CEncapMemberColToTemplate();

    void GetColumnName(CString& columnId) const;
    /// In document order; entries without a template name or without a whole number as id are left
    /// out.
    std::vector<Entry> GetMappings() const;

    /// Adds an entry unless there is one. A null name counts as empty.
    void AddMapping(const wchar_t* templateName, int parameterId);
    void DeleteMapping(const wchar_t* templateName, int parameterId);
    /// Removes every entry; their "TemplatesParameter" element stays, or is made.
    void DeleteAllMapping();
    /// Takes the element out of the document; the object stays.
    void RemoveNodeFromXML();

private:
    bool FindEntry(const wchar_t* templateName, int parameterId, XMLNode& entry) const;

    XMLNode m_node;
    CEncapFamilyMapping* m_mapping = nullptr;
};
