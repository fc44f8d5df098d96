#include "tessera/operations/quiet_signals.h"

#include <cerrno>

#include "tessera/operations/file_descriptor.h"

namespace MERVO::Tessera {
namespace {

constexpr int SIGNALS[] = {SIGPIPE, SIGXFSZ};

} // namespace

QuietSignals::QuietSignals()
{
    sigset_t quiet;
    ::sigemptyset(&quiet);
    for (const int signal : SIGNALS) {
        ::sigaddset(&quiet, signal);
    }
    ::sigemptyset(&pending);
    ::sigpending(&pending);
    ::pthread_sigmask(SIG_BLOCK, &quiet, &mask);
}

QuietSignals::~QuietSignals()
{
    const int savedError = errno;
    constexpr timespec atOnce{};
    for (const int signal : SIGNALS) {
        if (::sigismember(&pending, signal) == 0) {
            sigset_t own;
            ::sigemptyset(&own);
            ::sigaddset(&own, signal);
            Uninterrupted([&] { return ::sigtimedwait(&own, nullptr, &atOnce); });
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    errno = savedError;
}

} // namespace MERVO::Tessera
