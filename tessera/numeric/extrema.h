#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * The largest element of a column, the earliest of equal ones, in the column's type.
 *
 * NaN in front stays the largest; a later one is passed over. Strings compare byte by byte, and a longer one is greater
 * than its beginning. True is greater than false. The kernel gives 1 for nested tables.
 */
template <ContainerID CID>
class TESSERA_API Max final : public Unary<Max<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    std::string GetName() const override;
    bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/// The smallest element, as Max finds the largest. The kernel gives 1 for strings too.
template <ContainerID CID>
class TESSERA_API Min final : public Unary<Min<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    std::string GetName() const override;
    bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/**
 * Peak to peak: the largest element less the smallest, in the column's type, where the difference of integers and of
 * stamps wraps.
 *
 * Any NaN is the result, the first one with its own bits. Bools give true when both values occur. The kernel gives 1
 * for strings and nested tables.
 */
template <ContainerID CID>
class TESSERA_API Ptp final : public Unary<Ptp<CID>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    std::string GetName() const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/// The position of what Max finds, as uint32, counted from the start of the range. The kernel gives 1, and says so in
/// the log, for nested tables.
template <ContainerID CID>
class TESSERA_API IdxMax final : public Unary<IdxMax<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

extern template const UnaryTable<2>
    Unary<Max<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class Max<CONTAINER_ARRAY>;
extern template const UnaryTable<2>
    Unary<Min<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class Min<CONTAINER_ARRAY>;
extern template const UnaryTable<2>
    Unary<Ptp<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class Ptp<CONTAINER_ARRAY>;
extern template const UnaryTable<1> Unary<IdxMax<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class IdxMax<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
