#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

void PivotMean(benchmark::State& state)
{
    const DataFrame table = ReadG1Columns(state);
    constexpr std::uint32_t ID4 = 3;
    constexpr std::uint32_t ID5 = 4;
    constexpr std::uint32_t V3 = 8;
    Run(
        state,
        [&] {
            return table.PivotTable<double>(
                {{V3}, {ID4}, {ID5}}, Func::FunctorFactory<Func::Mean, Func::UnaryBase>{}, 0.0);
        },
        false);
}
BENCHMARK(PivotMean)->Name("pivot_mean")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace MERVO::Tessera::Bench
