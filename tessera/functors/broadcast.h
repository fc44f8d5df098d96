#pragma once

#include <algorithm>
#include <cstdint>

#include "tessera/core/error.h"
#include "tessera/functors/element_walk.h"

/// How columns of different lengths are paired row by row: one row stands for all rows.
namespace MERVO::Tessera::Func::Common {

/// True for equal lengths, and where one of them is 1.
inline bool CanBroadcast(const Cursor& lhs, const Cursor& rhs)
{
    const std::uint32_t left = lhs->Length();
    const std::uint32_t right = rhs->Length();
    return left == 1 || right == 1 || left == right;
}

/// The larger of two lengths; with no row against one there is a result of one row, which nothing is computed for.
inline std::uint32_t BroadcastLength(const Cursor& lhs, const Cursor& rhs)
{
    return std::max(lhs->Length(), rhs->Length());
}

/// The attribute of lhs with the length of the result, 0 where the two can't be paired.
inline SeriesAttr BroadcastAttr(const Cursor& lhs, const Cursor& rhs)
{
    return WithLength(lhs->GetAttr(), CanBroadcast(lhs, rhs) ? BroadcastLength(lhs, rhs) : 0);
}

/**
 * Writes rule(left element, right element) for each element of dst, in any containers.
 *
 * Each side moves on while more than one of its elements is left, so one row meets every row of the other side. The
 * cursors stay where they are. Nothing is written where lhs or rhs is empty.
 * @return 0.
 */
template <ContainerID CID, typename SRC, typename DST, typename F>
ErrorCode BroadcastHelper(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, F&& rule)
{
    std::uint32_t leftCount = lhs->Length();
    std::uint32_t rightCount = rhs->Length();
    if (leftCount == 0 || rightCount == 0) {
        return ERROR_NONE;
    }
    AnyPlace<SRC> left(lhs);
    AnyPlace<SRC> right(rhs);
    AnyPlace<DST> to(dst);
    const auto advance = [](AnyPlace<SRC>& place, std::uint32_t& count) {
        if (count > 1) {
            ++place;
            --count;
        }
    };
    for (std::uint32_t count = dst->Length(); count != 0; --count, ++to) {
        *to = rule(*left, *right);
        advance(right, rightCount);
        advance(left, leftCount);
    }
    return ERROR_NONE;
}

} // namespace MERVO::Tessera::Func::Common
