#pragma once

// A family of one row: a diameter D, and a length L that a formula makes of it.
inline constexpr const wchar_t* kPinFamily =
    L"<Family InternalName='pin'><FamilyTable><Columns>"
    L"<Column ColumnId='D' ValueType='double' UnitType='mm'/>"
    L"<Column ColumnId='L' ValueType='double' UnitType='mm' ColumnwideValue='{D}*2'/>"
    L"</Columns><Rows><Row RowId='r1'><Cell ColumnId='D'>12.5</Cell></Row></Rows>"
    L"</FamilyTable></Family>";
