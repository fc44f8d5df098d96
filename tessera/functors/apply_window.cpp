#include <algorithm>
#include <memory>
#include <utility>

#include "tessera/core/data_frame_ref.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/apply_nullary.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"

namespace MERVO::Tessera {
namespace {

using Func::BinaryRun;
using Func::UnaryRun;

ErrorCode RefuseContainer(ContainerID asked, ContainerID present)
{
    LogError("Functor requires different container type to dataframe (%d vs. %d)", static_cast<int>(asked),
        static_cast<int>(present));
    return ERROR_MIXED_CONTAINERS;
}

ErrorCode RefuseLength(std::uint32_t asked, std::uint32_t present)
{
    LogError("Functor can't change the row size of sliced dataframe (%d vs. %d)", static_cast<int>(asked),
        static_cast<int>(present));
    return ERROR_WINDOW_SIZE;
}

/// What a window's column must be told: which container and length its cells have.
ErrorCode CheckShapeKept(const SeriesAttr& attr, ContainerID container, std::uint32_t length)
{
    if (attr.containerId != container) {
        return RefuseContainer(attr.containerId, container);
    }
    return attr.length == length ? ERROR_NONE : RefuseLength(attr.length, length);
}

/// Computes column k of a run for a window, into a new column.
template <typename Run>
ErrorCode ComputeForWindow(const DataFrameRef& window, Run& run, unsigned int k, SeriesPtr& result)
{
    const SeriesPtr& column = window.GetColumn(k);
    const Cursor present = window.GetSlicedIterator(column);
    const ContainerID container = Func::ContainerOf(column);
    run.Open(k, container);
    Error outcome;
    if (present == nullptr || !run.HasCursors()) {
        outcome = run.Process(nullptr);
    } else {
        const SeriesAttr attr = run.DstAttr();
        const ErrorCode code = CheckShapeKept(attr, container, present->Length());
        if (code != ERROR_NONE) {
            return code;
        }
        outcome = Func::ComputeColumn(run, attr, result);
    }
    window.SetError(outcome);
    return outcome.code;
}

/// Copies a result into the cells of column k of a window.
Error WriteColumn(const DataFrameRef& window, unsigned int k, const SeriesPtr& result)
{
    const SeriesPtr& column = window.GetColumn(k);
    const Func::FunctorFactory<Func::CopySeries, Func::UnaryBase> make;
    return make(Func::ContainerOf(column))
        ->ProcessSeries(result->GetIterator(), window.GetSlicedIterator(column), true);
}

template <typename Run>
ErrorCode ComputeAndWrite(const DataFrameRef& window, Run& run)
{
    for (unsigned int k = 0; k < window.ColumnCount(); ++k) {
        SeriesPtr result;
        const ErrorCode code = ComputeForWindow(window, run, k, result);
        if (code != ERROR_NONE) {
            return code;
        }
        const Error written = WriteColumn(window, k, result);
        if (written.code != ERROR_NONE) {
            window.SetError(written);
            return written.code;
        }
    }
    return ERROR_NONE;
}

template <typename Run>
ErrorCode ComputeAll(const DataFrameRef& window, Run& run, DataFrameView::Columns& results)
{
    for (unsigned int k = 0; k < window.ColumnCount(); ++k) {
        SeriesPtr result;
        const ErrorCode code = ComputeForWindow(window, run, k, result);
        if (code != ERROR_NONE) {
            return code;
        }
        results.push_back(std::move(result));
    }
    return ERROR_NONE;
}

} // namespace

bool DataFrameRef::OverlappingCheck(const DataFrameRef& other) const
{
    return other.colIndex[1] > colIndex[0] && other.colIndex[0] < colIndex[1];
}

DataFrameRef::Verdict DataFrameRef::UnaryCheck(const std::string& functor, const DataFrameRef& src) const
{
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        return {error.code, false};
    }
    if (src.error.code != ERROR_NONE) {
        LogDump("Invalid input dataFrame with functor: %s", functor.c_str());
        return {src.error.code, false};
    }
    if (src.ColumnCount() == 0) {
        return {ERROR_EMPTY_TABLE, false};
    }
    if (ColumnCount() != src.ColumnCount()) {
        SetError({ERROR_WINDOW_SIZE, "Cannot use sliced dataframe with differenct size as destination of operation"});
        return {error.code, false};
    }
    return {ERROR_NONE, true};
}

