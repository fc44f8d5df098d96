#pragma once

#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {

/// The table g1 by column, strings of fixed widths and numbers; without columns, and the benchmark marked as skipped,
/// without data.
inline DataFrame ReadG1Columns(benchmark::State& state)
{
    DataFrame::Columns columns;
    const auto addTexts = [&](const std::string& name, std::size_t width) {
        const std::vector<char> bytes = ReadRaw<char>(state, "g1/" + name + ".bin", ROWS * width);
        SeriesPtr column = BuildSeries({ROWS, CONTAINER_ARRAY, TESSERA_STRING}, name);
        std::string* cell = CursorAs<CONTAINER_ARRAY, std::string>(column->GetIterator()).mHead;
        for (std::size_t first = 0; first < bytes.size(); first += width, ++cell) {
            cell->assign(bytes.data() + first, width);
        }
        columns.push_back(std::move(column));
    };
    const auto addNumbers = [&]<typename T>(const std::string& name, std::type_identity<T>) {
        const std::vector<T> values = ReadRaw<T>(state, "g1/" + name + ".bin", ROWS);
        SeriesPtr column = BuildSeries({ROWS, CONTAINER_ARRAY, TYPE_ID_OF<T>}, name);
        std::copy(values.begin(), values.end(), CursorAs<CONTAINER_ARRAY, T>(column->GetIterator()).mHead);
        columns.push_back(std::move(column));
    };
    addTexts("id1", 5);
    addTexts("id2", 5);
    addTexts("id3", 12);
    for (const char* name : {"id4", "id5", "id6", "v1", "v2"}) {
        addNumbers(name, std::type_identity<std::int32_t>{});
    }
    addNumbers("v3", std::type_identity<double>{});
    return state.error_occurred() ? DataFrame() : DataFrame(std::move(columns));
}

/// The sum over all cells of a table like g1, those of a row weighed by its place.
inline double CheckOfG1(const DataFrame& table)
{
    return CheckOf<std::string>(table[DataFrameView::NameRange{"id1", "id4"}], true) +
        CheckOf<std::int32_t>(table[DataFrameView::NameRange{"id4", "v3"}], true) + CheckOf<double>(table["v3"], true);
}

/// Runs an operation on a table over and over, each time into a new table.
template <typename Operation, typename Check>
void Run(benchmark::State& state, const Operation& operation, const Check& check)
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
    state.counters["check"] = check(*result);
    state.SetItemsProcessed(state.iterations() * ROWS);
}

} // namespace MERVO::Tessera::Bench
