#include "TableGenerator.h"
#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"
#include "encap/xml/XMLParser.h"

#include <string>

#include <benchmark/benchmark.h>

// One look-up in the middle of a table by a path of names, which is walked, and by an expression
// that only the XPath engine answers.
namespace {

void LookUp(benchmark::State& state, const std::wstring& query)
{
    const std::string family = bench::GenerateFamily({static_cast<int>(state.range(0)), false});
    const XMLParser document(std::wstring(family.begin(), family.end()));
    const XMLNode root = document.GetRootNode();
    for (auto _ : state) {
        XMLNodeArray found;
        if (!root.SelectChildNodes(query.c_str(), found) || found.size() != 1) {
            state.SkipWithError("the cell is not found");
        }
        benchmark::DoNotOptimize(found);
    }
}

void BM_LookUpByWalk(benchmark::State& state)
{
    LookUp(state, L"FamilyTable/Rows/Row[@RowId='row-500']/Cell[@ColumnId='C07']");
}

void BM_LookUpByEngine(benchmark::State& state)
{
    LookUp(state, L"FamilyTable/Rows/Row[@RowId='row-500'][1]/Cell[@ColumnId='C07'][1]");
}

BENCHMARK(BM_LookUpByWalk)->Arg(1'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LookUpByEngine)->Arg(1'000)->Unit(benchmark::kMicrosecond);

} // namespace
