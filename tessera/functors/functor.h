#pragma once

#include "tessera/functors/transform_table.h"

namespace MERVO::Tessera::Func {

// Kernels of the library's functors live in sources: headers say `extern template` of a table of them and of the class
// that brings them. These are exported, as are the classes they are templates of; the rest belongs to whoever uses it.

/**
 * The frame of a functor on one cursor. F derives from Nullary<F, ...> and brings GetName, GetDstAttr, CheckParams and
 * `template <typename T> ErrorCode OnExecute(const Cursor&) const`; OnExecuteSIMD if it has a contiguous form.
 */
template <typename F, MutableArgs... ARGS>
class Nullary : public NullaryBase {
public:
    Error ProcessSeries(const Cursor& cursor) const override
    {
        return Dispatch(cursor, transformTable.data(), transformTable.size());
    }

    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&) const
    {
        return ERROR_GENERAL;
    }

    TESSERA_API static const NullaryTable<sizeof...(ARGS)> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const NullaryTable<sizeof...(ARGS)>
    Nullary<F, ARGS...>::transformTable = TransformTable<CallerID::NULLARY, F, sizeof...(ARGS)>::Make();

/**
 * The frame of a functor from a source to a destination. F derives from Unary<F, ...> and brings GetName and
 * `template <typename...> ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const` over the value types that
 * ARGS name. By default it reduces: one cell of the source's type from at least one element.
 */
template <typename F, MutableArgs... ARGS>
class Unary : public UnaryBase {
public:
    Error ProcessSeries(const Cursor& src, const Cursor& dst, bool check) const override
    {
        constexpr bool BY_SOURCE = ((ARGS == MutableArgs::SOURCE) || ...);
        constexpr bool BY_DESTINATION = ((ARGS == MutableArgs::DESTINATION) || ...);
        constexpr Axes AXES{BY_SOURCE && BY_DESTINATION, BY_SOURCE, BY_DESTINATION};
        return Dispatch(src, dst, check, AXES, transformTable.data(), transformTable.size());
    }
    SeriesAttr GetDstAttr(const Cursor& src) const override { return WithLength(src->GetAttr(), 1); }
    bool CheckParams(const Cursor& src, const Cursor& dst) const override
    {
        return src->Length() != 0 && dst->Length() == 1;
    }

    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&, const Cursor&) const
    {
        return ERROR_GENERAL;
    }

    TESSERA_API static const UnaryTable<sizeof...(ARGS)> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const UnaryTable<sizeof...(ARGS)>
    Unary<F, ARGS...>::transformTable = TransformTable<CallerID::UNARY, F, sizeof...(ARGS)>::Make();

/// The frame of a functor from two sources to a destination; F brings what the unary frame asks for, with two sources.
template <typename F, MutableArgs... ARGS>
class Binary : public BinaryBase {
    static_assert(sizeof...(ARGS) <= 1);

public:
    Error ProcessSeries(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override
    {
        constexpr MutableArgs SELECTOR = sizeof...(ARGS) == 0
            ? MutableArgs::DESTINATION
            : MutableArgs((static_cast<std::uint32_t>(ARGS) + ... + 0U));
        return Dispatch(lhs, rhs, dst, SELECTOR, transformTable.data(), transformTable.size());
    }

    template <typename... T>
    ErrorCode OnExecuteSIMD(const Cursor&, const Cursor&, const Cursor&) const
    {
        return ERROR_GENERAL;
    }

    TESSERA_API static const BinaryTable<sizeof...(ARGS)> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const BinaryTable<sizeof...(ARGS)>
    Binary<F, ARGS...>::transformTable = TransformTable<CallerID::BINARY, F, sizeof...(ARGS)>::Make();

} // namespace MERVO::Tessera::Func
