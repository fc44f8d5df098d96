#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace MERVO::Tessera {

/// Runs a call in a child process, whose limits and rights it may change. Gives what the call returned, 0 to 255; -1 if
/// something else ended the child.
template <typename Call>
int InChild(Call&& call)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(call());
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace MERVO::Tessera
