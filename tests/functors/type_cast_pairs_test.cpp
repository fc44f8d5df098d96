#include <array>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using Texts = std::vector<std::string>;

// ---- Cells that lie at the ends of types, at the bounds of rules, and at the limits of the quick roads

template <typename T>
std::vector<T> Samples()
{
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_same_v<T, bool>) {
        return {true, false, false, true, true, true, false};
    } else if constexpr (std::is_floating_point_v<T>) {
        const T epsilon = Limits::epsilon();
        return {T(0), -T(0), T(1.5), T(-1.5), T(0.99), T(1e-20), epsilon, -epsilon, std::nextafter(epsilon, T(1)),
            Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
            Limits::lowest(), Limits::min(), T(127.9), T(128), T(300.7), T(-300.7), T(40000), T(70000.5), T(-1),
            T(2147483520), T(2147483648.0), T(-2147483904.0), T(4294967040.0), T(4294967296.0), T(9.2e18), T(9.3e18),
            T(-9.3e18), T(1.84e19), T(1.9e19), T(123456.7), T(-9.999996e9)};
    } else if constexpr (std::is_arithmetic_v<T>) {
        std::vector<T> values = {Limits::min(), Limits::max()};
        for (const std::int64_t value : {0LL, 1LL, -1LL, 9LL, 10LL, 42LL, 99LL, 100LL, 127LL, 128LL, 255LL, 256LL,
                 300LL, -300LL, 32767LL, 32768LL, 65535LL, 65536LL, 16777217LL, 2147483647LL, 2147483648LL,
                 -2147483649LL, 4294967295LL, 4294967296LL, 9007199254740993LL, -1234567890123456789LL}) {
            values.push_back(static_cast<T>(value));
        }
        return values;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {"", "0", "1", "-1", "12abc", "abc", "  42", "\t-7x", "+9", "300", "-300", "70000", "2147483648",
            "4294967297", "9223372036854775807", "-9223372036854775808", "12345678", "-1234567", "-12345678",
            "123456789", "007", "-0", "-", "--1", "1-2", "1 2", "0x10", "1.5", "-1.5", "-0.0", "68.323580",
            "1234567.12345678", "-1234567.12345678", "12345678.5", "1.123456789", "12.", ".5", "1.2.3", "1.5e3",
            "-2.5E-3", "1e39", "inf", "-nan", "1:2", "1/2",
            "12\xC3\xA9"
            "4",
            "1.5\xBA"
            "2",
            "3.1415926535897932384626", std::string("1\0002", 3), "2024-03-05 07:09:02", std::string(40, '0') + "5"};
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return {DateTime(0), DateTime(1), DateTime(-1), DateTime(2147483647), DateTime(-2147483647 - 1),
            DateTime(1709622542), DateTime(16777217)};
    } else {
        DataFrame numbers;
        EXPECT_EQ(numbers.ReadVector<std::int32_t>({1, 2, 3, 4}, {2, 2}), 0);
        DataFrame texts;
        EXPECT_EQ(texts.ReadVector<std::string>({"cell"}, {1, 1}), 0);
        return {numbers, texts, numbers};
    }
}

// ---- How cells look, to be compared whatever their type

template <typename T>
std::string Show(const T& value);

template <typename T>
Texts ShowCells(const Cursor& cursor)
{
    Texts texts;
    Func::ForEachElement<T>(cursor, [&texts](const auto& value) { texts.push_back(Show<T>(value)); });
    return texts;
}

std::string ShowTable(const DataFrame& table)
{
    static constexpr auto SHOW_CELLS =
        ForEachValueType([](auto number) { return &ShowCells<ValueTypes::At<number()>>; });
    std::string shown = std::to_string(table.RowCount()) + " rows, code " + std::to_string(table.GetError().code);
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        shown += " " + column->GetName() + " of " + GetTypeNameById(column->GetTypeId()) + ":";
        for (const std::string& cell :
            SHOW_CELLS[static_cast<std::size_t>(column->GetTypeId())](table.GetSlicedIterator(column))) {
            shown += " " + cell;
        }
    }
    return shown;
}

template <typename T>
std::string Show(const T& value)
{
    if constexpr (std::is_same_v<T, float>) {
        return std::to_string(value) + " " + std::to_string(std::bit_cast<std::uint32_t>(value));
    } else if constexpr (std::is_same_v<T, double>) {
        return std::to_string(value) + " " + std::to_string(std::bit_cast<std::uint64_t>(value));
    } else if constexpr (std::is_arithmetic_v<T>) {
        return std::to_string(value);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return value;
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return std::to_string(value.TimeStamp());
    } else {
        return ShowTable(value);
    }
}

// ---- The oracle: the C library and the language, one cell at a time

