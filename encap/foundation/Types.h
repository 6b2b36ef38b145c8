#pragma once

#include "encap/foundation/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// Wide text with value semantics: UTF-16 on Windows, UTF-32 elsewhere. Empty means not set.
using CString = std::wstring;

/// An ordered list of texts.
using CStringArray = std::vector<CString>;

/// A typed attribute value; std::monostate stands for "no value".
using VARIANT = std::variant<std::monostate, bool, int, double, CString>;

/// An owning wide text that a host passes as an output argument. A null pointer counts as empty.
class CComBSTR {
public:
    CComBSTR() = default;
    explicit CComBSTR(const wchar_t* text) : m_text(text != nullptr ? text : L"") {}
    explicit CComBSTR(CString text) : m_text(std::move(text)) {}

    CComBSTR& operator=(const wchar_t* text)
    {
        m_text = text != nullptr ? text : L"";
        return *this;
    }
    CComBSTR& operator=(CString text)
    {
        m_text = std::move(text);
        return *this;
    }

    /// The number of wchar_t units, without the closing zero.
    [[nodiscard]] unsigned int Length() const { return static_cast<unsigned int>(m_text.size()); }
    /// Makes the text empty.
    void Empty() { m_text.clear(); }
    /// The text, never null; valid until the next change of this object.
    operator const wchar_t*() const { return m_text.c_str(); }

private:
    CString m_text;
};
