#include <optional>
#include <vector>

#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

using Positions = std::vector<std::uint32_t>;

enum G1Column : std::uint32_t { ID3 = 2, ID4 = 3, ID5 = 4, ID6 = 5, V3 = 8 };

/// Sorts copies of g1, since sorting is done in place; making and releasing a copy does not count.
void SortG1(benchmark::State& state, const Positions& keys)
{
    const DataFrame table = ReadG1Columns(state);
    std::optional<DataFrame> sorted;
    for (auto _ : state) {
        state.PauseTiming();
        sorted.reset();
        sorted.emplace(table);
        state.ResumeTiming();
        if (sorted->Sort(keys, true) != ERROR_NONE) {
            state.SkipWithError("sorting failed");
            break;
        }
    }
    if (!state.error_occurred()) {
        state.counters["check"] = CheckOf(*sorted, true);
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}

void UniqueOfG1(benchmark::State& state, std::uint32_t column)
{
    const DataFrame table = ReadG1Columns(state);
    Run(
        state, [&] { return table.Unique(column); }, false);
}

void DuplicatedOfG1(benchmark::State& state)
{
    const DataFrame table = ReadG1Columns(state);
    Run(
        state,
        [&] {
            return table.Duplicated({ID4, ID5}, "first");
        },
        true);
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, auto* function, auto... argument) {
        return benchmark::RegisterBenchmark(name, function, argument...)->Unit(benchmark::kMillisecond);
    };
    add("sort_i32", &SortG1, Positions{ID6});
    add("sort_f64", &SortG1, Positions{V3});
    add("sort_str", &SortG1, Positions{ID3});
    add("sort_two", &SortG1, Positions{ID4, V3});
    add("unique_i32", &UniqueOfG1, ID6);
    add("unique_str", &UniqueOfG1, ID3);
    return add("duplicated_two", &DuplicatedOfG1);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
