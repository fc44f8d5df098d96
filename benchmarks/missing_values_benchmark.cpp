#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

/// Makes columns from those of numnan.bin by what `make` gives.
void MendColumns(benchmark::State& state, const UnaryFactory& make)
{
    constexpr std::uint32_t COLUMNS = 10;
    const DataFrame source = ReadColumns<double>(state, "numnan.bin", COLUMNS);
    std::optional<DataFrame> result;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last result is no part of the next
        result.emplace();
        state.ResumeTiming();
        if (result->ApplyInplace(make, source) != ERROR_NONE) {
            state.SkipWithError("the functor failed");
            break;
        }
        benchmark::ClobberMemory();
    }
    if (result) {
        state.counters["check"] = CheckOf(*result, true);
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * std::int64_t{sizeof(double)});
}

[[maybe_unused]] const bool REGISTERED = [] {
    using namespace Func;
    const auto add = [](const char* name, const UnaryFactory& make) {
        benchmark::RegisterBenchmark(name, &MendColumns, make)->Unit(benchmark::kMillisecond);
    };
    using Fill = FunctorFactory<FillNan, UnaryBase, const char*>;
    add("ffill_f64", Fill{"ffill"});
    add("bfill_f64", Fill{"bfill"});
    add("interpolate_f64", FunctorFactory<Interpolate, UnaryBase>{});
    add("fillna_f64", FunctorFactory<ReplaceNan, UnaryBase, const char*>{"0"});
    add("isnan_f64", FunctorFactory<IsNan, UnaryBase>{});
    return true;
}();

} // namespace
} // namespace MERVO::Tessera::Bench
