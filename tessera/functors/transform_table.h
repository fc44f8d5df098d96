#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "tessera/functors/caller.h"

namespace MERVO::Tessera::Func {

/// True where a functor's kernel looks at the destination's type. One that says `kDestinationAltersKernel = false` is
/// instantiated once per source type, which keeps fourteen times the code out of the library.
template <typename F>
consteval bool DestinationAltersKernel()
{
    if constexpr (requires { F::kDestinationAltersKernel; }) {
        return F::kDestinationAltersKernel;
    } else {
        return true;
    }
}

/// Lays out the kernels of F: one entry without axes, a row of 14 with one, row-major 14 by 14 with two.
template <CallerID CALLER, typename F, std::size_t AXES>
struct TransformTable;

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 0> {
    static constexpr std::size_t SIZE = 1;
    static consteval auto Make() { return std::array{&Caller<CALLER>::template Run<F>}; }
};

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 1> {
    static constexpr std::size_t SIZE = ValueTypes::COUNT;
    static consteval auto Make()
    {
        return []<std::size_t... I>(std::index_sequence<I...>)
        {
            return std::array{&Caller<CALLER>::template Run<F, ValueTypes::At<I>>...};
        }
        (std::make_index_sequence<SIZE>{});
    }
};

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 2> {
    static constexpr std::size_t SIZE = ValueTypes::COUNT * ValueTypes::COUNT;

    template <std::size_t SRC, std::size_t DST>
    static consteval auto EntryFor()
    {
        constexpr std::size_t SERVED = DestinationAltersKernel<F>() ? DST : SRC;
        return &Caller<CALLER>::template Run<F, ValueTypes::At<SRC>, ValueTypes::At<SERVED>>;
    }
    static consteval auto Make()
    {
        return []<std::size_t... I>(std::index_sequence<I...>)
        {
            return std::array{EntryFor<I / ValueTypes::COUNT, I % ValueTypes::COUNT>()...};
        }
        (std::make_index_sequence<SIZE>{});
    }
};

} // namespace MERVO::Tessera::Func
