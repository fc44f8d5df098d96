#include "fuzz/support/table_operations.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "fuzz/support/functors.h"

namespace MERVO::Tessera::Fuzz {
namespace {

/// An operation by a list of positions.
template <auto MAKE, auto IN_PLACE>
Operation ByList(auto list)
{
    return {[list](const DataFrame& table) { return (table.*MAKE)(list); },
        [list](DataFrame& table) { return (table.*IN_PLACE)(list); }};
}

using Make = DataFrame (DataFrame::*)(const Positions&) const;
using MakeByNames = DataFrame (DataFrame::*)(const Names&) const;
using MakeByBools = DataFrame (DataFrame::*)(const DataFrame&) const;
using InPlace = ErrorCode (DataFrame::*)(const Positions&);
using InPlaceByNames = ErrorCode (DataFrame::*)(const Names&);
using InPlaceByBools = ErrorCode (DataFrame::*)(const DataFrame&);

template <Make MAKE, InPlace IN_PLACE>
Operation RowsByList(Play& play, const DataFrame& table)
{
    return ByList<MAKE, IN_PLACE>(play.DrawRows(table));
}
template <Make MAKE, InPlace IN_PLACE>
Operation ColumnsByList(Play& play, const DataFrame& table)
{
    return ByList<MAKE, IN_PLACE>(play.DrawColumns(table));
}
template <MakeByNames MAKE, InPlaceByNames IN_PLACE>
Operation ColumnsByNames(Play& play, const DataFrame& table)
{
    return ByList<MAKE, IN_PLACE>(play.DrawNames(table));
}
/// By bools: of the right shape, or another table.
template <MakeByBools MAKE, InPlaceByBools IN_PLACE, bool ARE_ROWS>
Operation ByBools(Play& play, const DataFrame& table)
{
    auto filter = std::make_shared<DataFrame>(play.Table());
    if (play.inputs.Below(4) != 0) {
        DataFrame::Columns columns(ARE_ROWS ? 1 : std::min(table.ColumnCount(), MOST_COLUMNS));
        for (SeriesPtr& column : columns) {
            column =
                play.inputs.Column(TESSERA_BOOL, ARE_ROWS ? std::min(table.RowCount(), MOST_ROWS) : 1, CONTAINER_ARRAY);
        }
        *filter = DataFrame(std::move(columns));
    }
    return {[filter](const DataFrame& from) { return (from.*MAKE)(*filter); },
        [filter](DataFrame& from) { return (from.*IN_PLACE)(*filter); }};
}

Operation DropNanRows(Play& play, const DataFrame& table)
{
    const bool any = play.inputs.ConsumeBool();
    const int thresh = static_cast<int>(play.inputs.Index(5));
    const bool isByThresh = play.inputs.ConsumeBool();
    if (play.inputs.ConsumeBool()) {
        const Names names = play.DrawNames(table);
        return {[=](const DataFrame& from) {
            return isByThresh ? from.DropNanRow(thresh, names) : from.DropNanRow(any, names);
        }};
    }
    const Positions list = play.DrawColumns(table);
    return {
        [=](const DataFrame& from) { return isByThresh ? from.DropNanRow(thresh, list) : from.DropNanRow(any, list); },
        [=](DataFrame& from) {
            return isByThresh ? from.DropNanRowInplace(thresh, list) : from.DropNanRowInplace(any, list);
        }};
}

Operation DropNanColumns(Play& play, const DataFrame&)
{
    const bool any = play.inputs.ConsumeBool();
    const int thresh = static_cast<int>(play.inputs.Index(MOST_ROWS));
    const bool isByThresh = play.inputs.ConsumeBool();
    return {[=](const DataFrame& from) { return isByThresh ? from.DropNanCol(thresh) : from.DropNanCol(any); },
        [=](DataFrame& from) { return isByThresh ? from.DropNanColInplace(thresh) : from.DropNanColInplace(any); }};
}

Operation DistinctRows(Play& play, const DataFrame& table)
{
    const Positions list = play.DrawColumns(table);
    const std::string keep = std::array{"first", "last", "false", "none"}[play.inputs.Below(4)];
    return {play.inputs.ConsumeBool()
            ? std::function([=](const DataFrame& from) { return from.Duplicated(list, keep); })
            : std::function([=](const DataFrame& from) { return from.DropDuplicatesOutplace(list, keep); })};
}

Operation MergeTables(Play& play, const DataFrame& table)
{
    const auto right = std::make_shared<DataFrame>(play.Table());
    const Positions leftOn = play.DrawColumns(table);
    const Positions rightOn = play.inputs.ConsumeBool() ? leftOn : play.DrawColumns(*right);
    const auto type = static_cast<MERVO_TESSERA_MERGE_JOINTYPE>(play.inputs.Index(4));
    return {[=](const DataFrame& from) { return from.Merge(*right, leftOn, rightOn, type, {"_x", "_y"}); }};
}

/// Aggregate promises what its three steps give, in every bit.
DataFrame Aggregated(
    const DataFrame& table, const Positions& keys, const Positions& values, const UnaryFactory& functor)
{
    DataFrame result = table.Aggregate(keys, values, functor);
    Positions all = keys;
    all.insert(all.end(), values.begin(), values.end());
    Positions places(keys.size());
    std::iota(places.begin(), places.end(), 0U);
    DataFrame selected = table.SelectCol(all);
    if (result.GetError().code == ERROR_NONE && result.ColumnCount() != 0) {
        RequireSame(selected.GroupBy(places, false, false, false).Apply(functor), result,
            "an aggregate is what its steps give");
    }
    return result;
}

Operation Aggregates(Play& play, const DataFrame& table)
{
    const Positions keys = play.DrawColumns(table);
    const Positions values = play.DrawColumns(table);
    const UnaryFactory functor = DrawUnary(play.inputs);
    const bool isTransformation = play.inputs.ConsumeBool();
    return {[=](const DataFrame& from) {
        return isTransformation ? from.TransformGroups(keys, values, functor) : Aggregated(from, keys, values, functor);
    }};
}

Operation CrossTables(Play& play, const DataFrame& table)
{
    const DataFrame::TableParams params = {play.DrawColumns(table), play.DrawColumns(table), play.DrawColumns(table)};
    const UnaryFactory functor = DrawUnary(play.inputs);
    const double fill = play.inputs.Cell<double>();
    DataFrame::PivotCreators creators;
    for (const std::uint32_t value : play.inputs.Below(4) == 0 ? play.DrawColumns(table) : params.values) {
        creators[value] = DrawUnary(play.inputs);
    }
    return {play.inputs.ConsumeBool()
            ? std::function([=](const DataFrame& from) { return from.PivotTable(params, functor, fill); })
            : std::function([=](const DataFrame& from) { return from.PivotTable(params, creators, fill); })};
}

using DrawOperation = Operation (*)(Play&, const DataFrame&);
constexpr DrawOperation TABLE_OPERATIONS[] = {RowsByList<&DataFrame::SelectRow, &DataFrame::SelectRowInplace>,
    RowsByList<&DataFrame::DropRow, &DataFrame::DropRowInplace>,
    ByBools<&DataFrame::SelectRow, &DataFrame::SelectRowInplace, true>,
    ByBools<&DataFrame::DropRow, &DataFrame::DropRowInplace, true>,
    ColumnsByList<&DataFrame::SelectCol, &DataFrame::SelectColInplace>,
    ColumnsByList<&DataFrame::DropCol, &DataFrame::DropColInplace>,
    ColumnsByNames<&DataFrame::SelectCol, &DataFrame::SelectColInplace>,
    ColumnsByNames<&DataFrame::DropCol, &DataFrame::DropColInplace>,
    ByBools<&DataFrame::SelectCol, &DataFrame::SelectColInplace, false>,
    ByBools<&DataFrame::DropCol, &DataFrame::DropColInplace, false>, DropNanRows, DropNanColumns, DistinctRows,
    MergeTables, Aggregates, CrossTables};

} // namespace

Operation DrawTableOperation(Play& play, const DataFrame& table)
{
    const std::uint32_t number = play.inputs.Below(std::size(TABLE_OPERATIONS));
    LogDump("==== operation %u", number);
    return TABLE_OPERATIONS[number](play, table);
}

} // namespace MERVO::Tessera::Fuzz
