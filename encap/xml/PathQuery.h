#pragma once

#include "encap/xml/Tree.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace encap {

/// A query of the simple kind, answered by walking the tree: steps of unprefixed child names with
/// "/" or at most one "//" between or before them, each with predicates that compare attributes of
/// the element or of a child with literals, joined by "and":
///
///     Rows/Row/Cell[@ColumnId = "D"]
///     Category//Family[@Name='x' and @Hidden="false"]
///     //Row[CategoryRef/@Id=concat('a', "'")]
///
/// It selects exactly what XPath 1.0 selects for the same text. Reading one costs little, so none
/// are kept.
class PathQuery {
public:
    /// False for any other text, which is then a matter for XPath. The object refers to the text.
    [[nodiscard]] bool Parse(std::string_view path);

    /// The first selected node in document order, or null.
    [[nodiscard]] xmlNode* First(xmlNode* context);
    /// Appends the selected nodes in document order.
    void Select(xmlNode* context, std::vector<xmlNode*>& nodes);

private:
    static constexpr std::size_t kMostSteps = 8;
    static constexpr std::size_t kMostConditions = 8;

    struct Condition {
        std::string_view child; ///< empty: an attribute of the element itself
        std::string_view attribute;
        std::string_view value;
        const xmlChar* childName = nullptr;
        const xmlChar* attributeName = nullptr;
    };
    struct Step {
        std::string_view name;
        bool isDescendant = false;
        std::size_t firstCondition = 0;
        std::size_t endCondition = 0;
        const xmlChar* elementName = nullptr;
    };
    /// Where selected nodes go: into a list, or the first one is kept and ends the walk.
    struct Sink {
        std::vector<xmlNode*>* nodes = nullptr;
        xmlNode* first = nullptr;
        [[nodiscard]] bool Take(xmlNode* node);
    };
    class Reader;

    void Run(xmlNode* context, Sink& sink);
    [[nodiscard]] bool ResolveNames(const Tree& tree);
    [[nodiscard]] bool WalkChildren(xmlNode* parent, std::size_t step, Sink& sink) const;
    [[nodiscard]] bool WalkDescendants(xmlNode* context, std::size_t step, Sink& sink) const;
    [[nodiscard]] bool EndsPath(const xmlNode* node, const xmlNode* context,
                                std::size_t step) const;
    [[nodiscard]] bool Matches(const xmlNode* node, const Step& step) const;
    [[nodiscard]] static bool Holds(const xmlNode* element, const Condition& condition);

    std::array<Step, kMostSteps> m_steps;
    std::array<Condition, kMostConditions> m_conditions;
    std::size_t m_stepCount = 0;
    std::size_t m_conditionCount = 0;
    bool m_isAbsolute = false;
    bool m_hasDescendant = false;
    std::string m_joined; ///< literals put together by concat()
};

} // namespace encap
