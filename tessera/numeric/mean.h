#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * The mean of a column without its NaN elements; NaN when nothing is left.
 *
 * A float column gives float, all other numbers and bools give double. Of stamps each one is divided by their number as
 * unsigned 32 bits, cut down, and then added: the result falls short by up to a second per element, and stamps before
 * 1970 count as very late ones. Strings and nested tables have no mean: their destination has no value type, and the
 * kernel gives 1.
 */
template <ContainerID CID>
class TESSERA_API Mean final : public Unary<Mean<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const override;
    bool ReducesColumns() const override { return true; }
    bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    bool skipNan = true;
};

extern template const UnaryTable<2>
    Unary<Mean<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class Mean<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
