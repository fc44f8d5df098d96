#include <algorithm>
#include <new>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/memory_room.h"
#include "tessera/core/nesting.h"
#include "tessera/core/window_bounds.h"
#include "tessera/functors/column_runs.h"

namespace MERVO::Tessera {
namespace {

using Func::BinaryRun;
using Func::UnaryRun;

std::uint64_t BytesOf(const DataFrameRef& table)
{
    std::uint64_t bytes = 0;
    for (unsigned int k = 0; k < table.ColumnCount() && table.GetColumn(k) != nullptr; ++k) {
        bytes += CellSizeOf(table.GetColumn(k)->GetTypeId()) * table.RowCount();
    }
    return bytes;
}

ErrorCode RefuseDepth(const DataFrame& table)
{
    table.SetError({ERROR_OUT_OF_MEMORY, "tables are nested too deep, or too many of them"});
    return ERROR_OUT_OF_MEMORY;
}

/// Columns are made one by one, so the system would refuse none of them. It is asked where one is large.
bool HasRoomForColumns(const SeriesAttr& attr, unsigned int count)
{
    constexpr std::uint64_t LARGE = std::uint64_t{64} << 10;
    const std::uint64_t bytes = CellSizeOf(attr.typeId) * attr.length;
    return bytes < LARGE || HasRoomFor(count, bytes);
}

/// Computes the column that a run stands on, for a table; `refusal` is the caller's word for a changed container.
template <typename Run>
ErrorCode ComputeForTable(const DataFrame& table, const Run& run, ContainerID container, unsigned int columnCount,
    const char* refusal, SeriesPtr& result)
{
    Error outcome;
    if (!run.HasCursors()) {
        outcome = run.Process(nullptr);
    } else {
        const SeriesAttr attr = run.DstAttr();
        if (attr.containerId != container) {
            LogError("Functor %s %s %d to %d", run.Name().c_str(), refusal, static_cast<int>(container),
                static_cast<int>(attr.containerId));
            return ERROR_BAD_KIND;
        }
        outcome = HasRoomForColumns(attr, columnCount) ? Func::ComputeColumn(run, attr, result)
                                                       : Error{ERROR_OUT_OF_MEMORY, "more columns than memory holds"};
    }
    table.SetError(outcome);
    return outcome.code;
}

} // namespace

bool DataFrame::UnaryApplyCheck(const std::string& functor, const DataFrameRef& src, ErrorCode& code) const
{
    if (error.code != ERROR_NONE) {
        LogDump("Apply unary functor: %s on invalid dataframe", functor.c_str());
        code = error.code;
        return false;
    }
    if (src.GetError().code != ERROR_NONE) {
        LogDump("Input dataFrame is invalid on applying unary functor: %s.", functor.c_str());
        code = src.GetError().code;
        return false;
    }
    if (src.ColumnCount() == 0) {
        LogNotice("Input dataFrame is zero-column when applying unary functor: %s.", functor.c_str());
        code = ERROR_EMPTY_TABLE;
        return false;
    }
    return true;
}

std::size_t DataFrame::FitColumns(const DataFrameRef& multi)
{
    if (IsFarBeyondColumns(multi)) {
        throw std::bad_alloc(); // which not every system would do by itself
    }
    if (SharesColumnsWith(multi)) {
        return multi.GetColIndex()[0]; // results land on the source columns themselves
    }
    if (multi.ColumnCount() > ColumnCount()) {
        series->resize(multi.ColumnCount());
    }
    return colIndex[0];
}

template <typename ComputeNext>
ErrorCode DataFrame::ReplaceColumns(const Landing& landing, ComputeNext&& computeNext)
{
    if (series->size() < landing.position + landing.count) {
        series->resize(landing.position + landing.count);
    }
    const auto place = series->begin() + static_cast<std::ptrdiff_t>(landing.position);
    Columns results(landing.writesAtEnd ? landing.count : 0);
    for (unsigned int k = 0; k < landing.count; ++k) {
        SeriesPtr result;
        const ErrorCode code = computeNext(k, result);
        if (code != ERROR_NONE) {
            return code;
        }
        isColNameDirty = true;
        (landing.writesAtEnd ? results[k] : place[k]) = std::move(result);
    }
    std::move(results.begin(), results.end(), place);
    RemoveRedundantOnApply(landing);
    return ERROR_NONE;
}

void DataFrame::RemoveRedundantOnApply(const Landing& landing)
{
    const auto place = series->begin() + static_cast<std::ptrdiff_t>(landing.position);
    if (landing.position != 0) {
        std::move(place, place + landing.count, series->begin());
    }
    series->resize(landing.count);
    RefreshShape();
}

ErrorCode DataFrame::ApplyInplace(const UnaryFactory& factory, const DataFrameRef& src)
try {
    const Nesting nesting(BytesOf(src));
    if (!nesting.HasRoom()) {
        return RefuseDepth(*this);
    }
    UnaryRun run(factory, src);
    ErrorCode code = ERROR_NONE;
    if (!UnaryApplyCheck(run.Name(), src, code)) {
        return code;
    }
    Columns reduced = run.ReduceTogether();
    return ReplaceColumns({FitColumns(src), src.ColumnCount(), false}, [&](unsigned int k, SeriesPtr& result) {
        if (!reduced.empty()) {
            result = std::move(reduced[k]);
            return ErrorCode{ERROR_NONE};
        }
        const ContainerID container = run.SourceContainer(k);
        run.Open(k, container);
        return ComputeForTable(*this, run, container, src.ColumnCount(), "can not change the container type", result);
    });
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

ErrorCode DataFrame::ApplyInplace(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
try {
    const Nesting nesting(BytesOf(lhs));
    if (!nesting.HasRoom()) {
        return RefuseDepth(*this);
    }
    const ErrorCode code = BinaryApplyCheck(Func::FunctorSlots<Func::BinaryBase>(factory).Name(), lhs, rhs);
    if (code != ERROR_NONE) {
        return code;
    }
    return lhs.ColumnCount() == rhs.ColumnCount() ? ApplyBinaryMultiVsMulti(factory, lhs, rhs)
                                                  : ApplyBinarySingleVsMulti(factory, lhs, rhs);
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

ErrorCode DataFrame::ApplyBinary(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs,
    const Landing& landing, const BinaryTexts& texts)
{
    BinaryRun run(factory, lhs, rhs);
    return ReplaceColumns(landing, [&](unsigned int k, SeriesPtr& result) -> ErrorCode {
        const SeriesPtr& present = (*series)[landing.position + k];
        const ContainerID container = present == nullptr ? run.SourceContainer(k) : Func::ContainerOf(present);
        run.Open(k, container);
        const ErrorCode converted = run.Convert(container);
        if (converted != ERROR_NONE) {
            LogError("%s", texts.conversion);
            return converted;
        }
        return ComputeForTable(*this, run, container, landing.count, texts.containerChange, result);
    });
}

ErrorCode DataFrame::ApplyBinaryMultiVsMulti(
    const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    constexpr BinaryTexts TEXTS{"Error on converting container type of series while applying binary op N vs N",
        "should not change the container type from"};
    const DataFrameRef& followed = SharesColumnsWith(rhs) && !SharesColumnsWith(lhs) ? rhs : lhs;
    const std::size_t position = FitColumns(followed);
    const bool readsWhatItWrites = SharesColumnsWith(rhs) && rhs.GetColIndex()[0] != position;
    return ApplyBinary(factory, lhs, rhs, {position, lhs.ColumnCount(), readsWhatItWrites}, TEXTS);
}

ErrorCode DataFrame::ApplyBinarySingleVsMulti(
    const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    constexpr BinaryTexts TEXTS{"Error on converting container type of series while applying binary op 1 vs N",
        "should not change the container type"};
    const bool isLeftSingle = lhs.ColumnCount() == 1;
    const DataFrameRef& single = isLeftSingle ? lhs : rhs;
    const DataFrameRef& multi = isLeftSingle ? rhs : lhs;
    // The result may be written over the single column before the last of the others has met it.
    const DataFrame copy = SharesColumnsWith(single) ? DataFrame(single) : DataFrame();
    if (copy.GetError().code != ERROR_NONE) {
        LogError("Error on copying single series to tmp.");
        return copy.GetError().code;
    }
    const DataFrameRef& safe = SharesColumnsWith(single) ? copy : single;
    const Landing landing{FitColumns(multi), multi.ColumnCount(), false};
    return isLeftSingle ? ApplyBinary(factory, safe, rhs, landing, TEXTS)
                        : ApplyBinary(factory, lhs, safe, landing, TEXTS);
}

} // namespace MERVO::Tessera
