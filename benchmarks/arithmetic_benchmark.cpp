#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

constexpr std::uint32_t COLUMNS = 10;

/// The columns of a table in reverse order, in memory of their own.
DataFrame Reversed(const DataFrame& table)
{
    DataFrame::Columns columns;
    for (unsigned int k = table.ColumnCount(); k-- > 0;) {
        columns.push_back(BuildSeries(table.GetColumn(k)->GetAttr(), table.GetColumn(k)->GetName()));
        Copy2Series(table.GetColumn(k)->GetIterator(), columns.back()->GetIterator());
    }
    return DataFrame(std::move(columns));
}

/// Computes a table from two tables of doubles.
template <typename Operator>
void CombineTables(benchmark::State& state, Operator combine)
{
    const DataFrame left = ReadColumns<double>(state, "num.bin", COLUMNS);
    const DataFrame right = Reversed(left);
    std::optional<DataFrame> result;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last result is no part of the next
        result.reset();
        state.ResumeTiming();
        result.emplace(combine(left, right));
        if (result->GetError().code != ERROR_NONE) {
            state.SkipWithError("the operator failed");
            break;
        }
        benchmark::ClobberMemory();
    }
    if (result) {
        state.counters["check"] = CheckOf(*result, true);
    }
    const std::int64_t inputs = 2 * std::int64_t{sizeof(double)};
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * inputs);
}

[[maybe_unused]] const bool REGISTERED = [] {
    const auto combine = [](const char* name, auto operation) {
        const auto run = [operation](benchmark::State& state) { CombineTables(state, operation); };
        benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
    };
    using Table = const DataFrameRef&;
    combine("add_f64", [](Table left, Table right) { return left + right; });
    combine("mul_f64", [](Table left, Table right) { return left * right; });
    combine("div_f64", [](Table left, Table right) { return left / right; });
    combine("greater_f64", [](Table left, Table right) { return left > right; });
    return true;
}();

} // namespace
} // namespace MERVO::Tessera::Bench
