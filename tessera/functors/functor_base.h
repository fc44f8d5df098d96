#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "tessera/core/error.h"
#include "tessera/core/series.h"

namespace MERVO::Tessera::Func {

/// An argument of an operation. As a template argument it names one whose value type picks the kernel.
enum class MutableArgs : std::uint32_t {
    SOURCE = 0, ///< the first source; for a nullary functor its one cursor
    SECOND = 1, ///< the second source
    DESTINATION = 2
};

/// The kernel for one choice of value types. The first argument is the functor.
using NullaryEntry = ErrorCode (*)(const void* functor, const Cursor& cursor);
using UnaryEntry = ErrorCode (*)(const void* functor, const Cursor& src, const Cursor& dst);
using BinaryEntry = ErrorCode (*)(const void* functor, const Cursor& lhs, const Cursor& rhs, const Cursor& dst);

/**
 * An operation on columns, as the apply paths see it: it tells the shape of its result, checks its arguments, and runs.
 *
 * A functor is made for one run, belongs to one thread, and may be used for any number of columns.
 */
class TESSERA_API FunctorBase {
public:
    virtual ~FunctorBase() = default;
    virtual std::string GetName() const = 0;
};

/// A functor on one cursor.
class TESSERA_API NullaryBase : public FunctorBase {
public:
    /**
     * Checks and runs.
     * @return 0; 5: no cursor; 21: CheckParams refused; or the kernel's code. The message ends in the functor's name.
     */
    virtual Error ProcessSeries(const Cursor& cursor) const = 0;
    virtual SeriesAttr GetDstAttr(const Cursor& cursor) const = 0;
    virtual bool CheckParams(const Cursor& cursor) const = 0;

protected:
    Error Dispatch(const Cursor& cursor, const NullaryEntry* table, std::size_t entryCount) const;
};

/// A column's rows in groups, wherever they lie in it. There are groups, and none is empty.
struct RowGroups {
    const std::uint32_t* groupOfRow;       ///< for each row
    const std::uint32_t* firstRows;        ///< for each group
    std::span<const std::uint32_t> begins; ///< rows of the groups before each one, and of all of them at the end

    std::uint32_t Count() const { return static_cast<std::uint32_t>(begins.size() - 1); }
    std::uint32_t SizeOf(std::uint32_t group) const { return begins[group + 1] - begins[group]; }
};

/// A functor from one source to a destination.
class TESSERA_API UnaryBase : public FunctorBase {
public:
    /**
     * Runs from src to dst.
     * @param check tests the parameters and picks the kernel. Without it the kernel of the last checked run is used
     *              again, for a caller that goes on with columns of the same types.
     * @return 0; 5: no cursor; 21: CheckParams refused; or the kernel's code. The message ends in the functor's name.
     */
    virtual Error ProcessSeries(const Cursor& src, const Cursor& dst, bool check) const = 0;
    /// What the destination must be, asked before it exists.
    virtual SeriesAttr GetDstAttr(const Cursor& src) const = 0;
    virtual bool CheckParams(const Cursor& src, const Cursor& dst) const = 0;
    /**
     * Reduces each group of rows to a cell, while it goes over the rows as they lie: cell g becomes, bit for bit, what
     * a run on the rows of group g alone, in their order, makes of them. Whoever overrides ProcessSeries of a functor
     * with such a form overrides this too.
     * @return false, and nothing is written, where the functor has no such form for these columns, as most have none:
     *         then it is run on each group. Throws std::bad_alloc.
     */
    virtual bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const;
    /// Whether the functor may have the form below, so that results are only built for it if it has.
    virtual bool ReducesColumns() const;
    /**
     * Reduces several columns at a time, each to the bits that a run on it alone makes of it.
     * @return false, and nothing is written, where the functor has no such form for these columns, as most have none:
     *         then it is run on each. What was said of ReduceGroups about overriding holds here, too.
     */
    virtual bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const;
    /**
     * Makes the texts of a result, those that a run would assign: as many as src has cells, none of them alive before,
     * all of them afterwards, also if it throws std::bad_alloc. Where `texts` is null, it only tells whether it would.
     * @return false, and nothing is made, where the functor has no such form for this column, as most have none: then
     *         it is run. What was said of ReduceGroups about overriding holds here, too.
     */
    virtual bool MakeTexts(const Cursor& src, std::string* texts) const;

protected:
    /// Which cursor's value type picks the table's row and column.
    struct Axes {
        bool rowBySource;
        bool columnBySource;
        bool columnByDestination;
    };
    Error Dispatch(const Cursor& src, const Cursor& dst, bool check, Axes axes, const UnaryEntry* table,
        std::size_t entryCount) const;

private:
    mutable std::uint32_t row = 0;
    mutable std::uint32_t column = 0;
};

/// A functor from two sources to a destination.
class TESSERA_API BinaryBase : public FunctorBase {
public:
    /// Checks and runs; returns as the unary form does.
    virtual Error ProcessSeries(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const = 0;
    virtual SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const = 0;
    virtual bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const = 0;

protected:
    Error Dispatch(const Cursor& lhs, const Cursor& rhs, const Cursor& dst, MutableArgs selector,
        const BinaryEntry* table, std::size_t entryCount) const;
};

} // namespace MERVO::Tessera::Func
