#include "cli/FamilyRecord.h"

#include "cli/ColumnFacts.h"
#include "cli/FailureReport.h"
#include "cli/FamilyChecks.h"
#include "cli/JsonWriter.h"
#include "cli/ManyFamilies.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/NumberText.h"
#include "encap/table/FamilyTable.h"

#include <chrono>
#include <numeric>

namespace encap::cli {
namespace {

using Clock = std::chrono::steady_clock;

void EvaluateAll(OpenFamily& family, FamilyRecord& record)
{
    const std::vector<CEncapFamilyColumn*> columns = ColumnsOf(family.Table());
    CString value;
    for (const CString& rowId : family.Table().GetAllRowIDs()) {
        for (CEncapFamilyColumn* column : columns) {
            family.Provider().Forget();
            const auto result = column->GetValue(rowId.c_str(), family.Language().c_str(), value);
            ++record.results[static_cast<std::size_t>(result)];
            if (result != CTableEvaluator::EvaluateOK && record.problem.empty()) {
                record.problem = FailureText(family, rowId, *column, result);
            }
        }
    }
}

/// "row r1, column D: the cell has no value".
CString TextOf(const Finding& finding)
{
    CString place = finding.row.empty() ? CString() : L"row " + finding.row;
    if (!finding.column.empty()) {
        place += (place.empty() ? L"column " : L", column ") + finding.column;
    }
    return place.empty() ? finding.message : place + L": " + finding.message;
}

void CheckAll(OpenFamily& family, const CheckOptions& checks, FamilyRecord& record)
{
    CheckFamily(family, checks, [&record](const Finding& finding) {
        const RuleEntry& rule = finding.Entry();
        ++record.findings[rule.id];
        ++(rule.severity == Severity::Error ? record.errors : record.warnings);
        const bool isFirstError = rule.severity == Severity::Error && record.errors == 1;
        if (record.problem.empty() || isFirstError) {
            record.problem = TextOf(finding);
        }
    });
}

void Fill(FamilyRecord& record, const RecordOptions& options, FamilyHost& host)
{
    CheckOptions checks;
    OpenFamily family(record.file, {{}, options.language}, host,
                      options.isCheck ? &checks.stringsProblems : nullptr);
    family.Family().GetInternalName(record.internalName);
    record.language = family.Language();
    record.rows = family.Table().GetRowsCount();
    record.columns = family.Table().GetColumnsCount();
    options.isCheck ? CheckAll(family, checks, record) : EvaluateAll(family, record);
}

void WriteOptional(JsonWriter& json, std::wstring_view key, const CString& text, bool isThere)
{
    json.Key(key);
    if (isThere) {
        json.Text(text);
    } else {
        json.Null();
    }
}

void WriteCount(JsonWriter& json, std::wstring_view key, std::size_t count)
{
    json.MemberNumber(key, static_cast<int64_t>(count));
}

void WriteResults(JsonWriter& json, const FamilyRecord& record)
{
    json.Key(L"results");
    json.BeginObject();
    for (std::size_t code = 0; code < record.results.size(); ++code) {
        if (record.results[code] > 0) {
            WriteCount(json, FormatInteger(static_cast<int64_t>(code)), record.results[code]);
        }
    }
    json.EndObject();
}

void WriteFindings(JsonWriter& json, const FamilyRecord& record)
{
    WriteCount(json, L"errors", record.errors);
    WriteCount(json, L"warnings", record.warnings);
    json.Key(L"findings");
    json.BeginObject();
    for (const auto& [rule, count] : record.findings) {
        WriteCount(json, rule, count);
    }
    json.EndObject();
}

} // namespace

std::size_t FamilyRecord::Failed() const
{
    return std::accumulate(results.begin() + 1, results.end() - 1, std::size_t{0});
}

std::size_t FamilyRecord::Unitless() const
{
    return results[CTableEvaluator::EvaluateUnitlessFallback];
}

CString FamilyRecord::Sentence() const
{
    if (!WasOpened()) {
        return failure;
    }
    std::string counts;
    const auto add = [&counts](std::size_t count, const char* one, const char* many) {
        if (count > 0) {
            counts.append(counts.empty() ? "" : ", ").append(CountedText(count, one, many));
        }
    };
    add(errors, "error", "errors");
    add(warnings, "warning", "warnings");
    add(Failed(), "cell has no value", "cells have no value");
    add(Unitless(), "cell was computed without units", "cells were computed without units");
    return problem.empty()
               ? CString()
               : file + L": " + platform::Utf8ToWide(counts) + L"; the first: " + problem;
}

FamilyRecord MakeFamilyRecord(const ListedFamily& family, const RecordOptions& options,
                              FamilyHost& host)
{
    const auto start = Clock::now();
    FamilyRecord record;
    record.file = family.path;
    record.failure = family.problem;
    record.internalName = family.internalName;
    if (record.WasOpened()) {
        const CString failure = FailureOf(family, [&] { Fill(record, options, host); });
        if (!failure.empty()) {
            record = {};
            record.file = family.path;
            record.failure = failure;
        }
    }
    const auto time = Clock::now() - start;
    record.microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    return record;
}

void WriteFamilyRecord(JsonWriter& json, const FamilyRecord& record, const RecordOptions& options,
                       bool withTime)
{
    json.BeginObject();
    WriteOptional(json, L"file", record.file, !record.file.empty());
    WriteOptional(json, L"internalName", record.internalName,
                  record.WasOpened() || !record.internalName.empty());
    WriteOptional(json, L"language", record.language, record.WasOpened());
    WriteCount(json, L"rows", record.rows);
    WriteCount(json, L"columns", record.columns);
    WriteCount(json, L"cells", record.Cells());
    options.isCheck ? WriteFindings(json, record) : WriteResults(json, record);
    WriteOptional(json, L"problem", record.problem, !record.problem.empty());
    WriteOptional(json, L"failure", record.failure, !record.WasOpened());
    if (withTime) {
        json.MemberNumber(L"microseconds", record.microseconds);
    }
    json.EndObject();
}

} // namespace encap::cli
