#include "tessera/platform/bounded_calls.h"

#ifndef TESSERA_HOST_BOUNDED_CALLS

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <string_view>

namespace MERVO::Tessera {
namespace {

/// Tells whether a format asks for one of `conversions`.
bool AsksFor(const char* format, std::string_view conversions)
{
    constexpr const char* FLAGS_WIDTH_AND_LENGTH = "-+ #'*.0123456789hlLjztq";
    for (const char* at = std::strchr(format, '%'); at != nullptr; at = std::strchr(at, '%')) {
        at += 1 + std::strspn(at + 1, FLAGS_WIDTH_AND_LENGTH);
        if (*at == '\0') {
            return false;
        }
        if (conversions.find(*at) != std::string_view::npos) {
            return true;
        }
        ++at;
    }
    return false;
}

bool Overlap(const void* first, const void* second, std::size_t count)
{
    const auto lower = reinterpret_cast<std::uintptr_t>(std::min(first, second, std::less<>()));
    const auto upper = reinterpret_cast<std::uintptr_t>(std::max(first, second, std::less<>()));
    return upper - lower < count;
}

} // namespace

int memcpy_s(void* destination, std::size_t room, const void* source, std::size_t count) noexcept
{
    constexpr std::size_t PLAUSIBLE_ROOM = std::numeric_limits<std::size_t>::max() / 2;
    if (destination == nullptr || room > PLAUSIBLE_ROOM) { // a negative size, most likely: nothing can be cleared
        return EINVAL;
    }
    const bool isTooLong = count > room;
    if (isTooLong || source == nullptr || Overlap(destination, source, count)) {
        std::memset(destination, 0, room);
        return isTooLong ? ERANGE : EINVAL;
    }
    std::memcpy(destination, source, count);
    return 0;
}

int sprintf_s(char* destination, std::size_t room, const char* format, ...) noexcept
{
    if (destination == nullptr || room == 0) {
        return -1;
    }
    int length = -1;
    if (format != nullptr && !AsksFor(format, "n")) {
        va_list arguments;
        va_start(arguments, format);
        length = std::vsnprintf(destination, room, format, arguments);
        va_end(arguments);
    }
    if (length < 0 || static_cast<std::size_t>(length) >= room) {
        *destination = '\0';
        return -1;
    }
    return length;
}

int sscanf_s(const char* text, const char* format, ...) noexcept
{
    if (text == nullptr || format == nullptr || AsksFor(format, "csS[C")) {
        return EOF;
    }
    va_list arguments;
    va_start(arguments, format);
    const int converted = std::vsscanf(text, format, arguments);
    va_end(arguments);
    return converted;
}

} // namespace MERVO::Tessera

#endif
