#pragma once

#include "encap/foundation/Types.h"

#include <cstdint>

// Checks of the arguments that the actions of a command share.
namespace encap::cli {

/// The index of a position that counts from 1. Throws UsageError past the last one.
[[nodiscard]] int IndexOfPosition(int position, uint64_t last, const wchar_t* option);
/// Throws UsageError when an argument is given that an action does not take.
void AllowArgument(bool isGiven, bool isTaken, const wchar_t* argument, const CString& action);
/// As AllowArgument, and when it is missing where the action takes it.
void RequireArgument(bool isTaken, bool isGiven, const wchar_t* argument, const CString& action);

} // namespace encap::cli
