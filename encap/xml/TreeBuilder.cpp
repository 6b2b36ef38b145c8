#include "encap/xml/TreeBuilder.h"

#include "encap/xml/SilentErrors.h"
#include "encap/xml/Texts.h"

#include <cstring>
#include <new>

namespace encap {
namespace {

/// What one attribute takes of the parser's list.
struct AttributeEvent {
    const xmlChar* name;
    const xmlChar* prefix;
    const xmlChar* uri;
    const xmlChar* value;
    const xmlChar* valueEnd;
};

constexpr std::ptrdiff_t kPointersOfAttribute = 5;

AttributeEvent AttributeAt(const xmlChar** attributes, int index)
{
    const xmlChar** first = attributes + kPointersOfAttribute * index;
    return {first[0], first[1], first[2], first[3], first[4]};
}

} // namespace

TreeBuilder::TreeBuilder(xmlParserCtxt* context) : m_context(context)
{
    Connect();
}

ParsedDocument TreeBuilder::Take()
{
    if (m_failure != nullptr) {
        std::rethrow_exception(m_failure);
    }
    ParsedDocument parsed;
    if (m_tree && !m_isStopped && m_context->wellFormed != 0 && m_tree->RootElement() != nullptr) {
        parsed.tree = std::move(m_tree);
        parsed.declaration = std::move(m_declaration);
    }
    return parsed;
}

void TreeBuilder::Connect()
{
    xmlSAXHandler& events = *m_context->sax;
    std::memset(&events, 0, sizeof events);
    events.initialized = XML_SAX2_MAGIC;
    events.startDocument = OnStartDocument;
    events.startElementNs = OnStartElement;
    events.endElementNs = OnEndElement;
    events.characters = OnCharacters;
    events.cdataBlock = OnSection;
    events.ignorableWhitespace = OnCharacters;
    events.comment = OnComment;
    events.processingInstruction = OnInstruction;
    events.internalSubset = OnDoctype;
    events.serror = SilentErrors::Ignore;
    m_context->userData = this;
}

/// Runs one event's work; what it throws must not pass the parser.
template <class Step>
void TreeBuilder::Guarded(void* self, Step step)
{
    auto& builder = *static_cast<TreeBuilder*>(self);
    if (builder.m_isStopped) {
        return;
    }
    try {
        step(builder);
    } catch (...) {
        builder.m_failure = std::current_exception();
        builder.Stop();
    }
}

void TreeBuilder::OnStartDocument(void* self)
{
    Guarded(self, [](TreeBuilder& builder) { builder.StartDocument(); });
}

void TreeBuilder::OnStartElement(void* self, const xmlChar* name, const xmlChar* prefix,
                                 const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                                 int attributeCount, int, const xmlChar** attributes)
{
    Guarded(self, [&](TreeBuilder& builder) {
        builder.StartElement(name, prefix, uri);
        if (!builder.m_isStopped) {
            builder.AddDeclarations(namespaceCount, namespaces);
            builder.AddAttributes(attributeCount, attributes);
        }
    });
}

void TreeBuilder::OnEndElement(void* self, const xmlChar*, const xmlChar*, const xmlChar*)
{
    Guarded(self, [](TreeBuilder& builder) { builder.EndElement(); });
}

void TreeBuilder::OnCharacters(void* self, const xmlChar* text, int size)
{
    Guarded(self, [=](TreeBuilder& builder) {
        builder.m_text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
    });
}

void TreeBuilder::OnSection(void* self, const xmlChar* text, int size)
{
    OnCharacters(self, text, size);
    static_cast<TreeBuilder*>(self)->m_hasSection = true;
}

void TreeBuilder::OnComment(void* self, const xmlChar* text)
{
    Guarded(self, [=](TreeBuilder& builder) {
        builder.Append(MakeComment(builder.m_tree->Document(), text));
    });
}

void TreeBuilder::OnInstruction(void* self, const xmlChar* target, const xmlChar* data)
{
    Guarded(self, [=](TreeBuilder& builder) {
        builder.Append(MakeInstruction(builder.m_tree->Document(), target, data));
    });
}

void TreeBuilder::OnDoctype(void* self, const xmlChar*, const xmlChar*, const xmlChar*)
{
    Guarded(self, [](TreeBuilder& builder) { builder.Stop(); });
}

void TreeBuilder::StartDocument()
{
    m_tree = TreeReference(new Tree(m_context->dict));
    m_current = AsNode(m_tree->Document());
    ReadDeclaration();
}

void TreeBuilder::ReadDeclaration()
{
    constexpr int kNoDeclaration = -1;
    m_declaration.isPresent = m_context->standalone != kNoDeclaration;
    m_declaration.standalone = m_context->standalone;
    if (m_context->version != nullptr) {
        m_declaration.version = ViewOf(m_context->version);
    }
    const xmlChar* ofInput = m_context->input != nullptr ? m_context->input->encoding : nullptr;
    m_declaration.encoding = ViewOf(ofInput != nullptr ? ofInput : m_context->encoding);
}

void TreeBuilder::Stop()
{
    m_isStopped = true;
    xmlStopParser(m_context);
}

/// The text before a tag, a comment or an instruction is whole: white space only goes, unless it is
/// all that an element holds and a section marks it.
void TreeBuilder::FlushText(bool endsElement)
{
    const bool isValue = m_hasSection && endsElement && m_current->children == nullptr;
    m_hasSection = false;
    if (m_text.empty()) {
        return;
    }
    if (isValue || !IsBlank(m_text) || m_preserves[static_cast<std::size_t>(m_level)]) {
        NewNode text = MakeText(m_tree->Document(), m_text);
        m_tree->Insert(text.release(), m_current, nullptr);
    }
    m_text.clear();
}

void TreeBuilder::Append(NewNode node)
{
    FlushText();
    m_tree->Insert(node.release(), m_current, nullptr);
}

void TreeBuilder::StartElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri)
{
    if (m_level == kMostParsedLevels) {
        Stop();
        return;
    }
    xmlNs* space = Space(prefix, uri);
    Append(MakeElement(m_tree->Document(), Name(prefix, name, space), space));
    m_current = m_current->last;
    const bool preserves = m_preserves[static_cast<std::size_t>(m_level)];
    m_preserves[static_cast<std::size_t>(++m_level)] = preserves;
}

