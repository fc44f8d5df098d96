#include <algorithm>
#include <new>
#include <numeric>
#include <span>
#include <utility>

#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_slots.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/group_results.h"
#include "tessera/grouping/group_runs.h"
#include "tessera/grouping/grouped_rows.h"
#include "tessera/grouping/groups.h"

namespace MERVO::Tessera {
namespace {

using Func::FailedTable;
using Positions = std::vector<std::uint32_t>;
using Creators = std::vector<UnaryFactory>;

/// The columns of a call: the keys, then the values.
struct Selection {
    Positions positions;
    std::uint32_t keyCount;
    std::vector<Cursor> cursors; ///< on all rows; null where a column can't be read

    std::span<const Cursor> Keys() const { return {cursors.data(), keyCount}; }
};

ErrorCode AddColumns(const DataFrame& table, const ColumnList& list, Positions& positions)
{
    Positions named;
    const std::vector<std::string> names(list.Names().begin(), list.Names().end());
    const ErrorCode code = names.empty() ? ErrorCode{ERROR_NONE} : table.GetIndexVector(named, names);
    positions.insert(positions.end(), list.Positions().begin(), list.Positions().end());
    positions.insert(positions.end(), named.begin(), named.end());
    return code;
}

ErrorCode Select(const DataFrame& table, const ColumnList& keys, const ColumnList& values, Selection& selection)
{
    ErrorCode code = AddColumns(table, keys, selection.positions);
    selection.keyCount = static_cast<std::uint32_t>(selection.positions.size());
    if (code == ERROR_NONE) {
        code = AddColumns(table, values, selection.positions);
    }
    DataFrameRef whole(table);
    whole.RefreshShape();
    for (const std::uint32_t position : selection.positions) {
        selection.cursors.push_back(whole.GetSlicedIterator(whole.GetColumn(position)));
    }
    return code;
}

/// A new column of the cells at some positions. Throws std::bad_alloc.
SeriesPtr GatherColumn(const Cursor& src, std::span<const std::uint32_t> positions, const std::string& name)
{
    SeriesPtr column = NewColumn(WithLength(src->GetAttr(), static_cast<std::uint32_t>(positions.size())), name);
    Func::Gather(src, positions, AllOf(column));
    return column;
}

/// Whether a functor makes one cell of any column.
bool IsReducer(const UnaryFactory& creator, const Cursor& column)
{
    return Func::FunctorSlots<Func::UnaryBase>(creator).For(CONTAINER_ARRAY).GetDstAttr(column).length == 1;
}

/// Whether rows can be evaluated where they lie. All else, failures among it, is left to groups of reordered rows.
bool IsServed(const DataFrame& table, const Selection& selection, const Creators& creators)
{
    const auto isServed = [](const Cursor& column) {
        return column != nullptr && column->IsMemoryContiguous() && column->GetAttr().typeId != TESSERA_DATAFRAME;
    };
    const std::vector<Cursor>& cursors = selection.cursors;
    return table.GetError().code == ERROR_NONE && selection.keyCount != 0 &&
        std::all_of(cursors.begin(), cursors.end(), isServed) && cursors.front()->Length() != 0 &&
        (creators.size() == 1 || creators.size() + selection.keyCount == cursors.size()) &&
        std::all_of(creators.begin(), creators.end(),
            [&cursors](const UnaryFactory& creator) { return IsReducer(creator, cursors.front()); });
}

/// Runs a functor on each group of rows: in one pass over the column as it lies, or over a copy in the groups' order.
ErrorCode ReduceColumn(const Func::UnaryBase& functor, const Cursor& src, GroupedRows& rows, const SeriesPtr& result)
{
    const Cursor dst = AllOf(result);
    if (dst != nullptr && functor.ReduceGroups(src, rows.Groups(), dst)) {
        return ERROR_NONE;
    }
    const SeriesPtr inGroups = GatherColumn(src, rows.RowOrder(), {});
    Positions each(rows.Count() + std::size_t{1});
    std::iota(each.begin(), each.end(), 0U);
    return ProcessRuns(functor, AllOf(inGroups), rows.Groups().begins, dst, each).code;
}

SeriesPtr CopyColumn(const Cursor& src, const std::string& name)
{
    SeriesPtr column = NewColumn(src->GetAttr(), name);
    if (Func::CopySeries<CONTAINER_ARRAY>().ProcessSeries(src, AllOf(column), true).code != ERROR_NONE) {
        throw std::bad_alloc();
    }
    return column;
}

/// Makes the columns of a result: makeKey(source) those of keys, makeValue(source, number of the value column, result),
/// which returns an error, the others.
template <typename MakeKey, typename MakeValue>
DataFrame MakeTable(const DataFrame& table, const Selection& selection, MakeKey&& makeKey, MakeValue&& makeValue)
{
    DataFrameRef whole(table);
    whole.RefreshShape();
    DataFrame::Columns results(selection.positions.size());
    for (std::uint32_t c = 0; c < results.size(); ++c) {
        const std::string name = whole.GetColumn(selection.positions[c])->GetName();
        const SourceColumn source{selection.cursors[c], name, c};
        if (c < selection.keyCount) {
            results[c] = makeKey(source);
            continue;
        }
        const Error outcome = makeValue(source, c - selection.keyCount, results[c]);
        if (outcome.code != ERROR_NONE) {
            return FailedTable(outcome.code, outcome.message);
        }
    }
    DataFrame result(std::move(results));
    static_cast<void>(result.RefreshView()); // a failure is in the table
    return result;
}

/// The groups of reordered rows that the in-place evaluation stands for.
template <typename Evaluate>
DataFrame WithGroups(const DataFrame& table, const Selection& selection, Evaluate&& evaluate)
{
    DataFrame selected = table.SelectCol(selection.positions);
    if (selected.GetError().code != ERROR_NONE) {
        return selected;
    }
    Positions keys(selection.keyCount);
    std::iota(keys.begin(), keys.end(), 0U);
    return evaluate(selected.GroupBy(keys, false, false, false));
}

constexpr const char* NO_SUCH_NAME = "there is no column of such a name";

} // namespace

DataFrame DataFrame::Aggregate(const ColumnList& keys, const ColumnList& values, const UnaryFactory& creator) const
{
    return Func::GuardedTable("Aggregate", [&] { return Aggregate(keys, values, Creators{creator}); });
}

DataFrame DataFrame::Aggregate(const ColumnList& keys, const ColumnList& values, const Creators& creators) const
{
    return Func::GuardedTable("Aggregate", [&] {
        Selection selection;
        const ErrorCode code = Select(*this, keys, values, selection);
        if (code != ERROR_NONE) {
            return FailedTable(code, NO_SUCH_NAME);
        }
        if (!IsServed(*this, selection, creators)) {
            return WithGroups(*this, selection, [&](const Groups& groups) { return groups.Apply(creators); });
        }
        GroupedRows rows(selection.Keys());
        const auto makeKey = [&](const SourceColumn& source) {
            return GatherColumn(source.rows, rows.FirstRows(), source.name);
        };
        const auto makeValue = [&](const SourceColumn& source, std::uint32_t value, SeriesPtr& result) {
            const auto run = [&](const Func::UnaryBase& functor, const SeriesPtr& cells) {
                return ReduceColumn(functor, source.rows, rows, cells);
            };
            const UnaryFactory& creator = creators[creators.size() == 1 ? 0 : value];
            return EvaluateColumn(creator, source, rows.Count(), APPLY_TEXTS, run, result);
        };
        return MakeTable(*this, selection, makeKey, makeValue);
    });
}

DataFrame DataFrame::TransformGroups(
    const ColumnList& keys, const ColumnList& values, const UnaryFactory& creator) const
{
    return Func::GuardedTable("TransformGroups", [&] {
        Selection selection;
        const ErrorCode code = Select(*this, keys, values, selection);
        if (code != ERROR_NONE) {
            return FailedTable(code, NO_SUCH_NAME);
        }
        if (!IsServed(*this, selection, {creator})) {
            return WithGroups(*this, selection, [&](const Groups& groups) {
                const DataFrame inGroups = groups.Transform(creator);
                Positions places(groups.GetRowOrder().size());
                for (std::uint32_t i = 0; i < places.size(); ++i) {
                    places[groups.GetRowOrder()[i]] = i;
                }
                return inGroups.SelectRow(places);
            });
        }
        GroupedRows rows(selection.Keys());
        const auto makeKey = [](const SourceColumn& source) { return CopyColumn(source.rows, source.name); };
        const auto makeValue = [&](const SourceColumn& source, std::uint32_t, SeriesPtr& result) -> Error {
            const auto run = [&](const Func::UnaryBase& functor, const SeriesPtr& cells) {
                return ReduceColumn(functor, source.rows, rows, cells);
            };
            SeriesPtr cells;
            Error outcome = EvaluateColumn(creator, source, rows.Count(), TRANSFORM_TEXTS, run, cells);
            if (outcome.code == ERROR_NONE) {
                result = GatherColumn(AllOf(cells), rows.GroupOfRow(), source.name);
            }
            return outcome;
        };
        return MakeTable(*this, selection, makeKey, makeValue);
    });
}

} // namespace MERVO::Tessera