template <typename D, typename S>
D TruncateOrClamp(S value)
{
    using Wide32 = std::conditional_t<std::is_signed_v<D>, std::int32_t, std::uint32_t>;
    using Wide = std::conditional_t<sizeof(D) == 8, D, Wide32>;
    const double truncated = std::trunc(static_cast<double>(value));
    const double above = std::ldexp(1.0, std::numeric_limits<Wide>::digits);
    if (std::isnan(value)) {
        return 0;
    }
    if (truncated >= above) {
        return static_cast<D>(std::numeric_limits<Wide>::max());
    }
    if (truncated < (std::is_signed_v<D> ? -above : 0.0)) {
        return static_cast<D>(std::numeric_limits<Wide>::min());
    }
    return static_cast<D>(static_cast<Wide>(truncated));
}

template <typename D, typename S>
D ExpectedNumber(S value)
{
    if constexpr (std::is_same_v<D, bool>) {
        const double bound = std::is_same_v<S, float> ? 0x1p-23 : std::is_same_v<S, double> ? 0x1p-52 : 0.0;
        return std::isnan(static_cast<double>(value)) || std::fabs(static_cast<double>(value)) > bound;
    } else if constexpr (std::is_floating_point_v<S> && std::is_integral_v<D>) {
        return TruncateOrClamp<D>(value);
    } else {
        return static_cast<D>(value);
    }
}

template <typename S>
std::string ExpectedText(S value)
{
    char text[32] = {};
    if constexpr (std::is_same_v<S, bool>) {
        return value ? "1" : "";
    } else if constexpr (std::is_floating_point_v<S>) {
        std::snprintf(text, sizeof(text), "%.5e", static_cast<double>(value));
    } else if constexpr (std::is_signed_v<S>) {
        std::snprintf(text, sizeof(text), "%" PRId64, static_cast<std::int64_t>(value));
    } else {
        std::snprintf(text, sizeof(text), "%" PRIu64, static_cast<std::uint64_t>(value));
    }
    return text;
}

template <typename D>
D ExpectedParse(const std::string& text)
{
    if constexpr (std::is_same_v<D, bool>) {
        return !text.empty();
    } else if constexpr (std::is_same_v<D, DateTime>) {
        DateTime parsed(0);
        EXPECT_EQ(parsed.StringToTime(text), 0);
        return parsed;
    } else if constexpr (std::is_floating_point_v<D>) {
        return text.empty() ? std::numeric_limits<D>::quiet_NaN() : static_cast<D>(std::strtod(text.c_str(), nullptr));
    } else if constexpr (std::is_signed_v<D>) {
        return static_cast<D>(std::strtoll(text.c_str(), nullptr, 10));
    } else {
        return static_cast<D>(std::strtoull(text.c_str(), nullptr, 10));
    }
}

template <typename S, typename D>
std::string ExpectedCell(const S& value)
{
    if constexpr (std::is_same_v<S, D>) {
        return Show<D>(value);
    } else if constexpr (std::is_same_v<D, DataFrame>) {
        return "1 rows, code 0 col_0 of " + std::string(TypeTraitsImpl<S>::name) + ": " + Show<S>(value);
    } else if constexpr (std::is_same_v<S, DataFrame>) {
        return "no such cast";
    } else if constexpr (std::is_same_v<S, std::string>) {
        return Show<D>(ExpectedParse<D>(value));
    } else if constexpr (std::is_same_v<S, DateTime> && std::is_same_v<D, std::string>) {
        return value.ToString();
    } else if constexpr (std::is_same_v<S, DateTime>) {
        return Show<D>(ExpectedNumber<D>(static_cast<std::int32_t>(value.TimeStamp())));
    } else if constexpr (std::is_same_v<D, DateTime>) {
        return Show<std::int32_t>(ExpectedNumber<std::int32_t>(value));
    } else if constexpr (std::is_same_v<D, std::string>) {
        return ExpectedText(value);
    } else {
        return Show<D>(ExpectedNumber<D>(value));
    }
}

template <typename S, typename D>
Texts ExpectedCells()
{
    Texts texts;
    for (const S& value : Samples<S>()) {
        texts.push_back(ExpectedCell<S, D>(value));
    }
    return texts;
}

// ---- All pairs

/// A column of the samples, again and again.
template <typename T>
SeriesPtr SampleColumn(std::uint32_t length, ContainerID container)
{
    const std::vector<T> samples = Samples<T>();
    SeriesPtr column = BuildSeries({length, container, TYPE_ID_OF<T>}, "samples");
    std::size_t i = 0;
    Func::ForEachElement<T>(column->GetIterator(), [&](auto&& cell) { cell = samples[i++ % samples.size()]; });
    return column;
}

struct TypeCase {
    SeriesPtr (*column)(std::uint32_t length, ContainerID container);
    Texts (*show)(const Cursor& cursor);
    std::array<Texts (*)(), ValueTypes::COUNT> expected; ///< by target: what the samples become
};

constexpr auto TYPE_CASES = ForEachValueType([](auto number) {
    using S = ValueTypes::At<number()>;
    return TypeCase{&SampleColumn<S>, &ShowCells<S>,
        ForEachValueType([](auto target) { return &ExpectedCells<S, ValueTypes::At<target()>>; })};
});

bool IsRefused(MERVO_TESSERA_TYPEID source, MERVO_TESSERA_TYPEID target)
{
    return (source == TESSERA_BOOL && target == TESSERA_DATETIME) ||
        (source == TESSERA_DATAFRAME && target != TESSERA_DATAFRAME);
}

