#include "encap/xml/XPathQueries.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/SilentErrors.h"

#include <algorithm>
#include <memory>
#include <new>

#include <libxml/xpathInternals.h>

namespace encap {
namespace {

constexpr std::size_t kMostCompiled = 256;
/// Steps of work for one query, a second or two.
constexpr unsigned long kMostOperations = 50'000'000;
/// The engine stops at a depth of 5000 on platforms where it expects a large stack. It starts this
/// far down, so that threads with a stack of 1 MB are safe.
constexpr int kFirstDepth = 4000;

/// Brackets inside brackets; at deeper ones the engine takes time without bound to find its errors.
constexpr int kMostNesting = 64;

constexpr const char* kFunctionPrefix = "ms";
constexpr const char* kFunctionNamespace = "urn:schemas-microsoft-com:xslt";

struct ObjectDeleter {
    void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
};
using ObjectPointer = std::unique_ptr<xmlXPathObject, ObjectDeleter>;

struct StringDeleter {
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using StringPointer = std::unique_ptr<xmlChar, StringDeleter>;

/// Brackets in literals do not count.
bool NestsTooDeep(std::string_view expression)
{
    int nesting = 0;
    int deepest = 0;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        const char character = expression[i];
        if (character == '"' || character == '\'') {
            i = std::min(expression.find(character, i + 1), expression.size());
        } else if (character == '(' || character == '[') {
            deepest = std::max(deepest, ++nesting);
        } else if (character == ')' || character == ']') {
            --nesting;
        }
    }
    return deepest > kMostNesting;
}

CString PopText(xmlXPathParserContext* parser)
{
    const StringPointer text(xmlXPathPopString(parser));
    return text == nullptr ? CString()
                           : platform::Utf8ToWide(reinterpret_cast<const char*>(text.get()));
}

int CompareTexts(const CString& left, const CString& right, const CString& options)
{
    const int order =
        options.find(L'i') != CString::npos ? CompareNoCase(left, right) : left.compare(right);
    return (order > 0) - (order < 0);
}

/// ms:string-compare(a, b [, language [, options]]). A set of nodes stands for the text of its
/// first node.
void StringCompare(xmlXPathParserContext* parser, int argumentCount)
{
    if (argumentCount < 2 || argumentCount > 4) {
        xmlXPathErr(parser, XPATH_INVALID_ARITY);
        return;
    }
    try {
        const CString options = argumentCount == 4 ? PopText(parser) : CString();
        if (argumentCount >= 3) {
            PopText(parser);
        }
        const CString right = PopText(parser);
        const CString left = PopText(parser);
        valuePush(parser, xmlXPathNewFloat(CompareTexts(left, right, options)));
    } catch (const std::bad_alloc&) {
        xmlXPathErr(parser, XPATH_MEMORY_ERROR);
    }
}

} // namespace

XPathQueries::XPathQueries(xmlDoc* document) : m_context(xmlXPathNewContext(document))
{
    if (m_context == nullptr) {
        throw std::bad_alloc();
    }
    m_context->error = SilentErrors::Ignore;
    m_context->opLimit = kMostOperations;
    xmlXPathRegisterNs(m_context.get(), BAD_CAST kFunctionPrefix, BAD_CAST kFunctionNamespace);
    xmlXPathRegisterFuncNS(m_context.get(), BAD_CAST "string-compare", BAD_CAST kFunctionNamespace,
                           StringCompare);
}

void XPathQueries::Select(xmlNode* context, std::string_view expression,
                          std::vector<xmlNode*>& nodes)
{
    const SilentErrors silent;
    xmlXPathCompExpr* compiled = Compiled(expression);
    if (compiled == nullptr) {
        return;
    }
    ResetLimits();
    m_context->node = context;
    const ObjectPointer result(xmlXPathCompiledEval(compiled, m_context.get()));
    m_context->node = nullptr;
    if (result == nullptr || result->type != XPATH_NODESET || result->nodesetval == nullptr) {
        return;
    }
    xmlXPathNodeSetSort(result->nodesetval);
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
        xmlNode* node = result->nodesetval->nodeTab[i];
        if (node->type != XML_NAMESPACE_DECL) {
            nodes.push_back(node);
        }
    }
}

/// Null for an expression that is not valid.
xmlXPathCompExpr* XPathQueries::Compiled(std::string_view expression)
{
    std::string text(expression);
    if (const auto known = m_compiled.find(text); known != m_compiled.end()) {
        return known->second.get();
    }
    if (m_compiled.size() >= kMostCompiled) {
        m_compiled.clear();
    }
    ResetLimits();
    std::unique_ptr<xmlXPathCompExpr, ExpressionDeleter> compiled;
    if (!NestsTooDeep(text)) {
        compiled.reset(xmlXPathCtxtCompile(m_context.get(), BAD_CAST text.c_str()));
    }
    return m_compiled.emplace(std::move(text), std::move(compiled)).first->second.get();
}

void XPathQueries::ResetLimits()
{
    m_context->opCount = 0;
    m_context->depth = kFirstDepth;
}

} // namespace encap
