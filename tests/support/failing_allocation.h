#pragma once

#include <cstddef>

namespace MERVO::Tessera {

/**
 * While it lives, one allocation through operator new fails, in the way of its form: with std::bad_alloc, or with null.
 *
 * Only allocations of at least `fromBytes` count; the first `spared` of them are let through.
 */
class FailingAllocation {
public:
    explicit FailingAllocation(unsigned int spared, std::size_t fromBytes = 0);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();
    /// Whether the allocation that was to fail has come.
    static bool HasFailed();
};

/// Counts through all allocations of a call: `for (AllocationRounds rounds; rounds.Next();)` with a
/// FailingAllocation(rounds.Spared()) around the call. The last round is the first in which nothing failed.
class AllocationRounds {
public:
    bool Next();
    unsigned int Spared() const { return rounds - 1; }

private:
    unsigned int rounds = 0;
};

} // namespace MERVO::Tessera
