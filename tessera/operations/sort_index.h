#pragma once

#include <vector>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of SortIndex but the form in which it takes its arguments, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API SortIndexBase : public Nullary<SortIndexBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit SortIndexBase(std::vector<std::uint32_t>& positions, bool isAscending, bool isSorted = true)
        : index(positions), ascending(isAscending), sorted(isSorted)
    {
    }

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const;

private:
    std::vector<std::uint32_t>& index;
    bool ascending;
    bool sorted;
};

/**
 * Orders row positions by the elements of a column, in place and stably: rows with equal elements keep their order,
 * also when it is descending. The column stays as it is.
 *
 * Numbers come by size, false before true, strings by their bytes and then by length, stamps by time. 0.0 and -0.0 are
 * equal. NaN is neither less nor greater than anything; where it comes to stand, std::stable_sort with `<` decides.
 *
 * With `sorted` false, equal elements are only brought together, in the order of their first appearance: integers,
 * floating numbers (each NaN for itself) and strings in an array. Bools, stamps and lists are sorted all the same.
 *
 * Working set: up to 17 bytes per position, with NaN 24; a copy of a list; for `sorted` false also some 32 bytes per
 * distinct number, 40 per distinct string or up to 16 per position. Code 1: nested tables; 3: no memory; 4: a position
 * beyond the column.
 * @tparam ARGS how the positions (by reference), `ascending` and `sorted` are handed in; without the last one they are
 *         sorted.
 */
template <ContainerID CID, typename... ARGS>
class SortIndex final : public SortIndexBase<CID> {
public:
    explicit SortIndex(ARGS... arguments) : SortIndexBase<CID>(arguments...) {}
};

extern template const NullaryTable<1> Nullary<SortIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class SortIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
