#include "tessera/core/cell_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

#include "tessera/core/double_bits.h"
#include "tessera/core/powers_of_ten.h"

namespace MERVO::Tessera {
namespace {

constexpr auto DIGIT_PAIRS = [] {
    std::array<char, 200> pairs = {};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

void WritePair(char* first, std::uint32_t below100) { std::memcpy(first, &DIGIT_PAIRS[2 * below100], 2); }

void WriteEightDigits(char* first, std::uint32_t value)
{
    const std::uint32_t upper = value / 10000;
    const std::uint32_t lower = value % 10000;
    WritePair(first, upper / 100);
    WritePair(first + 2, upper % 100);
    WritePair(first + 4, lower / 100);
    WritePair(first + 6, lower % 100);
}

int CountDigits(std::uint32_t value)
{
    constexpr std::array<std::uint32_t, 10> POWERS = {
        0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
    const int below = (std::bit_width(value) * 1233) >> 12; // that many digits, or one more
    return below + (value >= POWERS[static_cast<std::size_t>(below)] ? 1 : 0);
}

/// A magnitude as digits * 10^(exponent - 5); 1000000 digits stand for the next power.
struct SixDigits {
    std::uint32_t digits;
    int exponent;
};

/// Settles what the product can't: an integer near the half of its seventh digit, as every 7-digit integer that ends in
/// 5 is. Gives nothing for values that are no such integers.
std::optional<SixDigits> RoundInteger(double magnitude, int exponent)
{
    constexpr double BEYOND = 18446744073709551616.0;
    if (exponent < 6 || magnitude >= BEYOND || magnitude != std::floor(magnitude)) {
        return std::nullopt;
    }
    const auto whole = static_cast<std::uint64_t>(magnitude);
    std::uint64_t unit = 1;
    for (int i = 5; i < exponent; ++i) {
        unit *= 10;
    }
    const std::uint64_t quotient = whole / unit;
    const std::uint64_t rest = whole % unit;
    const bool roundsUp = rest > unit / 2 || (rest == unit / 2 && (quotient & 1) != 0);
    return SixDigits{static_cast<std::uint32_t>(quotient) + (roundsUp ? 1 : 0), exponent};
}

/// Gives nothing where 64 bits of a power of ten don't settle how to round. `magnitude` is finite and above 0.
inline std::optional<SixDigits> RoundToSixDigits(double magnitude)
{
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const int biased = static_cast<int>(bits >> DoubleBits::MANTISSA);
    const std::uint64_t mantissa = biased == 0 ? bits : (bits & (DoubleBits::HIDDEN - 1)) | DoubleBits::HIDDEN;
    const int shift = std::countl_zero(mantissa);
    const std::uint64_t significand = mantissa << shift;
    const int lowest =
        std::max(biased, 1) - DoubleBits::BIAS - DoubleBits::MANTISSA; // place of the mantissa's last bit
    const int binary = lowest + 63 - shift;                            // place of its first

    const int guess = FloorLog10OfPowerOfTwo(binary);
    // Here and below no branch is taken on what comes at random.
    const int isNextPower =
        int{FloorLog2OfPowerOfTen(guess + 1) == binary} & int{significand >= PowersOfTen::Significand(guess + 1)};
    const int exponent = guess + isNextPower;

    const int scale = 5 - exponent;
    const WideProduct product = MultiplyWide(significand, PowersOfTen::Significand(scale));
    const int fractionBits = 62 - binary - FloorLog2OfPowerOfTen(scale); // of product.high
    const std::uint64_t half = std::uint64_t{1} << (fractionBits - 1);
    const std::uint64_t fraction = product.high & (2 * half - 1);
    const auto digits = static_cast<std::uint32_t>(product.high >> fractionBits);
    std::uint32_t roundsUp{fraction >= half};
    if (scale >= 0 && scale <= PowersOfTen::HIGHEST_EXACT) {
        const std::uint32_t isTie = std::uint32_t{fraction == half} & std::uint32_t{product.low == 0};
        roundsUp &= ~isTie | digits;                       // a tie goes to the even side
    } else if (fraction == half || fraction == half - 1) { // the truth is up to 2 above
        return RoundInteger(magnitude, exponent);
    }
    return SixDigits{digits + roundsUp, exponent};
}

char* WriteExponent(char* first, int exponent)
{
    first[0] = 'e';
    first[1] = exponent < 0 ? '-' : '+';
    first += 2;
    auto magnitude = static_cast<std::uint32_t>(std::abs(exponent));
    if (magnitude >= 100) {
        *first++ = static_cast<char>('0' + magnitude / 100);
        magnitude %= 100;
    }
    WritePair(first, magnitude);
    return first + 2;
}

char* WriteSixDigits(char* first, SixDigits rounded)
{
    if (rounded.digits == 1000000) {
        rounded = {100000, rounded.exponent + 1};
    }
    const std::uint32_t lastFour = rounded.digits % 10000;
    const char* leading = &DIGIT_PAIRS[2 * (rounded.digits / 10000)];
    first[0] = leading[0];
    first[1] = '.';
    first[2] = leading[1];
    WritePair(first + 3, lastFour / 100);
    WritePair(first + 5, lastFour % 100);
    return WriteExponent(first + 7, rounded.exponent);
}

char* WriteText(char* first, std::string_view text)
{
    std::memcpy(first, text.data(), text.size());
    return first + text.size();
}

} // namespace

char* WriteInteger(char* first, std::uint32_t value) noexcept
{
    char* const end = first + CountDigits(value);
    char* at = end;
    while (value >= 100) {
        at -= 2;
        WritePair(at, value % 100);
        value /= 100;
    }
    if (value >= 10) {
        WritePair(first, value);
    } else {
        *first = static_cast<char>('0' + value);
    }
    return end;
}

char* WriteInteger(char* first, std::uint64_t value) noexcept
{
    constexpr std::uint64_t EIGHT_DIGITS = 100000000;
    if (value <= std::numeric_limits<std::uint32_t>::max()) {
        return WriteInteger(first, static_cast<std::uint32_t>(value));
    }
    char* const last = WriteInteger(first, value / EIGHT_DIGITS);
    WriteEightDigits(last, static_cast<std::uint32_t>(value % EIGHT_DIGITS));
    return last + 8;
}

char* WriteInteger(char* first, std::int32_t value) noexcept
{
    const auto bits = static_cast<std::uint32_t>(value);
    *first = '-';
    return WriteInteger(first + (value < 0 ? 1 : 0), value < 0 ? 0 - bits : bits);
}

char* WriteInteger(char* first, std::int64_t value) noexcept
{
    const auto bits = static_cast<std::uint64_t>(value);
    *first = '-';
    return WriteInteger(first + (value < 0 ? 1 : 0), value < 0 ? 0 - bits : bits);
}

char* WriteScientific(char* first, double value) noexcept
{
    const auto bits = std::bit_cast<std::uint64_t>(value);
    *first = '-';
    first += (bits & DoubleBits::SIGN) != 0 ? 1 : 0;
    const double magnitude = std::bit_cast<double>(bits & ~DoubleBits::SIGN);
    if (magnitude == 0.0) {
        return WriteText(first, "0.00000e+00");
    }
    if (!(magnitude <= std::numeric_limits<double>::max())) {
        return WriteText(first, magnitude == magnitude ? "inf" : "nan");
    }
    if (const std::optional<SixDigits> rounded = RoundToSixDigits(magnitude)) {
        return WriteSixDigits(first, *rounded);
    }
    constexpr std::ptrdiff_t ROOM = NUMBER_TEXT_ROOM - 1; // without the sign
    return std::to_chars(first, first + ROOM, magnitude, std::chars_format::scientific, 5).ptr;
}

} // namespace MERVO::Tessera
