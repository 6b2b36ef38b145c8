#include "encap/mapping/FamilyColVexilData.h"

#include "encap/mapping/ParameterKinds.h"

namespace {

CString TextOf(const wchar_t* text)
{
    return text != nullptr ? CString(text) : CString();
}

} // namespace

CEncapFamilyColVexilData::CEncapFamilyColVexilData() = default;

CEncapFamilyColVexilData::CEncapFamilyColVexilData(const wchar_t* objectRefKey,
                                                   const wchar_t* subObjectId,
                                                   ColPropertyObjectType type)
    : m_objectRefKey(TextOf(objectRefKey)), m_subObjectId(TextOf(subObjectId)), m_type(type)
{
}

CString CEncapFamilyColVexilData::ObjectRefKey() const
{
    return m_objectRefKey;
}

CString CEncapFamilyColVexilData::SubObjectId() const
{
    return m_subObjectId;
}

CEncapFamilyColVexilData::ColPropertyObjectType CEncapFamilyColVexilData::PropObjType() const
{
    return m_type;
}

CString CEncapFamilyColVexilData::PropObjTypeStr() const
{
    return ColPropObjTypeToString(m_type);
}

void CEncapFamilyColVexilData::SetObjectRefKey(const wchar_t* objectRefKey)
{
    m_objectRefKey = TextOf(objectRefKey);
}

void CEncapFamilyColVexilData::SetSubObjectId(const wchar_t* subObjectId)
{
    m_subObjectId = TextOf(subObjectId);
}

void CEncapFamilyColVexilData::SetPropObjType(ColPropertyObjectType type)
{
    m_type = type;
}

void CEncapFamilyColVexilData::SetPropObjTypeStr(const wchar_t* text)
{
    m_type = StringToColPropObjType(TextOf(text));
}

CString CEncapFamilyColVexilData::ColPropObjTypeToString(ColPropertyObjectType type)
{
    return CString(encap::ObjectTypeText(type));
}

CEncapFamilyColVexilData::ColPropertyObjectType
CEncapFamilyColVexilData::StringToColPropObjType(const CString& text)
{
    return encap::ObjectTypeOf(text);
}
