#pragma once

#include "tessera/functors/transform_table.h"

namespace MERVO::Tessera::Func {

/**
 * The frame of a functor on one cursor. F derives from Nullary<F, ...> and brings GetName, GetDstAttr, CheckParams and
 * `template <typename T> ErrorCode OnExecute(const Cursor&) const`; OnExecuteSIMD if it has a contiguous form.
 */
template <typename F, MutableArgs... ARGS>
class TESSERA_API Nullary : public NullaryBase {
    using Layout = TransformTable<CallerID::NULLARY, F, sizeof...(ARGS)>;

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

    static const std::array<NullaryEntry, Layout::SIZE> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const std::array<NullaryEntry, Nullary<F, ARGS...>::Layout::SIZE>
    Nullary<F, ARGS...>::transformTable = Nullary<F, ARGS...>::Layout::Make();

/**
 * The frame of a functor from a source to a destination. F derives from Unary<F, ...> and brings GetName and
 * `template <typename...> ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const` over the value types that
 * ARGS name. By default it reduces: one cell of the source's type from at least one element.
 */
template <typename F, MutableArgs... ARGS>
class TESSERA_API Unary : public UnaryBase {
    using Layout = TransformTable<CallerID::UNARY, F, sizeof...(ARGS)>;

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

    static const std::array<UnaryEntry, Layout::SIZE> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const std::array<UnaryEntry, Unary<F, ARGS...>::Layout::SIZE>
    Unary<F, ARGS...>::transformTable = Unary<F, ARGS...>::Layout::Make();

/// The frame of a functor from two sources to a destination; F brings what the unary frame asks for, with two sources.
template <typename F, MutableArgs... ARGS>
class TESSERA_API Binary : public BinaryBase {
    using Layout = TransformTable<CallerID::BINARY, F, sizeof...(ARGS)>;
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

    static const std::array<BinaryEntry, Layout::SIZE> transformTable;
};

template <typename F, MutableArgs... ARGS>
constinit const std::array<BinaryEntry, Binary<F, ARGS...>::Layout::SIZE>
    Binary<F, ARGS...>::transformTable = Binary<F, ARGS...>::Layout::Make();

} // namespace MERVO::Tessera::Func
