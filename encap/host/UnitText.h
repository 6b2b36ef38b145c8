#pragma once

#include "encap/host/Scanner.h"
#include "encap/host/UnitTable.h"

namespace encap::host {

/// Reads the unit text behind a number in an expression: names joined by "*" or "/" without blanks,
/// each with digits as its power. It ends before a word of the language, a name that is called, and
/// everything else. Sets the error where a name is no unit or the product is refused.
/// REQUIRES: the scanner stands at a name.
[[nodiscard]] bool ReadUnitOfQuantity(Scanner& scanner, UnitTable& table, Unit& unit,
                                      EvaluationError& error);

/// Reads a whole unit text as the interface takes it: the above, and "^" with a signed whole
/// number, blanks as products and around "*" and "/", a leading 1 and "%". Read from left to right:
/// J/kg K is (J/kg)*K. An empty text is unitless.
[[nodiscard]] bool ReadUnitArgument(std::wstring_view text, UnitTable& table, Unit& unit,
                                    EvaluationError& error);

} // namespace encap::host
