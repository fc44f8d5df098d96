#include <string>
#include <vector>

#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

using Func::FunctorFactory;
using Func::UnaryBase;
using Names = std::vector<std::string>;

const UnaryFactory SUM = FunctorFactory<Func::Sum, UnaryBase>{};
const UnaryFactory MEAN = FunctorFactory<Func::Mean, UnaryBase>{};
const UnaryFactory STD = FunctorFactory<Func::Std, UnaryBase>{};

/// Evaluates groups of g1, all of whose columns are there.
void AggregateG1(benchmark::State& state, const Names& keys, const Names& values, std::vector<UnaryFactory> creators)
{
    const DataFrame table = ReadG1Columns(state);
    Run(
        state, [&] { return table.Aggregate(keys, values, creators); }, false);
}

void TransformG1(benchmark::State& state, const Names& keys, const Names& values, const UnaryFactory& creator)
{
    const DataFrame table = ReadG1Columns(state);
    Run(
        state, [&] { return table.TransformGroups(keys, values, creator); }, true, 1);
}

/// Sums by a key of very many values.
void AggregateMany(benchmark::State& state)
{
    DataFrame table = ReadColumns<std::int32_t>(state, "many_key.bin", 1);
    const DataFrame values = ReadColumns<double>(state, "num.bin", 2);
    if (!state.error_occurred() && table.AppendColInplace(values) != ERROR_NONE) {
        state.SkipWithError("the columns don't fit");
    }
    Run(
        state,
        [&] {
            return table.Aggregate({0}, {1, 2}, SUM);
        },
        false);
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, auto* function, auto... argument) {
        return benchmark::RegisterBenchmark(name, function, argument...)->Unit(benchmark::kMillisecond);
    };
    using Creators = std::vector<UnaryFactory>;
    add("group_q1", &AggregateG1, Names{"id1"}, Names{"v1"}, Creators{SUM});
    add("group_q2", &AggregateG1, Names{"id1", "id2"}, Names{"v1"}, Creators{SUM});
    add("group_q3", &AggregateG1, Names{"id3"}, Names{"v1", "v3"}, Creators{SUM, MEAN});
    add("group_q4", &AggregateG1, Names{"id4"}, Names{"v1", "v2", "v3"}, Creators{MEAN});
    add("group_q5", &AggregateG1, Names{"id6"}, Names{"v1", "v2", "v3"}, Creators{SUM});
    add("group_std", &AggregateG1, Names{"id4", "id5"}, Names{"v3"}, Creators{STD});
    add("group_transform_mean", &TransformG1, Names{"id6"}, Names{"v3"}, MEAN);
    return add("group_many", &AggregateMany);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
