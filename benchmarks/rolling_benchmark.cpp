#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

/// Rolls over the first columns of num.bin by what `make` gives.
void RollColumns(benchmark::State& state, const UnaryFactory& make)
{
    constexpr std::uint32_t COLUMNS = 4;
    const DataFrame source = ReadColumns<double>(state, "num.bin", COLUMNS);
    DataFrame result;
    for (auto _ : state) {
        if (result.ApplyInplace(make, source) != ERROR_NONE) {
            state.SkipWithError("the rolling window failed");
            break;
        }
        benchmark::DoNotOptimize(result);
    }
    state.counters["check"] = CheckOf(result, true);
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * std::int64_t{2 * sizeof(double)});
}

template <template <ContainerID, typename...> class Rolling>
UnaryFactory MakeRolling(std::uint32_t window)
{
    return Func::FunctorFactory<Rolling, Func::UnaryBase, std::uint32_t, bool, std::uint32_t>{
        window, false, Func::RollingParam::NO_GAPS};
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, const UnaryFactory& make) {
        return benchmark::RegisterBenchmark(name, &RollColumns, make)->Unit(benchmark::kMillisecond);
    };
    add("rolling_mean_10", MakeRolling<Func::RollingMean>(10));
    add("rolling_mean_100", MakeRolling<Func::RollingMean>(100));
    return add("rolling_sum_1000", MakeRolling<Func::RollingSum>(1000));
}();

} // namespace
} // namespace MERVO::Tessera::Bench
