// The library's own logger under another name: in this program, as in any host that defines one, the host's wins.
#define ORLELogStr DefaultLogger
#include "tessera/platform/default_logger.cpp"
#undef ORLELogStr

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

/// Sets or clears TESSERA_LOG_LEVEL for a while.
class LogLevel {
public:
    explicit LogLevel(const char* level)
    {
        if (const char* before = std::getenv(NAME)) {
            kept = before;
        }
        Set(level);
    }
    LogLevel(const LogLevel&) = delete;
    LogLevel& operator=(const LogLevel&) = delete;
    ~LogLevel() { Set(kept.has_value() ? kept->c_str() : nullptr); }

private:
    static constexpr const char* NAME = "TESSERA_LOG_LEVEL";
    static void Set(const char* level)
    {
        if (level == nullptr) {
            unsetenv(NAME);
        } else {
            setenv(NAME, level, 1);
        }
    }
    std::optional<std::string> kept;
};

TEST(DefaultLogger, ShowsTheLevelsThatAreAskedFor)
{
    const std::string lines[] = {
        "[tag] message 1 of 4\n", "[tag] message 2 of 4\n", "[tag] message 3 of 4\n", "[tag] message 4 of 4\n"};
    const struct {
        const char* asked;
        int shown;
    } cases[] = {{nullptr, 2}, {"3", 3}, {"4", 4}, {"99", 4}, {"2", 2}, {"0", 2}, {"", 2}, {"-5", 2},
        {"loud", 2}}; // errors and warnings are never silenced
    for (const auto& [asked, shown] : cases) {
        const LogLevel level(asked);
        testing::internal::CaptureStderr();
        for (int i = 1; i <= 4; ++i) {
            DefaultLogger(i, "tag", "message %d of %s", i, "4");
        }
        std::string expected;
        for (int i = 0; i < shown; ++i) {
            expected += lines[i];
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), expected) << (asked == nullptr ? "nothing" : asked);
    }
}

TEST(Log, ReachesTheHostUnderItsLevelAndTag)
{
    const LogCapture log;
    LogError("error %d", 1);
    LogWarning("warning %s", "two");
    LogNotice("notice %%");
    LogDump("dump %zu", std::size_t{4});
    ASSERT_EQ(log.entries.size(), 4U);
    const char* const texts[] = {"error 1", "warning two", "notice %", "dump 4"};
    for (int i = 0; i < 4; ++i) {
        const LogEntry& entry = log.entries[static_cast<std::size_t>(i)];
        EXPECT_EQ(entry.level, i + 1);
        EXPECT_EQ(entry.tag, "MERVO_TSR");
        EXPECT_EQ(entry.text, texts[i]);
    }
}

TEST(Log, PassesTextsOnWhole)
{
    // Lengths around that of the buffer which short messages are made in; the text looks like a format.
    for (const std::size_t length : {4U, 510U, 511U, 512U, 513U, 1024U, 100000U}) {
        const std::string text = "%s%n" + std::string(length - 4, 'x');
        const LogCapture log;
        LogError("%s", text.c_str());
        EXPECT_THAT(log.Texts(1), ElementsAre(text)) << length;
    }
}

} // namespace
} // namespace MERVO::Tessera
