#include "cli/FindFormats.h"

#include "cli/Csv.h"
#include "cli/JsonWriter.h"
#include "cli/Results.h"
#include "cli/TextTable.h"

namespace encap::cli {
namespace {

class FindText : public FindFormat {
public:
    FindText(const std::vector<CString>& columns, Results& results) : m_results(results)
    {
        for (const wchar_t* heading : {L"Family", L"Row", L"Designation"}) {
            m_table.AddColumn(TextTable::Alignment::Left, {heading});
        }
        for (const CString& column : columns) {
            m_table.AddColumn(TextTable::Alignment::Right, {column});
        }
    }

    void Add(const FoundMembers& found) override
    {
        for (const FoundMember& member : found.members) {
            m_isEmpty = false;
            m_table.AddCell(found.displayName.empty() ? found.file : found.displayName);
            m_table.AddCell(member.isSuppressed ? member.rowId + L" (suppressed)" : member.rowId);
            m_table.AddCell(member.designation);
            for (std::size_t i = 0; i < member.values.size(); ++i) {
                const CString& unit = found.units[i];
                m_table.AddCell(unit.empty() ? member.values[i] : member.values[i] + L' ' + unit);
            }
        }
    }

    void Finish() override
    {
        if (!m_isEmpty) {
            m_table.Print(m_results);
        }
    }

private:
    Results& m_results;
    TextTable m_table;
    bool m_isEmpty = true;
};

class FindCsv : public FindFormat {
public:
    FindCsv(const std::vector<CString>& columns, Results& results) : m_results(results)
    {
        m_results.Text() += "File,Family,RowId,Suppressed,Designation";
        for (const CString& column : columns) {
            AddField(column);
            AddField(column + L" unit");
        }
        m_results.Text() += kCsvLineEnd;
    }

    void Add(const FoundMembers& found) override
    {
        for (const FoundMember& member : found.members) {
            AppendCsv(m_results.Text(), found.file);
            AddField(found.displayName);
            AddField(member.rowId);
            AddField(member.isSuppressed ? L"true" : L"false");
            AddField(member.designation);
            for (std::size_t i = 0; i < member.values.size(); ++i) {
                AddField(member.values[i]);
                AddField(found.units[i]);
            }
            m_results.Text() += kCsvLineEnd;
        }
        m_results.PassNow();
    }

private:
    void AddField(std::wstring_view text)
    {
        m_results.Text() += ',';
        AppendCsv(m_results.Text(), text);
    }

    Results& m_results;
};

class FindJson : public FindFormat {
public:
    FindJson(const std::vector<CString>& columns, Results& results)
        : m_columns(columns), m_results(results)
    {
    }

    void Add(const FoundMembers& found) override
    {
        for (const FoundMember& member : found.members) {
            JsonWriter json(m_results.Text());
            Write(json, found, member);
            m_results.Text() += '\n';
        }
        m_results.PassNow();
    }

private:
    void Write(JsonWriter& json, const FoundMembers& found, const FoundMember& member) const
    {
        json.BeginObject();
        json.Member(L"file", found.file);
        json.Member(L"internalName", found.internalName);
        json.Member(L"family", found.displayName);
        json.Member(L"row", member.rowId);
        json.MemberBool(L"suppressed", member.isSuppressed);
        json.Member(L"designation", member.designation);
        json.Key(L"columns");
        json.BeginObject();
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            json.Key(m_columns[i]);
            json.BeginObject();
            json.Member(L"value", member.values[i]);
            json.Member(L"unit", found.units[i]);
            json.EndObject();
        }
        json.EndObject();
        json.EndObject();
    }

    std::vector<CString> m_columns;
    Results& m_results;
};

} // namespace

std::unique_ptr<FindFormat> MakeFindText(const std::vector<CString>& columns, Results& results)
{
    return std::make_unique<FindText>(columns, results);
}

std::unique_ptr<FindFormat> MakeFindCsv(const std::vector<CString>& columns, Results& results)
{
    return std::make_unique<FindCsv>(columns, results);
}

std::unique_ptr<FindFormat> MakeFindJson(const std::vector<CString>& columns, Results& results)
{
    return std::make_unique<FindJson>(columns, results);
}

} // namespace encap::cli
