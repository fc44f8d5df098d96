#include <optional>

#include "benchmarks/bench_data.h"

namespace MERVO::Tessera::Bench {
namespace {

constexpr std::uint32_t COLUMNS = 10;

/// Applies something to a table that is new each time, and tells the check of its cells.
template <typename Apply>
void FillTable(benchmark::State& state, Apply apply)
{
    std::optional<DataFrame> result;
    for (auto _ : state) {
        state.PauseTiming(); // releasing the last result is no part of the next
        result.emplace();
        state.ResumeTiming();
        if (apply(*result) != ERROR_NONE) {
            state.SkipWithError("the transform failed");
            break;
        }
        benchmark::ClobberMemory();
    }
    if (result) {
        state.counters["check"] = CheckOf(*result, true);
    }
}

void Transform(benchmark::State& state, const UnaryFactory& make)
{
    const DataFrame source = ReadColumns<double>(state, "num.bin", COLUMNS);
    FillTable(state, [&](DataFrame& result) { return result.ApplyInplace(make, source); });
    state.SetBytesProcessed(state.iterations() * std::int64_t{ROWS} * COLUMNS * std::int64_t{2 * sizeof(double)});
}

/// Looks a column of g1 up in every tenth of the numbers 1 to 10,000.
template <typename T>
void FindIn(benchmark::State& state, const DataFrame& source, const std::vector<T>& sought)
{
    const Func::FunctorFactory<Func::IsIn, Func::BinaryBase> make;
    DataFrame compare;
    if (compare.ReadVector(sought, {static_cast<unsigned int>(sought.size()), 1}) != ERROR_NONE) {
        state.SkipWithError("no table to look into");
    }
    FillTable(state, [&](DataFrame& result) { return result.ApplyInplace(make, source, compare); });
    state.SetItemsProcessed(state.iterations() * std::int64_t{ROWS});
}

constexpr std::int32_t MOST_SOUGHT = 10000;

void FindNumbers(benchmark::State& state)
{
    std::vector<std::int32_t> sought;
    for (std::int32_t number = 1; number < MOST_SOUGHT; number += 10) {
        sought.push_back(number);
    }
    FindIn(state, ReadColumns<std::int32_t>(state, "g1/id6.bin", 1), sought);
}

void FindTexts(benchmark::State& state)
{
    constexpr std::size_t LENGTH = 12; // "id" and ten digits
    const std::vector<char> characters = ReadRaw<char>(state, "g1/id3.bin", ROWS * LENGTH);
    std::vector<std::string> texts;
    for (std::size_t first = 0; first < characters.size(); first += LENGTH) {
        texts.emplace_back(&characters[first], LENGTH);
    }
    DataFrame source;
    if (source.ReadVector(std::move(texts), {ROWS, 1}) != ERROR_NONE) {
        state.SkipWithError("no table of texts");
    }
    std::vector<std::string> sought;
    for (std::int32_t number = 1; number < MOST_SOUGHT; number += 10) {
        const std::string digits = std::to_string(number);
        sought.push_back("id" + std::string(LENGTH - 2 - digits.size(), '0') + digits);
    }
    FindIn(state, source, sought);
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, auto&&... run) {
        return benchmark::RegisterBenchmark(name, run...)->Unit(benchmark::kMillisecond);
    };
    add("diff_f64", &Transform, Func::FunctorFactory<Func::Diff, Func::UnaryBase, std::int32_t>{1});
    add("round2_f64", &Transform, Func::FunctorFactory<Func::Round, Func::UnaryBase, std::uint32_t>{2});
    add("replace_f64", [](benchmark::State& state) {
        const std::vector<double> first = ReadRaw<double>(state, "num.bin", 1);
        const double sought = first.empty() ? 0.0 : first[0];
        Transform(state, Func::FunctorFactory<Func::Replace, Func::UnaryBase, double, double>{sought, 0.0});
    });
    add("isin_i32", &FindNumbers);
    return add("isin_str", &FindTexts);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
