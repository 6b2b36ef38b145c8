#pragma once

#include "encap/evaluation/EvaluatorProvider.h"
#include "encap/foundation/NumberText.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace encap::test {

/// A host that computes nothing: it answers from tables, records every call and can be told to
/// throw or to run code in the middle of a call. Without an entry a whole number text is its own
/// value, units convert by the factor 1, every unit is its own database unit, and a material has no
/// name; any other expression fails.
class FakeProvider : public IEvaluatorProvider {
public:
    /// The operations by number, as they stand in the interface.
    enum Slot { Evaluate = 1, Convert = 2, DatabaseUnit = 3, MaterialName = 4, MaterialKey = 5 };

    struct Call {
        Slot slot;
        std::vector<CString> texts; ///< the text arguments in order
    };
    struct Answer {
        int32_t status = 0;
        double value = 0.0;
    };

    std::map<CString, Answer> expressions;               ///< by expression text
    std::map<std::pair<CString, CString>, double> units; ///< factor, by from and to
    std::map<CString, CString> databaseUnits;            ///< by unit
    std::map<CString, CString> materials;                ///< name, by key
    /// Runs at the start of every call, after it was recorded; may call back into the family.
    std::function<void(const Call&)> onCall;
    int throwInSlot = 0; ///< the slot whose calls throw
    std::vector<Call> calls;

    using IEvaluatorProvider::GetEncapFamily;

    [[nodiscard]] std::size_t CountOf(Slot slot) const
    {
        std::size_t count = 0;
        for (const Call& call : calls) {
            count += call.slot == slot ? 1U : 0U;
        }
        return count;
    }

    int32_t EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                               double& value) override
    {
        Record(Evaluate, {expression, unit});
        const auto known = expressions.find(expression);
        if (known != expressions.end()) {
            value = known->second.value;
            return known->second.status;
        }
        return ReadWhole(expression, value) ? 0 : -1;
    }

    int32_t ConvertUnits(const wchar_t* value, const wchar_t* fromUnit, const wchar_t* toUnit,
                         double& result) override
    {
        Record(Convert, {value, fromUnit, toUnit});
        double number = 0.0;
        if (!ReadWhole(value, number)) {
            return -1;
        }
        const auto factor = units.find({fromUnit, toUnit});
        result = number * (factor != units.end() ? factor->second : 1.0);
        return 0;
    }

    int32_t GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit) override
    {
        Record(DatabaseUnit, {unit});
        const auto known = databaseUnits.find(unit);
        databaseUnit = known != databaseUnits.end() ? known->second : unit;
        return 0;
    }

    int32_t GetMaterialName(const wchar_t* key, CString& name) override
    {
        Record(MaterialName, {key});
        const auto known = materials.find(key);
        if (known == materials.end()) {
            return -1;
        }
        name = known->second;
        return 0;
    }

    int32_t GetMaterialRefKey(const wchar_t* name, CString& key) override
    {
        Record(MaterialKey, {name});
        for (const auto& [knownKey, knownName] : materials) {
            if (knownName == name) {
                key = knownKey;
                return 0;
            }
        }
        return -1;
    }

private:
    void Record(Slot slot, std::vector<CString> texts)
    {
        calls.push_back({slot, std::move(texts)});
        if (onCall) {
            const Call call = calls.back(); // a call-back may record further calls
            onCall(call);
        }
        if (slot == throwInSlot) {
            throw std::runtime_error("the host failed");
        }
    }

    static bool ReadWhole(std::wstring_view text, double& value)
    {
        const LeadingNumber number = ReadLeadingNumber(text);
        value = number.value;
        return number.consumed > 0 && number.consumed == text.size();
    }
};

} // namespace encap::test
