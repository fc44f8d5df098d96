#include "tessera/numeric/rolling_column.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>

#include "tessera/core/block.h"
#include "tessera/numeric/plain_nan.h"
#include "tessera/numeric/term_sums.h"
#include "tessera/numeric/window_sums.h"

namespace MERVO::Tessera::Func {
namespace {

/// Zeros, or null without memory.
template <typename T>
Block<T> MakeZeros(std::uint64_t count)
{
    Block<T> block = count > SIZE_MAX ? nullptr : MakeBlock<T>(static_cast<std::size_t>(count));
    if (block != nullptr) {
        std::uninitialized_value_construct_n(block.get(), static_cast<std::size_t>(count));
    }
    return block;
}

/// Writes results to a column, in order, as far as it reaches.
template <typename Real>
class ResultWriter {
public:
    explicit ResultWriter(const Cursor& dst) : cells(dst), left(dst->Length()) {}

    void Write(const Real* results, std::uint32_t length)
    {
        for (std::uint32_t rest = std::min(length, left); rest != 0;) {
            const std::uint32_t count = std::min(rest, cells.Longest());
            std::memcpy(cells.Room(), results, count * sizeof(Real));
            cells.Skip(count);
            results += count;
            rest -= count;
            left -= count;
        }
    }
    /// The next `length` cells where they are adjacent and there, for results that are made in place; null elsewhere.
    Real* Adjacent(std::uint32_t length)
    {
        return length <= left && cells.Longest() >= length ? static_cast<Real*>(cells.Room()) : nullptr;
    }
    void Skip(std::uint32_t length)
    {
        cells.Skip(length);
        left -= length;
    }
    void Fill(Real value)
    {
        constexpr std::uint32_t AT_ONCE = 64;
        Real values[AT_ONCE];
        std::fill_n(values, AT_ONCE, value);
        while (left != 0) {
            Write(values, AT_ONCE);
        }
    }

private:
    CellRuns cells;
    std::uint32_t left;
};

/**
 * The column passes through a buffer, block by block. In front of the block stand the last window - 1 elements of those
 * before it, so that every window lies in the buffer whole. What is missing is zero there: that alters no bit of a sum
 * that starts at +0.0.
 *
 * Where a block's windows lie in the column itself, with nothing missing, they are added up there.
 */
template <typename Real>
class Roller {
public:
    /// @param mayLookBack whether the column's elements stay as they are while results are written
    Roller(const Cursor& column, const RollingRun& wanted, bool mayLookBack)
        : source(column), run(wanted), isInPlace(mayLookBack && source.IsInPlace()), before(wanted.param.window - 1),
          length(column->Length()), left(length)
    {
        const std::uint64_t multiple = (std::uint64_t{before} + run.blockRows) / run.blockRows;
        blockRows = static_cast<std::uint32_t>(std::min<std::uint64_t>(multiple * run.blockRows, left));
        const std::uint64_t buffered = std::uint64_t{before} + blockRows;
        values = MakeZeros<Real>(buffered + WINDOW_SLACK);
        isMissing = MakeZeros<bool>(buffered);
        sums = MakeZeros<Real>(std::uint64_t{blockRows} + WINDOW_SLACK);
    }
    bool HasRoom() const { return values != nullptr && isMissing != nullptr && sums != nullptr; }

    void WriteTo(ResultWriter<Real>& results)
    {
        const std::uint32_t window = run.param.window;
        const std::uint32_t ahead = run.param.center ? window - 1 - window / 2 : 0;
        std::fill_n(isMissing.get(), before - ahead, true); // beyond the front
        Read(before - ahead, ahead);
        while (left != 0) {
            const std::uint32_t count = std::min(left, blockRows);
            const std::span<const Real> block = NextInPlace(count);
            if (!block.empty() && CountNan(block) == 0) {
                AddUp(block.data() - before, count);
                Deliver(results, count, false);
                KeepTail(block);
            } else {
                if (block.empty()) {
                    Read(before, count);
                } else {
                    TakeElements(before, block);
                }
                AddUp(values.get(), count);
                Deliver(results, count, std::memchr(isMissing.get(), true, std::size_t{before} + count) != nullptr);
                std::copy_n(values.get() + count, before, values.get());
                std::copy_n(isMissing.get() + count, before, isMissing.get());
            }
            left -= count;
        }
    }

private:
    /// The next elements where they lie, if the windows that end at them lie there, too, with nothing missing before
    /// these elements, and with the slack that adding up wants; none elsewhere.
    std::span<const Real> NextInPlace(std::uint32_t count)
    {
        const std::uint64_t end = std::uint64_t{taken} + count + WINDOW_SLACK;
        if (!isInPlace || taken < before || end > length || std::memchr(isMissing.get(), true, before) != nullptr) {
            return {};
        }
        taken += count;
        return source.Next(count);
    }

