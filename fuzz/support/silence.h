#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace MERVO::Tessera::Fuzz {

/// Lets what is shown on standard output go nowhere; the fuzzer itself writes to standard error.
inline bool SilenceOutput()
{
    const int nowhere = ::open("/dev/null", O_WRONLY);
    return nowhere >= 0 && ::dup2(nowhere, STDOUT_FILENO) >= 0;
}

} // namespace MERVO::Tessera::Fuzz