Error Cast(const Cursor& src, const Cursor& dst, MERVO_TESSERA_TYPEID target)
{
    return Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID>(target).ProcessSeries(src, dst, true);
}

/// Rows of the source that go to rows of the target; the shorter range decides.
struct Window {
    std::uint32_t sourceBegin;
    std::uint32_t sourceEnd;
    std::uint32_t targetBegin;
    std::uint32_t targetEnd;
};

class TypeCastPair : public testing::TestWithParam<std::tuple<int, int>> {
protected:
    const MERVO_TESSERA_TYPEID source = static_cast<MERVO_TESSERA_TYPEID>(std::get<0>(GetParam()));
    const MERVO_TESSERA_TYPEID target = static_cast<MERVO_TESSERA_TYPEID>(std::get<1>(GetParam()));
    const TypeCase& from = TYPE_CASES[static_cast<std::size_t>(source)];
    const TypeCase& to = TYPE_CASES[static_cast<std::size_t>(target)];

    void CheckWindow(const Window& window, std::uint32_t length, ContainerID sourceKind, ContainerID targetKind)
    {
        const SeriesPtr sourceColumn = from.column(length, sourceKind);
        const SeriesPtr targetColumn = to.column(length, targetKind);
        Texts wanted = to.show(targetColumn->GetIterator());
        const Texts becomes = from.expected[static_cast<std::size_t>(target)]();
        const std::uint32_t count =
            std::min(window.sourceEnd - window.sourceBegin, window.targetEnd - window.targetBegin);
        for (std::uint32_t i = 0; i < count; ++i) {
            wanted[window.targetBegin + i] = becomes[(window.sourceBegin + i) % becomes.size()];
        }
        const Error error = Cast(sourceColumn->GetIterator(window.sourceBegin, window.sourceEnd),
            targetColumn->GetIterator(window.targetBegin, window.targetEnd), target);
        EXPECT_EQ(error.code, 0) << error.message;
        EXPECT_EQ(to.show(targetColumn->GetIterator()), wanted)
            << "containers " << sourceKind << " to " << targetKind << ", rows from " << window.sourceBegin << " to "
            << window.targetBegin;
    }
};

TEST_P(TypeCastPair, AgreesWithTheOracleInBothContainersAndInWindows)
{
    if (IsRefused(source, target)) {
        return;
    }
    // Bits pass through a buffer of 512.
    const bool hasBits = source == TESSERA_BOOL || target == TESSERA_BOOL;
    const std::uint32_t length = hasBits && source + target < TESSERA_DATAFRAME ? 600 : 64;
    const Window windows[] = {
        {0, length, 0, length},
        {3, length - 6, 5, length - 4},
        {7, length - 8, 7, length - 8},
        {1, length, 2, length - 10},
        {2, 2, 3, 4},
        {2, 9, 4, 4},
    };
    for (const Window& window : windows) {
        for (const ContainerID sourceKind : BOTH_CONTAINERS) {
            for (const ContainerID targetKind : BOTH_CONTAINERS) {
                CheckWindow(window, length, sourceKind, targetKind);
            }
        }
    }
}

TEST_P(TypeCastPair, RefusesWhatHasNoConversionUnlessTheSourceIsEmpty)
{
    if (!IsRefused(source, target)) {
        return;
    }
    const char* const message = source == TESSERA_BOOL ? "cannot cast bool to datetime"
        : target == TESSERA_BOOL                       ? "Type dataframe cannot cast to Type bool."
                                                       : "cannot cast dataframe to other types except dataframe";
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr sourceColumn = from.column(5, container);
        const SeriesPtr targetColumn = to.column(5, container);
        const Texts before = to.show(targetColumn->GetIterator());
        LogCapture log;
        const Error fine = Cast(sourceColumn->GetIterator(2, 2), targetColumn->GetIterator(), target);
        EXPECT_EQ(fine.code, 0);
        EXPECT_EQ(log.Count(), 0U);
        const Error error = Cast(sourceColumn->GetIterator(4, 5), targetColumn->GetIterator(), target);
        EXPECT_EQ(error.code, 1);
        EXPECT_EQ(error.message, "Error on calling functor: TypeCast");
        EXPECT_THAT(log.Texts(1), testing::ElementsAre(message));
        EXPECT_EQ(Cast(sourceColumn->GetIterator(), targetColumn->GetIterator(3, 3), target).code, 1);
        EXPECT_EQ(to.show(targetColumn->GetIterator()), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Types, TypeCastPair,
    testing::Combine(testing::Range(0, int{TESSERA_TYPE_END}), testing::Range(0, int{TESSERA_TYPE_END})),
    [](const auto& pair) {
        return GetTypeNameById(static_cast<MERVO_TESSERA_TYPEID>(std::get<0>(pair.param))) + "_to_" +
            GetTypeNameById(static_cast<MERVO_TESSERA_TYPEID>(std::get<1>(pair.param)));
    });

} // namespace
} // namespace MERVO::Tessera
