#pragma once

#include "encap/xml/Tree.h"

#include <memory>
#include <string>
#include <string_view>

// Making and reading single nodes of a tree. Names are qualified names in UTF-8; texts are UTF-8
// that XML allows.
namespace encap {

/// Gives back the memory of an unlinked node and of everything below it.
void FreeSubtree(xmlNode* root) noexcept;

struct NodeDeleter {
    void operator()(xmlNode* node) const { FreeSubtree(node); }
};
/// A new node that is not linked yet.
using NewNode = std::unique_ptr<xmlNode, NodeDeleter>;

/// Empty, but not null: there is a text.
inline constexpr std::string_view kEmptyText = ""; // NOLINT(readability-redundant-string-init)

[[nodiscard]] inline std::string_view ViewOf(const xmlChar* text)
{
    return text != nullptr ? std::string_view(reinterpret_cast<const char*>(text))
                           : std::string_view();
}

// Making. Interned names come from the tree's dictionary.

[[nodiscard]] NewNode MakeElement(xmlDoc* document, const xmlChar* internedName, xmlNs* space);
[[nodiscard]] NewNode MakeText(xmlDoc* document, std::string_view text);
/// text: null for an empty comment.
[[nodiscard]] NewNode MakeComment(xmlDoc* document, const xmlChar* text);
/// data: null when there is nothing behind the target.
[[nodiscard]] NewNode MakeInstruction(xmlDoc* document, const xmlChar* target, const xmlChar* data);
/// Replaces the content of a text, comment or processing instruction.
void AssignContent(xmlNode* node, std::string_view text);
/// An attribute that is not linked yet.
[[nodiscard]] xmlAttr* MakeAttribute(xmlDoc* document, const xmlChar* internedName, xmlNs* space,
                                     std::string_view value);
/// Adds an attribute behind the others; not checked for being there.
void LinkAttribute(xmlNode* element, xmlAttr* attribute);
/// A namespace declaration that is not linked yet.
[[nodiscard]] xmlNs* MakeDeclaration(Tree& tree, const xmlChar* prefix, const xmlChar* href);
void FreeDeclaration(Tree& tree, xmlNs* declaration) noexcept;

/// A new element of a qualified name whose prefix is looked up from scope upwards; null for a name
/// that XML does not allow and for an unbound prefix.
[[nodiscard]] NewNode MakeNamedElement(Tree& tree, xmlNode* scope, std::string_view name);
/// A copy in the target tree, unlinked: with all below when deep.
[[nodiscard]] NewNode CopySubtree(Tree& target, xmlNode* source, bool deep);
/// The same for an element, but of what stands in it only the elements and texts.
[[nodiscard]] NewNode CopyElementsAndTexts(Tree& target, xmlNode* source, bool deep);

// Names.

[[nodiscard]] std::string_view Prefix(const xmlNode* node);
/// The name of an element or attribute equals this one, prefix included.
[[nodiscard]] bool HasName(const xmlNode* node, std::string_view name);
[[nodiscard]] std::string QualifiedName(const xmlNode* node);

// Attributes. "xmlns" and "xmlns:p" name namespace declarations.

[[nodiscard]] xmlAttr* FindAttribute(const xmlNode* element, std::string_view name);
[[nodiscard]] xmlNs* FindDeclaration(const xmlNode* element, std::string_view name);
[[nodiscard]] inline std::string_view ValueOf(const xmlAttr* attribute)
{
    return attribute->children != nullptr && attribute->children->content != nullptr
               ? ViewOf(attribute->children->content)
               : kEmptyText;
}
void AssignValue(xmlAttr* attribute, std::string_view value);
/// False for a name that XML does not allow, an unbound prefix and a changed declaration.
bool SetAttribute(xmlNode* element, std::string_view name, std::string_view value);

// Texts.

/// The texts below a node, or its value when it has no children of its own kind.
void AppendText(xmlNode* node, std::string& out);
/// Replaces all children of an element by one text, by none when it is empty.
void SetElementText(xmlNode* element, std::string_view text);

} // namespace encap
