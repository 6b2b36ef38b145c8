#include "peers/Floor.h"

#include "TableGenerator.h"

#include <string>

#include <benchmark/benchmark.h>

// The floor under the library's own times: the same cells by a program that knows the formulas.
namespace {

void BM_FloorParse(benchmark::State& state)
{
    const std::string family = bench::GenerateFamily({static_cast<int>(state.range(0)), false});
    for (auto _ : state) {
        bench::FloorTable table;
        if (!bench::ReadFloorTable(family, table)) {
            state.SkipWithError("the family does not parse");
        }
        benchmark::DoNotOptimize(table.characters.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * bench::kColumnCount);
}

void BM_FloorEvaluate(benchmark::State& state)
{
    const std::string family = bench::GenerateFamily({static_cast<int>(state.range(0)), false});
    bench::FloorTable table;
    if (!bench::ReadFloorTable(family, table)) {
        state.SkipWithError("the family does not parse");
    }
    for (auto _ : state) {
        bench::FloorValues values;
        bench::EvaluateFloorTable(table, values);
        benchmark::DoNotOptimize(values.ends[0].data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * bench::kColumnCount);
}

BENCHMARK(BM_FloorParse)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FloorEvaluate)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
