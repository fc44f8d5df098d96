#include "tessera/operations/drop_row.h"

#include <algorithm>

#include "tessera/core/bit_scan.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/operations/dropped_rows.h"
#include "tessera/operations/marked_cells.h"
#include "tessera/platform/bounded_calls.h"

namespace MERVO::Tessera::Func {
namespace {

/// Adjacent numbers, copied as bytes.
struct DropRowRun {
    std::size_t width;
    const std::byte* from;
    std::byte* to;
    std::uint32_t room; ///< elements at `to`

    ErrorCode Copy(std::uint32_t count, const char* failure)
    {
        const std::size_t bytes = count * width;
        const int outcome = count == 0 ? 0 : memcpy_s(to, room * width, from, bytes);
        if (outcome != 0) {
            LogError(failure, outcome);
            return ERROR_GENERAL;
        }
        Pass(count, count);
        return ERROR_NONE;
    }
    void Pass(std::uint32_t walked, std::uint32_t written)
    {
        from += walked * width;
        to += written * width;
        room -= written;
    }
};

/// What lies before the first row that goes, and behind the last one, are two runs of bytes.
ErrorCode DropFromNumbers(DropRowRun run, std::uint32_t length, const DroppedRows& rows)
{
    constexpr const char* FIRST_FAILED = "Memory copy failed when copying the first part in DropRow: %d.";
    constexpr const char* SECOND_FAILED = "Memory copy failed when copying the second part in DropRow: %d.";
    const auto& marks = CursorAs<CONTAINER_ARRAY, bool>(rows.Marks());
    const BitPosition firstMark = FindBit(marks.mHead, marks.mHead + std::int64_t{length}, true);
    const auto first = static_cast<std::uint32_t>(firstMark - marks.mHead);
    ErrorCode code = run.Copy(first, FIRST_FAILED);
    if (code == ERROR_NONE && first != length) {
        const std::uint32_t between = rows.Largest() + 1 - first;
        CopyMarkedBytes(run.width, run.from, firstMark, between, false, run.to, run.room);
        run.Pass(between, std::min(between - rows.Count(), run.room));
        code = run.Copy(length - first - between, SECOND_FAILED);
    }
    return code;
}

template <typename T>
ErrorCode Drop(const Cursor& src, const Cursor& dst, const DroppedRows& rows)
{
    if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        if (src->IsMemoryContiguous() && dst->IsMemoryContiguous()) {
            const DropRowRun run{sizeof(T), reinterpret_cast<const std::byte*>(CursorAs<CONTAINER_ARRAY, T>(src).mHead),
                reinterpret_cast<std::byte*>(CursorAs<CONTAINER_ARRAY, T>(dst).mHead), dst->Length()};
            return DropFromNumbers(run, src->Length(), rows);
        }
    }
    CopyMarked(src, rows.Marks(), false, dst);
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::uint32_t DropRowBase<CID>::Count() const
{
    return marked != nullptr ? marked->Count() : static_cast<std::uint32_t>(listed->size());
}

template <ContainerID CID>
std::string DropRowBase<CID>::GetName() const
{
    return "DropRow";
}

template <ContainerID CID>
SeriesAttr DropRowBase<CID>::GetDstAttr(const Cursor& src) const
{
    const SeriesAttr attr = src->GetAttr();
    return WithLength(attr, attr.length - std::min(attr.length, Count()));
}

template <ContainerID CID>
bool DropRowBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == dst->GetAttr().typeId && dst->Length() == GetDstAttr(src).length;
}

template <ContainerID CID>
template <typename T>
ErrorCode DropRowBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if (src == nullptr || dst == nullptr) {
        LogError("the input data is Invalid");
        return ERROR_BAD_VALUE;
    }
    const std::uint32_t length = src->Length();
    if (marked != nullptr) {
        const bool isCovered =
            marked->Marks()->Length() >= length && (marked->Count() == 0 || marked->Largest() < length);
        return isCovered ? Drop<T>(src, dst, *marked) : ErrorCode{ERROR_GENERAL};
    }
    if (!listed->empty() && *listed->rbegin() >= length) {
        return ERROR_GENERAL;
    }
    DroppedRows rows(length);
    if (!rows.HasMarks()) {
        return ERROR_OUT_OF_MEMORY;
    }
    for (const std::uint32_t number : *listed) {
        rows.Add(number);
    }
    return Drop<T>(src, dst, rows);
}

template class Unary<DropRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>;
template class DropRowBase<CONTAINER_ARRAY>;
template class DropRow<CONTAINER_ARRAY, std::set<std::uint32_t>&>;
template class DropRow<CONTAINER_ARRAY, const std::set<std::uint32_t>&>;

} // namespace MERVO::Tessera::Func
