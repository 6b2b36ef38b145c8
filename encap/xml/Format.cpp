#include "encap/xml/Format.h"

#include "encap/xml/Nodes.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace encap {
namespace {

constexpr int kMostBlanks = 78;
constexpr int kBlanksOfLevel = 2;

constexpr std::array<char, kMostBlanks + 1> MakeTemplate()
{
    std::array<char, kMostBlanks + 1> text{};
    text.fill(' ');
    text[0] = '\n';
    return text;
}

constexpr std::array<char, kMostBlanks + 1> kTemplate = MakeTemplate();

/// The levels are as deep as the tree: the product may not be taken before the cap.
std::string_view Indentation(int level)
{
    const int capped = std::clamp(level, 0, kMostBlanks);
    const int blanks = std::min(kBlanksOfLevel * capped, kMostBlanks);
    return std::string_view(kTemplate.data(), static_cast<std::size_t>(blanks) + 1);
}

void InsertText(xmlNode* parent, xmlNode* before, std::string_view text)
{
    Tree::Of(parent).Insert(MakeText(parent->doc, text).release(), parent, before);
}

/// The white space before a node, and behind it when it is the last one.
void Indent(xmlNode* node, int level)
{
    InsertText(node->parent, node, Indentation(level + 1));
    if (node->next == nullptr) {
        InsertText(node->parent, nullptr, Indentation(level));
    }
}

} // namespace

void FormatSiblings(xmlNode* first, int level)
{
    if (first == nullptr) {
        return;
    }
    const xmlNode* const top = first->parent;
    for (xmlNode* node = first; node != nullptr;) {
        if (node->type != XML_TEXT_NODE) {
            Indent(node, level);
            if (node->children != nullptr) {
                node = node->children;
                ++level;
                continue;
            }
        }
        while (node->next == nullptr && node->parent != top) {
            node = node->parent;
            --level;
        }
        node = node->next;
    }
}

void FormatNode(xmlNode* node, int level)
{
    if (node->type != XML_TEXT_NODE && node->parent != nullptr &&
        node->type != XML_ATTRIBUTE_NODE && node->parent->type == XML_ELEMENT_NODE) {
        Indent(node, level);
        FormatSiblings(node->children, level + 1);
    }
}

} // namespace encap
