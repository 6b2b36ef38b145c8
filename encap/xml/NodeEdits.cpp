#include "encap/platform/Encoding.h"
#include "encap/xml/NodeAccess.h"
#include "encap/xml/Nodes.h"
#include "encap/xml/Queries.h"
#include "encap/xml/Texts.h"
#include "encap/xml/XMLNode.h"

#include <initializer_list>

using encap::NodeOf;
using encap::Tree;
using encap::WrapperOf;

namespace {

struct NewAttribute {
    const wchar_t* name;
    const wchar_t* value;
};

bool IsElement(const xmlNode* node)
{
    return node->type == XML_ELEMENT_NODE;
}

/// A node that others can be put before.
bool HasSiblings(const xmlNode* node)
{
    return node != nullptr && node->parent != nullptr && node->type != XML_ATTRIBUTE_NODE;
}

/// A document takes one element, comments and instructions; an element all but attributes and
/// documents.
bool MayStandIn(const xmlNode* parent, const xmlNode* child)
{
    const bool isMarkup = child->type == XML_COMMENT_NODE || child->type == XML_PI_NODE;
    if (parent->type == XML_DOCUMENT_NODE) {
        const xmlNode* root = xmlDocGetRootElement(parent->doc);
        return isMarkup || (IsElement(child) && (root == nullptr || root == child));
    }
    return IsElement(parent) && (isMarkup || IsElement(child) || child->type == XML_TEXT_NODE);
}

bool IsSelfOrAncestor(const xmlNode* candidate, const xmlNode* node)
{
    if (candidate->children == nullptr) {
        return candidate == node;
    }
    while (node != nullptr && node != candidate) {
        node = node->parent;
    }
    return node != nullptr;
}

/// Adds a new element; its text and attributes follow once it stands in the tree, so that what was
/// made before something is refused stays.
XMLNode AddElement(xmlNode* parent, xmlNode* before, const wchar_t* name, const wchar_t* text,
                   std::initializer_list<NewAttribute> attributes)
{
    Tree& tree = Tree::Of(parent);
    encap::NewNode made = encap::MakeNamedElement(tree, parent, encap::Utf8Text(name).View());
    if (made == nullptr || !MayStandIn(parent, made.get())) {
        return XMLNode();
    }
    xmlNode* element = made.release();
    tree.Insert(element, parent, before);
    if (text != nullptr) {
        encap::SetElementText(element, encap::DocumentText(text));
    }
    for (const NewAttribute& attribute : attributes) {
        const bool isGiven = attribute.name != nullptr && attribute.value != nullptr;
        if (isGiven && !encap::SetAttribute(element, encap::Utf8Text(attribute.name).View(),
                                            encap::DocumentText(attribute.value))) {
            return XMLNode();
        }
    }
    return WrapperOf(element);
}

/// Puts child under parent before a node (null: at the end); the inserted node, or null.
xmlNode* Place(xmlNode* child, xmlNode* parent, xmlNode* before)
{
    Tree& tree = Tree::Of(parent);
    if (!MayStandIn(parent, child) || IsSelfOrAncestor(child, parent)) {
        return nullptr;
    }
    if (&Tree::Of(child) == &tree) {
        if (child != before) {
            tree.Move(child, parent, before);
        }
        return child;
    }
    xmlNode* copy = encap::CopySubtree(tree, child, true).release();
    tree.Insert(copy, parent, before);
    if (child->parent != nullptr) {
        Tree::Of(child).Remove(child);
    }
    return copy;
}

} // namespace

// An edit changes the node that a wrapper refers to, which is why it is not const.
// NOLINTBEGIN(readability-make-member-function-const)

XMLNode XMLNode::AddNode(const wchar_t* name, const wchar_t* text, const wchar_t* attr1,
                         const wchar_t* value1, const wchar_t* attr2, const wchar_t* value2,
                         const wchar_t* attr3, const wchar_t* value3)
{
    if (!IsNode()) {
        return XMLNode();
    }
    return AddElement(NodeOf(*this), nullptr, name, text,
                      {{attr1, value1}, {attr2, value2}, {attr3, value3}});
}

XMLNode XMLNode::AddNodeBefore(const wchar_t* name, const wchar_t* text, const wchar_t* attr1,
                               const wchar_t* value1, const wchar_t* attr2, const wchar_t* value2)
{
    xmlNode* node = NodeOf(*this);
    if (!HasSiblings(node)) {
        return XMLNode();
    }
    return AddElement(node->parent, node, name, text, {{attr1, value1}, {attr2, value2}});
}

XMLNode XMLNode::GetOrAddNode(const wchar_t* name)
{
    XMLNode node;
    return GetChildNode(name, node) ? node : AddNode(name);
}

XMLNode XMLNode::AppendChild(const XMLNode& child)
{
    if (!IsNode() || !child.IsNode()) {
        return XMLNode();
    }
    return WrapperOf(Place(NodeOf(child), NodeOf(*this), nullptr));
}

XMLNode XMLNode::InsertChild(XMLNode& child, int index)
{
    XMLNode before;
    if (!IsNode() || !child.IsNode()) {
        return XMLNode();
    }
    GetChildNodeByIdx(index, before);
    XMLNode inserted = WrapperOf(Place(NodeOf(child), NodeOf(*this), NodeOf(before)));
    if (inserted.IsNode()) {
        child = inserted;
    }
    return inserted;
}

bool encap::InsertBefore(const XMLNode& sibling, XMLNode& node)
{
    if (!node.IsNode() || !HasSiblings(NodeOf(sibling))) {
        return false;
    }
    XMLNode inserted = WrapperOf(Place(NodeOf(node), NodeOf(sibling)->parent, NodeOf(sibling)));
    if (inserted.IsNode()) {
        node = inserted;
    }
    return inserted.IsNode();
}

XMLNode XMLNode::CloneNode(bool deep) const
{
    encap::NewNode copy;
    if (IsNode()) {
        copy = encap::CopySubtree(Tree::Of(NodeOf(*this)), NodeOf(*this), deep);
    }
    if (copy == nullptr) {
        return XMLNode();
    }
    Tree::Of(copy.get()).AdoptOrphan(copy.get());
    return WrapperOf(copy.release());
}

XMLNode XMLNode::ImportNode(const XMLNode& source, bool deep)
{
    if (!IsNode() || !source.IsNode() || !IsElement(NodeOf(source))) {
        return XMLNode();
    }
    Tree& tree = Tree::Of(NodeOf(*this));
    encap::NewNode copy = encap::CopyElementsAndTexts(tree, NodeOf(source), deep);
    if (!MayStandIn(NodeOf(*this), copy.get())) {
        return XMLNode();
    }
    xmlNode* element = copy.release();
    tree.Insert(element, NodeOf(*this), nullptr);
    return WrapperOf(element);
}

bool XMLNode::RemoveThisNode(bool release)
{
    if (!IsNode() || NodeOf(*this)->parent == nullptr) {
        return false;
    }
    Tree::Of(NodeOf(*this)).Remove(NodeOf(*this));
    if (release) {
        SetNode(nullptr);
    }
    return true;
}

bool XMLNode::RemoveChildNode(const wchar_t* path)
{
    xmlNode* found = IsNode() ? encap::SelectFirst(NodeOf(*this), path) : nullptr;
    if (found == nullptr || found->parent == nullptr) {
        return false;
    }
    Tree::Of(found).Remove(found);
    return true;
}

// NOLINTEND(readability-make-member-function-const)
