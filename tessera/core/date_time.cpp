#include "tessera/core/date_time.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ostream>

#include "tessera/core/characters.h"
#include "tessera/core/local_time.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

constexpr int FIRST_YEAR = 1900; // in which the calendar record counts its years from 0

const char* SkipBlanks(const char* at, const char* end)
{
    return std::find_if_not(at, end, [](char c) { return IsBlank(c); });
}

/// A number of at most `width` characters, and what must follow it: ' ' stands for any white space or none.
struct Field {
    int ::tm::*member;
    std::ptrdiff_t width;
    char separator;
};

constexpr std::array<Field, 6> FIELDS = {{{&::tm::tm_year, 4, '-'}, {&::tm::tm_mon, 2, '-'}, {&::tm::tm_mday, 2, ' '},
    {&::tm::tm_hour, 2, ':'}, {&::tm::tm_min, 2, ':'}, {&::tm::tm_sec, 2, ' '}}};

/// Reads what sscanf would by "%4d-%2d-%2d %2d:%2d:%2d", in a fraction of its time.
/// @return false if the text ends before the first number, which is where sscanf gives EOF.
bool ScanFields(const char* at, const char* end, ::tm& fields)
{
    if (SkipBlanks(at, end) == end) {
        return false;
    }
    for (const Field& field : FIELDS) {
        at = SkipBlanks(at, end);
        const char* const last = at + std::min(field.width, end - at);
        const bool isNegative = at != last && *at == '-';
        if (isNegative || (at != last && *at == '+')) {
            ++at;
        }
        int value = 0;
        const char* const firstDigit = at;
        for (; at != last && IsDigit(*at); ++at) {
            value = value * 10 + static_cast<int>(DigitOf(*at));
        }
        if (at == firstDigit) {
            return true;
        }
        fields.*field.member = isNegative ? -value : value;
        if (field.separator != ' ') {
            if (at == end || *at != field.separator) {
                return true;
            }
            ++at;
        }
    }
    return true;
}

/// Writes what a clock of the process's time zone shows.
void ReadClock(std::int32_t stamp, ::tm& fields)
{
    const int savedError = errno;
    errno = 0;
    const std::time_t seconds = stamp;
    if (::localtime_r(&seconds, &fields) == nullptr || errno != 0) {
        LogError("typecast from string to arithmetic int error: %d", errno);
    }
    errno = savedError;
}

template <std::size_t WIDTH>
char* WriteDigits(char* first, int value)
{
    auto rest = static_cast<unsigned int>(value);
    for (std::size_t i = WIDTH; i-- > 0; rest /= 10) {
        first[i] = static_cast<char>('0' + rest % 10);
    }
    return first + WIDTH;
}

} // namespace

void DateTime::Parse2Time() const { ReadClock(stamp, calendar); }

const ::tm* DateTime::GetTime() const
{
    Parse2Time();
    return &calendar;
}

std::string DateTime::ToString() const
{
    ::tm fields = {}; // not the cache: threads that only read a column may write its cells as text at once
    ReadClock(stamp, fields);
    std::string text = "0000-00-00 00:00:00"; // 32 bits reach from 1901 to 2038
    char* at = WriteDigits<4>(text.data(), fields.tm_year + FIRST_YEAR);
    at = WriteDigits<2>(at + 1, fields.tm_mon + 1);
    at = WriteDigits<2>(at + 1, fields.tm_mday);
    at = WriteDigits<2>(at + 1, fields.tm_hour);
    at = WriteDigits<2>(at + 1, fields.tm_min);
    WriteDigits<2>(at + 1, fields.tm_sec);
    return text;
}

ErrorCode DateTime::StringToTime(const std::string& text)
{
    if (!ParseText(text)) {
        LogWarning("Failed to cast time %s", text.c_str());
        return ERROR_BAD_KIND;
    }
    return ERROR_NONE;
}

bool DateTime::ParseText(std::string_view text)
{
    if (text.empty()) {
        Parse2Time();
        return true;
    }
    ::tm fields = {};
    if (!ScanFields(text.data(), text.data() + std::min(text.find('\0'), text.size()), fields)) {
        return false;
    }
    fields.tm_year -= FIRST_YEAR;
    fields.tm_mon -= 1;
    stamp = StampOfLocalTime(fields);
    return true;
}

std::ostream& operator<<(std::ostream& stream, const DateTime& value) { return stream << value.ToString(); }

} // namespace MERVO::Tessera
