#pragma once

#include <bit>

#include "tessera/tessera.hpp"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {

/// A cursor on cells in the middle of a column, between others that would show in a reduction. The first one stands at
/// the given row, which for bools may be any bit of a byte.
template <typename T>
class Window {
public:
    struct Neighbours {
        T before;
        T behind;
    };

    Window(const std::vector<T>& cells, ContainerID container, std::uint32_t firstRow, const Neighbours& neighbours)
    {
        const auto count = static_cast<std::uint32_t>(cells.size());
        column = BuildSeries({firstRow + count + 3, container, TYPE_ID_OF<T>}, "column");
        std::uint32_t row = 0;
        Func::ForEachElement<T>(column->GetIterator(), [&](auto&& element) {
            element = row < firstRow     ? neighbours.before
                : row - firstRow < count ? static_cast<T>(cells[row - firstRow])
                                         : neighbours.behind;
            ++row;
        });
        cursor = column->GetIterator(firstRow, firstRow + count);
    }
    const Cursor& Range() const { return cursor; }

private:
    SeriesPtr column;
    Cursor cursor;
};

/// A column of the length and value type that a functor asks for, in a container of its own choice.
template <template <ContainerID> class Reduction>
SeriesPtr DestinationFor(const Cursor& src, ContainerID container)
{
    SeriesAttr attr = Reduction<CONTAINER_ARRAY>().GetDstAttr(src);
    attr.containerId = container;
    return BuildSeries(attr, "result");
}

/// HasSameBits, with both values where they differ.
template <typename T>
testing::AssertionResult IsBitwise(const T& actual, const T& expected)
{
    if (HasSameBits<T>(actual, expected)) {
        return testing::AssertionSuccess();
    }
    if constexpr (std::is_same_v<T, DateTime>) {
        return testing::AssertionFailure() << actual.TimeStamp() << ", not " << expected.TimeStamp();
    } else {
        return testing::AssertionFailure()
            << testing::PrintToString(actual) << ", not " << testing::PrintToString(expected);
    }
}

/// Reduces a range to a cell in each container, and compares that with what is expected.
template <template <ContainerID> class Reduction, typename Result>
testing::AssertionResult Reduces(const Cursor& src, const Result& expected)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr column = DestinationFor<Reduction>(src, container);
        if (column->GetTypeId() != TYPE_ID_OF<Result>) {
            return testing::AssertionFailure() << "result of type " << GetTypeNameById(column->GetTypeId());
        }
        const Cursor dst = column->GetIterator();
        const Error error = Reduction<CONTAINER_ARRAY>().ProcessSeries(src, dst, true);
        if (error.code != ERROR_NONE) {
            return testing::AssertionFailure() << error.code << ' ' << error.message;
        }
        const auto same = IsBitwise<Result>(GetValueFromIterator<Result>(dst, 0), expected);
        if (!same) {
            return testing::AssertionFailure() << Reduction<CONTAINER_ARRAY>().GetName() << ": " << same.message();
        }
    }
    return testing::AssertionSuccess();
}

} // namespace MERVO::Tessera
