#pragma once

#include <libxml/xmlerror.h>

namespace encap {

/// Keeps the XML library from printing on this thread while it lives, where it asks no handler of
/// the call for it: in conversions between encodings and for unknown functions and variables of
/// queries. The handlers that it sets are the thread's own.
class SilentErrors {
public:
    SilentErrors()
        : m_handler(xmlStructuredError), m_context(xmlStructuredErrorContext),
          m_printer(xmlGenericError), m_printerContext(xmlGenericErrorContext)
    {
        const xmlStructuredErrorFunc ignore = Ignore;
        xmlSetStructuredErrorFunc(nullptr, ignore);
        xmlSetGenericErrorFunc(nullptr, IgnoreText);
    }
    ~SilentErrors()
    {
        xmlSetGenericErrorFunc(m_printerContext, m_printer);
        xmlSetStructuredErrorFunc(m_context, m_handler);
    }
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;

    /// A handler that drops what it gets; the error's type differs between the library's versions.
    template <class Error>
    static void Ignore(void*, Error*)
    {
    }

private:
    static void IgnoreText(void*, const char*, ...) {}

    xmlStructuredErrorFunc m_handler;
    void* m_context;
    xmlGenericErrorFunc m_printer;
    void* m_printerContext;
};

} // namespace encap
