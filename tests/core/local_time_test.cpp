#include "tessera/core/local_time.h"

#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/time_zone.h"

namespace MERVO::Tessera {
namespace {

struct ZoneCase {
    std::string rules;
    double sharePassed; ///< how much of the year is nearer than two days to a change of the clocks, at most
};

// mktime is the oracle. Fields reach beyond their ranges, and years beyond the stamps.
TEST(OnlyMomentOf, AgreesWithMktimeAwayFromChangesOfTheClocks)
{
    const ZoneCase cases[] = {
        {"UTC0", 0.0}, {"<+08>-8", 0.0}, {"<-0330>3:30", 0.0}, {"<+14>-14", 0.0}, {"EST5EDT,M3.2.0,M11.1.0", 0.05},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 0.05}, // half an hour of daylight saving, in southern summer
        {"AAA-1BBB,J100/1,J102/1", 0.05},               // two days of it, after which the offset is as before
    };
    std::mt19937 random(31);
    const auto between = [&random](int lowest, int highest) {
        return lowest + static_cast<int>(random() % static_cast<unsigned int>(highest - lowest + 1));
    };
    for (const ZoneCase& wanted : cases) {
        const TimeZone zone(wanted.rules);
        constexpr int ROUNDS = 5000;
        int passed = 0;
        for (int i = 0; i < ROUNDS; ++i) {
            ::tm fields = {};
            fields.tm_year = i % 10 == 0 ? between(-2899, 8099) : between(2, 137);
            fields.tm_mon = i % 5 == 0 ? between(-100, 98) : between(0, 11);
            fields.tm_mday = i % 3 == 0 ? between(-9, 99) : between(1, 28);
            fields.tm_hour = between(-9, 99);
            fields.tm_min = between(-9, 99);
            fields.tm_sec = between(-9, 99);
            fields.tm_isdst = -1;
            const std::optional<std::int64_t> moment = OnlyMomentOf(fields);
            if (!moment) {
                ++passed;
                continue;
            }
            const std::string shown = std::to_string(fields.tm_year + 1900) + "-" + std::to_string(fields.tm_mon + 1) +
                "-" + std::to_string(fields.tm_mday) + " " + std::to_string(fields.tm_hour) + "h";
            if (sizeof(std::time_t) > sizeof(std::int32_t) || std::abs(*moment) < INT32_MAX) {
                ASSERT_EQ(*moment, std::mktime(&fields)) << wanted.rules << " at " << shown;
            }
        }
        EXPECT_LE(passed, sizeof(std::time_t) > 4 ? wanted.sharePassed * ROUNDS : 0.2 * ROUNDS) << wanted.rules;
    }
}

TEST(OnlyMomentOf, LeavesChangesOfTheClocksToMktime)
{
    const TimeZone zone("EST5EDT,M3.2.0,M11.1.0");
    const auto fieldsOf = [](int month, int day, int hour) {
        ::tm fields = {};
        fields.tm_year = 124;
        fields.tm_mon = month - 1;
        fields.tm_mday = day;
        fields.tm_hour = hour;
        fields.tm_isdst = -1;
        return fields;
    };
    EXPECT_FALSE(OnlyMomentOf(fieldsOf(3, 10, 2))); // left out
    EXPECT_FALSE(OnlyMomentOf(fieldsOf(11, 3, 1))); // repeated
    EXPECT_EQ(OnlyMomentOf(fieldsOf(3, 5, 12)), 1709658000);
    EXPECT_EQ(OnlyMomentOf(fieldsOf(3, 15, 12)), 1710518400);
}

TEST(StampOfLocalTime, TakesTheZoneThatTheProcessSets)
{
    ::tm noon = {};
    noon.tm_year = 70;
    noon.tm_mday = 1;
    noon.tm_hour = 12;
    const TimeZone zone("UTC0");
    for (int i = 0; i < 2; ++i) { // none of them told to the C library
        ::setenv("TZ", "UTC0", 1);
        EXPECT_EQ(StampOfLocalTime(noon), 43200);
        ::setenv("TZ", "<+08>-8", 1);
        EXPECT_EQ(StampOfLocalTime(noon), 14400);
        ::unsetenv("TZ");
        const std::int32_t bySystemZone = StampOfLocalTime(noon);
        ::tm fields = noon;
        fields.tm_isdst = -1;
        EXPECT_EQ(bySystemZone, std::mktime(&fields));
    }
}

} // namespace
} // namespace MERVO::Tessera
