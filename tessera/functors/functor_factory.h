#pragma once

#include <new>
#include <tuple>

#include "tessera/functors/error_functors.h"

namespace MERVO::Tessera::Func {

/**
 * A callable that makes the functor F for a container, as the apply paths want it.
 *
 * Arguments of F are kept by value or by reference, as Args says; what is kept by reference must outlive the run.
 * Functors exist for arrays only. For another container, and when memory is short, the error functor comes back: its
 * first use reports.
 */
template <template <ContainerID, typename...> class F, typename Base, typename... Args>
class FunctorFactory {
public:
    explicit FunctorFactory(Args... args) : arguments(std::forward<Args>(args)...) {}

    FunctorPtr<Base> operator()(ContainerID container) const { return Create(container); }

    FunctorPtr<Base> Create(ContainerID container) const
    {
        using Functor = F<CONTAINER_ARRAY, Args...>;
        if (container == CONTAINER_ARRAY) {
            FunctorPtr<Base> functor(std::apply(
                [](auto&... argument) -> Base* { return new (std::nothrow) Functor(argument...); }, arguments));
            if (functor != nullptr) {
                return functor;
            }
        }
        return GetErrorFunctor<Base>();
    }

private:
    std::tuple<Args...> arguments;
};

} // namespace MERVO::Tessera::Func
