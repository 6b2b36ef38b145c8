#pragma once

#include "encap/host/Arithmetic.h"
#include "encap/host/Words.h"

namespace encap::host {

/// Applies a function of one argument; the result replaces the argument.
/// REQUIRES: a function whose arity is one.
[[nodiscard]] ErrorKind CallUnary(Word function, Value& argument, const Arithmetic& arithmetic);
/// Applies a function of two arguments, min and max among them; the result replaces the left one.
/// REQUIRES: a function whose arity begins at two.
[[nodiscard]] ErrorKind CallBinary(Word function, Value& left, Value right,
                                   const Arithmetic& arithmetic);
/// if(condition; then; otherwise): both branches must fit each other; the one that is taken, or NaN
/// where the condition has no result, replaces then.
[[nodiscard]] ErrorKind Choose(const Value& condition, Value& then, Value otherwise,
                               const Arithmetic& arithmetic);

} // namespace encap::host
