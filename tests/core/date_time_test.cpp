#include "tessera/core/date_time.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_capture.h"
#include "tests/support/time_zone.h"

namespace MERVO::Tessera {
namespace {

constexpr long LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr long HIGHEST = std::numeric_limits<std::int32_t>::max();
const std::string NEW_YORK = "EST5EDT,M3.2.0,M11.1.0";
const std::string SINGAPORE = "<+08>-8";

struct TextCase {
    std::string zone;
    long stamp;
    std::string text;
};

TEST(DateTime, TextIsLocalTime)
{
    const TextCase cases[] = {
        {"UTC0", 0, "1970-01-01 00:00:00"},
        {SINGAPORE, 0, "1970-01-01 08:00:00"},
        {"UTC0", -1, "1969-12-31 23:59:59"},
        {"UTC0", LOWEST, "1901-12-13 20:45:52"},
        {"UTC0", HIGHEST, "2038-01-19 03:14:07"},
        {"UTC0", 1709165342, "2024-02-29 00:09:02"},
        {NEW_YORK, 1710054000, "2024-03-10 03:00:00"}, // the hour from 2 on is left out
        {NEW_YORK, 1710053999, "2024-03-10 01:59:59"},
        {"<-0330>3:30", 0, "1969-12-31 20:30:00"},
    };
    for (const TextCase& wanted : cases) {
        const TimeZone zone(wanted.zone);
        const DateTime moment(wanted.stamp);
        EXPECT_EQ(moment.ToString(), wanted.text);
        std::ostringstream stream;
        EXPECT_EQ(&(stream << moment), &stream);
        EXPECT_EQ(stream.str(), wanted.text);
        DateTime parsed;
        EXPECT_EQ(parsed.StringToTime(wanted.text), 0);
        EXPECT_EQ(parsed.TimeStamp(), wanted.stamp) << wanted.text;
    }
}

// What is missing is 0, and the calendar carries over.
TEST(DateTime, ParsesWhatItFinds)
{
    const TimeZone zone("UTC0");
    const std::pair<long, std::string> cases[] = {
        {1705276800, "2024-01-15"},
        {1705276800, "2024-1-15"},
        {1705331096, "\t 2024- 01-\n15 \v15: 04:56 and more"},
        {1703980800, "2024-+12-15"},        // a sign counts in the width, so the 2 doesn't fit
        {1705331096, "2024-01-1515:04:56"}, // the blank may be none
        {1705330800, "2024-01-15 15;04:56"},
        {1705276800, "2024-01-15T15:04:56"},
        {1735689600, "2024-13-01"},
        {1707955200, "2024-01-46"},
        {1705273200, "2024-01-15 -1"},
        {1701302400, "20245-01-15"}, // only the year fits: month 0, day 0
        {1701302400, "2024"},
        {1701302400, "2024-x"},
        {1704067199, "2024-01-00 23:59:59"},
        {HIGHEST, "2038-01-19 03:14:07"},
        {-1, "2038-01-19 03:14:08"},
        {LOWEST, "1901-12-13 20:45:52"},
        {-1, "1901-12-13 20:45:51"},
        {-1, "9999-12-31"},
        {-1, "-123-01-01"},
        {-1, "letters"},
        {-1, "-"},
    };
    for (const auto& [stamp, text] : cases) {
        DateTime moment(77);
        EXPECT_EQ(moment.StringToTime(text), 0) << text;
        EXPECT_EQ(moment.TimeStamp(), stamp) << text;
    }
}

TEST(DateTime, EmptyTextChangesNothing)
{
    const LogCapture log;
    DateTime moment(77);
    EXPECT_EQ(moment.StringToTime(""), 0);
    EXPECT_EQ(moment.TimeStamp(), 77);
    EXPECT_EQ(log.Count(), 0U);
}

TEST(DateTime, BlankTextFails)
{
    for (const std::string& text : {std::string("   "), std::string("\n"),
             std::string("\0"
                         "2024-01-15",
                 11)}) {
        const LogCapture log;
        DateTime moment(77);
        EXPECT_EQ(moment.StringToTime(text), 2);
        EXPECT_EQ(moment.TimeStamp(), 77);
        EXPECT_EQ(log.Texts(2), std::vector<std::string>{"Failed to cast time " + std::string(text.c_str())});
        EXPECT_EQ(log.Count(), 1U);
    }
}

// The C library's own scan is the oracle.
TEST(DateTime, ScansAsTheCLibrary)
{
    const TimeZone zone("UTC0");
    const std::string alphabet = "0123456789012345678901234567890-----:::::    ++\tx";
    const std::string regular = "2024-01-15 15:04:56";
    std::mt19937 random(21);
    for (int i = 0; i < 40000; ++i) {
        std::string text = regular.substr(0, random() % (regular.size() + 1));
        for (std::size_t changes = random() % 4; changes > 0; --changes) {
            const char character = alphabet[random() % alphabet.size()];
            const std::size_t place = random() % (text.size() + 1);
            random() % 2 == 0 && place < text.size() ? text.replace(place, 1, 1, character)
                                                     : text.insert(place, 1, character);
        }
        if (text.empty()) {
            continue;
        }
        ::tm fields = {};
        const int matched = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &fields.tm_year, &fields.tm_mon,
            &fields.tm_mday, &fields.tm_hour, &fields.tm_min, &fields.tm_sec);
        fields.tm_year -= 1900;
        fields.tm_mon -= 1;
        fields.tm_isdst = -1;
        const auto seconds = static_cast<std::int64_t>(std::mktime(&fields));
        const bool fits = seconds >= LOWEST && seconds <= HIGHEST;
        DateTime moment(77);
        ASSERT_EQ(moment.StringToTime(text), matched < 0 ? 2 : 0) << '"' << text << '"';
        const std::int64_t wanted = fits ? seconds : -1;
        ASSERT_EQ(moment.TimeStamp(), matched < 0 ? 77 : wanted) << '"' << text << '"';
    }
}

// In the repeated hour at the end of daylight saving the stamp may come back an hour apart, but never the text.
TEST(DateTime, TextAndStampAreInverse)
{
    std::mt19937 random(22);
    for (const std::string& rules : {std::string("UTC0"), SINGAPORE, NEW_YORK, std::string("<-0330>3:30")}) {
        const TimeZone zone(rules);
        for (int i = 0; i < 4000; ++i) {
            const DateTime moment(static_cast<std::int32_t>(random()));
            DateTime again;
            ASSERT_EQ(again.StringToTime(moment.ToString()), 0);
            ASSERT_EQ(again.ToString(), moment.ToString());
            const long apart = again.TimeStamp() - moment.TimeStamp();
            ASSERT_TRUE(apart == 0 || (rules == NEW_YORK && (apart == 3600 || apart == -3600))) << moment;
        }
    }
}

TEST(DateTime, CalendarIsRefreshedWheneverAsked)
{
    const DateTime moment(1709165342);
    {
        const TimeZone zone("UTC0");
        EXPECT_EQ(moment.GetTime()->tm_mday, 29);
        EXPECT_EQ(moment.GetTime()->tm_year, 124);
    }
    const TimeZone zone("EST5");
    errno = ERANGE;
    const LogCapture log;
    EXPECT_EQ(moment.GetTime()->tm_hour, 19);
    EXPECT_EQ(moment.GetTime()->tm_mday, 28);
    EXPECT_EQ(errno, ERANGE) << "errno is the host's";
    EXPECT_EQ(log.Count(), 0U);
}

TEST(DateTime, OnlyTheStampCounts)
{
    const DateTime refreshed(1000);
    refreshed.Parse2Time();
    EXPECT_EQ(refreshed, DateTime(1000));
    EXPECT_LT(DateTime(-1), DateTime(0));
    EXPECT_GE(DateTime(HIGHEST), DateTime(LOWEST));
    EXPECT_NE(refreshed, DateTime());
    EXPECT_EQ(DateTime().TimeStamp(), 0);
}

TEST(DateTime, StampHas32BitsEverywhere)
{
    EXPECT_EQ(DateTime(HIGHEST).TimeStamp(), HIGHEST);
    EXPECT_EQ(DateTime(LOWEST).TimeStamp(), LOWEST);
    if constexpr (sizeof(long) > sizeof(std::int32_t)) {
        EXPECT_EQ(DateTime(HIGHEST + 1).TimeStamp(), LOWEST);
        EXPECT_EQ(DateTime(static_cast<long>(std::int64_t{5} << 32 | 7)).TimeStamp(), 7);
    }
}

// Columns copy moments as blocks.
static_assert(std::is_trivially_copyable_v<DateTime>);
static_assert(std::is_standard_layout_v<DateTime>);

} // namespace
} // namespace MERVO::Tessera
