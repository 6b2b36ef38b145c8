#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"

#include <algorithm>
#include <functional>

namespace encap::cli {
namespace {

using Path = std::vector<std::size_t>;

/// Looks for columns that depend on themselves, depth first and without recursion: chains of
/// references may be long. Gives for each column at which a way closes the first such way, from
/// the column to the last before it comes back.
class CycleSearch {
public:
    using References = std::function<std::vector<std::size_t>(std::size_t column)>;

    CycleSearch(std::size_t columns, References references)
        : m_references(std::move(references)), m_marks(columns), m_closed(columns)
    {
    }

    [[nodiscard]] std::vector<Path> Run()
    {
        for (std::size_t column = 0; column < m_marks.size(); ++column) {
            if (m_marks[column] == Mark::New) {
                Enter(column);
                Walk();
            }
        }
        return std::move(m_found);
    }

private:
    enum class Mark : char { New, Open, Done };
    struct Step {
        std::size_t column;
        std::vector<std::size_t> references;
        std::size_t next = 0;
    };

    void Enter(std::size_t column)
    {
        m_marks[column] = Mark::Open;
        m_way.push_back({column, m_references(column)});
    }
    void Walk()
    {
        while (!m_way.empty()) {
            Step& step = m_way.back();
            if (step.next == step.references.size()) {
                m_marks[step.column] = Mark::Done;
                m_way.pop_back();
                continue;
            }
            const std::size_t reference = step.references[step.next++];
            if (m_marks[reference] == Mark::New) {
                Enter(reference);
            } else if (m_marks[reference] == Mark::Open && !m_closed[reference]) {
                Close(reference);
            }
        }
    }
    void Close(std::size_t column)
    {
        m_closed[column] = true;
        auto first = std::find_if(m_way.begin(), m_way.end(),
                                  [&](const Step& step) { return step.column == column; });
        Path path;
        for (; first != m_way.end(); ++first) {
            path.push_back(first->column);
        }
        m_found.push_back(std::move(path));
    }

    References m_references;
    std::vector<Mark> m_marks;
    std::vector<bool> m_closed;
    std::vector<Step> m_way;
    std::vector<Path> m_found;
};

class CycleCheck : public FamilyCheck {
public:
    explicit CycleCheck(const CheckedFamily& family);

    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override
    {
        for (const auto& [path, language] : m_cycles) {
            if (path.front() == column.index) {
                Report(path, {.column = column.id, .language = language}, report);
            }
        }
    }
    void VisitRow(const CheckedRow& row, const FindingReport& report) override;

private:
    void Report(const Path& path, const Place& place, const FindingReport& report) const;
    void FindIn(const CString& language);
    void FindIn(const CheckedRow& row, const CString& language, std::vector<Path>& known,
                const FindingReport& report) const;

    struct Cycle {
        Path path;
        CString language;
    };
    const CheckedFamily& m_family;
    std::vector<Cycle> m_cycles;
};

bool IsCircular(const CellValue& value)
{
    return value.isRead && value.result == CTableEvaluator::EvaluateCircularReference;
}

CycleCheck::CycleCheck(const CheckedFamily& family) : m_family(family)
{
    FindIn({});
    for (const CString& language : family.Languages()) {
        if (!language.empty()) {
            FindIn(language);
        }
    }
}

// With the formulas of a language only those cycles are new that one of them closes.
void CycleCheck::FindIn(const CString& language)
{
    const auto& columns = m_family.Columns();
    const auto own = [&](std::size_t column) -> const ColumnFormula* {
        const auto& formulas = columns[column].formulas;
        const auto found =
            std::find_if(formulas.begin(), formulas.end(), [&](const ColumnFormula& formula) {
                return formula.language == language;
            });
        return found != formulas.end() ? &*found : nullptr;
    };
    CycleSearch search(columns.size(), [&](std::size_t column) {
        const ColumnFormula* formula = own(column);
        return m_family.ReferencesIn(formula != nullptr ? formula->text : columns[column].formula);
    });
    for (Path& path : search.Run()) {
        const bool isNew = std::any_of(path.begin(), path.end(),
                                       [&](std::size_t column) { return own(column) != nullptr; });
        if (isNew) {
            m_cycles.push_back({std::move(path), language});
        }
    }
}

// A formula in a cell can close a cycle in its row.
void CycleCheck::VisitRow(const CheckedRow& row, const FindingReport& report)
{
    if (row.formulas.empty() || !row.HasValues()) {
        return;
    }
    std::vector<Path> known;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (std::any_of(row.values[i].begin(), row.values[i].end(), IsCircular)) {
            FindIn(row, m_family.Languages()[i], known, report);
        }
    }
}

void CycleCheck::FindIn(const CheckedRow& row, const CString& language, std::vector<Path>& known,
                        const FindingReport& report) const
{
    const auto& columns = m_family.Columns();
    const auto isOwn = [&](std::size_t column) {
        return std::any_of(row.formulas.begin(), row.formulas.end(),
                           [&](const OwnFormula& formula) {
                               return formula.column->index == column &&
                                      (formula.language.empty() || formula.language == language);
                           });
    };
    CycleSearch search(columns.size(), [&](std::size_t column) {
        return columns[column].isEvaluated
                   ? m_family.ReferencesIn(
                         SourceTextOf(m_family.Opened(), row.id, *columns[column].column, language))
                   : std::vector<std::size_t>();
    });
    for (const Path& path : search.Run()) {
        const bool isNew = std::find(known.begin(), known.end(), path) == known.end();
        if (isNew && std::any_of(path.begin(), path.end(), isOwn)) {
            Report(path, {.row = row.id, .column = columns[path.front()].id}, report);
            known.push_back(path);
        }
    }
}

void CycleCheck::Report(const Path& path, const Place& place, const FindingReport& report) const
{
    CString way;
    for (const std::size_t column : path) {
        way.append(m_family.Columns()[column].id).append(L" -> ");
    }
    report.Add(Rule::ReferenceCycle, place, {way + m_family.Columns()[path.front()].id});
}

} // namespace

std::unique_ptr<FamilyCheck> MakeCycleCheck(const CheckedFamily& family)
{
    return std::make_unique<CycleCheck>(family);
}

} // namespace encap::cli
