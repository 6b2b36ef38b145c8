#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace encap::cli {

/// Writes JSON (RFC 8259) in UTF-8 piece by piece into a text that the caller may empty in between;
/// commas are put where they belong. REQUIRES: pieces come in an order that gives a JSON text.
class JsonWriter {
public:
    /// The text must outlive the object.
    explicit JsonWriter(std::string& out) : m_out(out) {}

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginArray() { Begin('['); }
    void EndArray() { End(']'); }
    /// The name of the value that comes next.
    void Key(std::wstring_view name);

    /// A text; lone surrogates become U+FFFD.
    void Text(std::wstring_view text);
    void Number(int64_t number);
    void Bool(bool value);
    void Null();

    // Members of an object.
    void Member(std::wstring_view name, std::wstring_view text);
    void MemberNumber(std::wstring_view name, int64_t number);
    void MemberBool(std::wstring_view name, bool value);

    /// The next key or value begins on a line of its own, behind this many blanks.
    void BreakLine(int indent);

private:
    void Begin(char bracket);
    void End(char bracket);
    void BeforeValue();
    void AppendText(std::wstring_view text);

    std::string& m_out;
    std::vector<bool> m_hasItems; // of each open object and array
    bool m_isAfterKey = false;
    int m_indent = -1;
};

} // namespace encap::cli
