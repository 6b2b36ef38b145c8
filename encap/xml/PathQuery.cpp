#include "encap/xml/PathQuery.h"

#include "encap/xml/Nodes.h"

#include <algorithm>

namespace encap {
namespace {

bool HasAttribute(const xmlNode* element, const xmlChar* internedName, std::string_view value)
{
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (attribute->name == internedName && attribute->ns == nullptr) {
            return ValueOf(attribute) == value;
        }
    }
    return false;
}

bool IsElement(const xmlNode* node, const xmlChar* internedName)
{
    return node->name == internedName && node->type == XML_ELEMENT_NODE && node->ns == nullptr;
}

bool StartsName(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_' || (character & 0x80) != 0;
}

bool ContinuesName(char character)
{
    return StartsName(character) || (character >= '0' && character <= '9') || character == '-' ||
           character == '.';
}

} // namespace

/// Reads a path into its query; every function moves behind what it read, or gives false.
class PathQuery::Reader {
public:
    Reader(PathQuery& query, std::string_view path) : m_query(query), m_rest(path) {}

    bool ReadPath()
    {
        SkipBlanks();
        bool isDescendant = Accept("//");
        m_query.m_isAbsolute = isDescendant || Accept("/");
        if (!m_query.m_isAbsolute && Accept(".")) {
            SkipBlanks();
            isDescendant = Accept("//");
            if (!isDescendant && !Accept("/")) {
                return false;
            }
        }
        while (ReadStep(isDescendant)) {
            if (m_rest.empty()) {
                return true;
            }
            isDescendant = Accept("//");
            if (!isDescendant && !Accept("/")) {
                return false;
            }
        }
        return false;
    }

private:
    bool ReadStep(bool isDescendant)
    {
        if (m_query.m_stepCount == kMostSteps || (isDescendant && m_query.m_hasDescendant)) {
            return false;
        }
        Step& step = m_query.m_steps[m_query.m_stepCount++];
        step.isDescendant = isDescendant;
        m_query.m_hasDescendant = m_query.m_hasDescendant || isDescendant;
        step.firstCondition = m_query.m_conditionCount;
        SkipBlanks();
        if (!ReadName(step.name)) {
            return false;
        }
        while (Accept("[")) {
            if (!ReadPredicate()) {
                return false;
            }
        }
        step.endCondition = m_query.m_conditionCount;
        return true;
    }

    bool ReadPredicate()
    {
        while (ReadCondition()) {
            if (Accept("]")) {
                SkipBlanks();
                return true;
            }
            if (!Accept("and") || (!m_rest.empty() && ContinuesName(m_rest.front()))) {
                return false;
            }
        }
        return false;
    }

    bool ReadCondition()
    {
        if (m_query.m_conditionCount == kMostConditions) {
            return false;
        }
        Condition& condition = m_query.m_conditions[m_query.m_conditionCount++];
        SkipBlanks();
        if (!Accept("@")) {
            if (!ReadName(condition.child) || !Accept("/")) {
                return false;
            }
            SkipBlanks();
            if (!Accept("@")) {
                return false;
            }
        }
        SkipBlanks();
        return ReadName(condition.attribute) && Accept("=") && ReadLiteral(condition.value);
    }

    /// A name that is neither a function, a prefix nor an axis; blanks behind it are skipped.
    bool ReadName(std::string_view& name)
    {
        std::size_t length = 0;
        while (length < m_rest.size() &&
               (length == 0 ? StartsName(m_rest[0]) : ContinuesName(m_rest[length]))) {
            ++length;
        }
        name = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        SkipBlanks();
        return length != 0 && (m_rest.empty() || (m_rest.front() != '(' && m_rest.front() != ':'));
    }

    bool ReadLiteral(std::string_view& value)
    {
        SkipBlanks();
        const bool isRead = Accept("concat") ? ReadConcatenation(value) : ReadQuoted(value);
        SkipBlanks();
        return isRead;
    }

    bool ReadQuoted(std::string_view& value)
    {
        if (m_rest.empty() || (m_rest.front() != '"' && m_rest.front() != '\'')) {
            return false;
        }
        const std::size_t end = m_rest.find(m_rest.front(), 1);
        if (end == std::string_view::npos) {
            return false;
        }
        value = m_rest.substr(1, end - 1);
        m_rest.remove_prefix(end + 1);
        return true;
    }

