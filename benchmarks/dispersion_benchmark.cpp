#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

/// Reduces each column of num.bin to a double by what `make` gives.
void ReduceColumns(benchmark::State& state, const UnaryFactory& make)
{
    constexpr std::uint32_t COLUMNS = 10;
    const DataFrame source = ReadColumns<double>(state, "num.bin", COLUMNS);
    DataFrame result;
    for (auto _ : state) {
        if (result.ApplyInplace(make, source) != ERROR_NONE) {
            state.SkipWithError("the statistic failed");
            break;
        }
        benchmark::DoNotOptimize(result);
    }
    state.counters["check"] = CheckOf(result, false);
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * std::int64_t{sizeof(double)});
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    using namespace Func;
    const auto add = [](const char* name, const UnaryFactory& make) {
        return benchmark::RegisterBenchmark(name, &ReduceColumns, make)->Unit(benchmark::kMillisecond);
    };
    add("var_f64", FunctorFactory<Var, UnaryBase, std::uint32_t>{1});
    add("std_f64", FunctorFactory<Std, UnaryBase, std::uint32_t>{1});
    add("skew_f64", FunctorFactory<Skew, UnaryBase, bool, bool>{true, false});
    return add("kurt_f64", FunctorFactory<Kurt, UnaryBase, bool, bool>{true, false});
}();

} // namespace
} // namespace MERVO::Tessera::Bench
