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

#include "tessera/core/digit_chunk.h"
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

constexpr std::uint32_t EIGHT_DIGITS = 100000000;
constexpr std::uint64_t ZEROS = 0x3030303030303030;

char* WriteEightDigits(char* first, std::uint32_t value)
{
    StoreCharacters(first, SplitDigits(value) + ZEROS);
    return first + DIGIT_CHUNK;
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

/// Writes what follows the e.
char* WriteExponent(char* first, int exponent)
{
    *first++ = exponent < 0 ? '-' : '+';
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
    const std::uint64_t digits = SplitDigits(rounded.digits) >> 16;
    const std::uint64_t leading = digits & 0xFF;
    StoreCharacters(first, (leading | (digits ^ leading) << 8) + 0x6530303030302E30); // 0.00000e
    return WriteExponent(first + DIGIT_CHUNK, rounded.exponent);
}

char* WriteText(char* first, std::string_view text)
{
    std::memcpy(first, text.data(), text.size());
    return first + text.size();
}

} // namespace

char* WriteInteger(char* first, std::uint32_t value) noexcept
{
    if (value >= EIGHT_DIGITS) {
        return WriteEightDigits(WriteInteger(first, value / EIGHT_DIGITS), value % EIGHT_DIGITS);
    }
    // No branch is taken on how many digits there are, since that comes at random.
    const std::uint64_t digits = SplitDigits(value);
    const int zeros = std::countr_zero(digits | std::uint64_t{1} << 56) / 8; // in front; the last one counts
    StoreCharacters(first, (digits + ZEROS) >> (8 * zeros));
    return first + DIGIT_CHUNK - zeros;
}

char* WriteInteger(char* first, std::uint64_t value) noexcept
{
    if (value < EIGHT_DIGITS) {
        return WriteInteger(first, static_cast<std::uint32_t>(value));
    }
    return WriteEightDigits(
        WriteInteger(first, value / EIGHT_DIGITS), static_cast<std::uint32_t>(value % EIGHT_DIGITS));
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
    constexpr std::ptrdiff_t ROOM = SHORT_NUMBER_ROOM - 1; // without the sign
    return std::to_chars(first, first + ROOM, magnitude, std::chars_format::scientific, 5).ptr;
}

} // namespace MERVO::Tessera
