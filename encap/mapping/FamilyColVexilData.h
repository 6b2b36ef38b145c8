#pragma once

#include "encap/foundation/Types.h"

/// What a column drives when it drives a document property, a render style or the material of the
/// members' models: the object, a part of it, and the kind of object, in the words of the template
/// parameters. A plain value; a bound column owns one. Null texts count as empty.
class ENCAP_API CEncapFamilyColVexilData {
public:
    /// Kinds of model objects, in the order of their numbers. Their texts are the enumerators'
    /// names, "Unknown" for 0.
    enum ColPropertyObjectType : int32_t {
        kUnknownObject = 0,
        kUserParameterObject = 1,
        kPropertyObject = 2,
        kPartComponentDefinitionObject = 3,
        kPartDocumentObject = 4,
        kModelParameterObject = 5,
        kPartFeatureObject = 6,
        kRenderStyleObject = 7,
    };

    CEncapFamilyColVexilData();
    CEncapFamilyColVexilData(const wchar_t* objectRefKey, const wchar_t* subObjectId,
                             ColPropertyObjectType type);

    CString ObjectRefKey() const;
    CString SubObjectId() const;
    ColPropertyObjectType PropObjType() const;
    CString PropObjTypeStr() const;

    void SetObjectRefKey(const wchar_t* objectRefKey);
    void SetSubObjectId(const wchar_t* subObjectId);
    void SetPropObjType(ColPropertyObjectType type);
    void SetPropObjTypeStr(const wchar_t* text);

    /// "Unknown" for 0 and for numbers that are no kind.
    static CString ColPropObjTypeToString(ColPropertyObjectType type);
    /// Without regard to case; any text that names no kind gives 0.
    static ColPropertyObjectType StringToColPropObjType(const CString& text);

private:
    CString m_objectRefKey;
    CString m_subObjectId;
    ColPropertyObjectType m_type = kUnknownObject;
};
