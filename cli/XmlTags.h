#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

namespace encap::cli {

/// Walks over the tags of an XML text without building a tree: for the few facts about a document
/// that are needed before it is parsed as a whole. Comments, CDATA sections and processing
/// instructions are stepped over. On a text that is not well-formed it ends somewhere; it never
/// reads past the text. Refers to the text.
class XmlTags {
public:
    enum class Tag {
        Opening,
        Closing,
        Empty,       ///< an element that is closed as it is opened
        DocumentType ///< a document type declaration; nothing is told of what follows
    };

    explicit XmlTags(std::wstring_view text) : m_text(text) {}

    /// Goes to the next tag; false at the end, and where the text cannot be XML.
    [[nodiscard]] bool Next();
    [[nodiscard]] Tag Kind() const { return m_kind; }
    /// The element's name with its prefix.
    [[nodiscard]] std::wstring_view Name() const;
    /// The tag from its "<" to its ">".
    [[nodiscard]] std::wstring_view Whole() const;
    /// Where the tag begins and where it ends, in the text.
    [[nodiscard]] std::size_t Begin() const { return m_begin; }
    [[nodiscard]] std::size_t End() const { return m_end; }
    /// How many elements are open behind the tag.
    [[nodiscard]] int Depth() const { return m_depth; }

private:
    [[nodiscard]] bool Skip(std::wstring_view start, std::wstring_view end);
    [[nodiscard]] bool FindEnd();
    [[nodiscard]] std::size_t EndOfTag() const;

    std::wstring_view m_text;
    Tag m_kind = Tag::Empty;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    int m_depth = 0;
};

/// Why a text that does not parse is refused, as far as it can be told.
[[nodiscard]] CString ReasonOfRefusal(std::wstring_view text);

} // namespace encap::cli
