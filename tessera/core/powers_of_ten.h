#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera {

struct WideProduct {
    std::uint64_t high;
    std::uint64_t low;
};

/// The whole 128-bit product. 32-bit targets have no type for it.
constexpr WideProduct MultiplyWide(std::uint64_t left, std::uint64_t right) noexcept
{
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(left) * right;
    return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
#else
    constexpr std::uint64_t LOW_HALF = 0xFFFFFFFF;
    const std::uint64_t leftLow = left & LOW_HALF;
    const std::uint64_t leftHigh = left >> 32;
    const std::uint64_t rightLow = right & LOW_HALF;
    const std::uint64_t rightHigh = right >> 32;
    const std::uint64_t lowest = leftLow * rightLow;
    const std::uint64_t first = leftHigh * rightLow + (lowest >> 32); // at most 2^64 - 2^32
    const std::uint64_t second = leftLow * rightHigh + (first & LOW_HALF);
    return {leftHigh * rightHigh + (first >> 32) + (second >> 32), (second << 32) | (lowest & LOW_HALF)};
#endif
}

/// The largest b with 2^b <= 10^decimal; right for decimals within +-600.
constexpr int FloorLog2OfPowerOfTen(int decimal) noexcept { return (decimal * 217706) >> 16; }

/// The largest d with 10^d <= 2^binary; right for binaries within +-1100.
constexpr int FloorLog10OfPowerOfTwo(int binary) noexcept { return (binary * 78913) >> 18; }

/**
 * 10^d as a significand p of 64 bits: 10^d = p * 2^(b - 63) with b = FloorLog2OfPowerOfTen(d), the highest bit of p set
 * and the bits that do not fit cut off. So p is exact for d from 0 to 27, and otherwise below the truth by less than 1.
 */
class PowersOfTen {
public:
    static constexpr int LOWEST = -345;
    static constexpr int HIGHEST = 345;
    static constexpr int HIGHEST_EXACT = 27;

    static constexpr std::uint64_t Significand(int decimal) noexcept
    {
        return SIGNIFICANDS[static_cast<std::size_t>(decimal - LOWEST)];
    }

private:
    using Table = std::array<std::uint64_t, HIGHEST - LOWEST + 1>;

    /// A significand of 128 bits: 345 steps that each lose the last three bits leave the upper half right.
    struct Precise {
        std::uint64_t high = std::uint64_t{1} << 63;
        std::uint64_t low = 0;
    };

    /// 10 is 5 / 4 times a power of two.
    static constexpr Precise TimesTen(Precise power)
    {
        const Precise quarter{power.high >> 2, (power.high << 62) | (power.low >> 2)};
        const std::uint64_t low = power.low + quarter.low;
        const std::uint64_t carry = low < power.low ? 1 : 0;
        const std::uint64_t high = power.high + quarter.high + carry;
        if (high >= power.high) {
            return {high, low};
        }
        return {(std::uint64_t{1} << 63) | (high >> 1), (high << 63) | (low >> 1)};
    }

    /// A tenth is 4 / 5 or 8 / 5 times a power of two, whichever keeps the highest bit.
    static constexpr Precise OverTen(Precise power)
    {
        const std::array<std::uint64_t, 4> digits = {
            power.high >> 32, power.high & 0xFFFFFFFF, power.low >> 32, power.low & 0xFFFFFFFF};
        std::array<std::uint64_t, 4> quotient = {};
        std::uint64_t remainder = 0;
        for (std::size_t i = 0; i < digits.size(); ++i) {
            const std::uint64_t dividend = (remainder << 32) | digits[i];
            quotient[i] = dividend / 5;
            remainder = dividend % 5;
        }
        const std::uint64_t high = (quotient[0] << 32) | quotient[1];
        const std::uint64_t low = (quotient[2] << 32) | quotient[3];
        const int shift = std::countl_zero(high);
        return {(high << shift) | (low >> (64 - shift)), low << shift};
    }

    static consteval Table MakeTable()
    {
        Table table = {};
        Precise power;
        for (int decimal = 0; decimal <= HIGHEST; ++decimal, power = TimesTen(power)) {
            table[static_cast<std::size_t>(decimal - LOWEST)] = power.high;
        }
        power = Precise{};
        for (int decimal = 0; decimal >= LOWEST; --decimal, power = OverTen(power)) {
            table[static_cast<std::size_t>(decimal - LOWEST)] = power.high;
        }
        return table;
    }

    static const Table SIGNIFICANDS;
};

inline constexpr PowersOfTen::Table PowersOfTen::SIGNIFICANDS = PowersOfTen::MakeTable();

} // namespace MERVO::Tessera
