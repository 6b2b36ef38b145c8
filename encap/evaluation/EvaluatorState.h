#pragma once

#include "encap/evaluation/CellEvaluator.h"
#include "encap/evaluation/ExpressionEvaluator.h"
#include "encap/evaluation/HostCalls.h"
#include "encap/evaluation/Tokens.h"

namespace encap {

/// What a table's evaluator is made of.
struct EvaluatorState {
    EvaluatorState(CEncapFamilyTable& table, IEvaluatorProvider* provider)
        : host(provider), cells(table, host, tokens), expressions(table, host, tokens)
    {
    }

    HostCalls host;
    TokenCache tokens;
    CellEvaluator cells;
    ExpressionEvaluator expressions;
};

} // namespace encap
