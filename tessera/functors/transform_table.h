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

/// The tables of kernels: one entry without axes, a row of 14 with one, row-major 14 by 14 with two.
template <typename ENTRY, std::size_t AXES>
using KernelTable = std::array<ENTRY,
    AXES == 0       ? 1
        : AXES == 1 ? ValueTypes::COUNT
                    : ValueTypes::COUNT * ValueTypes::COUNT>;
template <std::size_t AXES>
using NullaryTable = KernelTable<NullaryEntry, AXES>;
template <std::size_t AXES>
using UnaryTable = KernelTable<UnaryEntry, AXES>;
template <std::size_t AXES>
using BinaryTable = KernelTable<BinaryEntry, AXES>;

/// Lays out the kernels of F.
template <CallerID CALLER, typename F, std::size_t AXES>
struct TransformTable;

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 0> {
    static consteval auto Make() { return std::array{&Caller<CALLER>::template Run<F>}; }
};

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 1> {
    static consteval auto Make()
    {
        return []<std::size_t... I>(std::index_sequence<I...>)
        {
            return std::array{&Caller<CALLER>::template Run<F, ValueTypes::At<I>>...};
        }
        (std::make_index_sequence<ValueTypes::COUNT>{});
    }
};

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 2> {
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
        (std::make_index_sequence<ValueTypes::COUNT * ValueTypes::COUNT>{});
    }
};

} // namespace MERVO::Tessera::Func
