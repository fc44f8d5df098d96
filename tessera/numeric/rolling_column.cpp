#include "tessera/numeric/rolling_column.h"

#include <algorithm>
#include <cstring>
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
 */
template <typename Real>
class Roller {
public:
    Roller(const Cursor& column, const RollingRun& wanted)
        : source(column), run(wanted), before(wanted.param.window - 1), left(column->Length())
    {
        const std::uint32_t least = std::max(run.blockRows, run.param.window);
        blockRows = std::min(least, left);
        const std::uint64_t length = std::uint64_t{before} + blockRows;
        values = MakeZeros<Real>(length + WINDOW_SLACK);
        isMissing = MakeZeros<bool>(length);
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
            Read(before, count);
            AddUp(count);
            Finish(count);
            results.Write(sums.get(), count);
            std::copy_n(values.get() + count, before, values.get());
            std::copy_n(isMissing.get() + count, before, isMissing.get());
            left -= count;
        }
    }

private:
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

    void AddUp(std::uint32_t count)
    {
        const std::uint32_t window = run.param.window;
        if (window >= run.slideFrom && HaveExactSums(values.get(), std::size_t{before} + count, window)) {
            SlideWindows(values.get(), count, window, sums.get());
        } else {
            AddWindows(values.get(), count, window, sums.get());
        }
    }

    void Finish(std::uint32_t count)
    {
        const std::uint32_t window = run.param.window;
        if (std::memchr(isMissing.get(), true, std::size_t{before} + count) != nullptr) {
            FinishWithGaps(count);
            return;
        }
        FinishSums(sums.get(), count, run.isMean ? static_cast<Real>(window) : Real{1});
    }

    void FinishWithGaps(std::uint32_t count)
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
            sums[i] = invalid > limit ? std::numeric_limits<Real>::quiet_NaN() : WithPlainNan(result);
            invalid -= isMissing[i] ? 1U : 0U;
        }
    }

    RealRuns<Real> source;
    RollingRun run;
    std::uint32_t before; ///< elements in front of a block
    std::uint32_t left;   ///< results still to come
    std::uint32_t blockRows;
    Block<Real> values;
    Block<bool> isMissing;
    Block<Real> sums;
};

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
    Roller<Real> roller(src, run);
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
