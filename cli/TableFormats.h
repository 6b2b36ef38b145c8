#pragma once

namespace encap::cli {

class CellReader;
class OpenFamily;
class Results;

// The forms in which a family's table is printed. Each reads every cell.

/// For people: titles and units, aligned columns; suppressed rows are marked, and so are cells that
/// failed. Hidden columns are read, but not shown.
void PrintTableText(CellReader& cells, const OpenFamily& family, Results& results);
/// RFC 4180 in UTF-8: RowId and the column IDs, then a line a row; a failed cell is empty.
void PrintTableCsv(CellReader& cells, Results& results);
/// One object: the family, its languages, the columns, and the rows with value and result code of
/// each cell (null for a cell that failed).
void PrintTableJson(CellReader& cells, const OpenFamily& family, Results& results);
/// CEncapFamilyTable::GetEvaluatedXml, declared as UTF-8. Throws FileError for a row or a cell
/// without an ID.
void PrintTableXml(CellReader& cells, const OpenFamily& family, Results& results);

} // namespace encap::cli
