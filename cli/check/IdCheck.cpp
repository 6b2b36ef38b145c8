#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"

namespace encap::cli {
namespace {

class IdCheck : public FamilyCheck {
public:
    explicit IdCheck(const CheckedFamily& family) : m_family(family) {}

    void Begin(const FindingReport& report) override
    {
        XMLNode columns;
        m_family.Opened().Family().GetFamilyXML().GetRootNode().GetChildNode(L"FamilyTable/Columns",
                                                                             columns);
        int32_t number = 0;
        ForEachChild(columns, L"Column", [&](const XMLNode& column) {
            CString id;
            ++number;
            if (!column.GetProperty(L"ColumnId", id) || id.empty()) {
                report.Add(Rule::IdMissing, {},
                           {FormatText(L"column %d of the table has no ColumnId", {number})});
            }
        });
    }
    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override
    {
        if (column.isShadowed && !column.id.empty()) {
            report.Add(Rule::IdDuplicate, {.column = column.id},
                       {L"a later column has the same ID, and references find that one only"});
        }
    }
    void VisitRow(const CheckedRow& row, const FindingReport& report) override
    {
        if (row.id.empty()) {
            report.Add(Rule::IdMissing, {},
                       {FormatText(L"row %d of the table has no RowId",
                                   {static_cast<int32_t>(row.number)})});
        } else if (row.isShadowed) {
            report.Add(Rule::IdDuplicate, {.row = row.id},
                       {L"a later row has the same ID, and its values stand for both"});
        }
        for (const CheckedCell& cell : row.cells) {
            VisitCell(row, cell, report);
        }
    }

private:
    void VisitCell(const CheckedRow& row, const CheckedCell& cell,
                   const FindingReport& report) const
    {
        if (!cell.hasId || cell.columnId.empty()) {
            report.Add(Rule::IdMissing, {.row = row.id},
                       {FormatText(L"the cell \"%s\" has no ColumnId", {Shortened(cell.text)})});
        } else if (cell.column == nullptr) {
            report.Add(Rule::CellUnknownColumn, {.row = row.id, .column = cell.columnId},
                       {Shortened(cell.columnId), m_family.Suggestion(cell.columnId)});
        } else if (row.cellOf[cell.column->index] != &cell) {
            report.Add(Rule::IdDuplicate, {.row = row.id, .column = cell.columnId},
                       {L"the row has a cell of the column before this one, which counts"});
        }
    }

    const CheckedFamily& m_family;
};

} // namespace

std::unique_ptr<FamilyCheck> MakeIdCheck(const CheckedFamily& family)
{
    return std::make_unique<IdCheck>(family);
}

} // namespace encap::cli
