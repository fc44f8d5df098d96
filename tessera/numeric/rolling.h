#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// Where the windows of a column lie, and which of them count.
struct RollingParam {
    std::uint32_t window;     ///< elements in a window
    bool center;              ///< false: the window ends at its result's row; true: the row is in its middle
    std::uint32_t minPeriods; ///< present elements that a window needs; NO_GAPS: none may be missing

    static constexpr std::uint32_t NO_GAPS = 0xFFFFFFFF;
};

/// All of RollingSum and RollingMean but the form in which they take their arguments, so that the forms share their
/// code.
template <ContainerID CID, bool IS_MEAN>
class TESSERA_API RollingBase : public Unary<RollingBase<CID, IS_MEAN>, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    explicit RollingBase(const RollingParam& rolling) : param(rolling) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T, typename>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    RollingParam param;
};

/**
 * The sum of a moving window, for each element of a column; double for integers, else of the column's own type.
 *
 * Element i covers the elements i - window + 1 to i, or centred i - window / 2 to i + window - 1 - window / 2. They are
 * added newest first, a float column in float. NaN and places beyond either end count as missing: a window with more
 * than window - minPeriods of them, a difference that wraps in 32 bits, gives NaN; others leave them out. A column
 * shorter than the window gives NaN everywhere, a window of 0 gives zeros.
 *
 * It takes n * window additions, since each window is added for itself; but where sums need no rounding, as those of
 * most integers, a running total serves windows of any width. Working set: at most 3 * window + 4300 elements, and a
 * byte for most of them. Where a destination is shorter than the column, only what fits is written.
 *
 * Code 21: the destination's type, a bool column, or no memory for the working set. Code 1: strings, stamps and nested
 * tables.
 * @tparam ARGS how window, center and minPeriods are handed in: each by value, reference or const reference; or one
 *         RollingParam.
 */
template <ContainerID CID, typename... ARGS>
class RollingSum final : public RollingBase<CID, false> {
public:
    explicit RollingSum(ARGS... arguments) : RollingBase<CID, false>(RollingParam{arguments...}) {}
};

/**
 * The mean of a moving window: what RollingSum gives, divided by the number of elements that are present.
 *
 * Where that number is 0 and minPeriods allows it, the mean is NaN.
 */
template <ContainerID CID, typename... ARGS>
class RollingMean final : public RollingBase<CID, true> {
public:
    explicit RollingMean(ARGS... arguments) : RollingBase<CID, true>(RollingParam{arguments...}) {}
};

extern template const UnaryTable<2>
    Unary<RollingBase<CONTAINER_ARRAY, false>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class RollingBase<CONTAINER_ARRAY, false>;
extern template const UnaryTable<2>
    Unary<RollingBase<CONTAINER_ARRAY, true>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class RollingBase<CONTAINER_ARRAY, true>;

} // namespace MERVO::Tessera::Func