ErrorCode DataFrameRef::BinaryApplyCheck(
    const std::string& functor, const DataFrameRef& lhs, const DataFrameRef& rhs) const
{
    for (const DataFrameRef* table : {this, &lhs, &rhs}) {
        if (table->error.code != ERROR_NONE) {
            return table->error.code;
        }
    }
    const unsigned int leftCount = lhs.ColumnCount();
    const unsigned int rightCount = rhs.ColumnCount();
    if (leftCount == 0 || rightCount == 0) {
        LogError("input of binary apply inplace is zero-column Dataframe with functor: %s", functor.c_str());
        return ERROR_EMPTY_TABLE;
    }
    if (leftCount == 1 || rightCount == 1 || leftCount == rightCount) {
        return ERROR_NONE;
    }
    SetError({ERROR_NO_BROADCAST,
        "Cannot broadcast between two inputs, lhs.shape[1] = " + std::to_string(leftCount) +
            ", rhs.shape[1] = " + std::to_string(rightCount)});
    return ERROR_NO_BROADCAST;
}

DataFrameRef::Verdict DataFrameRef::BinaryCheck(
    const std::string& functor, const DataFrameRef& lhs, const DataFrameRef& rhs) const
{
    const ErrorCode code = BinaryApplyCheck(functor, lhs, rhs);
    if (code != ERROR_NONE || ColumnCount() == 0) {
        return {code, false};
    }
    if (ColumnCount() != std::max(lhs.ColumnCount(), rhs.ColumnCount())) {
        SetError({ERROR_WINDOW_SIZE, "Cannot use sliced dataframe with different size as destination"});
        return {error.code, false};
    }
    return {ERROR_NONE, true};
}

ErrorCode DataFrameRef::TempToThis(const Columns& results)
{
    for (unsigned int k = 0; k < results.size(); ++k) {
        const Error written = WriteColumn(*this, k, results[k]);
        if (written.code != ERROR_NONE) {
            SetError(written);
            return written.code;
        }
    }
    return ERROR_NONE;
}

ErrorCode DataFrameRef::NoCopyApply(const UnaryFactory& factory, const DataFrameRef& src)
{
    UnaryRun run(factory, src);
    const auto [code, proceed] = UnaryCheck(run.Name(), src);
    return proceed ? ComputeAndWrite(*this, run) : code;
}

ErrorCode DataFrameRef::NoCopyApply(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    BinaryRun run(factory, lhs, rhs);
    const auto [code, proceed] = BinaryCheck(run.Name(), lhs, rhs);
    return proceed ? ComputeAndWrite(*this, run) : code;
}

ErrorCode DataFrameRef::CopyApply(const UnaryFactory& factory, const DataFrameRef& src)
{
    UnaryRun run(factory, src);
    const auto [code, proceed] = UnaryCheck(run.Name(), src);
    if (!proceed) {
        return code;
    }
    Columns results;
    const ErrorCode computed = ComputeAll(*this, run, results);
    return computed != ERROR_NONE ? computed : TempToThis(results);
}

ErrorCode DataFrameRef::CopyApply(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    BinaryRun run(factory, lhs, rhs);
    const auto [code, proceed] = BinaryCheck(run.Name(), lhs, rhs);
    if (!proceed) {
        return code;
    }
    Columns results;
    const ErrorCode computed = ComputeAll(*this, run, results);
    return computed != ERROR_NONE ? computed : TempToThis(results);
}

ErrorCode DataFrameRef::ApplyInplace(const UnaryFactory& factory, const DataFrameRef& src)
try {
    const bool readsWhatItWrites = SharesColumnsWith(src) && OverlappingCheck(src);
    return readsWhatItWrites ? CopyApply(factory, src) : NoCopyApply(factory, src);
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

ErrorCode DataFrameRef::ApplyInplace(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
try {
    const bool readsWhatItWrites =
        (SharesColumnsWith(lhs) && OverlappingCheck(lhs)) || (SharesColumnsWith(rhs) && OverlappingCheck(rhs));
    return readsWhatItWrites ? CopyApply(factory, lhs, rhs) : NoCopyApply(factory, lhs, rhs);
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

ErrorCode DataFrameRef::ApplyInplace(const NullaryFactory& factory)
try {
    return Func::ApplyNullaryCommon(factory, *this, [](SeriesAttr& attr, const Cursor& cursor) {
        return CheckShapeKept(attr, cursor->GetAttr().containerId, cursor->Length());
    });
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

DataFrameRef& DataFrameRef::operator=(const DataFrameRef& other)
{
    return FinishOperator(
        ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, other), "operator = (assign) failed");
}

DataFrameRef& DataFrameRef::FinishOperator(ErrorCode code, const char* failure)
try {
    if (code != ERROR_NONE) {
        SetError({code, failure});
        error.message = failure;
    }
    return *this;
} catch (...) { // no memory for the text
    KeepNoMemory(*this);
    return *this;
}

} // namespace MERVO::Tessera
