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
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

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
inline constexpr bool IS_REFUSED = (std::is_same_v<S, bool> && std::is_same_v<D, DateTime>) ||
    (std::is_same_v<S, DataFrame> && !std::is_same_v<D, DataFrame>);

template <typename S, typename D>
D ExpectedCell(const S& value)
{
    if constexpr (std::is_same_v<S, D>) {
        return value;
    } else if constexpr (std::is_same_v<D, DataFrame>) {
        return TableOf(Column<S>("col_0", {value}));
    } else if constexpr (std::is_same_v<S, std::string>) {
        return ExpectedParse<D>(value);
    } else if constexpr (std::is_same_v<S, DateTime> && std::is_same_v<D, std::string>) {
        return value.ToString();
    } else if constexpr (std::is_same_v<S, DateTime>) {
        return ExpectedNumber<D>(static_cast<std::int32_t>(value.TimeStamp()));
    } else if constexpr (std::is_same_v<D, DateTime>) {
        return DateTime(ExpectedNumber<std::int32_t>(value));
    } else if constexpr (std::is_same_v<D, std::string>) {
        return ExpectedText(value);
    } else {
        return ExpectedNumber<D>(value);
    }
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

template <typename S, typename D>
void CheckWindow(const Window& window, std::uint32_t length, ContainerID sourceKind, ContainerID targetKind)
{
    const SeriesPtr source = SampleColumn<S>(length, sourceKind);
    const SeriesPtr target = SampleColumn<D>(length, targetKind);
    const std::vector<S> samples = Samples<S>();
    std::vector<D> wanted = CellsOf<D>(target->GetIterator());
    const std::uint32_t count = std::min(window.sourceEnd - window.sourceBegin, window.targetEnd - window.targetBegin);
    for (std::uint32_t i = 0; i < count; ++i) {
        wanted[window.targetBegin + i] = ExpectedCell<S, D>(samples[(window.sourceBegin + i) % samples.size()]);
    }
    const Error error = Cast(source->GetIterator(window.sourceBegin, window.sourceEnd),
        target->GetIterator(window.targetBegin, window.targetEnd), TYPE_ID_OF<D>);
    ASSERT_EQ(error.code, 0) << error.message;
    const std::vector<D> cells = CellsOf<D>(target->GetIterator());
    for (std::uint32_t i = 0; i < length; ++i) {
        ASSERT_TRUE(IsSameCell<D>(cells[i], wanted[i]))
            << "to " << TypeTraitsImpl<D>::name << ", containers " << sourceKind << " to " << targetKind << ", rows "
            << window.sourceBegin << " to " << window.targetBegin << ", cell " << i;
    }
}

template <typename S, typename D>
void CheckConversion()
{
    // Bits pass through a buffer of 512.
    constexpr bool HAS_BITS = std::is_same_v<S, bool> || std::is_same_v<D, bool>;
    const std::uint32_t length = HAS_BITS && !std::is_same_v<D, DataFrame> ? 600 : 64;
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
                CheckWindow<S, D>(window, length, sourceKind, targetKind);
            }
        }
    }
}

template <typename S, typename D>
void CheckRefusal()
{
    const char* const message = std::is_same_v<S, bool> ? "cannot cast bool to datetime"
        : std::is_same_v<D, bool>                       ? "Type dataframe cannot cast to Type bool."
                                                        : "cannot cast dataframe to other types except dataframe";
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr source = SampleColumn<S>(5, container);
        const SeriesPtr target = SampleColumn<D>(5, container);
        const std::vector<D> before = CellsOf<D>(target->GetIterator());
        const LogCapture log;
        EXPECT_EQ(Cast(source->GetIterator(2, 2), target->GetIterator(), TYPE_ID_OF<D>).code, 0);
        EXPECT_EQ(log.Count(), 0U) << "of an empty source";
        const Error error = Cast(source->GetIterator(4, 5), target->GetIterator(), TYPE_ID_OF<D>);
        EXPECT_EQ(error.code, 1);
        EXPECT_EQ(error.message, "Error on calling functor: TypeCast");
        EXPECT_THAT(log.Texts(1), testing::ElementsAre(message));
        EXPECT_EQ(Cast(source->GetIterator(), target->GetIterator(3, 3), TYPE_ID_OF<D>).code, 1);
        const std::vector<D> after = CellsOf<D>(target->GetIterator());
        EXPECT_TRUE(std::equal(before.begin(), before.end(), after.begin(), IsSameCell<D>));
    }
}

template <typename S>
class TypeCastFrom : public testing::Test {
};
TYPED_TEST_SUITE(TypeCastFrom, AllValueTypes);

TYPED_TEST(TypeCastFrom, ToEachTypeAgreesWithTheOracleOrIsRefused)
{
    const auto check = []<typename D>(std::type_identity<D>) {
        if constexpr (IS_REFUSED<TypeParam, D>) {
            CheckRefusal<TypeParam, D>();
        } else {
            CheckConversion<TypeParam, D>();
        }
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) { (check(std::type_identity<ValueTypes::At<I>>{}), ...); }
    (std::make_index_sequence<ValueTypes::COUNT>{});
}

} // namespace
} // namespace MERVO::Tessera
