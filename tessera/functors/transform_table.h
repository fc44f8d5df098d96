#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "tessera/functors/caller.h"

namespace MERVO::Tessera::Func {

/// Which value types pick an instantiation of a functor's kernel. One that says `kDestinationAltersKernel = false` is
/// instantiated once per source type, one that says `kValueTypesAlterKernel = false`, since it asks the cursors itself,
/// once at all; that keeps many times the code out of the library.
template <typename F>
consteval bool DestinationAltersKernel()
{
    if constexpr (requires { F::kDestinationAltersKernel; }) {
        return F::kDestinationAltersKernel;
    } else {
        return true;
    }
}

template <typename F>
consteval bool ValueTypesAlterKernel()
{
    if constexpr (requires { F::kValueTypesAlterKernel; }) {
        return F::kValueTypesAlterKernel;
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
    template <std::size_t TYPE>
    static consteval auto EntryFor()
    {
        return &Caller<CALLER>::template Run<F, ValueTypes::At<ValueTypesAlterKernel<F>() ? TYPE : 0>>;
    }
    static consteval auto Make()
    {
        return []<std::size_t... I>(std::index_sequence<I...>) { return std::array{EntryFor<I>()...}; }
        (std::make_index_sequence<ValueTypes::COUNT>{});
    }
};

template <CallerID CALLER, typename F>
struct TransformTable<CALLER, F, 2> {
    template <std::size_t SRC, std::size_t DST>
    static consteval auto EntryFor()
    {
        constexpr std::size_t FROM = ValueTypesAlterKernel<F>() ? SRC : 0;
        constexpr std::size_t TO = !ValueTypesAlterKernel<F>() ? 0 : DestinationAltersKernel<F>() ? DST : SRC;
        return &Caller<CALLER>::template Run<F, ValueTypes::At<FROM>, ValueTypes::At<TO>>;
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
