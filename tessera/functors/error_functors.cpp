#include "tessera/functors/error_functors.h"

namespace MERVO::Tessera::Func {
namespace {

constexpr SeriesAttr NO_ATTRIBUTE{0, NO_CONTAINER, TESSERA_INVALID};

} // namespace

template <ContainerID CID>
std::string ErrorNullaryFunctor<CID>::GetName() const
{
    return "ErrorNullaryFunctor";
}

template <ContainerID CID>
SeriesAttr ErrorNullaryFunctor<CID>::GetDstAttr(const Cursor&) const
{
    LogError("Trying to get attribute of an error functor");
    return NO_ATTRIBUTE;
}

template <ContainerID CID>
bool ErrorNullaryFunctor<CID>::CheckParams(const Cursor&) const
{
    LogError("Trying to get check params of an error functor");
    return false;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorNullaryFunctor<CID>::OnExecuteSIMD(const Cursor&) const
{
    LogError("Trying to execute simd code in an error functor");
    return ERROR_GENERAL;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorNullaryFunctor<CID>::OnExecute(const Cursor&) const
{
    LogError("Trying to execute an error functor");
    return ERROR_GENERAL;
}

template <ContainerID CID>
std::string ErrorUnaryFunctor<CID>::GetName() const
{
    return "ErrorUnaryFunctor";
}

template <ContainerID CID>
SeriesAttr ErrorUnaryFunctor<CID>::GetDstAttr(const Cursor&) const
{
    LogError("Trying to get an error functor's attribute");
    return NO_ATTRIBUTE;
}

template <ContainerID CID>
bool ErrorUnaryFunctor<CID>::CheckParams(const Cursor&, const Cursor&) const
{
    LogError("Trying to get an error functor's check params");
    return false;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorUnaryFunctor<CID>::OnExecuteSIMD(const Cursor&, const Cursor&) const
{
    LogError("Trying to execute simd code in an error functor on executing SIMD");
    return ERROR_GENERAL;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorUnaryFunctor<CID>::OnExecute(const Cursor&, const Cursor&) const
{
    LogError("Trying to execute an error functor on executing");
    return ERROR_GENERAL;
}

template <ContainerID CID>
std::string ErrorBinaryFunctor<CID>::GetName() const
{
    return "ErrorBinaryFunctor";
}

template <ContainerID CID>
SeriesAttr ErrorBinaryFunctor<CID>::GetDstAttr(const Cursor&, const Cursor&) const
{
    LogError("Trying to get attribute of an error functor for getting DstAttr");
    return NO_ATTRIBUTE;
}

template <ContainerID CID>
bool ErrorBinaryFunctor<CID>::CheckParams(const Cursor&, const Cursor&, const Cursor&) const
{
    LogError("Trying to get check params of an error functor in checking params");
    return false;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorBinaryFunctor<CID>::OnExecuteSIMD(const Cursor&, const Cursor&, const Cursor&) const
{
    LogError("Try to execute simd code in an error functor");
    return ERROR_GENERAL;
}

template <ContainerID CID>
template <typename... T>
ErrorCode ErrorBinaryFunctor<CID>::OnExecute(const Cursor&, const Cursor&, const Cursor&) const
{
    LogError("Try to execute an error functor");
    return ERROR_GENERAL;
}

template class ErrorNullaryFunctor<CONTAINER_ARRAY>;
template const NullaryTable<0> Nullary<ErrorNullaryFunctor<CONTAINER_ARRAY>>::transformTable;
template class ErrorUnaryFunctor<CONTAINER_ARRAY>;
template const UnaryTable<0> Unary<ErrorUnaryFunctor<CONTAINER_ARRAY>>::transformTable;
template class ErrorBinaryFunctor<CONTAINER_ARRAY>;
template const BinaryTable<0> Binary<ErrorBinaryFunctor<CONTAINER_ARRAY>>::transformTable;

namespace {

template <typename Base, typename Functor>
FunctorPtr<Base> SharedFunctor()
{
    static Functor shared;
    return FunctorPtr<Base>(&shared, CustomizedDeleter<Base>{false});
}

} // namespace

template <>
FunctorPtr<NullaryBase> GetErrorFunctor<NullaryBase>()
{
    return SharedFunctor<NullaryBase, ErrorNullaryFunctor<CONTAINER_ARRAY>>();
}

template <>
FunctorPtr<UnaryBase> GetErrorFunctor<UnaryBase>()
{
    return SharedFunctor<UnaryBase, ErrorUnaryFunctor<CONTAINER_ARRAY>>();
}

template <>
FunctorPtr<BinaryBase> GetErrorFunctor<BinaryBase>()
{
    return SharedFunctor<BinaryBase, ErrorBinaryFunctor<CONTAINER_ARRAY>>();
}

} // namespace MERVO::Tessera::Func
