#include <string>

#include "benchmarks/g1_table.h"

namespace MERVO::Tessera::Bench {
namespace {

/// A side's key, of numbers or of strings of nine bytes, and its value.
DataFrame ReadSide(benchmark::State& state, const std::string& side, const std::string& key)
{
    DataFrame::Columns columns;
    if (key == "skey") {
        columns.push_back(ReadTexts(state, side + "/skey.bin", "skey", 9));
    } else {
        columns.push_back(ReadNumbers<std::int32_t>(state, side + "/key.bin", "key"));
    }
    columns.push_back(ReadNumbers<double>(state, side + "/value.bin", "value"));
    return state.error_occurred() ? DataFrame() : DataFrame(std::move(columns));
}

void MergeSides(benchmark::State& state, const std::string& key, MERVO_TESSERA_MERGE_JOINTYPE type)
{
    const DataFrame left = ReadSide(state, "join_left", key);
    const DataFrame right = ReadSide(state, "join_right", key);
    Run(
        state,
        [&] {
            return left.Merge(right, {0}, {0}, type, {"_x", "_y"});
        },
        false);
}

[[maybe_unused]] const auto* const REGISTERED = [] {
    const auto add = [](const char* name, const char* key, MERVO_TESSERA_MERGE_JOINTYPE type) {
        return benchmark::RegisterBenchmark(name, &MergeSides, key, type)->Unit(benchmark::kMillisecond);
    };
    add("merge_inner_i32", "key", TESSERA_JOIN_INNER);
    add("merge_left_i32", "key", TESSERA_JOIN_LEFT);
    add("merge_outer_i32", "key", TESSERA_JOIN_OUTER);
    return add("merge_inner_str", "skey", TESSERA_JOIN_INNER);
}();

} // namespace
} // namespace MERVO::Tessera::Bench
