#pragma once

#include <csignal>

namespace MERVO::Tessera {

/**
 * While it lives, a write of this thread to a pipe that nobody reads, or beyond the size that files may have, fails
 * with errno and sends no signal. Such a signal would end the host.
 */
class QuietSignals {
public:
    QuietSignals();
    QuietSignals(const QuietSignals&) = delete;
    QuietSignals& operator=(const QuietSignals&) = delete;
    ~QuietSignals();

private:
    sigset_t mask;    ///< as it was before
    sigset_t pending; ///< so these are not ours
};

} // namespace MERVO::Tessera
