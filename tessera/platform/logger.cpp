#include "tessera/platform/logger.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <new>

namespace MERVO::Tessera {
namespace {

constexpr const char* LOG_TAG = "MERVO_TSR";
constexpr std::size_t SHORT_MESSAGE = 512;

/// Renders first and passes "%s" on, because the host's logger takes no va_list.
void Report(int level, const char* format, va_list arguments) noexcept
{
    char shortText[SHORT_MESSAGE] = ""; // stays if the format can't be rendered
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(shortText, sizeof(shortText), format, arguments);
    const bool isCut = length >= 0 && static_cast<std::size_t>(length) >= sizeof(shortText);
    const std::size_t room = isCut ? static_cast<std::size_t>(length) + 1 : 0;
    const std::unique_ptr<char[]> longText(isCut ? new (std::nothrow) char[room] : nullptr);
    if (longText != nullptr) {
        std::vsnprintf(longText.get(), room, format, again);
    }
    va_end(again);
    ORLELogStr(level, LOG_TAG, "%s", longText != nullptr ? longText.get() : shortText);
}

} // namespace

void LogError(const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    Report(1, format, arguments);
    va_end(arguments);
}

void LogWarning(const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    Report(2, format, arguments);
    va_end(arguments);
}

void LogNotice(const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    Report(3, format, arguments);
    va_end(arguments);
}

void LogDump(const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    Report(4, format, arguments);
    va_end(arguments);
}

void LogUnderName(const char* name, const char* text) noexcept { ORLELogStr(0, LOG_TAG, name, text); }

} // namespace MERVO::Tessera
