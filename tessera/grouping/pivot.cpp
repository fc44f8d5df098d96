#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <numeric>
#include <set>
#include <type_traits>
#include <utility>

#include "tessera/core/memory_room.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/table_combination.h"
#include "tessera/functors/type_cast.h"
#include "tessera/grouping/group_results.h"
#include "tessera/grouping/groups.h"
#include "tessera/operations/select_row.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;

constexpr const char* NO_MEMORY = "out of memory on PivotTable";

/// Checks the positions of one list of the parameters, which differ from each other.
bool ArePositions(const Positions& positions, std::size_t columnCount, const char* outOfRange, const char* duplicate)
{
    std::set<std::uint32_t> different;
    for (const std::uint32_t position : positions) {
        if (position >= columnCount) {
            LogError("%s %d", outOfRange, static_cast<int>(position));
            return false;
        }
        different.insert(position);
    }
    if (different.size() < positions.size()) {
        LogError("%s", duplicate);
        return false;
    }
    return true;
}

/// The group of each row of the table that was grouped.
Positions GroupsOfRows(const Groups& groups)
{
    const Positions& order = groups.GetRowOrder();
    const Positions& begins = groups.GetGroupBegins();
    Positions groupOf(order.size());
    for (std::uint32_t group = 0; group < groups.GetGroupNum(); ++group) {
        for (std::uint32_t place = begins[group]; place < begins[group + 1]; ++place) {
            groupOf[order[place]] = group;
        }
    }
    return groupOf;
}

ErrorCode Cast(const Cursor& from, const Cursor& to)
{
    return Func::TypeCastBase<CONTAINER_ARRAY>(to->GetAttr().typeId).ProcessSeries(from, to, true).code;
}

/// A cursor on some rows of a column. Throws std::bad_alloc.
Cursor RowsOf(const SeriesPtr& column, std::uint32_t begin, std::uint32_t end)
{
    Cursor rows = column->GetIterator(begin, end);
    if (rows == nullptr) {
        throw std::bad_alloc();
    }
    return rows;
}

/// Makes a column of the given cells and, behind them, the fill, so that cells without a row can be gathered as others
/// are.
ErrorCode WithFillBehind(const SeriesPtr& column, const SeriesPtr& fill, SeriesPtr& result)
{
    const std::uint32_t rows = column->Size();
    result = NewColumn({rows + 1, CONTAINER_ARRAY, column->GetTypeId()}, {});
    const ErrorCode code =
        Func::CopySeries<CONTAINER_ARRAY>().ProcessSeries(AllOf(column), RowsOf(result, 0, rows), true).code;
    return code != ERROR_NONE ? code : Cast(fill->GetIterator(), RowsOf(result, rows, rows + 1));
}

/// The text of a cell; none of a nested table.
std::string TextOf(const SeriesPtr& column, std::uint32_t row)
{
    const SeriesPtr text = NewColumn({1, CONTAINER_ARRAY, TESSERA_STRING}, {});
    const Cursor to = AllOf(text);
    return Cast(RowsOf(column, row, row + 1), to) == ERROR_NONE ? GetValueFromIterator<std::string>(to, 0)
                                                                : std::string();
}

/// The value type of numbers of so many bytes: `long long` and its like are not the types that columns hold everywhere.
template <typename T>
constexpr MERVO_TESSERA_TYPEID NumberType()
{
    if constexpr (std::is_floating_point_v<T>) {
        return TYPE_ID_OF<T>;
    } else {
        constexpr std::array SIGNED{TESSERA_INT8, TESSERA_INT16, TESSERA_INT32, TESSERA_INT64};
        constexpr std::array UNSIGNED{TESSERA_UINT8, TESSERA_UINT16, TESSERA_UINT32, TESSERA_UINT64};
        constexpr auto PLACE = static_cast<std::size_t>(std::bit_width(sizeof(T))) - 1;
        return std::is_signed_v<T> ? SIGNED[PLACE] : UNSIGNED[PLACE];
    }
}

/// A column of one cell; the error column without memory for it.
template <typename T>
SeriesPtr ColumnOf(T value)
{
    using Cell = ValueTypes::At<NumberType<T>()>;
    SeriesPtr column = BuildSeries({1, CONTAINER_ARRAY, NumberType<T>()}, {});
    const Cursor cursor = column->GetIterator();
    if (cursor == nullptr) {
        return GetErrorSeries();
    }
    *CursorAs<CONTAINER_ARRAY, Cell>(cursor).mHead = static_cast<Cell>(value);
    return column;
}

} // namespace