    /// Takes elements of the source to a place in the buffer. Those beyond its end are missing.
    void Read(std::uint32_t place, std::uint32_t count)
    {
        while (count != 0) {
            const std::span<const Real> elements = source.Next(count);
            if (elements.empty()) {
                std::fill_n(values.get() + place, count, Real{0});
                std::fill_n(isMissing.get() + place, count, true);
                return;
            }
            TakeElements(place, elements);
            place += static_cast<std::uint32_t>(elements.size());
            count -= static_cast<std::uint32_t>(elements.size());
            taken += static_cast<std::uint32_t>(elements.size());
        }
    }

    void TakeElements(std::uint32_t place, std::span<const Real> elements)
    {
        std::copy(elements.begin(), elements.end(), values.get() + place);
        std::fill_n(isMissing.get() + place, elements.size(), false);
        if (CountNan(elements) != 0) {
            for (std::size_t i = 0; i < elements.size(); ++i) {
                const Real element = elements[i];
                values[place + i] = element == element ? element : Real{0};
                isMissing[place + i] = element != element;
            }
        }
    }

    /// Puts the last elements of a block that was added up in place, with nothing missing, before the next one.
    void KeepTail(std::span<const Real> block)
    {
        std::copy_n(block.data() + block.size() - before, before, values.get());
    }

    void AddUp(const Real* elements, std::uint32_t count)
    {
        const std::uint32_t window = run.param.window;
        if (window >= run.slideFrom && HaveExactSums(elements, std::size_t{before} + count, window)) {
            SlideWindows(elements, count, window, sums.get());
        } else {
            AddWindows(elements, count, window, sums.get());
        }
    }

    void Deliver(ResultWriter<Real>& results, std::uint32_t count, bool hasGaps)
    {
        Real* const cells = results.Adjacent(count);
        Real* const made = cells != nullptr ? cells : sums.get();
        if (hasGaps) {
            FinishWithGaps(count, made);
        } else {
            FinishSums(sums.get(), count, run.isMean ? run.param.window : 1, made);
        }
        if (cells != nullptr) {
            results.Skip(count);
        } else {
            results.Write(made, count);
        }
    }

    void FinishWithGaps(std::uint32_t count, Real* made)
    {
        const auto [window, center, minPeriods] = run.param;
        const std::uint32_t limit = minPeriods == RollingParam::NO_GAPS ? 0 : window - minPeriods;
        std::uint32_t invalid = 0;
        for (std::uint32_t i = 0; i < before; ++i) {
            invalid += isMissing[i] ? 1U : 0U;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            invalid += isMissing[before + i] ? 1U : 0U;
            const Real result = run.isMean ? sums[i] / static_cast<Real>(window - invalid) : sums[i];
            made[i] = invalid > limit ? std::numeric_limits<Real>::quiet_NaN() : WithPlainNan(result);
            invalid -= isMissing[i] ? 1U : 0U;
        }
    }

    RealRuns<Real> source;
    RollingRun run;
    bool isInPlace;
    std::uint32_t before; ///< elements in front of a block
    std::uint32_t length;
    std::uint32_t taken = 0; ///< elements read
    std::uint32_t left;      ///< results still to come
    std::uint32_t blockRows;
    Block<Real> values;
    Block<bool> isMissing;
    Block<Real> sums;
};

/// Whether two columns share no cell of an array of Reals.
template <typename Real>
bool AreApart(const Cursor& first, const Cursor& second)
{
    const auto isArray = [](const Cursor& column) {
        return column->IsMemoryContiguous() && column->GetAttr().typeId == TYPE_ID_OF<Real>;
    };
    if (!isArray(first) || !isArray(second)) {
        return true;
    }
    const auto one = CursorAs<CONTAINER_ARRAY, Real>(first);
    const auto other = CursorAs<CONTAINER_ARRAY, Real>(second);
    return !std::less<>{}(one.mHead, other.mTail) || !std::less<>{}(other.mHead, one.mTail);
}

template <typename Real>
ErrorCode Roll(const Cursor& src, const Cursor& dst, const RollingRun& run)
{
    if (dst->GetAttr().typeId != TYPE_ID_OF<Real>) {
        return ERROR_GENERAL;
    }
    const std::uint32_t length = src->Length();
    const std::uint32_t window = run.param.window;
    ResultWriter<Real> results(dst);
    if (length < window) {
        results.Fill(std::numeric_limits<Real>::quiet_NaN());
        return ERROR_NONE;
    }
    if (window == 0) {
        results.Fill(Real{0});
        return ERROR_NONE;
    }
    if (length > std::numeric_limits<std::uint32_t>::max() - window) {
        return ERROR_NONE;
    }
    Roller<Real> roller(src, run, AreApart<Real>(src, dst));
    if (!roller.HasRoom()) {
        LogError("%s", run.refusal);
        return ERROR_PARAMETERS_REFUSED;
    }
    roller.WriteTo(results);
    return ERROR_NONE;
}

} // namespace

ErrorCode RollColumn(const Cursor& src, const Cursor& dst, const RollingRun& run, std::type_identity<float>)
{
    return Roll<float>(src, dst, run);
}

ErrorCode RollColumn(const Cursor& src, const Cursor& dst, const RollingRun& run, std::type_identity<double>)
{
    return Roll<double>(src, dst, run);
}

} // namespace MERVO::Tessera::Func
