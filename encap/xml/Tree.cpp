#include "encap/xml/Tree.h"

#include "encap/platform/CodePages.h"
#include "encap/xml/Nodes.h"
#include "encap/xml/XPathQueries.h"

#include <new>

#include <libxml/dict.h>
#include <libxml/encoding.h>
#include <libxml/parser.h>

namespace encap {
namespace {

std::uintptr_t WrapperCount(const xmlNode* node)
{
    return reinterpret_cast<std::uintptr_t>(node->_private);
}

void SetWrapperCount(xmlNode* node, std::uintptr_t count)
{
    node->_private = reinterpret_cast<void*>(count); // NOLINT(performance-no-int-to-ptr)
}

bool IsDocument(const xmlNode* node)
{
    return node->type == XML_DOCUMENT_NODE;
}

/// All wrappers of the nodes of a subtree, of their attributes and of those's texts.
std::size_t CountWrappers(xmlNode* root)
{
    std::size_t count = 0;
    for (xmlNode* node = root; node != nullptr; node = NextInSubtree(node, root)) {
        count += WrapperCount(node);
        if (node->type != XML_ELEMENT_NODE) {
            continue;
        }
        for (xmlAttr* attribute = node->properties; attribute != nullptr;
             attribute = attribute->next) {
            count += WrapperCount(AsNode(attribute));
            count += attribute->children != nullptr ? WrapperCount(attribute->children) : 0;
        }
    }
    return count;
}

/// Links by hand: the library behind the tree merges neighbouring texts and frees what it merged.
void Link(xmlNode* node, xmlNode* parent, xmlNode* before)
{
    node->parent = parent;
    node->next = before;
    node->prev = before != nullptr ? before->prev : parent->last;
    (node->prev != nullptr ? node->prev->next : parent->children) = node;
    (before != nullptr ? before->prev : parent->last) = node;
}

xmlDoc* NewDocument(xmlDict* dictionary)
{
    InitializeLibrary();
    xmlDoc* document = xmlNewDoc(nullptr);
    if (document == nullptr) {
        throw std::bad_alloc();
    }
    document->dict = dictionary;
    if (dictionary != nullptr) {
        xmlDictReference(dictionary);
    } else {
        document->dict = xmlDictCreate();
    }
    if (document->dict == nullptr) {
        xmlFreeDoc(document);
        throw std::bad_alloc();
    }
    return document;
}

/// Names conversions of the system to the library, where it has none of its own for the name. An
/// encoding for which that fails stays unknown.
bool AddSystemEncodings()
{
    for (const platform::SystemEncoding& encoding : platform::SystemEncodings()) {
        xmlCharEncodingHandler* known = xmlFindCharEncodingHandler(encoding.name);
        if (known != nullptr) {
            xmlCharEncCloseFunc(known);
        } else {
            xmlNewCharEncodingHandler(encoding.name, encoding.toUtf8, encoding.fromUtf8);
        }
    }
    return true;
}

} // namespace

void InitializeLibrary()
{
    static const bool isReady = (xmlInitParser(), AddSystemEncodings());
    static_cast<void>(isReady);
}

Tree::Tree(xmlDict* dictionary) : m_document(NewDocument(dictionary))
{
    m_document->_private = this;
}

// The nodes go with their store.
Tree::~Tree()
{
    m_queries.reset();
    m_document->children = nullptr;
    m_document->last = nullptr;
    xmlFreeDoc(m_document);
}

void Tree::Wrap(xmlNode* node)
{
    Tree& tree = Of(node);
    tree.AddReference();
    if (IsDocument(node)) {
        return;
    }
    SetWrapperCount(node, WrapperCount(node) + 1);
    if (xmlNode* orphan = tree.OrphanOf(node)) {
        ++tree.m_orphans[orphan];
    }
}

void Tree::Unwrap(xmlNode* node)
{
    Tree& tree = Of(node);
    if (!IsDocument(node)) {
        SetWrapperCount(node, WrapperCount(node) - 1);
        if (xmlNode* orphan = tree.OrphanOf(node)) {
            tree.DropFromOrphan(orphan, 1);
        }
    }
    tree.DropReference();
}

XPathQueries& Tree::Queries()
{
    if (m_queries == nullptr) {
        m_queries = std::make_unique<XPathQueries>(m_document);
    }
    return *m_queries;
}

const xmlChar* Tree::Intern(std::string_view name)
{
    const xmlChar* interned =
        xmlDictLookup(m_document->dict, reinterpret_cast<const xmlChar*>(name.data()),
                      static_cast<int>(name.size()));
    if (interned == nullptr) {
        throw std::bad_alloc();
    }
    return interned;
}

const xmlChar* Tree::Known(std::string_view name) const
{
    return xmlDictExists(m_document->dict, reinterpret_cast<const xmlChar*>(name.data()),
                         static_cast<int>(name.size()));
}

xmlNs* Tree::Namespace(const xmlChar* prefix, const xmlChar* href)
{
    if (m_document->oldNs == nullptr &&
        xmlSearchNs(m_document, AsNode(m_document), BAD_CAST "xml") == nullptr) {
        throw std::bad_alloc();
    }
    if (prefix != nullptr && xmlStrEqual(prefix, BAD_CAST "xml") != 0) {
        return m_document->oldNs;
    }
    const auto text = [](const xmlChar* name) {
        return std::string_view(reinterpret_cast<const char*>(name));
    };
    const xmlChar* prefixKey = prefix != nullptr ? Intern(text(prefix)) : nullptr;
    xmlNs*& known = m_namespaces[{prefixKey, Intern(text(href))}];
    if (known == nullptr) {
        known = xmlNewNs(nullptr, href, prefix);
        if (known == nullptr) {
            throw std::bad_alloc();
        }
        known->next = m_document->oldNs->next;
        m_document->oldNs->next = known;
    }
    return known;
}

uint64_t Tree::ChangesIn(const xmlNode* section) const
{
    const auto found = m_sectionChanges.find(section);
    return found != m_sectionChanges.end() ? found->second : 0;
}

// The climb is bounded, so that an edit costs the same at any depth.
void Tree::NoteChange(const xmlNode* where)
{
    constexpr int kSectionDepth = 16;
    ++m_changes;
    const xmlNode* root = RootElement();
    for (int depth = 0; where != nullptr && where->parent != root; ++depth) {
        where = depth < kSectionDepth ? where->parent : nullptr;
    }
    if (where == nullptr || root == nullptr) {
        return;
    }
    if (m_lastSection.first != where) {
        m_lastSection = {where, &m_sectionChanges[where]};
    }
    ++*m_lastSection.second;
}

void Tree::AdoptOrphan(xmlNode* root)
{
    m_orphans.emplace(root, 0);
}

void Tree::Insert(xmlNode* node, xmlNode* parent, xmlNode* before)
{
    Link(node, parent, before);
    NoteChange(parent);
}

void Tree::Move(xmlNode* node, xmlNode* parent, xmlNode* before)
{
    xmlNode* from = OrphanOf(node);
    xmlNode* to = OrphanOf(parent);
    const std::size_t wrappers = from != to ? CountWrappers(node) : 0;
    NoteChange(node->parent);
    xmlUnlinkNode(node);
    Link(node, parent, before);
    NoteChange(parent);
    if (from == to) {
        return;
    }
    if (to != nullptr) {
        m_orphans[to] += wrappers;
    }
    if (from == node) {
        m_orphans.erase(node);
    } else if (from != nullptr) {
        DropFromOrphan(from, wrappers);
    }
}

void Tree::Remove(xmlNode* node)
{
    xmlNode* from = OrphanOf(node);
    const std::size_t wrappers = CountWrappers(node);
    if (wrappers != 0) {
        m_orphans.emplace(node, wrappers);
    }
    NoteChange(node->parent);
    xmlUnlinkNode(node);
    if (wrappers == 0) {
        FreeSubtree(node);
    } else if (from != nullptr) {
        DropFromOrphan(from, wrappers);
    }
}

void Tree::RemoveChildren(xmlNode* parent)
{
    while (parent->last != nullptr) {
        Remove(parent->last);
    }
}

/// The root of the subtree without a parent that the node stands in; null in the document itself.
xmlNode* Tree::OrphanOf(xmlNode* node) const
{
    if (m_orphans.empty()) {
        return nullptr;
    }
    while (node->parent != nullptr) {
        node = node->parent;
    }
    return IsDocument(node) ? nullptr : node;
}

void Tree::DropFromOrphan(xmlNode* orphan, std::size_t wrappers)
{
    const auto listed = m_orphans.find(orphan);
    listed->second -= wrappers;
    if (listed->second == 0) {
        m_orphans.erase(listed);
        FreeSubtree(orphan);
    }
}

} // namespace encap
