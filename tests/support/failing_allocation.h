#pragma once

#include <cstddef>

namespace MERVO::Tessera {

/// How an allocation fails: that one alone, or it and all behind it, as they do once memory has run out.
enum class Shortage { PASSING, LASTING };

/**
 * While it lives, allocations through operator new fail, in the way of their form: with std::bad_alloc, or with null.
 *
 * Only allocations of at least `fromBytes` count; the first `spared` of them are let through.
 */
class FailingAllocation {
public:
    explicit FailingAllocation(
        unsigned int spared, std::size_t fromBytes = 0, Shortage shortageKind = Shortage::PASSING);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();
    /// Whether the allocation that was to fail has come.
    static bool HasFailed();
};

/// How many blocks of operator new are in use.
std::size_t BlocksInUse();

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