bool DataFrame::IsPivotTableParamValid(const TableParams& params) const
{
    const std::size_t count = series->size();
    return ArePositions(params.values, count, "Invalid value", "Invalid values, duplicate values") &&
        ArePositions(params.index, count, "Invalid index", "Invalid index, duplicate index value") &&
        ArePositions(params.columns, count, "Invalid column", "Invalid columns, duplicate columns value");
}

std::int32_t DataFrame::ProcessTableParam(
    const TableParams& params, const PivotCreators& creators, std::vector<UnaryFactory>& ordered) const
{
    if (params.values.empty()) {
        LogError("PivotTable: no values");
        return -1;
    }
    ordered.assign(params.values.size(), nullptr);
    for (const auto& [position, creator] : creators) {
        const auto found = std::find(params.values.begin(), params.values.end(), position);
        if (found == params.values.end()) {
            LogError("mismatched functors and values.");
            return -1;
        }
        ordered[static_cast<std::size_t>(found - params.values.begin())] = creator;
    }
    for (std::size_t v = 0; v < ordered.size(); ++v) {
        if (ordered[v] == nullptr) {
            LogError("PivotTable: no functor for value %d", static_cast<int>(params.values[v]));
            return -1;
        }
    }
    return 0;
}

ErrorCode DataFrame::InsertPivotKey(const Groups& rows, const Positions& index, DataFrame& result) const
{
    Positions firstRows;
    for (std::uint32_t group = 0; group < rows.GetGroupNum(); ++group) {
        firstRows.push_back(rows.GetRowOrder()[rows.GetGroupBegins()[group]]);
    }
    const Func::SelectRowBase<CONTAINER_ARRAY> selection(firstRows);
    for (const std::uint32_t position : index) {
        const SeriesPtr& key = (*series)[position];
        SeriesPtr column = NewColumn(WithLength(key->GetAttr(), rows.GetGroupNum()), key->GetName());
        const Error outcome = selection.ProcessSeries(AllOf(key), AllOf(column), true);
        if (outcome.code != ERROR_NONE) {
            result.SetError(outcome);
            return outcome.code;
        }
        result.series->push_back(std::move(column));
    }
    return ERROR_NONE;
}

std::string DataFrame::GetPivotValueName(
    const TableParams& params, const Groups& columnGroups, unsigned int group, unsigned int value) const
{
    std::string name = (*series)[params.values[value]]->GetName();
    const std::uint32_t row = columnGroups.GetRowOrder()[columnGroups.GetGroupBegins()[group]];
    for (const std::uint32_t position : params.columns) {
        name += "-" + TextOf((*series)[position], row);
    }
    return name;
}

void DataFrame::InsertPivotValueSingle(
    const Positions& cellRows, const SeriesPtr& source, const SeriesPtr& destination) const
{
    Func::Gather(AllOf(source), cellRows, AllOf(destination));
}

ErrorCode DataFrame::InsertPivotValue(
    const Groups& rows, const TableParams& params, const SeriesPtr& fill, DataFrame& result)
{
    const Groups columnGroups = GroupBy(params.columns, false, false, false);
    if (columnGroups.GetGroupNum() == 0) {
        return ERROR_OUT_OF_MEMORY; // as there are rows, grouping failed
    }
    const std::uint32_t rowCount = rows.GetGroupNum();
    const std::uint64_t cellCount =
        std::uint64_t{rowCount} * columnGroups.GetGroupNum(); // with all values, a multiple of it
    std::uint64_t bytes = 0;
    std::vector<SeriesPtr> sources(params.values.size());
    for (std::size_t v = 0; v < sources.size(); ++v) {
        const SeriesPtr& column = (*series)[params.values[v]];
        const ErrorCode code = WithFillBehind(column, fill, sources[v]);
        if (code != ERROR_NONE) {
            return code;
        }
        bytes += CellSizeOf(column->GetTypeId());
    }
    if (!HasRoomFor(cellCount, bytes)) {
        LogError("Too many cells in pivot table: %llu", static_cast<unsigned long long>(cellCount));
        return ERROR_OUT_OF_MEMORY;
    }
    const Positions rowGroupOf = GroupsOfRows(rows);
    const Positions& order = columnGroups.GetRowOrder();
    const Positions& begins = columnGroups.GetGroupBegins();
    const auto fillRow = static_cast<std::uint32_t>(rowGroupOf.size());
    Positions cellRows(rowCount);
    for (std::uint32_t group = 0; group < columnGroups.GetGroupNum(); ++group) {
        std::fill(cellRows.begin(), cellRows.end(), fillRow);
        for (std::uint32_t place = begins[group]; place < begins[group + 1]; ++place) {
            std::uint32_t& cellRow = cellRows[rowGroupOf[order[place]]];
            cellRow = std::min(cellRow, order[place]); // the first of several, which only other creators leave
        }
        for (std::uint32_t v = 0; v < sources.size(); ++v) {
            SeriesPtr column = NewColumn({rowCount, CONTAINER_ARRAY, sources[v]->GetTypeId()},
                GetPivotValueName(params, columnGroups, group, v));
            InsertPivotValueSingle(cellRows, sources[v], column);
            result.series->push_back(std::move(column));
        }
    }
    return ERROR_NONE;
}

