#pragma once

#include <cstddef>

namespace MERVO::Tessera::Fuzz {

/// While it lives, operator new gives so many bytes more and then fails in the way of its form, as a small device would
/// rather than the sanitizer, which ends the process.
class MemoryBudget {
public:
    explicit MemoryBudget(std::size_t bytes = std::size_t{64} << 20);
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;
    ~MemoryBudget();

    /// Whether something was refused under the last budget: of two equal operations one may have had less than the
    /// other.
    static bool HasRunOut();
};

/// Fills what operator new gives from now on with a byte, so that two runs differ if they read what nobody wrote.
void FillFreshMemory(unsigned char byte);

} // namespace MERVO::Tessera::Fuzz
