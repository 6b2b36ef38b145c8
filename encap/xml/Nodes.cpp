#include "encap/xml/Nodes.h"

#include "encap/xml/Texts.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <libxml/parserInternals.h>

namespace encap {
namespace {

/// Short contents stand in the node itself, in two fields that texts do not use; the library behind
/// the tree knows this form.
constexpr std::size_t kInlineContent = 2 * sizeof(void*);

/// A node, or an attribute, of a document.
template <class T>
T* Allocate(xmlDoc* document)
{
    auto* memory = static_cast<T*>(Tree::Of(AsNode(document)).Store().Take(sizeof(T)));
    std::memset(memory, 0, sizeof(T));
    memory->doc = document;
    return memory;
}

xmlChar* InlineContent(xmlNode* node)
{
    return reinterpret_cast<xmlChar*>(&node->properties);
}

/// The content of a node that has none yet.
void GiveContent(xmlNode* node, std::string_view text)
{
    text = text.substr(0, text.find('\0')); // contents are measured by their end
    const bool isShort = text.size() < kInlineContent && node->type == XML_TEXT_NODE;
    NodeStore& store = Tree::Of(node).Store();
    auto* content =
        isShort ? InlineContent(node) : static_cast<xmlChar*>(store.Take(text.size() + 1));
    std::copy(text.begin(), text.end(), content);
    content[text.size()] = 0;
    node->content = content;
}

void FreeContent(NodeStore& store, const xmlNode* node, xmlChar* content) noexcept
{
    if (content != nullptr && content != InlineContent(const_cast<xmlNode*>(node))) {
        store.Give(content, ViewOf(content).size() + 1);
    }
}

void FreeAttribute(NodeStore& store, xmlAttr* attribute) noexcept
{
    if (xmlNode* text = attribute->children) {
        FreeContent(store, text, text->content);
        store.Give(text, sizeof(xmlNode));
    }
    store.Give(attribute, sizeof(xmlAttr));
}

/// One node without what stands below it.
void FreeNode(Tree& tree, xmlNode* node) noexcept
{
    NodeStore& store = tree.Store();
    if (node->type == XML_ATTRIBUTE_NODE) {
        FreeAttribute(store, reinterpret_cast<xmlAttr*>(node));
        return;
    }
    if (node->type != XML_ELEMENT_NODE) {
        FreeContent(store, node, node->content);
        store.Give(node, sizeof(xmlNode));
        return;
    }
    while (xmlAttr* attribute = node->properties) {
        node->properties = attribute->next;
        FreeAttribute(store, attribute);
    }
    while (xmlNs* declaration = node->nsDef) {
        node->nsDef = declaration->next;
        FreeDeclaration(tree, declaration);
    }
    store.Give(node, sizeof(xmlNode));
}

/// The name behind the prefix.
std::string_view LocalName(std::string_view name)
{
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string_view PrefixOf(std::string_view name)
{
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

/// The namespace that a prefix stands for at an element: declared there or above, or used there.
xmlNs* NamespaceInScope(Tree& tree, xmlNode* scope, std::string_view prefix)
{
    if (prefix == "xml") {
        return tree.Namespace(BAD_CAST "xml", XML_XML_NAMESPACE);
    }
    for (xmlNode* node = scope; node != nullptr && node->type == XML_ELEMENT_NODE;
         node = node->parent) {
        for (xmlNs* space = node->nsDef; space != nullptr; space = space->next) {
            if (ViewOf(space->prefix) == prefix) {
                return tree.Namespace(space->prefix, space->href);
            }
        }
        if (node->ns != nullptr && ViewOf(node->ns->prefix) == prefix) {
            return node->ns;
        }
    }
    return nullptr;
}

/// The namespace of a qualified name, null without a prefix; false for a name that cannot be used.
bool ResolveName(Tree& tree, xmlNode* scope, std::string_view name, xmlNs*& space)
{
    space = nullptr;
    if (!IsQualifiedName(name)) {
        return false;
    }
    const std::string_view prefix = PrefixOf(name);
    if (!prefix.empty()) {
        space = NamespaceInScope(tree, scope, prefix);
    }
    return prefix.empty() || space != nullptr;
}

/// The element or one of its attributes stands in another namespace of this prefix, or, for the
/// default, in none: a declaration there would change what they are.
bool WouldRename(const xmlNode* element, std::string_view prefix, std::string_view href)
{
    if (prefix.empty() && element->ns == nullptr) {
        return true;
    }
    const auto clashes = [&](const xmlNs* space) {
        return space != nullptr && ViewOf(space->prefix) == prefix && ViewOf(space->href) != href;
    };
    bool renames = clashes(element->ns);
    for (xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        renames = renames || clashes(attribute->ns);
    }
    return renames;
}

bool IsDeclarationName(std::string_view name)
{
    return name == "xmlns" || name.substr(0, 6) == "xmlns:";
}

bool SetDeclaration(xmlNode* element, std::string_view name, std::string_view value)
{
    if (const xmlNs* declared = FindDeclaration(element, name)) {
        return ViewOf(declared->href) == value;
    }
    const std::string_view prefix = name.size() > 6 ? name.substr(6) : std::string_view();
    const bool isReserved =
        prefix == "xml" || prefix == "xmlns" || value.empty() || value == ViewOf(XML_XML_NAMESPACE);
    if (!IsQualifiedName(name) || isReserved || WouldRename(element, prefix, value)) {
        return false;
    }
    Tree& tree = Tree::Of(element);
    xmlNs** link = &element->nsDef;
    while (*link != nullptr) {
        link = &(*link)->next;
    }
    *link =
        MakeDeclaration(tree, prefix.empty() ? nullptr : tree.Intern(prefix), tree.Intern(value));
    tree.NoteChange(element);
    return true;
}

} // namespace

NewNode MakeElement(xmlDoc* document, const xmlChar* internedName, xmlNs* space)
{
    NewNode node(Allocate<xmlNode>(document));
    node->type = XML_ELEMENT_NODE;
    node->name = internedName;
    node->ns = space;
    return node;
}

NewNode MakeText(xmlDoc* document, std::string_view text)
{
    NewNode node(Allocate<xmlNode>(document));
    node->type = XML_TEXT_NODE;
    node->name = xmlStringText;
    GiveContent(node.get(), text);
    return node;
}

NewNode MakeComment(xmlDoc* document, const xmlChar* text)
{
    NewNode node(Allocate<xmlNode>(document));
    node->type = XML_COMMENT_NODE;
    node->name = xmlStringComment;
    if (text != nullptr) {
        GiveContent(node.get(), ViewOf(text));
    }
    return node;
}

NewNode MakeInstruction(xmlDoc* document, const xmlChar* target, const xmlChar* data)
{
    NewNode node(Allocate<xmlNode>(document));
    node->type = XML_PI_NODE;
    node->name = Tree::Of(node.get()).Intern(ViewOf(target));
    if (data != nullptr) {
        GiveContent(node.get(), ViewOf(data));
    }
    return node;
}

void FreeSubtree(xmlNode* root) noexcept
{
    if (root == nullptr) {
        return;
    }
    Tree& tree = Tree::Of(root);
    xmlNode* node = root;
    while (true) {
        if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
            xmlNode* first = node->children;
            node->children = nullptr; // the next visit of the node is the last
            node = first;
            continue;
        }
        xmlNode* behind = node == root            ? nullptr
                          : node->next != nullptr ? node->next
                                                  : node->parent;
        FreeNode(tree, node);
        if (behind == nullptr) {
            return;
        }
        node = behind;
    }
}

void AssignContent(xmlNode* node, std::string_view text)
{
    xmlChar* old = node->content;
    const bool wasInline = old == InlineContent(node);
    // Held aside: the new text may be a view into the old one.
    const std::string copy = wasInline ? std::string(text) : std::string();
    GiveContent(node, wasInline ? std::string_view(copy) : text);
    if (!wasInline) {
        FreeContent(Tree::Of(node).Store(), node, old);
    }
}

xmlAttr* MakeAttribute(xmlDoc* document, const xmlChar* internedName, xmlNs* space,
                       std::string_view value)
{
    NewNode node(AsNode(Allocate<xmlAttr>(document)));
    auto* attribute = reinterpret_cast<xmlAttr*>(node.get());
    attribute->type = XML_ATTRIBUTE_NODE;
    attribute->name = internedName;
    attribute->ns = space;
    AssignValue(attribute, value);
    return reinterpret_cast<xmlAttr*>(node.release());
}

void LinkAttribute(xmlNode* element, xmlAttr* attribute)
{
    attribute->parent = element;
    xmlAttr** link = &element->properties;
    while (*link != nullptr) {
        attribute->prev = *link;
        link = &(*link)->next;
    }
    *link = attribute;
}

xmlNs* MakeDeclaration(Tree& tree, const xmlChar* prefix, const xmlChar* href)
{
    const xmlChar* internedPrefix = prefix != nullptr ? tree.Intern(ViewOf(prefix)) : nullptr;
    const xmlChar* internedName = tree.Intern(ViewOf(href));
    auto* declaration = static_cast<xmlNs*>(tree.Store().Take(sizeof(xmlNs)));
    std::memset(declaration, 0, sizeof(xmlNs));
    declaration->type = XML_LOCAL_NAMESPACE;
    declaration->prefix = internedPrefix;
    declaration->href = internedName;
    return declaration;
}

void FreeDeclaration(Tree& tree, xmlNs* declaration) noexcept
{
    tree.Store().Give(declaration, sizeof(xmlNs));
}

NewNode MakeNamedElement(Tree& tree, xmlNode* scope, std::string_view name)
{
    xmlNs* space = nullptr;
    if (!ResolveName(tree, scope, name, space)) {
        return nullptr;
    }
    return MakeElement(tree.Document(), tree.Intern(LocalName(name)), space);
}

std::string_view Prefix(const xmlNode* node)
{
    return node->ns != nullptr ? ViewOf(node->ns->prefix) : std::string_view();
}

bool HasName(const xmlNode* node, std::string_view name)
{
    const std::string_view prefix = Prefix(node);
    const std::string_view local = ViewOf(node->name);
    if (prefix.empty()) {
        return local == name;
    }
    return name.size() == prefix.size() + 1 + local.size() && name[prefix.size()] == ':' &&
           name.substr(0, prefix.size()) == prefix && name.substr(prefix.size() + 1) == local;
}

std::string QualifiedName(const xmlNode* node)
{
    std::string name(Prefix(node));
    if (!name.empty()) {
        name += ':';
    }
    name += ViewOf(node->name);
    return name;
}

xmlAttr* FindAttribute(const xmlNode* element, std::string_view name)
{
    for (xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (HasName(AsNode(attribute), name)) {
            return attribute;
        }
    }
    return nullptr;
}

xmlNs* FindDeclaration(const xmlNode* element, std::string_view name)
{
    if (element->nsDef == nullptr || !IsDeclarationName(name)) {
        return nullptr;
    }
    const std::string_view prefix = name.size() > 6 ? name.substr(6) : std::string_view();
    for (xmlNs* space = element->nsDef; space != nullptr; space = space->next) {
        if (ViewOf(space->prefix) == prefix) {
            return space;
        }
    }
    return nullptr;
}

void AssignValue(xmlAttr* attribute, std::string_view value)
{
    if (attribute->children != nullptr) {
        AssignContent(attribute->children, value);
    } else if (!value.empty()) {
        xmlNode* text = MakeText(attribute->doc, value).release();
        text->parent = AsNode(attribute);
        attribute->children = text;
        attribute->last = text;
    }
}

bool SetAttribute(xmlNode* element, std::string_view name, std::string_view value)
{
    if (IsDeclarationName(name)) {
        return SetDeclaration(element, name, value);
    }
    Tree& tree = Tree::Of(element);
    if (xmlAttr* attribute = FindAttribute(element, name)) {
        AssignValue(attribute, value);
        tree.NoteChange(element);
        return true;
    }
    xmlNs* space = nullptr;
    if (!ResolveName(tree, element, name, space)) {
        return false;
    }
    LinkAttribute(element, MakeAttribute(element->doc, tree.Intern(LocalName(name)), space, value));
    tree.NoteChange(element);
    return true;
}

void AppendText(xmlNode* node, std::string& out)
{
    if (node->type == XML_COMMENT_NODE || node->type == XML_PI_NODE) {
        out += ViewOf(node->content);
        return;
    }
    const xmlNode* const root = node;
    for (; node != nullptr; node = NextInSubtree(node, root)) {
        if (node->type == XML_TEXT_NODE) {
            out += ViewOf(node->content);
        }
    }
}

void SetElementText(xmlNode* element, std::string_view text)
{
    Tree& tree = Tree::Of(element);
    xmlNode* only = element->children == element->last ? element->children : nullptr;
    if (!text.empty() && only != nullptr && only->type == XML_TEXT_NODE &&
        only->_private == nullptr) {
        AssignContent(only, text);
        tree.NoteChange(element);
        return;
    }
    tree.RemoveChildren(element);
    if (!text.empty()) {
        tree.Insert(MakeText(element->doc, text).release(), element, nullptr);
    }
}

} // namespace encap
