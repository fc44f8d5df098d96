#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

/// The bits of v3 > 50.
DataFrame HalfOf(const DataFrame& table)
{
    const double* values = CursorAs<CONTAINER_ARRAY, double>(table.GetColumn(8)->GetIterator()).mHead;
    DataFrame filter = GetEmptyDataFrame({ROWS, 1}, TESSERA_BOOL);
    Func::AnyPlace<bool> mark(filter.GetColumn(0)->GetIterator());
    for (std::uint32_t row = 0; row < ROWS; ++row, ++mark) {
        *mark = values[row] > 50.0;
    }
    return filter;
}

void FilterHalf(benchmark::State& state)
{
    const DataFrame table = ReadG1Columns(state);
    const DataFrame filter = state.error_occurred() ? DataFrame() : HalfOf(table);
    Run(
        state, [&] { return table.SelectRow(filter); }, true);
}

void TakePerm(benchmark::State& state)
{
    const DataFrame table = ReadG1Columns(state);
    const std::vector<std::uint32_t> positions = ReadRaw<std::uint32_t>(state, "perm.bin", ROWS);
    Run(
        state, [&] { return table.SelectRow(positions); }, true);
}

void DropNanRowsAny(benchmark::State& state)
{
    const DataFrame table = ReadColumns<double>(state, "numnan.bin", 10);
    Run(
        state, [&] { return table.DropNanRow(true); }, true);
}

BENCHMARK(FilterHalf)->Name("filter_half")->Unit(benchmark::kMillisecond);
BENCHMARK(TakePerm)->Name("take_perm")->Unit(benchmark::kMillisecond);
BENCHMARK(DropNanRowsAny)->Name("dropna_rows_any")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace MERVO::Tessera::Bench
