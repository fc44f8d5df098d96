#pragma once

#include <cstdint>

#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera::Func {

/// The number of sources of a functor.
enum class CallerID : std::uint32_t { NULLARY = 0, UNARY = 1, BINARY = 2 };

/**
 * The entries of a table of kernels: where all cursors are contiguous they offer the work to OnExecuteSIMD, a loop on
 * raw places that the compiler can vectorise. A non-zero answer is no failure, it passes the work on to OnExecute; so
 * OnExecuteSIMD leaves the destination to be written anew whenever it declines.
 */
template <CallerID>
struct Caller;

template <>
struct Caller<CallerID::NULLARY> {
    template <typename F, typename... T>
    static ErrorCode Run(const void* functor, const Cursor& cursor)
    {
        const F& self = *static_cast<const F*>(static_cast<const NullaryBase*>(functor));
        if (cursor->IsMemoryContiguous() && self.template OnExecuteSIMD<T...>(cursor) == ERROR_NONE) {
            return ERROR_NONE;
        }
        return self.template OnExecute<T...>(cursor);
    }
};

template <>
struct Caller<CallerID::UNARY> {
    template <typename F, typename... T>
    static ErrorCode Run(const void* functor, const Cursor& src, const Cursor& dst)
    {
        const F& self = *static_cast<const F*>(static_cast<const UnaryBase*>(functor));
        if (dst->IsMemoryContiguous() && src->IsMemoryContiguous() &&
            self.template OnExecuteSIMD<T...>(src, dst) == ERROR_NONE) {
            return ERROR_NONE;
        }
        return self.template OnExecute<T...>(src, dst);
    }
};

template <>
struct Caller<CallerID::BINARY> {
    template <typename F, typename... T>
    static ErrorCode Run(const void* functor, const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
    {
        const F& self = *static_cast<const F*>(static_cast<const BinaryBase*>(functor));
        if (dst->IsMemoryContiguous() && lhs->IsMemoryContiguous() && rhs->IsMemoryContiguous() &&
            self.template OnExecuteSIMD<T...>(lhs, rhs, dst) == ERROR_NONE) {
            return ERROR_NONE;
        }
        return self.template OnExecute<T...>(lhs, rhs, dst);
    }
};

} // namespace MERVO::Tessera::Func
