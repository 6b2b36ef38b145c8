#include "cli/CellReader.h"

#include "cli/ColumnFacts.h"
#include "cli/OpenFamily.h"

namespace encap::cli {

CellReader::CellReader(OpenFamily& family, Console& console)
    : m_family(family), m_rowIds(family.Table().GetAllRowIDs()),
      m_columns(ColumnsOf(family.Table())), m_failures(family, console)
{
}

CTableEvaluator::EvaluateResult CellReader::Read(std::size_t row, std::size_t column,
                                                 CString& value)
{
    value.clear();
    m_family.Provider().Forget();
    const auto result =
        m_columns[column]->GetValue(m_rowIds[row].c_str(), m_family.Language().c_str(), value);
    if (result != CTableEvaluator::EvaluateOK) {
        m_failures.Tell(m_rowIds[row], *m_columns[column], result);
    }
    return result;
}

} // namespace encap::cli
