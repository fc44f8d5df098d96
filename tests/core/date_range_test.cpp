#include "tessera/core/date_range.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

constexpr long LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr long NONE = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t MODULUS = std::int64_t{1} << 32;

struct RangeCase {
    long start;
    long end;
    unsigned int periods;
    long freq;
    std::vector<long> stamps;
};

std::vector<long> StampsOf(const RangeCase& arguments)
{
    std::vector<long> stamps;
    for (const DateTime& moment :
        DateRange(DateTime(arguments.start), DateTime(arguments.end), arguments.periods, DateTime(arguments.freq))) {
        stamps.push_back(moment.TimeStamp());
    }
    return stamps;
}

std::string NameOf(const RangeCase& arguments)
{
    return std::to_string(arguments.start) + ", " + std::to_string(arguments.end) + ", " +
        std::to_string(arguments.periods) + ", " + std::to_string(arguments.freq);
}

TEST(DateRange, FromThreeOfFour)
{
    const RangeCase cases[] = {
        // start, end and step: the end only if it lies on the grid
        {0, 10, 0, 3, {0, 3, 6, 9}},
        {0, 9, 0, 3, {0, 3, 6, 9}},
        {10, 0, 0, -3, {10, 7, 4, 1}},
        {5, 5, 0, -3, {5}},
        {5, 5, 0, 3, {5}},
        {0, 10, 0, 11, {0}},
        {LOWEST, NONE - 1, 0, 2000000000, {LOWEST, -147483648, 1852516352}},
        {NONE - 1, LOWEST, 0, LOWEST, {NONE - 1, -2}},
        // start, periods and step
        {100, NONE, 4, 10, {100, 110, 120, 130}},
        {100, NONE, 3, -60, {100, 40, -20}},
        {100, NONE, 3, 0, {100, 100, 100}},
        {100, NONE, 1, 10, {100}},
        {2000000000, NONE, 3, 200000000, {2000000000, -2094967296, -1894967296}}, // wraps
        // end, periods and step
        {NONE, 100, 2, 10, {90, 100}},
        {NONE, 100, 3, -10, {120, 110, 100}},
        {NONE, LOWEST, 2, 1, {NONE, LOWEST}}, // wraps
        {NONE, 100, 1, 10, {100}},
        // start, end and periods
        {0, 10, 3, NONE, {0, 5, 10}},
        {0, 10, 4, NONE, {0, 3, 6, 10}},
        {10, 0, 4, NONE, {10, 6, 3, 0}},
        {-10, 0, 4, NONE, {-10, -6, -3, 0}}, // toward zero, not down
        {7, 99, 1, NONE, {7}},
        {3, 3, 3, NONE, {3, 3, 3}},
        {LOWEST, NONE - 1, 3, NONE, {LOWEST, -1, NONE - 1}},
    };
    for (const RangeCase& wanted : cases) {
        const LogCapture log;
        EXPECT_EQ(StampsOf(wanted), wanted.stamps) << NameOf(wanted);
        EXPECT_EQ(log.Count(), 0U);
    }
}

TEST(DateRange, RefusalsSayWhy)
{
    const std::string invalid = "Error to generate a valid length of dateRange, Invalid parameters";
    const std::string leadsAway = "The date_range param is invalid when periods is 0";
    const std::string noFreq = "The date_range param is invalid when freq is invalid";
    const std::string noEnd = "The date_range param is invalid when end is invalid";
    const std::string allFour = "Only three valid params needed in DateRange";
    const std::string second = "Check Params Failed in DateRange";
    const std::string tooLong = "the length of DateTime list has exceed the max tolerance of vector";
    struct Refusal {
        RangeCase arguments;
        std::vector<std::string> messages;
    };
    const Refusal cases[] = {
        {{NONE, 10, 0, 3, {}}, {invalid, second}},
        {{0, NONE, 0, 3, {}}, {invalid, second}},
        {{0, 10, 0, NONE, {}}, {invalid, second}},
        {{0, 10, 0, 0, {}}, {invalid, second}},
        {{5, 5, 0, 0, {}}, {invalid, second}},
        {{10, 0, 0, 3, {}}, {leadsAway, second}},
        {{0, 10, 0, -3, {}}, {leadsAway, second}},
        {{NONE, 10, 3, NONE, {}}, {noFreq, second}},
        {{0, NONE, 3, NONE, {}}, {noFreq, second}},
        {{NONE, NONE, 3, 10, {}}, {noEnd, second}},
        {{0, 10, 3, 5, {}}, {allFour, second}},
        {{0, 10, 3, 0, {}}, {allFour, second}},
        {{0, NONE, 1000001, 1, {}}, {tooLong}},
        {{0, 1000000, 0, 1, {}}, {tooLong}},
        {{LOWEST, NONE - 1, 0, 1, {}}, {tooLong}}, // 4294967295 moments
        {{0, NONE, 0x80000000, 1, {}}, {tooLong}},
        {{0, 10, 0xFFFFFFFF, NONE, {}}, {tooLong}},
    };
    for (const Refusal& wanted : cases) {
        const LogCapture log;
        EXPECT_TRUE(StampsOf(wanted.arguments).empty()) << NameOf(wanted.arguments);
        EXPECT_EQ(log.Texts(1), wanted.messages) << NameOf(wanted.arguments);
        EXPECT_EQ(log.Count(), wanted.messages.size());
    }
}

TEST(DateRange, LongestLists)
{
    const std::vector<long> stamps = StampsOf({-7, NONE, 1000000, 5000, {}});
    ASSERT_EQ(stamps.size(), 1000000U);
    for (std::size_t i = 0; i < stamps.size(); ++i) {
        const std::int64_t exact = -7 + std::int64_t{5000} * static_cast<std::int64_t>(i);
        ASSERT_EQ((stamps[i] - exact) % MODULUS, 0);
    }
    EXPECT_EQ(StampsOf({0, 999999, 0, 1, {}}).size(), 1000000U);
}

} // namespace
} // namespace MERVO::Tessera