    bool ReadConcatenation(std::string_view& value)
    {
        // The first one reserves what all together can need: values are views into the text.
        std::string& joined = m_query.m_joined;
        joined.reserve(std::max(joined.capacity(), m_rest.size()));
        const std::size_t start = joined.size();
        int parts = 0;
        SkipBlanks();
        for (bool isOpen = Accept("("); isOpen; isOpen = Accept(",")) {
            std::string_view part;
            SkipBlanks();
            if (!ReadQuoted(part)) {
                return false;
            }
            joined += part;
            ++parts;
            SkipBlanks();
        }
        value = std::string_view(joined).substr(start);
        return parts >= 2 && Accept(")");
    }

    bool Accept(std::string_view token)
    {
        if (m_rest.substr(0, token.size()) != token) {
            return false;
        }
        m_rest.remove_prefix(token.size());
        return true;
    }

    void SkipBlanks()
    {
        const std::size_t blanks = m_rest.find_first_not_of(" \t\r\n");
        m_rest.remove_prefix(blanks == std::string_view::npos ? m_rest.size() : blanks);
    }

    PathQuery& m_query;
    std::string_view m_rest;
};

bool PathQuery::Parse(std::string_view path)
{
    return Reader(*this, path).ReadPath();
}

xmlNode* PathQuery::First(xmlNode* context)
{
    Sink sink;
    Run(context, sink);
    return sink.first;
}

void PathQuery::Select(xmlNode* context, std::vector<xmlNode*>& nodes)
{
    Sink sink;
    sink.nodes = &nodes;
    Run(context, sink);
}

/// True when nothing more is wanted.
bool PathQuery::Sink::Take(xmlNode* node)
{
    if (nodes != nullptr) {
        nodes->push_back(node);
        return false;
    }
    first = node;
    return true;
}

void PathQuery::Run(xmlNode* context, Sink& sink)
{
    if (!ResolveNames(Tree::Of(context))) {
        return;
    }
    xmlNode* start = m_isAbsolute ? AsNode(context->doc) : context;
    static_cast<void>(m_steps[0].isDescendant ? WalkDescendants(start, 0, sink)
                                              : WalkChildren(start, 0, sink));
}

/// False when a name occurs nowhere in the tree, so that nothing can match.
bool PathQuery::ResolveNames(const Tree& tree)
{
    for (std::size_t i = 0; i < m_stepCount; ++i) {
        m_steps[i].elementName = tree.Known(m_steps[i].name);
        if (m_steps[i].elementName == nullptr) {
            return false;
        }
    }
    for (std::size_t i = 0; i < m_conditionCount; ++i) {
        Condition& condition = m_conditions[i];
        condition.attributeName = tree.Known(condition.attribute);
        condition.childName = condition.child.empty() ? nullptr : tree.Known(condition.child);
        if (condition.attributeName == nullptr ||
            (condition.childName == nullptr && !condition.child.empty())) {
            return false;
        }
    }
    return true;
}

// The walks give true when the sink wants nothing more.

bool PathQuery::WalkChildren(xmlNode* parent, std::size_t step, Sink& sink) const
{
    const bool isLast = step + 1 == m_stepCount;
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (!Matches(child, m_steps[step])) {
            continue;
        }
        const bool isDone = isLast ? sink.Take(child)
                            : m_steps[step + 1].isDescendant
                                ? WalkDescendants(child, step + 1, sink)
                                : WalkChildren(child, step + 1, sink);
        if (isDone) {
            return true;
        }
    }
    return false;
}

bool PathQuery::WalkDescendants(xmlNode* context, std::size_t step, Sink& sink) const
{
    xmlNode* node = NextInSubtree(context, context);
    for (; node != nullptr; node = NextInSubtree(node, context)) {
        if (EndsPath(node, context, step) && sink.Take(node)) {
            return true;
        }
    }
    return false;
}

/// The steps from this one on lead from below context to the node.
bool PathQuery::EndsPath(const xmlNode* node, const xmlNode* context, std::size_t step) const
{
    for (std::size_t i = m_stepCount; i > step; --i) {
        if (node == context || !Matches(node, m_steps[i - 1])) {
            return false;
        }
        node = node->parent;
    }
    return true;
}

bool PathQuery::Matches(const xmlNode* node, const Step& step) const
{
    if (!IsElement(node, step.elementName)) {
        return false;
    }
    for (std::size_t i = step.firstCondition; i < step.endCondition; ++i) {
        if (!Holds(node, m_conditions[i])) {
            return false;
        }
    }
    return true;
}

bool PathQuery::Holds(const xmlNode* element, const Condition& condition)
{
    if (condition.childName == nullptr) {
        return HasAttribute(element, condition.attributeName, condition.value);
    }
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (IsElement(child, condition.childName) &&
            HasAttribute(child, condition.attributeName, condition.value)) {
            return true;
        }
    }
    return false;
}

} // namespace encap
