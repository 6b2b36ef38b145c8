#pragma once

#include "encap/foundation/Types.h"

#include <optional>
#include <utility>
#include <vector>

class CEncapFamily;

// What a family document says about templates, maps and constants, entry by entry, together with
// what the library makes of each. Entries that it passes over are there too and say why in
// "problem", which is empty otherwise. A text that is not there at all, as an attribute that is
// missing, is null.
namespace encap::cli {

using OptionalText = std::optional<CString>;

/// One object of a model, in the words of the template parameters.
struct ModelObject {
    OptionalText objectType;
    OptionalText referenceKey;
    OptionalText subObjectId;
};

/// A template parameter that a column or a constant gives its value to.
struct DrivenParameter {
    OptionalText templateName;
    OptionalText parameterId; ///< as stored
    ModelObject object;       ///< null without such a parameter, empty where it says nothing
    CString problem;
};

/// A category parameter as a map refers to it.
struct CategoryParameter {
    OptionalText id;
    OptionalText category;
    OptionalText mnemonic; ///< of its definition in the family's categories
    CString problem;
};

struct ColumnMapping {
    OptionalText id;
    std::vector<DrivenParameter> drives;
    std::vector<CategoryParameter> supplies;
    CString problem; ///< for a column that only the maps name
};

/// A constant, its values as stored and what it drives.
struct ConstantMapping {
    CategoryParameter parameter;
    bool isLocalized = false;
    OptionalText value;
    /// Language and value, in the order of the strings documents.
    std::vector<std::pair<CString, CString>> localizedValues;
    std::vector<DrivenParameter> drives;
};

struct TemplateParameter {
    OptionalText id; ///< as stored
    ModelObject object;
    OptionalText valueType;
    OptionalText unit;
    std::vector<CString> columns;   ///< that drive it
    std::vector<CString> constants; ///< that drive it: identifiers of category parameters
    CString problem;
    std::vector<TemplateParameter> parameters; ///< nested in it
};

struct TemplateFacts {
    OptionalText name;
    OptionalText fileName;
    std::vector<TemplateParameter> parameters;
    CString problem;
};

struct MappingFacts {
    /// In table order, also those that nothing maps; behind them those that only the maps name.
    std::vector<ColumnMapping> columns;
    std::vector<TemplateFacts> templates; ///< in document order
    /// In document order; behind them those that only strings documents hold.
    std::vector<ConstantMapping> constants;
};

/// REQUIRES: the family has a table.
[[nodiscard]] MappingFacts ReadMapping(CEncapFamily& family);

} // namespace encap::cli
