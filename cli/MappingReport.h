#pragma once

namespace encap::cli {

class JsonWriter;
class OpenFamily;
class Results;

// What the columns and constants of a family are mapped to, damaged entries with what is wrong with
// them.

/// Four tables for people, each below a line that says what it holds. Columns that nothing maps are
/// left out.
void PrintMapping(const OpenFamily& opened, Results& results);

/// The value of "mapping": an object of "columns" (all of them), "templates" and "constants". All
/// keys are always there; what the document does not hold is null, as is "problem" where there is
/// none.
void WriteMapping(JsonWriter& json, const OpenFamily& opened);

} // namespace encap::cli
