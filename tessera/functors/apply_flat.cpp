#include <new>

#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera {

namespace {

/// For arrays a factory gives the error functor, which nobody owns, only when memory is short. Some paths would tell
/// that by the log alone, and the call would pass for a success.
template <typename Base>
auto OrThrow(const std::function<FunctorPtr<Base>(ContainerID)>& make)
{
    return [&make](ContainerID container) {
        FunctorPtr<Base> functor = make(container);
        if (container == CONTAINER_ARRAY && !functor.get_deleter().isOwner) {
            throw std::bad_alloc();
        }
        return functor;
    };
}

} // namespace

std::int32_t ApplyUnaryTo(
    const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const UnaryFactory& make)
{
    DataFrameRef* target = TableBehind(dst);
    const DataFrameRef* source = TableBehind(src);
    if (target == nullptr || source == nullptr) {
        return RefuseHandle(call);
    }
    const UnaryFactory makeOrThrow = OrThrow<Func::UnaryBase>(make);
    static_cast<void>(target->ApplyInplace(makeOrThrow, *source)); // the table keeps the code, and an earlier one wins
    return target->GetError().code;
}

std::int32_t ApplyBinaryTo(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* lhs,
    const MERVO_TSR_CONTEXT* rhs, const BinaryFactory& make)
{
    DataFrameRef* target = TableBehind(dst);
    const DataFrameRef* left = TableBehind(lhs);
    const DataFrameRef* right = TableBehind(rhs);
    if (target == nullptr || left == nullptr || right == nullptr) {
        return RefuseHandle(call);
    }
    const BinaryFactory makeOrThrow = OrThrow<Func::BinaryBase>(make);
    static_cast<void>(target->ApplyInplace(makeOrThrow, *left, *right));
    return target->GetError().code;
}

} // namespace MERVO::Tessera
