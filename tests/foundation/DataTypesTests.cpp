#include "encap/foundation/DataTypes.h"

#include <gtest/gtest.h>

TEST(DataTypes, WordsAndNumbersAgreeInBothDirections)
{
    const auto types = DataTypes::GetTypes();
    const auto items = DataTypes::GetItems();
    EXPECT_EQ(*types, (CStringArray{L"string", L"double", L"integer", L"boolean"}));
    EXPECT_EQ(*items, (CStringArray{L"String", L"Real", L"Integer", L"Boolean"}));
    for (int32_t value = 0; value < 4; ++value) {
        const auto index = static_cast<std::size_t>(value);
        EXPECT_EQ(DataTypes::DataTypeNum2Str(value), (*types)[index]);
        EXPECT_EQ(DataTypes::ItemTypeNum2Str(value), (*items)[index]);
        EXPECT_EQ(DataTypes::DataTypeStr2Num((*types)[index]), value);
        EXPECT_EQ(DataTypes::ItemTypeStr2Num((*items)[index]), value);
    }
}

TEST(DataTypes, TypeWordsIgnoreCaseAndDisplayWordsDoNot)
{
    EXPECT_EQ(DataTypes::DataTypeStr2Num(L"DOUBLE"), DataTypes::ColumnDataTypeReal);
    EXPECT_EQ(DataTypes::ItemTypeStr2Num(L"real"), DataTypes::ColumnDataTypeString);
}

TEST(DataTypes, UnknownWordsAndNumbersReadAsText)
{
    EXPECT_EQ(DataTypes::DataTypeStr2Num(L""), DataTypes::ColumnDataTypeString);
    EXPECT_EQ(DataTypes::DataTypeStr2Num(L"float"), DataTypes::ColumnDataTypeString);
    EXPECT_EQ(DataTypes::ItemTypeStr2Num(L"double"), DataTypes::ColumnDataTypeString);
    for (const int32_t value : {4, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(DataTypes::DataTypeNum2Str(value), L"");
        EXPECT_EQ(DataTypes::ItemTypeNum2Str(value), L"");
    }
}
