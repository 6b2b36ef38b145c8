#pragma once

#include "encap/family/Family.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/XMLNode.h"
#include "fuzz/Support.h"

#include <memory>
#include <vector>

namespace encap::fuzz {

/// Calls on one family that the bytes of an input choose, with arguments that they choose: names
/// that exist, names that do not, any text. Foreign edits of the document are among them, and a
/// host that goes on with the script in the middle of an evaluation.
class EditScript {
public:
    explicit EditScript(std::string_view input);

    /// Runs the script to its end.
    void Run();

private:
    /// The standalone provider, except that it sometimes edits the family that asks it.
    class Host : public IEvaluatorProvider {
    public:
        explicit Host(EditScript& script) : m_script(script) {}
        int32_t EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                                   double& value) override;
        int32_t ConvertUnits(const wchar_t* value, const wchar_t* fromUnit, const wchar_t* toUnit,
                             double& result) override;
        int32_t GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit) override;
        int32_t GetMaterialName(const wchar_t* key, CString& name) override;
        int32_t GetMaterialRefKey(const wchar_t* name, CString& key) override;

    private:
        EditScript& m_script;
    };

    void Step();
    void CallBack();

    void EditStructure();
    void EditCells();
    void EditColumn();
    void EditFormula();
    void EditFamily();
    void EditTexts();
    void EditMapping();
    void EditTemplate();
    void EditDocument();
    void Read();
    void Reopen();

    CEncapFamilyTable& Table() { return *m_family->GetEncapFamilyTable(); }
    /// Null when the table has no column.
    CEncapFamilyColumn* AnyColumn();
    CString AnyRowId();
    CString AnyColumnId();
    CString AnyText();
    CString AnyLanguage();
    int AnyIndex(uint64_t count);
    XMLNode AnyNode(const XMLNode& root);

    Choices m_choices;
    Host m_host{*this};
    bool m_hostEdits = false;
    int m_depth = 0; ///< of calls back
    int m_steps = 0;
    std::unique_ptr<CEncapFamily> m_family;
    std::unique_ptr<CEncapFamily> m_source; ///< of links
    std::vector<XMLNode> m_heldNodes;       ///< wrappers that outlive removals
};

} // namespace encap::fuzz
