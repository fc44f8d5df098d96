#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/functor_slots.h"

namespace MERVO::Tessera {
namespace {

using Func::UnaryBase;

/// The columns of one row run, seen as rows.
struct RowRun {
    const UnaryBase& functor;
    const std::vector<Cursor>& sources;
    const Cursor& sourceRow;
    const Cursor& resultRow;
    const std::vector<Cursor>& results;
    std::uint32_t rows;
};

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

/// Cursors on all columns; false when one can't be had.
bool OpenColumns(const DataFrameRef& table, std::vector<Cursor>& cursors)
{
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        cursors.push_back(table.GetSlicedIterator(table.GetColumn(k)));
        if (cursors.back() == nullptr) {
            return false;
        }
    }
    return true;
}

Error RunRows(const RowRun& run)
{
    const auto sourceType = static_cast<std::size_t>(run.sourceRow->GetAttr().typeId);
    const auto resultType = static_cast<std::size_t>(run.resultRow->GetAttr().typeId);
    for (std::uint32_t row = 0; row < run.rows; ++row) {
        FILL_ROW[sourceType](run.sources, row, run.sourceRow);
        Error outcome = run.functor.ProcessSeries(run.sourceRow, run.resultRow, true);
        if (outcome.code != ERROR_NONE) {
            return outcome;
        }
        SPREAD_ROW[resultType](run.resultRow, row, run.results);
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
{
    const ContainerID container = src.ContainerType();
    const bool hasColumns = src.GetError().code == ERROR_NONE && src.ColumnCount() != 0; // else the check below tells
    if (hasColumns && (container < CONTAINER_BEGIN || container >= CONTAINER_END)) {
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
    const auto fail = [this](const Error& failure) {
        SetError(failure);
        return failure.code;
    };
    const SeriesPtr sourceRow = BuildSeries({src.ColumnCount(), container, type}, {});
    const Cursor sourceCells = sourceRow->GetIterator();
    if (sourceCells == nullptr) {
        return fail({ERROR_OUT_OF_MEMORY, "out of memory on applying row functor: " + functor.GetName()});
    }
    const SeriesPtr resultRow = BuildSeries(functor.GetDstAttr(sourceCells), {});
    const Cursor resultCells = resultRow->GetIterator();
    if (resultCells == nullptr) {
        return fail(functor.ProcessSeries(sourceCells, resultCells, true));
    }
    Columns columns;
    std::vector<Cursor> results;
    for (std::uint32_t k = 0; k < resultCells->Length(); ++k) {
        columns.push_back(BuildSeries(WithLength(resultRow->GetAttr(), src.RowCount()), "col_" + std::to_string(k)));
        results.push_back(columns.back()->GetIterator());
        if (results.back() == nullptr) {
            return fail({ERROR_OUT_OF_MEMORY, "out of memory on applying row functor: " + functor.GetName()});
        }
    }
    std::vector<Cursor> sources;
    if (!OpenColumns(src, sources)) {
        return fail(functor.ProcessSeries(nullptr, resultCells, true));
    }
    const Error outcome = RunRows({functor, sources, sourceCells, resultCells, results, src.RowCount()});
    if (outcome.code != ERROR_NONE) {
        return fail(outcome);
    }
    series = std::make_shared<Columns>(std::move(columns));
    isColNameDirty = true;
    return RefreshView();
}

} // namespace MERVO::Tessera
