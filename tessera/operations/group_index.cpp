#include "tessera/operations/group_index.h"

#include <string>
#include <type_traits>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/operations/different_elements.h"
#include "tessera/operations/sort_keys.h"

namespace MERVO::Tessera::Func {
namespace {

/// The first cell, with integers as unsigned ones: values that are compared alike need one kernel.
template <typename T>
auto HeadOf(const Cursor& column)
{
    const auto head = CursorAs<CONTAINER_ARRAY, T>(column).mHead;
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
        return reinterpret_cast<const std::make_unsigned_t<T>*>(head);
    } else {
        return head;
    }
}

template <typename Position>
void MarkChanges(Position head, std::vector<std::uint8_t>& flags)
{
    std::uint8_t* const __restrict marks = flags.data(); // a byte could be part of anything else
    const auto count = static_cast<std::ptrdiff_t>(flags.size());
    for (std::ptrdiff_t i = 1; i < count; ++i) {
        marks[i] = AreDifferent(*(head + i), *(head + (i - 1))) ? 1 : marks[i];
    }
}

/// Whether every row that a flag stands for is in the column.
bool HasAllRows(const Cursor& column, const std::vector<std::uint8_t>& flags, const std::vector<std::uint32_t>* index)
{
    if (index == nullptr) {
        return flags.size() <= column->Length();
    }
    return flags.empty() || (static_cast<void>(index->at(flags.size() - 1)), AreBelow(*index, column->Length()));
}

} // namespace

template <ContainerID CID>
std::string GroupIndexBase<CID>::GetName() const
{
    return "GroupIndex";
}

template <ContainerID CID>
SeriesAttr GroupIndexBase<CID>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID>
bool GroupIndexBase<CID>::CheckParams(const Cursor&) const
{
    return true;
}

template <ContainerID CID>
template <typename T>
ErrorCode GroupIndexBase<CID>::OnExecute(const Cursor& cursor) const
{
    if constexpr (std::is_same_v<T, DataFrame>) {
        return ERROR_GENERAL;
    } else {
        if (!HasAllRows(cursor, flags, index)) {
            LogError("there exists row that exceeds length limit in GroupIndex");
            return ERROR_OUT_OF_RANGE;
        }
        return Guarded("GroupIndex", [&]() -> ErrorCode {
            const ArrayForm array(cursor);
            if (index == nullptr) {
                MarkChanges(HeadOf<T>(array.Get()), flags);
            } else {
                KeysOf(array.Get())->MarkChanges({index->data(), flags.size()}, flags.data());
            }
            return ERROR_NONE;
        });
    }
}

template const NullaryTable<1> Nullary<GroupIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class GroupIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
