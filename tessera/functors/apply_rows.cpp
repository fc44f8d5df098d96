#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/table_reader.h"
#include "tessera/functors/functor_slots.h"

namespace MERVO::Tessera {
namespace {

using Func::UnaryBase;

using FillRow = void (*)(const std::vector<Cursor>& sources, std::uint32_t row, const Cursor& sourceRow);
using SpreadRow = void (*)(const Cursor& resultRow, std::uint32_t row, const std::vector<Cursor>& results);

template <typename T>
void FillSourceRow(const std::vector<Cursor>& sources, std::uint32_t row, const Cursor& sourceRow)
{
    for (std::uint32_t k = 0; k < sources.size(); ++k) {
        SetValueToIterator<T>(sourceRow, GetValueFromIterator<T>(sources[k], row), k);
    }
}

template <typename T>
void SpreadResultRow(const Cursor& resultRow, std::uint32_t row, const std::vector<Cursor>& results)
{
    for (std::uint32_t k = 0; k < results.size(); ++k) {
        SetValueToIterator<T>(results[k], GetValueFromIterator<T>(resultRow, k), row);
    }
}

constexpr auto FILL_ROW =
    ForEachValueType([](auto number) -> FillRow { return &FillSourceRow<ValueTypes::At<number()>>; });
constexpr auto SPREAD_ROW =
    ForEachValueType([](auto number) -> SpreadRow { return &SpreadResultRow<ValueTypes::At<number()>>; });

bool IsOneType(MERVO_TESSERA_TYPEID type) { return type != MIX_TYPE && type != TESSERA_INVALID; }

/// A functor on its way over the rows of a table of one value type and container.
class RowRun {
public:
    RowRun(const UnaryBase& rowFunctor, const DataFrame& src)
        : functor(rowFunctor), sourceRow(BuildSeries({src.ColumnCount(), src.ContainerType(), src.Type()}, {})),
          sourceCells(sourceRow->GetIterator())
    {
    }

    /// Builds the result columns, as many as the functor makes of a row.
    Error BuildResults(std::uint32_t rows);
    /// Runs over all rows of src.
    Error Run(const DataFrame& src);

    DataFrameView::Columns columns;

private:
    Error OutOfMemory() const
    {
        return {ERROR_OUT_OF_MEMORY, "out of memory on applying row functor: " + functor.GetName()};
    }

    const UnaryBase& functor;
    SeriesPtr sourceRow;
    Cursor sourceCells;
    SeriesPtr resultRow;
    Cursor resultCells;
    std::vector<Cursor> results;
};

Error RowRun::BuildResults(std::uint32_t rows)
{
    if (sourceCells == nullptr) {
        return OutOfMemory();
    }
    resultRow = BuildSeries(functor.GetDstAttr(sourceCells), {});
    resultCells = resultRow->GetIterator();
    if (resultCells == nullptr) {
        const bool isColumn = resultRow->GetTypeId() != TESSERA_INVALID;
        return isColumn ? OutOfMemory() : functor.ProcessSeries(sourceCells, nullptr, true);
    }
    const SeriesAttr attr = WithLength(resultRow->GetAttr(), rows);
    for (std::uint32_t k = 0; k < resultCells->Length(); ++k) {
        columns.push_back(BuildSeries(attr, "col_" + std::to_string(k)));
        results.push_back(columns.back()->GetIterator());
        if (results.back() == nullptr) {
            return OutOfMemory();
        }
    }
    return {};
}

Error RowRun::Run(const DataFrame& src)
{
    std::vector<Cursor> sources;
    const ErrorCode opened = OpenColumns(src, sources);
    if (opened != ERROR_NONE) {
        return {opened, "columns can't be read on applying row functor: " + functor.GetName()};
    }
    const FillRow fill = FILL_ROW[static_cast<std::size_t>(sourceCells->GetAttr().typeId)];
    const SpreadRow spread = SPREAD_ROW[static_cast<std::size_t>(resultCells->GetAttr().typeId)];
    for (std::uint32_t row = 0; row < src.RowCount(); ++row) {
        fill(sources, row, sourceCells);
        Error outcome = functor.ProcessSeries(sourceCells, resultCells, true);
        if (outcome.code != ERROR_NONE) {
            return outcome;
        }
        spread(resultCells, row, results);
    }
    return {};
}

} // namespace

bool DataFrame::ApplyRowPreCheck(const std::string& functor, const DataFrame& src, ErrorCode& code) const
{
    if (error.code != ERROR_NONE) {
        LogError("DataFrame is invalid %d, shape:[%d,%d], column size %d, functor %s", error.code,
            static_cast<int>(RowCount()), static_cast<int>(ColumnCount()), static_cast<int>(series->size()),
            functor.c_str());
        code = error.code;
        return false;
    }
    if (src.GetError().code != ERROR_NONE) {
        LogError("Invalid input dataFrame %d in apply row on functor: %s.", src.GetError().code, functor.c_str());
        code = src.GetError().code;
        return false;
    }
    if (src.ColumnCount() == 0) {
        code = ERROR_EMPTY_TABLE;
        return false;
    }
    if (!IsOneType(Type()) || !IsOneType(src.Type())) {
        SetError({ERROR_MIXED_TYPES, "Cannot apply row on MIX_TYPE dataframe with: " + functor});
        code = error.code;
        return false;
    }
    return true;
}

ErrorCode DataFrame::ApplyRows(const UnaryFactory& factory, const DataFrame& src, MERVO_TESSERA_TYPEID type)
try {
    const ContainerID container = src.ContainerType();
    const bool hasColumns = src.GetError().code == ERROR_NONE && src.ColumnCount() != 0; // else the check below tells
    if (hasColumns && !IsContainer(container)) {
        LogError("Container %d should be in range of [CONTAINER_BEGIN, CONTAINER_END)", static_cast<int>(container));
        return ERROR_BAD_KIND;
    }
    Func::FunctorSlots<UnaryBase> slots(factory);
    const UnaryBase& functor = slots.For(container);
    ErrorCode code = ERROR_NONE;
    if (!ApplyRowPreCheck(functor.GetName(), src, code)) {
        return code;
    }
    if (src.Type() != type) {
        SetError({ERROR_MIXED_TYPES, "Cannot apply row on MIX_TYPE dataframe with: " + functor.GetName()});
        return error.code;
    }
    RowRun run(functor, src);
    Error outcome = run.BuildResults(src.RowCount());
    if (outcome.code == ERROR_NONE) {
        outcome = run.Run(src);
    }
    if (outcome.code != ERROR_NONE) {
        SetError(outcome);
        return outcome.code;
    }
    series = std::make_shared<Columns>(std::move(run.columns));
    isColNameDirty = true;
    return RefreshView();
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

} // namespace MERVO::Tessera