DataFrame DataFrame::PivotCells(
    TableParams params, const std::vector<UnaryFactory>& creators, const SeriesPtr& fill) const
{
    Positions keys = params.index;
    keys.insert(keys.end(), params.columns.begin(), params.columns.end());
    DataFrame aggregate = Aggregate(keys, params.values, creators);
    std::uint32_t position = 0; // the aggregate has these columns only, in this order
    for (Positions* list : {&params.index, &params.columns, &params.values}) {
        std::iota(list->begin(), list->end(), position);
        position += static_cast<std::uint32_t>(list->size());
    }
    if (aggregate.GetError().code != ERROR_NONE) {
        LogError("Failed to group key, error %d", aggregate.GetError().code);
        return {};
    }
    if (params.columns.empty()) {
        return aggregate;
    }
    const Groups rows = aggregate.GroupBy(params.index, false, false, false);
    if (rows.GetGroupNum() == 0) {
        LogError("Table length is 0, seriesLen %d", static_cast<int>(aggregate.series->size()));
        return {};
    }
    DataFrame result;
    ErrorCode code = aggregate.InsertPivotKey(rows, params.index, result);
    if (code != ERROR_NONE) {
        LogError("InsertPivotKey error %d", code);
        return {};
    }
    code = aggregate.InsertPivotValue(rows, params, fill, result);
    if (code != ERROR_NONE) {
        LogError("InsertPivotValue error %d", code);
        return {};
    }
    static_cast<void>(result.RefreshView()); // a failure is in the table
    return result;
}

DataFrame DataFrame::PivotByCreators(
    const TableParams& params, const PivotCreators& creators, const SeriesPtr& fill) const
{
    if (error.code != ERROR_NONE) {
        LogError("DataFrame %d invalid", error.code);
        return Func::FailedTable(error.code, error.message);
    }
    try {
        std::vector<UnaryFactory> ordered;
        if (IsPivotTableParamValid(params) && ProcessTableParam(params, creators, ordered) == 0) {
            return PivotCells(params, ordered, fill);
        }
    } catch (...) {
        PassOnAllButNoMemory();
        LogError(NO_MEMORY);
    }
    return {};
}

DataFrame DataFrame::PivotByCreator(const TableParams& params, const UnaryFactory& creator, const SeriesPtr& fill) const
{
    try {
        PivotCreators creators;
        for (const std::uint32_t position : params.values) {
            if (!creators.emplace(position, creator).second) {
                LogError("PivotTable: Duplicate values.");
                return {};
            }
        }
        return PivotByCreators(params, creators, fill);
    } catch (...) {
        PassOnAllButNoMemory();
        LogError(NO_MEMORY);
        return {};
    }
}

template <typename T>
DataFrame DataFrame::PivotTable(const TableParams& params, const PivotCreators& creators, T fill) const
{
    return PivotByCreators(params, creators, ColumnOf(fill));
}

template <typename T>
DataFrame DataFrame::PivotTable(const TableParams& params, const UnaryFactory& creator, T fill) const
{
    return PivotByCreator(params, creator, ColumnOf(fill));
}

template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, signed char) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, unsigned char) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, short) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, unsigned short) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, int) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, unsigned int) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, long long) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, unsigned long long) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, float) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const PivotCreators&, double) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, signed char) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, unsigned char) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, short) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, unsigned short) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, int) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, unsigned int) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, long long) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, unsigned long long) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, float) const;
template DataFrame DataFrame::PivotTable(const TableParams&, const UnaryFactory&, double) const;

} // namespace MERVO::Tessera
