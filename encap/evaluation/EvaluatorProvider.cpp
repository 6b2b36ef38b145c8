#include "encap/evaluation/EvaluatorProvider.h"

// Here, so that the class has one home for its virtual table in a shared build.
IEvaluatorProvider::~IEvaluatorProvider() = default;
