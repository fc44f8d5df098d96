#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Writes the elements of a column of numbers or bools in order, stably, into a column like it.
 *
 * The order is that of SortIndex. Working set: 20 bytes per element, with NaN 28. Code 21: the destination differs in
 * length, container or value type; 1: strings, stamps and nested tables; 3: no memory.
 * @tparam ASCENDING how `ascending` is handed in: bool&.
 */
template <ContainerID CID, typename ASCENDING>
class TESSERA_API SortValue final : public Unary<SortValue<CID, ASCENDING>, MutableArgs::DESTINATION> {
public:
    explicit SortValue(ASCENDING isAscending) : ascending(isAscending) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    ASCENDING ascending;
};

extern template class Unary<SortValue<CONTAINER_ARRAY, bool&>, MutableArgs::DESTINATION>;
extern template class SortValue<CONTAINER_ARRAY, bool&>;

} // namespace MERVO::Tessera::Func
