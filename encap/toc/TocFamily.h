#pragma once

#include "encap/family/FamilyPropType.h"
#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

/// A view of one family's entry in a table of contents. Shares the element; nobody need own it.
/// A getter that returns false found no such attribute and leaves its text empty.
class ENCAP_API CTocFamily : public XMLNode {
public:
    CTocFamily();
    explicit CTocFamily(const XMLNode& node);
    CTocFamily(const CTocFamily& other);
    CTocFamily& operator=(const CTocFamily& other);
    ~CTocFamily() override;

    bool GetInternalName(CString& value) const;
    bool GetDisplayName(CString& value) const;
    /// The source library and family of a linked family, and the source's revision.
    bool GetSourceLib(CString& value) const;
    bool GetSourceFamily(CString& value) const;
    bool GetSourceRevision(CString& value) const;
    bool GetStandardOrg(CString& value) const;
    bool GetRevision(CString& value) const;
    /// Types 5, 6 and 11 have no attribute in a table of contents: false.
    bool GetFamilyProperty(FamilyPropType type, CString& value) const;
};
