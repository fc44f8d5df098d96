#pragma once

#include "tessera/core/factories.h"
#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * What a factory gives when it can't make its functor: using one logs, and ends in code 21. They hold no state, and one
 * instance of each is shared.
 */
template <ContainerID CID>
class TESSERA_API ErrorNullaryFunctor final : public Nullary<ErrorNullaryFunctor<CID>> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& cursor) const override;
    bool CheckParams(const Cursor& cursor) const override;
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor& cursor) const;
    template <typename... T>
    ErrorCode OnExecute(const Cursor& cursor) const;
};

template <ContainerID CID>
class TESSERA_API ErrorUnaryFunctor final : public Unary<ErrorUnaryFunctor<CID>> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename... T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

template <ContainerID CID>
class TESSERA_API ErrorBinaryFunctor final : public Binary<ErrorBinaryFunctor<CID>> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename... T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

extern template const NullaryTable<0> Nullary<ErrorNullaryFunctor<CONTAINER_ARRAY>>::transformTable;
extern template class ErrorNullaryFunctor<CONTAINER_ARRAY>;
extern template const UnaryTable<0> Unary<ErrorUnaryFunctor<CONTAINER_ARRAY>>::transformTable;
extern template class ErrorUnaryFunctor<CONTAINER_ARRAY>;
extern template const BinaryTable<0> Binary<ErrorBinaryFunctor<CONTAINER_ARRAY>>::transformTable;
extern template class ErrorBinaryFunctor<CONTAINER_ARRAY>;

/// The shared error functor of an arity; Base is NullaryBase, UnaryBase or BinaryBase. The pointer does not own it.
template <typename Base>
FunctorPtr<Base> GetErrorFunctor();
template <>
TESSERA_API FunctorPtr<NullaryBase> GetErrorFunctor<NullaryBase>();
template <>
TESSERA_API FunctorPtr<UnaryBase> GetErrorFunctor<UnaryBase>();
template <>
TESSERA_API FunctorPtr<BinaryBase> GetErrorFunctor<BinaryBase>();

} // namespace MERVO::Tessera::Func
