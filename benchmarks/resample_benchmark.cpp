#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

/// The table times: moments of a week in no order, and two columns of numbers; without columns, and the benchmark
/// marked as skipped, without data.
DataFrame ReadTimes(benchmark::State& state)
{
    const std::vector<std::int32_t> stamps = ReadRaw<std::int32_t>(state, "times/stamp.bin", ROWS);
    const DataFrame numbers[] = {
        ReadColumns<double>(state, "times/a.bin", 1), ReadColumns<double>(state, "times/b.bin", 1)};
    if (state.error_occurred()) {
        return {};
    }
    SeriesPtr times = BuildSeries({ROWS, CONTAINER_ARRAY, TESSERA_DATETIME}, "stamp");
    std::copy(stamps.begin(), stamps.end(), CursorAs<CONTAINER_ARRAY, DateTime>(times->GetIterator()).mHead);
    DataFrame::Columns columns;
    columns.push_back(std::move(times));
    DataFrame table(std::move(columns));
    for (const DataFrame& column : numbers) {
        if (table.AppendColInplace(column) != ERROR_NONE) {
            state.SkipWithError("no memory");
        }
    }
    return table;
}

void ResampleMean(benchmark::State& state)
{
    const DataFrame table = ReadTimes(state);
    Run(
        state,
        [&] {
            return table.Resample(0, DateTime(60), true, true)
                .Apply(Func::FunctorFactory<Func::Mean, Func::UnaryBase>{});
        },
        true);
}
BENCHMARK(ResampleMean)->Name("resample_mean")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace MERVO::Tessera::Bench
