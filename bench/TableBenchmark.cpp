#include "FreeProvider.h"
#include "TableGenerator.h"
#include "encap/encap.h"
#include "encap/host/StandaloneEvaluatorProvider.h"

#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

namespace {

std::wstring Widened(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

/// The texts of one generated family.
struct FamilyTexts {
    explicit FamilyTexts(int rows, bool localized = false)
        : shape{rows, localized}, familyUtf8(bench::GenerateFamily(shape)),
          family(Widened(familyUtf8)), strings{Widened(bench::GenerateStrings(shape))}
    {
    }

    [[nodiscard]] std::unique_ptr<CEncapFamily> Open(IEvaluatorProvider& provider,
                                                     const wchar_t* cache = L"") const
    {
        return std::make_unique<CEncapFamily>(family.c_str(), strings, cache, &provider, false);
    }

    bench::TableShape shape;
    std::string familyUtf8;
    std::wstring family;
    std::vector<CString> strings;
};

/// Reads every cell; the number of cells that have a value.
int64_t ReadAll(CEncapFamilyTable& table)
{
    int64_t values = 0;
    CString value;
    for (const CString& rowId : table.GetAllRowIDs()) {
        for (const CString& columnId : table.GetAllColumnIDs()) {
            values += table.GetValue(rowId.c_str(), columnId.c_str(), L"en", value) ==
                              CTableEvaluator::EvaluateOK
                          ? 1
                          : 0;
        }
    }
    return values;
}

void CountCells(benchmark::State& state, int64_t cellsARow)
{
    state.SetItemsProcessed(state.iterations() * state.range(0) * cellsARow);
}

void BM_ParseBareTree(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        xmlDoc* document =
            xmlReadMemory(texts.familyUtf8.data(), static_cast<int>(texts.familyUtf8.size()),
                          nullptr, "UTF-8", XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_HUGE);
        benchmark::DoNotOptimize(document);
        xmlFreeDoc(document);
    }
    CountCells(state, bench::kColumnCount);
}

void BM_Open(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    bench::FreeProvider provider;
    for (auto _ : state) {
        const auto family = texts.Open(provider);
        benchmark::DoNotOptimize(family.get());
    }
    CountCells(state, bench::kColumnCount);
}

template <class Provider>
void EvaluateAll(benchmark::State& state, bool localized)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)), localized);
    Provider provider;
    for (auto _ : state) {
        state.PauseTiming();
        auto family = texts.Open(provider);
        state.ResumeTiming();
        const int64_t values = ReadAll(*family->GetEncapFamilyTable());
        if (values != state.range(0) * bench::kColumnCount) {
            state.SkipWithError("a cell has no value");
        }
        state.PauseTiming();
        family.reset();
        state.ResumeTiming();
    }
    CountCells(state, bench::kColumnCount);
}

void BM_EvaluateFreeProvider(benchmark::State& state)
{
    EvaluateAll<bench::FreeProvider>(state, false);
}

void BM_EvaluateStandaloneProvider(benchmark::State& state)
{
    EvaluateAll<CStandaloneEvaluatorProvider>(state, false);
}

void BM_EvaluateLocalized(benchmark::State& state)
{
    EvaluateAll<bench::FreeProvider>(state, true);
}

/// A folder for a cache file, removed with the object.
class CacheFolder {
public:
    CacheFolder() : m_path(std::filesystem::temp_directory_path() / "encap-bench-cache")
    {
        std::filesystem::create_directories(m_path);
    }
    ~CacheFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CacheFolder(const CacheFolder&) = delete;
    CacheFolder& operator=(const CacheFolder&) = delete;

    [[nodiscard]] std::wstring Path() const { return m_path.wstring(); }

private:
    std::filesystem::path m_path;
};

/// Seconds of the processor.
struct ReadingTime {
    double making = 0.0;  ///< of a table over a parsed document, its cache file loaded
    double reading = 0.0; ///< of every cell
};

ReadingTime TimeReading(const XMLNode& node, CEncapFamily& family, const wchar_t* cache)
{
    const std::clock_t start = std::clock();
    CEncapFamilyTable table(node, &family, cache);
    const std::clock_t made = std::clock();
    benchmark::DoNotOptimize(ReadAll(table));
    constexpr double kTicks = CLOCKS_PER_SEC;
    return {static_cast<double>(made - start) / kTicks,
            static_cast<double>(std::clock() - made) / kTicks};
}

/// Loading the cache file and reading every cell, against evaluating every cell: "ratio" is at most
/// a third, or "ns_a_cell" at most 150.
void BM_WarmOpen(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    bench::FreeProvider provider;
    const CacheFolder folder;
    const std::wstring cache = folder.Path();
    const auto family = texts.Open(provider);
    XMLNode node;
    family->GetFamilyXML().GetRootNode().GetChildNode(L"FamilyTable", node);
    TimeReading(node, *family, cache.c_str());
    double warm = 0.0;
    double evaluating = 0.0;
    for (auto _ : state) {
        const ReadingTime cold = TimeReading(node, *family, L"");
        const ReadingTime cached = TimeReading(node, *family, cache.c_str());
        const double seconds = cached.making - cold.making + cached.reading;
        state.SetIterationTime(seconds);
        warm += seconds;
        evaluating += cold.reading;
    }
    CountCells(state, bench::kColumnCount);
    const auto cells = static_cast<double>(state.iterations() * state.range(0));
    state.counters["ratio"] = warm / evaluating;
    state.counters["ns_a_cell"] = warm * 1e9 / (cells * bench::kColumnCount);
}

void BM_ReadAgain(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    bench::FreeProvider provider;
    const auto family = texts.Open(provider);
    ReadAll(*family->GetEncapFamilyTable());
    for (auto _ : state) {
        benchmark::DoNotOptimize(ReadAll(*family->GetEncapFamilyTable()));
    }
    CountCells(state, bench::kColumnCount);
}

void BM_EditAndDependents(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    CStandaloneEvaluatorProvider provider;
    const auto family = texts.Open(provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    ReadAll(table);
    const CString row = table.GetRowIDByIndex(static_cast<int>(state.range(0)) / 2);
    bool flip = false;
    CString value;
    for (auto _ : state) {
        flip = !flip;
        table.SetValue(row.c_str(), L"C01", flip ? L"12.5" : L"13.5", true);
        for (const wchar_t* column : {L"F1", L"F2", L"F3", L"F4", L"F8"}) {
            table.GetValue(row.c_str(), column, L"en", value);
        }
    }
}

void BM_Save(benchmark::State& state)
{
    const FamilyTexts texts(static_cast<int>(state.range(0)));
    bench::FreeProvider provider;
    const auto family = texts.Open(provider);
    for (auto _ : state) {
        CComBSTR xml;
        family->GetFamilyXML().GetXml(xml);
        benchmark::DoNotOptimize(xml.Length());
    }
    CountCells(state, bench::kColumnCount);
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    bench->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

void BothEnds(benchmark::internal::Benchmark* bench)
{
    bench->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_ParseBareTree)->Apply(Sizes);
BENCHMARK(BM_Open)->Apply(Sizes);
BENCHMARK(BM_EvaluateFreeProvider)->Apply(Sizes);
BENCHMARK(BM_EvaluateStandaloneProvider)->Apply(Sizes);
BENCHMARK(BM_EvaluateLocalized)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WarmOpen)->Apply(Sizes)->UseManualTime();
BENCHMARK(BM_ReadAgain)->Apply(Sizes);
BENCHMARK(BM_EditAndDependents)->Apply(BothEnds);
BENCHMARK(BM_Save)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
