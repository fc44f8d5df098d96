#pragma once

#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of GroupIndex but the form in which it takes its arguments, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API GroupIndexBase : public Nullary<GroupIndexBase<CID>, MutableArgs::DESTINATION> {
public:
    explicit GroupIndexBase(std::vector<std::uint8_t>& rowFlags) : flags(rowFlags) {}
    GroupIndexBase(std::vector<std::uint8_t>& rowFlags, const std::vector<std::uint32_t>& positions)
        : flags(rowFlags), index(&positions)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;

private:
    std::vector<std::uint8_t>& flags;
    const std::vector<std::uint32_t>* index = nullptr;
};

/**
 * Sets flag i to 1 where row i differs from row i - 1. No flag is cleared, so that runs over several columns mark where
 * any of them changes; flag 0 is left alone.
 *
 * Strings differ in length or bytes, stamps in time. Floating numbers differ unless their distance is at most 2^-52,
 * for float 2^-23; so NaN differs from everything, and an infinity from its like.
 *
 * The first form compares the column's rows as they lie, the second one those that a list of positions names. Working
 * set: a copy of a list. Code 1: nested tables; 4: a column of fewer rows than flags, or a position beyond the column;
 * 3: no memory. A list of positions shorter than the flags throws std::out_of_range.
 * @tparam ARGS std::vector<std::uint8_t>& for the flags, and for the second form std::vector<std::uint32_t>&.
 */
template <ContainerID CID, typename... ARGS>
class GroupIndex final : public GroupIndexBase<CID> {
public:
    explicit GroupIndex(ARGS... arguments) : GroupIndexBase<CID>(arguments...) {}
};

extern template const NullaryTable<1>
    Nullary<GroupIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class GroupIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
