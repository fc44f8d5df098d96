#pragma once

#include <random>

#include "tests/numeric/reduce.h"
#include "tests/numeric/reduction_model.h"

/// What the tests of statistics and rolling windows share: random columns, and functors with arguments run on them.
namespace MERVO::Tessera {

using NumberTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
    std::int64_t, std::uint64_t, float, double>;

/// The type in which the statistics of a column of T are told.
template <typename T>
using StatisticOf = std::conditional_t<std::is_same_v<T, float>, float, double>;

/// What a column is made of; each flavour brings out another rule.
enum Flavour { PLAIN, EQUAL, EXTREME, SIGNED_ZEROS, WITH_NAN, ONLY_NAN, WITH_INFINITY, BOTH_INFINITIES, FLAVOUR_COUNT };

template <std::floating_point T>
T RandomNan(std::mt19937_64& random)
{
    using Bits = BitsOf<T>;
    const auto infinite = std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
    return std::bit_cast<T>(static_cast<Bits>(random()) | infinite | Bits{1}); // signalling ones too, of both signs
}

template <std::floating_point T>
T RandomCell(std::mt19937_64& random, Flavour flavour)
{
    const auto plain = static_cast<T>(static_cast<std::int32_t>(random())) / T{1000};
    const T infinity = std::numeric_limits<T>::infinity();
    switch (flavour) {
    case EQUAL:
        return T{5} / T{3};
    case EXTREME:
        return std::ldexp(
            plain, static_cast<int>(random() % 100) - 50 + (random() % 2 == 0 ? 1 : -1) * (sizeof(T) == 8 ? 960 : 45));
    case SIGNED_ZEROS:
        return random() % 2 == 0 ? T{0} : -T{0};
    case WITH_NAN:
        return random() % 8 == 0 ? RandomNan<T>(random) : plain;
    case ONLY_NAN:
        return RandomNan<T>(random);
    case WITH_INFINITY:
        return random() % 8 == 0 ? infinity : plain;
    case BOTH_INFINITIES:
        return random() % 8 == 0 ? infinity * (random() % 2 == 0 ? T{1} : -T{1})
                                 : (random() % 8 == 0 ? RandomNan<T>(random) : plain);
    default:
        return plain;
    }
}

template <std::integral T>
T RandomCell(std::mt19937_64& random, Flavour flavour)
{
    switch (flavour) {
    case EQUAL:
        return static_cast<T>(77);
    case EXTREME:
        return random() % 2 == 0 ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
    case SIGNED_ZEROS:
        return T{0};
    case WITH_NAN:
        return static_cast<T>(random() % 10);
    default:
        return static_cast<T>(random());
    }
}

template <typename T>
std::vector<T> RandomCells(std::mt19937_64& random, Flavour flavour, std::size_t count)
{
    std::vector<T> cells(count);
    for (std::size_t i = 0; i < count; ++i) {
        cells[i] = RandomCell<T>(random, flavour);
    }
    return cells;
}

/// A range in the middle of a column whose other cells would show in any statistic.
template <typename T>
Window<T> WindowOf(const std::vector<T>& cells, ContainerID container, std::uint32_t firstRow)
{
    return {cells, container, firstRow, {std::numeric_limits<T>::max(), std::numeric_limits<T>::max()}};
}

/// Runs a functor on a range, in a container for the result, and gives that column; the code by the way.
inline SeriesPtr RunOn(const Func::UnaryBase& functor, const Cursor& src, ContainerID container, Error& error)
{
    SeriesAttr attr = functor.GetDstAttr(src);
    attr.containerId = container;
    SeriesPtr column = BuildSeries(attr, "result");
    error = functor.ProcessSeries(src, column->GetIterator(), true);
    return column;
}

/// Holds what a functor makes of a range, in either container, against what is expected, bit by bit.
template <typename Result>
testing::AssertionResult Gives(const Func::UnaryBase& functor, const Cursor& src, const std::vector<Result>& expected)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        Error error;
        const SeriesPtr column = RunOn(functor, src, container, error);
        if (error.code != ERROR_NONE || column->GetTypeId() != TYPE_ID_OF<Result>) {
            return testing::AssertionFailure() << functor.GetName() << ": " << error.code << ' ' << error.message;
        }
        const std::vector<Result> cells = CellsOf<Result>(column->GetIterator());
        if (cells.size() != expected.size()) {
            return testing::AssertionFailure() << functor.GetName() << ": " << cells.size() << " cells";
        }
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const auto same = IsBitwise<Result>(cells[i], expected[i]);
            if (!same) {
                return testing::AssertionFailure() << functor.GetName() << " at " << i << ": " << same.message();
            }
        }
    }
    return testing::AssertionSuccess();
}

/// The same for a functor that makes one cell.
template <typename Result>
testing::AssertionResult GivesCell(const Func::UnaryBase& functor, const Cursor& src, Result expected)
{
    return Gives(functor, src, std::vector<Result>{expected});
}

/// Runs the kernel for a value type alone, without what comes before it. Base is the functor's own frame.
template <typename Base>
ErrorCode RunKernel(const Base& functor, const Cursor& src, const Cursor& dst)
{
    using Frame = Func::Unary<Base, Func::MutableArgs::SOURCE, Func::MutableArgs::DESTINATION>;
    const auto entry = static_cast<std::size_t>(src->GetAttr().typeId) * (ValueTypes::COUNT + 1);
    return Frame::transformTable[entry](static_cast<const Func::UnaryBase*>(&functor), src, dst);
}

/// A result of arithmetic as every machine shall give it: NaN has no sign.
template <typename Real>
Real Plain(Real result)
{
    return std::isnan(result) ? std::numeric_limits<Real>::quiet_NaN() : result;
}

} // namespace MERVO::Tessera
