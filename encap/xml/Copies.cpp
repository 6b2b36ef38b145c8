#include "encap/xml/Nodes.h"

namespace encap {
namespace {

xmlNs* NamespaceIn(Tree& target, const xmlNode* source)
{
    const xmlNs* space = source->ns;
    return space != nullptr ? target.Namespace(space->prefix, space->href) : nullptr;
}

xmlAttr* CopyAttribute(Tree& target, xmlNode* source)
{
    const std::string_view value = ValueOf(reinterpret_cast<xmlAttr*>(source));
    return MakeAttribute(target.Document(), target.Intern(ViewOf(source->name)),
                         NamespaceIn(target, source), value);
}

NewNode CopyElement(Tree& target, const xmlNode* source)
{
    NewNode copy = MakeElement(target.Document(), target.Intern(ViewOf(source->name)),
                               NamespaceIn(target, source));
    xmlNs** link = &copy->nsDef;
    for (const xmlNs* space = source->nsDef; space != nullptr; space = space->next) {
        *link = MakeDeclaration(target, space->prefix, space->href);
        link = &(*link)->next;
    }
    for (xmlAttr* attribute = source->properties; attribute != nullptr;
         attribute = attribute->next) {
        LinkAttribute(copy.get(), CopyAttribute(target, AsNode(attribute)));
    }
    return copy;
}

/// One node without what stands in it; null for kinds that are not copied.
NewNode CopyNode(Tree& target, xmlNode* source)
{
    switch (source->type) {
    case XML_ELEMENT_NODE: return CopyElement(target, source);
    case XML_ATTRIBUTE_NODE: return NewNode(AsNode(CopyAttribute(target, source)));
    case XML_TEXT_NODE: return MakeText(target.Document(), ViewOf(source->content));
    case XML_COMMENT_NODE: return MakeComment(target.Document(), source->content);
    case XML_PI_NODE: return MakeInstruction(target.Document(), source->name, source->content);
    default: return nullptr;
    }
}

void LinkLast(xmlNode* parent, NewNode child)
{
    child->parent = parent;
    child->prev = parent->last;
    (parent->last != nullptr ? parent->last->next : parent->children) = child.get();
    parent->last = child.release();
}

/// Copies everything below source under copy, going down and up in step with the source.
void CopyContent(Tree& target, xmlNode* source, xmlNode* copy, bool (*isWanted)(const xmlNode*))
{
    xmlNode* from = source->children;
    xmlNode* under = copy;
    while (from != nullptr) {
        if (isWanted(from)) {
            LinkLast(under, CopyNode(target, from));
            if (from->children != nullptr) {
                under = under->last;
                from = from->children;
                continue;
            }
        }
        while (from->next == nullptr && from->parent != source) {
            from = from->parent;
            under = under->parent;
        }
        from = from->next;
    }
}

bool IsAnyNode(const xmlNode*)
{
    return true;
}

bool IsElementOrText(const xmlNode* node)
{
    return node->type == XML_ELEMENT_NODE || node->type == XML_TEXT_NODE;
}

} // namespace

NewNode CopySubtree(Tree& target, xmlNode* source, bool deep)
{
    NewNode copy = CopyNode(target, source);
    if (deep && copy != nullptr && source->type == XML_ELEMENT_NODE) {
        CopyContent(target, source, copy.get(), IsAnyNode);
    }
    return copy;
}

NewNode CopyElementsAndTexts(Tree& target, xmlNode* source, bool deep)
{
    NewNode copy = CopyElement(target, source);
    if (deep) {
        CopyContent(target, source, copy.get(), IsElementOrText);
    }
    return copy;
}

} // namespace encap
