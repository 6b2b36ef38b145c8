#pragma once

#include "encap/family/Vocabulary.h"
#include "encap/xml/NodeAccess.h"

#include <string_view>
#include <vector>

// Walks over the elements of the parameter map and the templates, in document order. What is
// called may edit the document as long as the element that it was given stays where it is.
namespace encap {

template <class Visit>
void ForEachChild(IXMLDOMNode* parent, std::string_view name, Visit visit)
{
    for (IXMLDOMNode* child = FirstChildElement(parent, name); child != nullptr;
         child = NextElement(child, name)) {
        visit(child);
    }
}

/// Visits the elements of the path child/grandchild.
template <class Visit>
void ForEachGrandchild(IXMLDOMNode* parent, std::string_view child, std::string_view grandchild,
                       Visit visit)
{
    ForEachChild(parent, child, [&](IXMLDOMNode* node) { ForEachChild(node, grandchild, visit); });
}

/// Visits the "TemplateParameter" elements in "TemplatesParameter" elements at or below top, in no
/// order. Tables are passed over: they hold most of a document, and no maps.
template <class Visit>
void ForEachUse(IXMLDOMNode* top, Visit visit)
{
    if (NameEquals(top, vocabulary::kTemplatesParameter.utf8)) {
        ForEachChild(top, vocabulary::kTemplateParameter.utf8, visit);
    }
    std::vector<IXMLDOMNode*> pending{top};
    while (!pending.empty()) {
        IXMLDOMNode* node = pending.back();
        pending.pop_back();
        ForEachGrandchild(node, vocabulary::kTemplatesParameter.utf8,
                          vocabulary::kTemplateParameter.utf8, visit);
        ForEachChild(node, {}, [&pending](IXMLDOMNode* child) {
            if (!NameEquals(child, vocabulary::kFamilyTable.utf8)) {
                pending.push_back(child);
            }
        });
    }
}

/// Whether a "TemplateParameter" element belongs to a column.
[[nodiscard]] inline bool StandsInColumnMap(IXMLDOMNode* use)
{
    return NameEquals(ParentElement(ParentElement(use)), vocabulary::kColumnToTemplate.utf8);
}

} // namespace encap
