#pragma once

#include "encap/foundation/Types.h"

/// The parts of a range text "[minimum;maximum;step;default]", which a custom numeric column holds
/// where the user picks the value: each part is optional, all three separators are required. A
/// plain value: copyable, refers to nothing, reads its text once on construction.
class ENCAP_API CRangeParser {
public:
    /// Reads the text, of which more may stand around the brackets. A null pointer counts as empty.
    explicit CRangeParser(const wchar_t* text);

    /// The whole text has the form of a range. Nothing is required of the parts: a range whose
    /// parser is not valid can pass.
    [[nodiscard]] static bool IsRange(const CString& text);

    // The parts, trimmed; a part that is absent is empty.
    [[nodiscard]] bool hasMin() const { return !m_minimum.empty(); }
    [[nodiscard]] bool hasMax() const { return !m_maximum.empty(); }
    [[nodiscard]] bool hasStep() const { return !m_step.empty(); }
    [[nodiscard]] bool hasDefault() const { return !m_default.empty(); }
    [[nodiscard]] CString getMin() const { return m_minimum; }
    [[nodiscard]] CString getMax() const { return m_maximum; }
    [[nodiscard]] CString getStep() const { return m_step; }
    [[nodiscard]] CString getDefault() const { return m_default; }

    /// The default, or the minimum when there is no default, with its decimal marks set to the
    /// separator when that is "." or ",". The result tells whether the range is valid: it has the
    /// form of a range, and its minimum and maximum are numeric or absent. The value of a range
    /// that is not valid is empty.
    bool GetStrValue(CString& out, wchar_t separator) const;

private:
    void Parse();

    CString m_source;
    CString m_minimum;
    CString m_maximum;
    CString m_step;
    CString m_default;
    CString m_value;
    bool m_valid = true;
};
