#pragma once

#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {

/// The table g1 by column, strings of fixed widths and numbers; without columns, and the benchmark marked as skipped,
/// without data.
inline DataFrame ReadG1Columns(benchmark::State& state)
{
    DataFrame::Columns columns;
    columns.push_back(ReadTexts(state, "g1/id1.bin", "id1", 5));
    columns.push_back(ReadTexts(state, "g1/id2.bin", "id2", 5));
    columns.push_back(ReadTexts(state, "g1/id3.bin", "id3", 12));
    for (const std::string name : {"id4", "id5", "id6", "v1", "v2"}) {
        columns.push_back(ReadNumbers<std::int32_t>(state, "g1/" + name + ".bin", name));
    }
    columns.push_back(ReadNumbers<double>(state, "g1/v3.bin", "v3"));
    return state.error_occurred() ? DataFrame() : DataFrame(std::move(columns));
}

/// Runs an operation on a table over and over, each time into a new table. The check leaves out the first columns.
template <typename Operation>
void Run(benchmark::State& state, const Operation& operation, bool isOrdered, unsigned int uncheckedColumns = 0)
{
    if (state.error_occurred()) {
        return;
    }
    std::optional<DataFrame> result;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last result is no part of the next run
        result.reset();
        state.ResumeTiming();
        result.emplace(operation());
    }
    if (result->GetError().code != ERROR_NONE) {
        state.SkipWithError("the operation failed");
    }
    state.counters["check"] = CheckOf(*result, isOrdered, uncheckedColumns);
    state.SetItemsProcessed(state.iterations() * ROWS);
}

} // namespace MERVO::Tessera::Bench
