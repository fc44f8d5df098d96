#pragma once

#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera {

/// SplitMix64: the same numbers everywhere, which the distributions of the standard library don't promise.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}
    std::uint64_t Next()
    {
        std::uint64_t mixed = state += 0x9E3779B97F4A7C15ULL;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
        return mixed ^ (mixed >> 31);
    }
    std::uint32_t Below(std::size_t bound) { return static_cast<std::uint32_t>(Next() % bound); }

private:
    std::uint64_t state;
};

} // namespace MERVO::Tessera
