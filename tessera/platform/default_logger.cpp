#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "tessera/platform/logger.h"

namespace {

constexpr int WARNING_LEVEL = 2;

int HighestLevelShown()
{
    const char* asked = std::getenv("TESSERA_LOG_LEVEL");
    return asked == nullptr ? WARNING_LEVEL : std::max(WARNING_LEVEL, std::atoi(asked)); // errors are never silenced
}

} // namespace

// In a file of its own, and weak, so that the definition in a host always wins.
extern "C" __attribute__((weak)) void ORLELogStr(int level, const char* tag, const char* format, ...)
{
    if (level > HighestLevelShown()) {
        return;
    }
    ::flockfile(stderr); // a line of one thread stays whole
    std::fprintf(stderr, "[%s] ", tag);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
    ::funlockfile(stderr);
}