void TreeBuilder::EndElement()
{
    FlushText(true);
    m_current = m_current->parent;
    --m_level;
}

void TreeBuilder::AddDeclarations(int count, const xmlChar** namespaces)
{
    xmlNs** link = &m_current->nsDef;
    for (int i = 0; i < count; ++i, namespaces += 2) {
        *link = MakeDeclaration(*m_tree, namespaces[0], namespaces[1]);
        link = &(*link)->next;
    }
}

void TreeBuilder::AddAttributes(int count, const xmlChar** attributes)
{
    xmlAttr* last = nullptr;
    for (int i = 0; i < count; ++i) {
        const AttributeEvent event = AttributeAt(attributes, i);
        xmlNs* space = Space(event.prefix, event.uri);
        xmlAttr* attribute =
            MakeAttribute(m_tree->Document(), Name(event.prefix, event.name, space), space,
                          Value(event.value, event.valueEnd));
        attribute->parent = m_current;
        attribute->prev = last;
        (last != nullptr ? last->next : m_current->properties) = attribute;
        last = attribute;
        if (event.prefix != nullptr) {
            NoteSpaceHandling(attribute);
        }
    }
}

void TreeBuilder::NoteSpaceHandling(const xmlAttr* attribute)
{
    if (HasName(reinterpret_cast<const xmlNode*>(attribute), "xml:space")) {
        m_preserves[static_cast<std::size_t>(m_level)] = ValueOf(attribute) == "preserve";
    }
}

/// The parser leaves one reference in values, that to "&", for a second reading.
std::string_view TreeBuilder::Value(const xmlChar* begin, const xmlChar* end)
{
    constexpr std::string_view kAmpersand = "&#38;";
    const std::string_view value(reinterpret_cast<const char*>(begin),
                                 static_cast<std::size_t>(end - begin));
    std::size_t position = value.find(kAmpersand);
    if (position == std::string_view::npos) {
        return value;
    }
    m_value.clear();
    std::size_t done = 0;
    for (; position != std::string_view::npos; position = value.find(kAmpersand, done)) {
        m_value.append(value, done, position + 1 - done);
        done = position + kAmpersand.size();
    }
    m_value.append(value, done);
    return m_value;
}

xmlNs* TreeBuilder::Space(const xmlChar* prefix, const xmlChar* uri)
{
    if (uri == nullptr || *uri == 0) {
        return nullptr;
    }
    if (m_lastSpace == nullptr || prefix != m_lastPrefix || uri != m_lastUri) {
        m_lastSpace = m_tree->Namespace(prefix, uri);
        m_lastPrefix = prefix;
        m_lastUri = uri;
    }
    return m_lastSpace;
}

/// A name whose prefix is bound nowhere keeps it as part of the name.
const xmlChar* TreeBuilder::Name(const xmlChar* prefix, const xmlChar* name, const xmlNs* space)
{
    if (prefix == nullptr || space != nullptr) {
        return name;
    }
    const xmlChar* whole = xmlDictQLookup(m_tree->Document()->dict, prefix, name);
    if (whole == nullptr) {
        throw std::bad_alloc();
    }
    return whole;
}

} // namespace encap
