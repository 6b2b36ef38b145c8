#include "encap/foundation/DataTypes.h"

#include "encap/foundation/CaseFolding.h"

#include <array>
#include <string_view>

namespace {

struct DataTypeWords {
    std::wstring_view typeWord;
    std::wstring_view displayWord;
};

/// In the order of DataTypes::ColumnDataType.
constexpr std::array<DataTypeWords, 4> kDataTypes{{
    {L"string", L"String"},
    {L"double", L"Real"},
    {L"integer", L"Integer"},
    {L"boolean", L"Boolean"},
}};

std::unique_ptr<CStringArray> ListOf(std::wstring_view DataTypeWords::*word)
{
    auto list = std::make_unique<CStringArray>();
    for (const DataTypeWords& type : kDataTypes) {
        list->emplace_back(type.*word);
    }
    return list;
}

CString WordOf(int32_t value, std::wstring_view DataTypeWords::*word)
{
    const auto index = static_cast<uint32_t>(value);
    return index < kDataTypes.size() ? CString(kDataTypes[index].*word) : CString();
}

template <class Matches>
DataTypes::ColumnDataType FirstMatch(Matches matches)
{
    for (std::size_t i = 0; i < kDataTypes.size(); ++i) {
        if (matches(kDataTypes[i])) {
            return static_cast<DataTypes::ColumnDataType>(i);
        }
    }
    return DataTypes::ColumnDataTypeString;
}

} // namespace

std::unique_ptr<CStringArray> DataTypes::GetTypes()
{
    return ListOf(&DataTypeWords::typeWord);
}

std::unique_ptr<CStringArray> DataTypes::GetItems()
{
    return ListOf(&DataTypeWords::displayWord);
}

DataTypes::ColumnDataType DataTypes::DataTypeStr2Num(const CString& text)
{
    return FirstMatch(
        [&](const DataTypeWords& type) { return encap::EqualNoCase(type.typeWord, text); });
}

DataTypes::ColumnDataType DataTypes::ItemTypeStr2Num(const CString& text)
{
    return FirstMatch([&](const DataTypeWords& type) { return type.displayWord == text; });
}

CString DataTypes::DataTypeNum2Str(int32_t value)
{
    return WordOf(value, &DataTypeWords::typeWord);
}

CString DataTypes::ItemTypeNum2Str(int32_t value)
{
    return WordOf(value, &DataTypeWords::displayWord);
}
