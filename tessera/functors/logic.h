#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// What And and Or have in common.
namespace Logical {

SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs);
bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst);

} // namespace Logical

/// Combines two bool columns of the same length, or one with one row that meets every row of the other. Code 21:
/// lengths don't fit, or a column is not bool.
template <ContainerID CID>
class TESSERA_API And final : public Binary<And<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

/// As And.
template <ContainerID CID>
class TESSERA_API Or final : public Binary<Or<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
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

/// One bool: whether a bool column has a true element. Code 21: another value type.
template <ContainerID CID>
class TESSERA_API Any final : public Unary<Any<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

/// One bool: whether a bool column has no false element. Code 21: another value type.
template <ContainerID CID>
class TESSERA_API All final : public Unary<All<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

extern template class Binary<And<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class And<CONTAINER_ARRAY>;
extern template class Binary<Or<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Or<CONTAINER_ARRAY>;
extern template class Unary<Not<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Not<CONTAINER_ARRAY>;
extern template class Unary<Any<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class Any<CONTAINER_ARRAY>;
extern template class Unary<All<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
extern template class All<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
