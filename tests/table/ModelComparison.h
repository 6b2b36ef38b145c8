#pragma once

#include "encap/family/Family.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/TableModel.h"

#include <vector>

namespace encap::test {

using Texts = std::vector<CString>;

/// The languages that are compared; the last one has no strings document.
extern const Texts kLanguages;

/// A family as a text that shows every difference to its model; the model learns new stamps.
class ModelComparison {
public:
    ModelComparison(CEncapFamily& family, TableModel& model);

    CString Differences();
    const CString& Found() const { return m_differences; }
    void ValueDifference(const TableModel::Row& row, const CString& column,
                         const CString& language);
    CString ValueDifferences();

private:
    void Note(bool same, const CString& what);
    void NoteText(CString& expected, const CString& found, const CString& what);

    void CompareRow(TableModel::Row& row);
    void CompareColumn(const TableModel::Column& column);
    void CompareStrings(const CString& language, XMLParser& document);

    CEncapFamily& m_family;
    CEncapFamilyTable& m_table;
    TableModel& m_model;
    CString m_differences;
};

} // namespace encap::test
