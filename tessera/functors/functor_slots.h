#pragma once

#include <array>
#include <new>
#include <string>

#include "tessera/functors/error_functors.h"

namespace MERVO::Tessera::Func {

/// The functors of one run, one per container, made when a column of that container is first met.
template <typename Base>
class FunctorSlots {
public:
    using Factory = std::function<FunctorPtr<Base>(ContainerID)>;

    explicit FunctorSlots(const Factory& factory) : make(factory), name(For(CONTAINER_ARRAY).GetName()) {}

    const std::string& Name() const { return name; }
    const Base& For(ContainerID container)
    {
        FunctorPtr<Base>& slot = slots[container == CONTAINER_LIST ? 1 : 0];
        if (slot == nullptr && make != nullptr) {
            slot = make(container);
            if (container == CONTAINER_ARRAY && slot != nullptr && !slot.get_deleter().isOwner) {
                throw std::bad_alloc(); // for arrays a factory gives the error functor only when memory is short
            }
        }
        if (slot == nullptr) {
            slot = GetErrorFunctor<Base>();
        }
        return *slot;
    }

private:
    const Factory& make;
    std::array<FunctorPtr<Base>, CONTAINER_END> slots;
    std::string name;
};

} // namespace MERVO::Tessera::Func
