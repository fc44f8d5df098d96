#include <array>
#include <cstring>

#include "benchmarks/bench_data.h"
#include "tessera/platform/multiversion.h"

/// What the machine can do at best where the order of additions is laid down: the figures to hold kernels against.
namespace MERVO::Tessera::Bench {
namespace {

using Elements = std::array<double, 1024>; // in the cache
constexpr std::int64_t ROLLED_ROWS = 4 * std::int64_t{ROWS};

/// Additions that each wait for the one before.
double AddInOrder(const Elements& values, std::int64_t count)
{
    double total = 0;
    for (std::int64_t done = 0; done < count; done += std::ssize(values)) {
        for (const double value : values) {
            total += value;
        }
    }
    return total;
}

template <std::size_t BYTES>
struct LanesOf {
    using Type [[gnu::vector_size(BYTES)]] = double;
};

/// Additions that don't wait for each other, as many at a time as the registers hold.
template <std::size_t BYTES>
[[gnu::always_inline]] inline double AddBy(const Elements& values, std::int64_t count)
{
    using Lanes = typename LanesOf<BYTES>::Type;
    constexpr std::size_t TOTALS = 8;
    constexpr std::size_t WIDTH = BYTES / sizeof(double);
    Lanes totals[TOTALS] = {};
    for (std::int64_t done = 0; done < count; done += std::ssize(values)) {
        for (std::size_t i = 0; i < values.size(); i += TOTALS * WIDTH) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < TOTALS; ++k) { // unrolled, the totals stay in registers
                Lanes next;
                std::memcpy(&next, &values[i + k * WIDTH], sizeof next);
                totals[k] += next;
            }
        }
    }
    for (std::size_t k = 1; k < TOTALS; ++k) {
        totals[0] += totals[k];
    }
    return totals[0][0];
}

#ifdef TESSERA_WIDE_VECTOR_BYTES
TESSERA_WIDE_VECTORS double AddWide(const Elements& values, std::int64_t count)
{
    return AddBy<TESSERA_WIDE_VECTOR_BYTES>(values, count);
}
#endif

double AddInLanes(const Elements& values, std::int64_t count)
{
#ifdef TESSERA_WIDE_VECTOR_BYTES
    if (HasWideVectors()) {
        return AddWide(values, count);
    }
#endif
    return AddBy<16>(values, count);
}

void TimeAdditions(benchmark::State& state, double (*add)(const Elements&, std::int64_t), std::int64_t count)
{
    alignas(64) Elements values;
    values.fill(1.0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(values.data());
        benchmark::DoNotOptimize(add(values, count));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, auto* function, std::int64_t count) {
        return benchmark::RegisterBenchmark(name, TimeAdditions, function, count)->Unit(benchmark::kMillisecond);
    };
    add("limit_additions_in_order", &AddInOrder, 10 * std::int64_t{ROWS});
    add("limit_additions_in_order_twice", &AddInOrder, 20 * std::int64_t{ROWS}); // a mean first, then its deviations
    add("limit_additions_of_window_100", &AddInLanes, 100 * ROLLED_ROWS);
    return add("limit_additions_of_window_1000", &AddInLanes, 1000 * ROLLED_ROWS);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
