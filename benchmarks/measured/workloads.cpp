#include "benchmarks/measured/workloads.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/measured/seeded_tables.h"

namespace MERVO::Tessera::Bench {
namespace {

using namespace Func;

enum RecordsColumn : std::uint32_t { ID3 = 2, ID4 = 3, ID5 = 4, ID6 = 5, V1 = 6, V2 = 7, V3 = 8 };
constexpr std::uint32_t COLUMNS = 4; // of tables of numbers

void Require(ErrorCode code)
{
    if (code != ERROR_NONE) {
        throw std::runtime_error("an operation gave code " + std::to_string(code));
    }
}

/// Binds a table of its own to an operation on it.
template <typename Run>
Operation On(DataFrame table, Run run)
{
    return {[input = std::make_shared<DataFrame>(std::move(table)), run] { return run(*input); }};
}

Operation Apply(DataFrame table, const UnaryFactory& make)
{
    return On(std::move(table), [make](const DataFrame& source) {
        DataFrame result;
        Require(result.ApplyInplace(make, source));
        return result;
    });
}

template <template <ContainerID, typename...> class Functor, typename... Arguments>
UnaryFactory With(Arguments... arguments)
{
    return FunctorFactory<Functor, UnaryBase, Arguments...>{arguments...};
}

Operation Cast(DataFrame table, MERVO_TESSERA_TYPEID type)
{
    return Apply(std::move(table), FunctorFactory<TypeCast, UnaryBase, MERVO_TESSERA_TYPEID>(type));
}

DataFrame CastOf(DataFrame table, MERVO_TESSERA_TYPEID type) { return Cast(std::move(table), type).run(); }

DataFrame Records(Size size) { return MakeRecords(size.rows, size.groups); }

DataFrame Numbers(Size size) { return MakeNumbers(size.rows, COLUMNS); }

DataFrame GappyNumbers(Size size) { return MakeNumbers(size.rows, COLUMNS, 10); }

template <typename Operator>
Operation Combine(Size size)
{
    auto other = std::make_shared<DataFrame>(MakeNumbers(size.rows, COLUMNS, 0, 3));
    return On(Numbers(size), [other](const DataFrame& table) { return Operator()(table, *other); });
}

DataFrame OneColumn(Size size, const char* name) { return MakeRecords(size.rows, size.groups, {name}); }

Operation ReadCsv(Size size)
{
    const auto file = std::make_shared<RecordsFile>(size.rows, size.groups);
    const auto read = [file] {
        DataFrame table;
        Require(table.ReadCSV(file->Path(), RecordsFile::Types(), true, ","));
        return table;
    };
    return {read, static_cast<std::size_t>(std::filesystem::file_size(file->Path()))};
}

Operation WriteCsv(Size size)
{
    return On(Records(size), [file = std::make_shared<RecordsFile>(0, 1)](const DataFrame& table) {
        Require(table.ToCSV(file->Path(), true, ","));
        return DataFrame();
    });
}

/// Both sides of a merge share nine tenths of their keys.
template <SideKey KEY, MERVO_TESSERA_MERGE_JOINTYPE TYPE>
Operation MergeSides(Size size)
{
    auto right = std::make_shared<DataFrame>(MakeSide(size.rows, size.rows / 10, KEY));
    return On(MakeSide(size.rows, 0, KEY), [right](const DataFrame& left) {
        return left.Merge(*right, {0}, {0}, TYPE, {"_x", "_y"});
    });
}

/// The same with the nine columns of records behind the double, on either side.
Operation MergeRecords(Size size)
{
    auto right = std::make_shared<DataFrame>(MakeSide(size.rows, size.rows / 10, SideKey::NEAR, size.groups));
    return On(MakeSide(size.rows, 0, SideKey::NEAR, size.groups), [right](const DataFrame& left) {
        return left.Merge(*right, {0}, {0}, TESSERA_JOIN_INNER, {"_x", "_y"});
    });
}

template <std::uint32_t... KEYS>
Operation SortBy(Size size)
{
    return On(Records(size), [](DataFrame& table) {
        Require(table.Sort(std::vector<std::uint32_t>{KEYS...}, true));
        return std::move(table);
    });
}

Operation AggregateBy(DataFrame records, std::vector<std::uint32_t> keys, const UnaryFactory& make)
{
    return On(std::move(records), [keys, make](const DataFrame& table) {
        return table.Aggregate(keys, {V1, V3}, make);
    });
}

Operation GroupSorted(Size size)
{
    return On(MakeRecords(size.rows, size.groups, {"id6", "v1", "v3"}),
        [](DataFrame& table) { return table.GroupBy({0}, true, true, true).Apply(With<Sum>()); });
}

Operation FilterHalf(Size size)
{
    const DataFrame numbers = MakeNumbers(size.rows, 2);
    auto filter = std::make_shared<DataFrame>(numbers.Slice(1U, {0, 1}) > numbers.Slice(1U, {1, 2}));
    return On(Records(size), [filter](const DataFrame& table) { return table.SelectRow(*filter); });
}

Operation TakeShuffled(Size size)
{
    return On(Records(size),
        [positions = MakePermutation(size.rows)](const DataFrame& table) { return table.SelectRow(positions); });
}

Operation FindIn(Size size)
{
    std::vector<std::int32_t> sought;
    for (std::uint32_t number = 1; number <= size.groups; number += 10) {
        sought.push_back(static_cast<std::int32_t>(number));
    }
    auto compare = std::make_shared<DataFrame>();
    Require(compare->ReadVector(sought, {static_cast<unsigned int>(sought.size()), 1}));
    return On(OneColumn(size, "id6"), [compare](const DataFrame& source) {
        DataFrame result;
        Require(result.ApplyInplace(FunctorFactory<IsIn, BinaryBase>{}, source, *compare));
        return result;
    });
}

Operation LoadBuffer(Size size)
{
    return {[rows = size.rows, buffer = std::vector<double>(std::size_t{size.rows} * COLUMNS, 1.5)] {
        DataFrame table;
        MERVO_TSR_CONTEXT handle{&table, nullptr};
        const std::vector<MERVO_TESSERA_TYPEID> types(COLUMNS, TESSERA_DOUBLE);
        const MERVO_TSR_SHAPE shape{rows, COLUMNS, types.data()};
        Require(ReadDataDouble(&handle, buffer.data(), &shape));
        return table;
    }};
}

constexpr Workload WORKLOADS[] = {
    {"load_f64", "a buffer of 4 doubles a row", false, &LoadBuffer},
    {"copy", "a table of 9 columns", false,
        [](Size size) { return On(Records(size), [](const DataFrame& table) { return DataFrame(table); }); }},
    {"add_f64", "4 columns of doubles and as many more", false, &Combine<std::plus<>>},
    {"greater_f64", "4 columns of doubles and as many more", false, &Combine<std::greater<>>},
    {"cast_i32_str", "1 column", false, [](Size size) { return Cast(OneColumn(size, "id6"), TESSERA_STRING); }},
    {"cast_f64_str", "1 column", false, [](Size size) { return Cast(OneColumn(size, "v3"), TESSERA_STRING); }},
    {"cast_str_i32", "1 column", false,
        [](Size size) { return Cast(CastOf(OneColumn(size, "id6"), TESSERA_STRING), TESSERA_INT32); }},
    {"cast_str_f64", "1 column", false,
        [](Size size) { return Cast(CastOf(OneColumn(size, "v3"), TESSERA_STRING), TESSERA_DOUBLE); }},
    {"read_csv", "a file of 9 columns", false, &ReadCsv},
    {"write_csv", "a table of 9 columns", false, &WriteCsv},
    {"filter_half", "a table of 9 columns", false, &FilterHalf},
    {"take_shuffled", "a table of 9 columns", false, &TakeShuffled},
    {"drop_nan_rows", "4 columns of doubles", false,
        [](Size size) {
            return On(GappyNumbers(size), [](const DataFrame& table) { return table.DropNanRow(true); });
        }},
    {"sort_i32", "a table of 9 columns by 1", true, &SortBy<ID6>},
    {"sort_f64", "a table of 9 columns by 1", true, &SortBy<V3>},
    {"sort_str", "a table of 9 columns by 1", true, &SortBy<ID3>},
    {"sort_two", "a table of 9 columns by 2", true, &SortBy<ID4, V3>},
    {"unique_str", "1 column", false,
        [](Size size) { return On(OneColumn(size, "id3"), [](const DataFrame& table) { return table.Unique(0); }); }},
    {"duplicated_two", "2 columns", false,
        [](Size size) {
            return On(Records(size), [](const DataFrame& table) { return table.Duplicated({ID4, ID5}, "first"); });
        }},
    {"transpose", "cells of columns of 1000 doubles", false,
        [](Size size) { // more rows could not be columns
            return On(MakeNumbers(std::min(size.rows, 1000U), 1 + (size.rows - 1) / 1000),
                [](const DataFrame& table) { return table.Transpose(); });
        }},
    {"sum_f64", "4 columns of doubles", false, [](Size size) { return Apply(Numbers(size), With<Sum>()); }},
    {"mean_f64", "4 columns of doubles", false, [](Size size) { return Apply(GappyNumbers(size), With<Mean>()); }},
    {"max_f64", "4 columns of doubles", false, [](Size size) { return Apply(Numbers(size), With<Max>()); }},
    {"var_f64", "4 columns of doubles", false,
        [](Size size) { return Apply(Numbers(size), With<Var, std::uint32_t>(1U)); }},
    {"skew_f64", "4 columns of doubles", false,
        [](Size size) { return Apply(Numbers(size), With<Skew>(true, false)); }},
    {"rolling_mean", "4 columns of doubles, windows of 100", false,
        [](Size size) { return Apply(Numbers(size), With<RollingMean>(100U, false, RollingParam::NO_GAPS)); }},
    {"fill_forward", "4 columns of doubles", false,
        [](Size size) { return Apply(GappyNumbers(size), With<FillNan>("ffill")); }},
    {"interpolate", "4 columns of doubles", false,
        [](Size size) { return Apply(GappyNumbers(size), With<Interpolate>()); }},
    {"is_in_i32", "1 column", false, &FindIn},
    {"replace_f64", "4 columns of doubles", false,
        [](Size size) { return Apply(Numbers(size), With<Replace>(50.0, 0.0)); }},
    {"round_f64", "4 columns of doubles", false, [](Size size) { return Apply(Numbers(size), With<Round>(2U)); }},
    {"diff_f64", "4 columns of doubles", false, [](Size size) { return Apply(Numbers(size), With<Diff>(1)); }},
    {"group_sum_i32", "2 columns by 1", false,
        [](Size size) { return AggregateBy(Records(size), {ID6}, With<Sum>()); }},
    {"group_mean_str", "2 columns by 1", false,
        [](Size size) { return AggregateBy(Records(size), {ID3}, With<Mean>()); }},
    {"group_mean_sizes", "2 columns by 1 of texts of several sizes", false,
        [](Size size) { return AggregateBy(MakeRecordsOfSizes(size.rows, size.groups), {ID3}, With<Mean>()); }},
    {"group_std_two", "2 columns by 2", false,
        [](Size size) {
            return AggregateBy(Records(size), {ID4, ID5}, With<Std, std::uint32_t>(1U));
        }},
    {"group_transform", "2 columns by 1", false,
        [](Size size) {
            return On(Records(size), [](const DataFrame& table) {
                return table.TransformGroups({ID6}, {V1, V3}, With<Mean>());
            });
        }},
    {"group_sorted", "2 columns by 1, sorted in place", false, &GroupSorted},
    {"merge_inner_i32", "2 tables of a key and a double", false, &MergeSides<SideKey::NEAR, TESSERA_JOIN_INNER>},
    {"merge_outer_i32", "2 tables of a key and a double", false, &MergeSides<SideKey::NEAR, TESSERA_JOIN_OUTER>},
    {"merge_inner_str", "2 tables of a key and a double", false, &MergeSides<SideKey::TEXT, TESSERA_JOIN_INNER>},
    {"merge_inner_far", "2 tables of a key and a double, keys far apart", false,
        &MergeSides<SideKey::FAR, TESSERA_JOIN_INNER>},
    {"merge_records", "2 tables of a key and 10 columns", false, &MergeRecords},
    {"pivot_mean", "1 column by 2", false,
        [](Size size) {
            return On(Records(size), [](const DataFrame& table) {
                return table.PivotTable<double>({{V3}, {ID4}, {ID5}}, With<Mean>(), 0.0);
            });
        }},
    {"resample_mean", "a week of stamps and 2 columns, by the hour", false,
        [](Size size) {
            return On(MakeTimes(size.rows), [](const DataFrame& table) {
                return table.Resample(0, DateTime(3600), true, true).Apply(With<Mean>());
            });
        }},
};

} // namespace

std::span<const Workload> Workloads() { return WORKLOADS; }

const Workload& FindWorkload(const char* name)
{
    for (const Workload& workload : WORKLOADS) {
        if (std::strcmp(workload.name, name) == 0) {
            return workload;
        }
    }
    throw std::runtime_error(std::string("no workload ") + name);
}

std::uint32_t ParseCount(const char* text)
{
    char* end = nullptr;
    const double count = std::strtod(text, &end);
    if (*end != '\0' || !(count >= 1) || count > 1e9 || count != std::floor(count)) {
        throw std::runtime_error(std::string("no count: ") + text);
    }
    return static_cast<std::uint32_t>(count);
}

void MeasuredOperation(const Operation& operation, DataFrame& result)
{
    result = operation.run();
    Require(result.GetError().code);
}

} // namespace MERVO::Tessera::Bench
