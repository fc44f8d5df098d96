#pragma once

#include <cstdio>
#include <cstdlib>

namespace MERVO::Tessera::Fuzz {

/// Ends the process with a message where a law is broken; the fuzzer keeps the input that led there.
inline void Require(bool holds, const char* law)
{
    if (!holds) {
        std::fprintf(stderr, "BROKEN LAW: %s\n", law);
        std::abort();
    }
}

} // namespace MERVO::Tessera::Fuzz
