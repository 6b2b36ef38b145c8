#include "cli/MappingFacts.h"
#include "cli/check/FamilyCheck.h"

namespace encap::cli {
namespace {

CString TextOf(const OptionalText& text)
{
    return text && !text->empty() ? *text : CString(L"(none)");
}

/// What the templates and maps say in vain, in the words of MappingFacts.
class MappingCheck : public FamilyCheck {
public:
    explicit MappingCheck(const CheckedFamily& family)
        : m_facts(ReadMapping(family.Opened().Family()))
    {
    }

    void Begin(const FindingReport& report) override
    {
        for (const TemplateFacts& facts : m_facts.templates) {
            const CString name = L"template " + TextOf(facts.name);
            Add(report, {}, name, facts.problem);
            CheckParameters(report, name, facts.parameters);
        }
        for (const ConstantMapping& constant : m_facts.constants) {
            const CString name = L"constant " + TextOf(constant.parameter.id);
            Add(report, {}, name, constant.parameter.problem);
            CheckDriven(report, {}, name, constant.drives);
        }
        for (const ColumnMapping& column : m_facts.columns) {
            Add(report, column.id.value_or(CString()), L"column map", column.problem);
        }
    }
    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override
    {
        if (column.index >= m_facts.columns.size()) {
            return;
        }
        const ColumnMapping& mapping = m_facts.columns[column.index];
        CheckDriven(report, column.id, L"map", mapping.drives);
        for (const CategoryParameter& parameter : mapping.supplies) {
            Add(report, column.id, L"map to category parameter " + TextOf(parameter.id),
                parameter.problem);
        }
    }

private:
    static void Add(const FindingReport& report, const CString& column, const CString& what,
                    const CString& problem)
    {
        if (!problem.empty()) {
            report.Add(Rule::MappingBroken, {.column = column}, {what + L": " + problem});
        }
    }
    static void CheckDriven(const FindingReport& report, const CString& column, const CString& what,
                            const std::vector<DrivenParameter>& drives)
    {
        for (const DrivenParameter& driven : drives) {
            Add(report, column,
                FormatText(L"%s to parameter %s of template %s",
                           {what, TextOf(driven.parameterId), TextOf(driven.templateName)}),
                driven.problem);
        }
    }
    // Nested as deep as documents may be.
    static void CheckParameters(const FindingReport& report, const CString& name,
                                const std::vector<TemplateParameter>& parameters)
    {
        for (const TemplateParameter& parameter : parameters) {
            Add(report, {}, name + L", parameter " + TextOf(parameter.id), parameter.problem);
            CheckParameters(report, name, parameter.parameters);
        }
    }

    MappingFacts m_facts;
};

} // namespace

std::unique_ptr<FamilyCheck> MakeMappingCheck(const CheckedFamily& family)
{
    return std::make_unique<MappingCheck>(family);
}

} // namespace encap::cli
