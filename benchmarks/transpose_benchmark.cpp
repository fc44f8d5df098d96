#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

/// Turns 1000 columns of 1000 rows, the first million values of num.bin.
void TurnSquare(benchmark::State& state)
{
    constexpr std::uint32_t SIDE = 1000;
    std::vector<double> values = ReadRaw<double>(state, "num.bin", std::size_t{SIDE} * SIDE);
    DataFrame::Columns columns;
    for (std::size_t first = 0; first < values.size(); first += SIDE) {
        SeriesPtr column =
            BuildSeries({SIDE, CONTAINER_ARRAY, TYPE_ID_OF<double>}, "col_" + std::to_string(columns.size()));
        std::copy_n(values.data() + first, SIDE, CursorAs<CONTAINER_ARRAY, double>(column->GetIterator()).mHead);
        columns.push_back(std::move(column));
    }
    const DataFrame source(std::move(columns));
    DataFrame result;
    for (auto _ : state) {
        result = source.Transpose();
        benchmark::DoNotOptimize(result);
    }
    if (result.GetError().code != ERROR_NONE) {
        state.SkipWithError("the transposition failed");
    }
    state.counters["check"] = CheckOf(result, true);
    state.SetBytesProcessed(state.iterations() * std::int64_t{SIDE} * SIDE * std::int64_t{2 * sizeof(double)});
}
BENCHMARK(TurnSquare)->Name("transpose_1000")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace MERVO::Tessera::Bench
