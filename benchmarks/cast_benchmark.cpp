#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

constexpr std::uint32_t COLUMNS = 10;

/// Casts a table to type D, into a new table each time.
template <typename D>
void CastTable(benchmark::State& state, const DataFrame& source)
{
    const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID> make(TYPE_ID_OF<D>);
    std::optional<DataFrame> result;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last result is no part of the next cast
        result.emplace();
        state.ResumeTiming();
        if (result->ApplyInplace(make, source) != ERROR_NONE) {
            state.SkipWithError("the cast failed");
            break;
        }
    }
    if (result) {
        state.counters["check"] = CheckOf(*result, true);
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t{ROWS} * source.ColumnCount());
}

template <typename S>
void NumbersToText(benchmark::State& state, const char* file)
{
    CastTable<std::string>(state, ReadColumns<S>(state, file, COLUMNS));
}

/// A column of g1.csv as it stands there; a table without columns, and the benchmark marked as skipped, without data.
DataFrame ReadFields(benchmark::State& state, unsigned int column)
{
    std::ifstream stream(DataPath("g1.csv"));
    std::vector<std::string> fields;
    std::string line;
    for (std::getline(stream, line); fields.size() < ROWS && std::getline(stream, line);) {
        std::size_t first = 0;
        for (unsigned int i = 0; i < column; ++i) {
            first = line.find(',', first) + 1;
        }
        fields.push_back(line.substr(first, line.find(',', first) - first));
    }
    DataFrame table;
    if (fields.size() != ROWS || table.ReadVector(std::move(fields), {ROWS, 1}) != ERROR_NONE) {
        state.SkipWithError(("no data in " + DataPath("g1.csv") + "; benchmarks/make_data.py writes them").c_str());
    }
    return table;
}

template <typename D>
void TextToNumbers(benchmark::State& state, unsigned int column)
{
    CastTable<D>(state, ReadFields(state, column));
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    constexpr unsigned int ID6 = 5;
    constexpr unsigned int V3 = 8;
    const auto cast = [](const char* name, auto* function, auto argument) {
        return benchmark::RegisterBenchmark(name, function, argument)->Unit(benchmark::kMillisecond);
    };
    cast("cast_i32_str", &NumbersToText<std::int32_t>, "i32.bin");
    cast("cast_f64_str", &NumbersToText<double>, "num.bin");
    cast("cast_str_f64", &TextToNumbers<double>, V3);
    return cast("cast_str_i32", &TextToNumbers<std::int32_t>, ID6);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
