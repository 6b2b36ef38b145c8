#pragma once

#include <libxml/tree.h>

namespace encap {

/// Indents first and its next siblings, with all below, by white space texts: "\n" and two blanks
/// for each level and one more, at most 78; a text of two blanks fewer follows the last one. Texts
/// are passed over.
void FormatSiblings(xmlNode* first, int level);
/// Indents one node in the same way.
void FormatNode(xmlNode* node, int level);

} // namespace encap
