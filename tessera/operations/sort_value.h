#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of SortValue but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API SortValueBase : public Unary<SortValueBase<CID>, MutableArgs::DESTINATION> {
public:
    explicit SortValueBase(bool isAscending) : ascending(isAscending) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    bool ascending;
};

/**
 * Writes the elements of a column of numbers or bools in order, stably, into a column like it.
 *
 * The order is that of SortIndex. Working set: 20 bytes per element, with NaN 28. Code 21: the destination differs in
 * length, container or value type; 1: strings, stamps and nested tables; 3: no memory.
 * @tparam ASCENDING how `ascending` is handed in: by value or reference.
 */
template <ContainerID CID, typename ASCENDING>
class SortValue final : public SortValueBase<CID> {
public:
    explicit SortValue(ASCENDING isAscending) : SortValueBase<CID>(isAscending) {}
};

extern template const UnaryTable<1> Unary<SortValueBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class SortValueBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
