#pragma once

#include "tessera/platform/export.h"

/**
 * Receives every message of the library. The host's own definition takes over from the library's weak default, which
 * writes levels 1 and 2 to standard error, and further levels when the environment variable TESSERA_LOG_LEVEL holds
 * their number.
 *
 * @param level  1 error, 2 warning, 3 notice, 4 dump; 0 for what LogUnderName tells.
 * @param tag    "MERVO_TSR" for everything that comes from here.
 * @param format of printf, followed by its arguments; all of it is only valid during the call.
 */
extern "C" TESSERA_API void ORLELogStr(int level, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

namespace MERVO::Tessera {

/// Report to ORLELogStr at levels 1 to 4 under the library's tag, for the library and for functors of a host. They
/// never throw.
TESSERA_API void LogError(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));
TESSERA_API void LogWarning(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));
TESSERA_API void LogNotice(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));
TESSERA_API void LogDump(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));

/// Reports at level 0. Hosts know such a message by its format, which is a name; the text is an argument that the
/// format does not show.
void LogUnderName(const char* name, const char* text) noexcept;

} // namespace MERVO::Tessera
