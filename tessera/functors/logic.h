#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// What And and Or have in common.
namespace Logical {

SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs);
bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst);

} // namespace Logical

/// All of And and Or: combines two bool columns of the same length, or one with one row that meets every row of the
/// other. Code 21: lengths don't fit, or a column is not bool.
template <typename F, bool IS_AND>
class TESSERA_API BoolCombination : public Binary<F, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

template <ContainerID CID>
class TESSERA_API And final : public BoolCombination<And<CID>, true> {
};

template <ContainerID CID>
class TESSERA_API Or final : public BoolCombination<Or<CID>, false> {
};

/// The opposite of a bool column. Code 21: another value type or length.
template <ContainerID CID>
class TESSERA_API Not final : public Unary<Not<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/// All of Any and All: one bool from a bool column, DECISIVE if an element is. Code 21: another value type.
template <typename F, bool DECISIVE>
class TESSERA_API BoolFold : public Unary<F, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/// Whether a bool column has a true element.
template <ContainerID CID>
class TESSERA_API Any final : public BoolFold<Any<CID>, true> {
};

/// Whether a bool column has no false element.
template <ContainerID CID>
class TESSERA_API All final : public BoolFold<All<CID>, false> {
};

extern template const BinaryTable<1> Binary<And<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class BoolCombination<And<CONTAINER_ARRAY>, true>;
extern template const BinaryTable<1> Binary<Or<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class BoolCombination<Or<CONTAINER_ARRAY>, false>;
extern template const UnaryTable<1> Unary<Not<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class Not<CONTAINER_ARRAY>;
extern template const UnaryTable<1> Unary<Any<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class BoolFold<Any<CONTAINER_ARRAY>, true>;
extern template const UnaryTable<1> Unary<All<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class BoolFold<All<CONTAINER_ARRAY>, false>;

} // namespace MERVO::Tessera::Func
