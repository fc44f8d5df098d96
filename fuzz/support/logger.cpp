#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "tessera/platform/logger.h"

/// Hears every message, so that a wrong argument of its format shows, and says nothing unless it is asked to.
extern "C" void ORLELogStr(int level, const char* tag, const char* format, ...)
{
    static const bool isSilent = std::getenv("TESSERA_LOG_LEVEL") == nullptr;
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    if (!isSilent) {
        std::fprintf(stderr, "%d %s %s\n", level, tag, text);
    }
}
