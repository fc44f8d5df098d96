#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace MERVO::Tessera {

/// Sets the time zone of the process while the object lives. Rules in the form "EST5EDT,M3.2.0,M11.1.0" or "<+08>-8"
/// need no installed zone files.
class TimeZone {
public:
    explicit TimeZone(const std::string& rules)
    {
        if (const char* value = std::getenv("TZ")) {
            before = value;
        }
        ::setenv("TZ", rules.c_str(), 1);
        ::tzset();
    }
    ~TimeZone()
    {
        if (before) {
            ::setenv("TZ", before->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> before;
};

} // namespace MERVO::Tessera
