#pragma once

#include "encap/xml/NodeStore.h"
#include "encap/xml/XMLNode.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <libxml/tree.h>

namespace encap {

class XPathQueries;

[[nodiscard]] inline xmlNode* FromOpaque(IXMLDOMNode* node)
{
    return reinterpret_cast<xmlNode*>(node);
}
[[nodiscard]] inline IXMLDOMNode* ToOpaque(xmlNode* node)
{
    return reinterpret_cast<IXMLDOMNode*>(node);
}
[[nodiscard]] inline xmlNode* NodeOf(const XMLNode& wrapper)
{
    return FromOpaque(wrapper.GetNode());
}
[[nodiscard]] inline XMLNode WrapperOf(xmlNode* node)
{
    return XMLNode(ToOpaque(node));
}
[[nodiscard]] inline xmlNode* AsNode(xmlDoc* document)
{
    return reinterpret_cast<xmlNode*>(document);
}
[[nodiscard]] inline xmlNode* AsNode(xmlAttr* attribute)
{
    return reinterpret_cast<xmlNode*>(attribute);
}

/// The node behind node in document order within the subtree of root, attributes left out; null at
/// the end. Never recursive: trees may be as deep as callers build them.
[[nodiscard]] inline xmlNode* NextInSubtree(xmlNode* node, const xmlNode* root)
{
    if (node->children != nullptr) {
        return node->children;
    }
    while (node != root && node->next == nullptr) {
        node = node->parent;
    }
    return node == root ? nullptr : node->next;
}

/// One document tree and all nodes that were taken out of it but are still referred to. It is owned
/// by counted references: one for each wrapper of a node and one for each document whose content it
/// is. A node's _private field counts the wrappers of that node; the document's points here.
///
/// A subtree without a parent is an orphan: it is listed with the number of wrappers that refer
/// into it and is freed with the last of them. While there are no orphans a wrapper costs two
/// counters, else a walk to the root too.
///
/// What holds for every tree: all names stand in the document's dictionary, so that equal names of
/// one tree are equal pointers; an attribute has at most one child, a text; the namespaces that
/// nodes and attributes point to belong to the document and not to the elements that declare them,
/// so that nodes can be moved and kept freely (the serializer declares what is missing); there are
/// no entity references, CDATA sections or document type declarations; nodes, texts and
/// declarations stand in the tree's own memory: the library behind it may free none of them.
class Tree {
public:
    /// A tree without content, with names in this dictionary (null: one of its own).
    explicit Tree(xmlDict* dictionary = nullptr);
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    [[nodiscard]] static Tree& Of(const xmlNode* node)
    {
        return *static_cast<Tree*>(node->doc->_private);
    }

    // References.

    void AddReference() { ++m_references; }
    void DropReference()
    {
        if (--m_references == 0) {
            delete this;
        }
    }
    static void Wrap(xmlNode* node);
    static void Unwrap(xmlNode* node);

    // Content.

    [[nodiscard]] xmlDoc* Document() const { return m_document; }
    [[nodiscard]] xmlNode* RootElement() const { return xmlDocGetRootElement(m_document); }
    /// Where the memory of nodes, texts and namespace declarations comes from.
    [[nodiscard]] NodeStore& Store() { return m_store; }
    [[nodiscard]] XPathQueries& Queries();
    /// The subtrees that live on only for their wrappers.
    [[nodiscard]] std::size_t OrphanCount() const { return m_orphans.size(); }
    [[nodiscard]] uint64_t Changes() const { return m_changes; }
    /// Edits in the subtree of this child of the document element, those very deep in it left out.
    [[nodiscard]] uint64_t ChangesIn(const xmlNode* section) const;
    /// where: the parent, element or attribute that changes; null: no node.
    void NoteChange(const xmlNode* where);
    void ContinueChanges(uint64_t count) { m_changes += count; }
    /// The dictionary's pointer for a name; Known gives null for a name that no node can have.
    [[nodiscard]] const xmlChar* Intern(std::string_view name);
    [[nodiscard]] const xmlChar* Known(std::string_view name) const;
    /// The document's namespace of this prefix (null: the default) and name, made when missing.
    [[nodiscard]] xmlNs* Namespace(const xmlChar* prefix, const xmlChar* href);

    // Edits.

    /// Lists a finished subtree without a parent, so that it can be wrapped.
    void AdoptOrphan(xmlNode* root);
    /// Links a new node that nobody refers to yet under parent, before a child (null: at the end).
    void Insert(xmlNode* node, xmlNode* parent, xmlNode* before);
    /// Moves a node of this tree, linked or orphan. REQUIRES: parent is not in the node's subtree.
    void Move(xmlNode* node, xmlNode* parent, xmlNode* before);
    /// Takes a node or an attribute out of its parent; it is freed when nothing refers into it.
    void Remove(xmlNode* node);
    void RemoveChildren(xmlNode* parent);

private:
    ~Tree();
    [[nodiscard]] xmlNode* OrphanOf(xmlNode* node) const;
    void DropFromOrphan(xmlNode* orphan, std::size_t wrappers);

    struct NamespaceHash {
        std::size_t operator()(const std::pair<const xmlChar*, const xmlChar*>& key) const
        {
            const std::hash<const void*> hash;
            return hash(key.first) * 31 + hash(key.second);
        }
    };

    NodeStore m_store;
    xmlDoc* m_document;
    std::size_t m_references = 0;
    uint64_t m_changes = 1;
    std::unordered_map<const xmlNode*, uint64_t> m_sectionChanges;
    std::pair<const xmlNode*, uint64_t*> m_lastSection{}; ///< of m_sectionChanges
    std::unordered_map<xmlNode*, std::size_t> m_orphans;
    std::unordered_map<std::pair<const xmlChar*, const xmlChar*>, xmlNs*, NamespaceHash>
        m_namespaces;
    std::unique_ptr<XPathQueries> m_queries;
};

/// Makes the library behind the trees ready, once for the process; on every path that enters it.
void InitializeLibrary();

/// One counted reference to a tree, or none.
class TreeReference {
public:
    TreeReference() = default;
    explicit TreeReference(Tree* tree) : m_tree(tree)
    {
        if (m_tree != nullptr) {
            m_tree->AddReference();
        }
    }
    TreeReference(TreeReference&& other) noexcept : m_tree(std::exchange(other.m_tree, nullptr)) {}
    TreeReference& operator=(TreeReference other) noexcept
    {
        std::swap(m_tree, other.m_tree);
        return *this;
    }
    ~TreeReference()
    {
        if (m_tree != nullptr) {
            m_tree->DropReference();
        }
    }

    [[nodiscard]] Tree* operator->() const { return m_tree; }
    [[nodiscard]] Tree& operator*() const { return *m_tree; }
    explicit operator bool() const { return m_tree != nullptr; }

private:
    Tree* m_tree = nullptr;
};

} // namespace encap
