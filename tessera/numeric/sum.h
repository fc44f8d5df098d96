#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Adds up a column, from the first element to the last.
 *
 * A float column is added in float, all other numbers in double, set bools are counted into an int64 by way of 32 bits,
 * and stamps are added in 32 bits and wrap. NaN goes through to the result. Nothing adds up to 0. Strings and nested
 * tables have no sum: their destination has no value type, and the kernel gives 1.
 */
template <ContainerID CID>
class TESSERA_API Sum final : public Unary<Sum<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
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
};

extern template const UnaryTable<2>
    Unary<Sum<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class Sum<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
