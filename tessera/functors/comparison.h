#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// What the five comparisons have in common.
namespace Compare {

enum class Relation : std::uint8_t { EQUAL, GREATER, LESS, GREATER_EQUAL, LESS_EQUAL };

SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs);
bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst);

/**
 * A comparison of two columns of one value type, cell by cell, into a bool column.
 *
 * Columns have the same length, or one of them has one row, which meets every row of the other. Two doubles are equal
 * that differ by less than 2^-52, two floats by less than 2^-23, so an infinity does not equal itself; the other
 * comparisons of them are exact. NaN makes all five false. Strings compare by their bytes, DateTime by its stamp. A
 * side without rows against one row gives false.
 *
 * Code 21: lengths or value types don't fit. Code 1: nested tables.
 * @tparam F the comparison, which tells its NAME and RELATION.
 */
template <typename F, MutableArgs ARG>
class TESSERA_API CompareCommon : public Binary<F, ARG> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

} // namespace Compare

template <ContainerID CID>
class TESSERA_API Equal final : public Compare::CompareCommon<Equal<CID>, MutableArgs::SOURCE> {
public:
    static constexpr const char* NAME = "Equal";
    static constexpr Compare::Relation RELATION = Compare::Relation::EQUAL;
};

template <ContainerID CID>
class TESSERA_API Greater final : public Compare::CompareCommon<Greater<CID>, MutableArgs::SOURCE> {
public:
    static constexpr const char* NAME = "Greater";
    static constexpr Compare::Relation RELATION = Compare::Relation::GREATER;
};

template <ContainerID CID>
class TESSERA_API Less final : public Compare::CompareCommon<Less<CID>, MutableArgs::SOURCE> {
public:
    static constexpr const char* NAME = "Less";
    static constexpr Compare::Relation RELATION = Compare::Relation::LESS;
};

template <ContainerID CID>
class TESSERA_API GreaterEqual final : public Compare::CompareCommon<GreaterEqual<CID>, MutableArgs::SOURCE> {
public:
    static constexpr const char* NAME = "GreaterEqual";
    static constexpr Compare::Relation RELATION = Compare::Relation::GREATER_EQUAL;
};

template <ContainerID CID>
class TESSERA_API LessEqual final : public Compare::CompareCommon<LessEqual<CID>, MutableArgs::SOURCE> {
public:
    static constexpr const char* NAME = "LessEqual";
    static constexpr Compare::Relation RELATION = Compare::Relation::LESS_EQUAL;
};

extern template const BinaryTable<1> Binary<Equal<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1> Binary<Greater<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1> Binary<Less<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1> Binary<GreaterEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1> Binary<LessEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class Compare::CompareCommon<Equal<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Compare::CompareCommon<Greater<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Compare::CompareCommon<Less<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Compare::CompareCommon<GreaterEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Compare::CompareCommon<LessEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>;

} // namespace MERVO::Tessera::Func
