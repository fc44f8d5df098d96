#pragma once

#include <array>
#include <bit>
#include <limits>

#include "tessera/functors/element_walk.h"
#include "tessera/functors/functor_base.h"
#include "tests/support/random.h"
#include "tests/support/sample_columns.h"

/// Columns, and the ways in which they meet, for tests of functors from two sources.
namespace MERVO::Tessera {

/// A cell that is often one of those where operations change their ways, and often equal to another one.
template <typename T>
T RandomCell(Random& random)
{
    const bool isSpecial = random.Below(3) == 0;
    if constexpr (std::is_same_v<T, bool>) {
        return random.Below(2) == 0;
    } else if constexpr (std::is_floating_point_v<T>) {
        using Limits = std::numeric_limits<T>;
        constexpr auto NAN_BITS = std::bit_cast<BitsOf<T>>(Limits::quiet_NaN());
        constexpr auto SIGN = BitsOf<T>{1} << (8 * sizeof(T) - 1);
        const std::array specials{T{0}, -T{0}, T{1}, T{1} + Limits::epsilon() / 2 * 3, T{1} + Limits::epsilon(),
            Limits::infinity(), -Limits::infinity(), Limits::max(), Limits::lowest(), Limits::denorm_min(),
            Limits::quiet_NaN(), std::bit_cast<T>(static_cast<BitsOf<T>>(NAN_BITS | SIGN | 5)),
            std::bit_cast<T>(static_cast<BitsOf<T>>(NAN_BITS | 77))};
        const T number = static_cast<T>(static_cast<std::int32_t>(random.Next())) / T{64};
        return isSpecial ? specials[random.Below(specials.size())] : number;
    } else if constexpr (std::is_integral_v<T>) {
        using Limits = std::numeric_limits<T>;
        const std::array specials{T{0}, T{1}, static_cast<T>(-1), Limits::min(), Limits::max()};
        return isSpecial ? specials[random.Below(specials.size())] : static_cast<T>(random.Next() >> random.Below(64));
    } else if constexpr (std::is_same_v<T, std::string>) {
        const std::string text(random.Below(25), static_cast<char>('a' + random.Below(2)));
        return isSpecial ? std::string("\xff\0z", 3) : text;
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return DateTime(RandomCell<std::int32_t>(random));
    } else {
        return SampleValue<DataFrame>(random.Below(1000));
    }
}

template <typename T>
std::vector<T> RandomCells(Random& random, std::uint32_t count)
{
    std::vector<T> cells;
    for (std::uint32_t i = 0; i < count; ++i) {
        cells.push_back(RandomCell<T>(random));
    }
    return cells;
}

/// A column around a window: `lead` cells in front of it, and some behind.
template <typename T>
class Surrounded {
public:
    static constexpr std::uint32_t BEHIND = 11;

    Surrounded(Random& random, std::uint32_t windowLead, std::uint32_t windowLength, ContainerID container)
        : lead(windowLead), length(windowLength), before(RandomCells<T>(random, lead + length + BEHIND)),
          column(BuildSeries({lead + length + BEHIND, container, TYPE_ID_OF<T>}, "column"))
    {
        // By places, as reading and writing by index would walk a list each time.
        Func::AnyPlace<T> place(column->GetIterator());
        for (std::uint32_t i = 0; i < before.size(); ++i, ++place) {
            *place = before[i];
        }
    }

    Cursor Window() const { return column->GetIterator(lead, lead + length); }
    /// A cell of the window, as it was made.
    T Cell(std::uint32_t i) const { return before[lead + i]; }
    const std::vector<T>& CellsBefore() const { return before; }
    std::vector<T> CellsNow() const
    {
        std::vector<T> cells;
        Func::ForEachElement<T>(column->GetIterator(), [&cells](const auto& cell) { cells.push_back(cell); });
        return cells;
    }

private:
    std::uint32_t lead;
    std::uint32_t length;
    std::vector<T> before;
    SeriesPtr column;
};

/// Lengths of two operands that can meet. Blocks of cells are 512 long, vectors up to 64.
struct Lengths {
    std::uint32_t left;
    std::uint32_t right;
    std::uint32_t Result() const { return std::max(left, right); }
};
inline constexpr Lengths LENGTHS_THAT_MEET[] = {
    {1, 1}, {2, 2}, {1, 2}, {2, 1}, {67, 67}, {67, 1}, {1, 67}, {1037, 1037}, {1037, 1}, {1, 1037}, {0, 0}};

/// The containers of left operand, right operand and result.
using Containers = std::array<ContainerID, 3>;
inline constexpr Containers ARRAYS{CONTAINER_ARRAY, CONTAINER_ARRAY, CONTAINER_ARRAY};
inline std::vector<Containers> AllContainers()
{
    std::vector<Containers> all;
    for (const ContainerID left : BOTH_CONTAINERS) {
        for (const ContainerID right : BOTH_CONTAINERS) {
            for (const ContainerID result : BOTH_CONTAINERS) {
                all.push_back({left, right, result});
            }
        }
    }
    return all;
}

/// Where the windows of left operand, right operand and result begin in their columns.
using Leads = std::array<std::uint32_t, 3>;

/// Runs a functor between windows in the middle of columns of T, and holds all cells of the result's column of R
/// against model(left cell, right cell). The operands stay as they were.
/// @param copiesFirst one row on the left of several gives as many copies of the first result.
template <typename T, typename R, typename Model>
void CheckAgainstModel(const Func::BinaryBase& functor, Lengths lengths, const Containers& containers,
    const Leads& leads, Random& random, Model&& model, bool copiesFirst = false)
{
    const Surrounded<T> left(random, leads[0], lengths.left, containers[0]);
    const Surrounded<T> right(random, leads[1], lengths.right, containers[1]);
    const Surrounded<R> result(random, leads[2], lengths.Result(), containers[2]);
    const Error outcome = functor.ProcessSeries(left.Window(), right.Window(), result.Window());
    ASSERT_EQ(outcome.code, 0) << outcome.message;
    std::vector<R> expected = result.CellsBefore();
    for (std::uint32_t i = 0; i < lengths.Result(); ++i) {
        const bool isRightFirst = lengths.right == 1 || (copiesFirst && lengths.left == 1);
        expected[leads[2] + i] = model(left.Cell(lengths.left == 1 ? 0 : i), right.Cell(isRightFirst ? 0 : i));
    }
    const std::vector<R> cells = result.CellsNow();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        ASSERT_TRUE(HasSameBits<R>(cells[i], expected[i]))
            << functor.GetName() << " of " << lengths.left << " and " << lengths.right << " at " << leads[0] << ", "
            << leads[1] << ", " << leads[2] << ": cell " << i;
    }
    for (const Surrounded<T>* operand : {&left, &right}) {
        const std::vector<T> before = operand->CellsBefore();
        const std::vector<T> now = operand->CellsNow();
        ASSERT_TRUE(std::equal(before.begin(), before.end(), now.begin(), now.end(), HasSameBits<T>));
    }
}

} // namespace MERVO::Tessera
