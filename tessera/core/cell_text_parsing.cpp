#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale.h>
#include <new>
#include <optional>
#include <string>

#include "tessera/core/cell_text.h"
#include "tessera/core/characters.h"
#include "tessera/core/digit_chunk.h"
#include "tessera/core/double_bits.h"
#include "tessera/core/powers_of_ten.h"

namespace MERVO::Tessera {
namespace {

/// What stands before a number.
struct Sign {
    const char* next;
    bool isNegative;
};

inline Sign ReadSign(const char* at, const char* end)
{
    while (at != end && IsBlank(*at)) {
        ++at;
    }
    if (at == end) {
        return {at, false};
    }
    const bool isNegative = *at == '-';
    const int length = int{isNegative} | int{*at == '+'}; // no branch: signs in a column come at random
    return {at + length, isNegative};
}

/// Appends a run of digits to `value`, modulo 2^64. At one cost for all lengths up to 8, which come at random among
/// integers.
/// @return one past the last digit.
inline const char* ReadDigitsByChunk(const char* at, const char* end, std::uint64_t& value)
{
    constexpr std::array<std::uint32_t, DIGIT_CHUNK + 1> POWERS = {
        1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
    while (at != end) {
        const std::size_t size = std::min(static_cast<std::size_t>(end - at), DIGIT_CHUNK);
        const std::uint64_t digits = DigitsOf(LoadChunk(at, size));
        const auto count = static_cast<std::size_t>(std::countr_zero(NoDigitsAmong(digits))) / 8;
        if (count == 0) {
            return at;
        }
        value = value * POWERS[count] + JoinDigits(digits << (8 * (DIGIT_CHUNK - count)));
        at += count;
        if (count < DIGIT_CHUNK) {
            return at;
        }
    }
    return at;
}

constexpr std::ptrdiff_t DIGITS_THAT_FIT = 19;

struct Magnitude {
    std::uint64_t value;
    bool isNegative;
    bool isTooLarge;
};

inline Magnitude ReadMagnitude(std::string_view text)
{
    const char* const end = text.data() + text.size();
    const Sign sign = ReadSign(text.data(), end);
    std::uint64_t value = 0;
    const char* const numberEnd = ReadDigitsByChunk(sign.next, end, value);
    if (numberEnd - sign.next <= DIGITS_THAT_FIT) {
        return {value, sign.isNegative, false};
    }
    value = 0;
    bool isTooLarge = false;
    for (const char* at = sign.next; at != numberEnd; ++at) {
        const bool productWraps = __builtin_mul_overflow(value, 10U, &value);
        const bool sumWraps = __builtin_add_overflow(value, DigitOf(*at), &value);
        isTooLarge = isTooLarge || productWraps || sumWraps;
    }
    return {value, sign.isNegative, isTooLarge};
}

/// mantissa * 10^exponent, as it stands in a text.
struct Decimal {
    std::uint64_t mantissa;
    std::int64_t exponent;
    bool isComplete; ///< false if the mantissa has more digits than 64 bits hold
};

/// As ReadDigitsByChunk, and faster where lengths seldom change, as those of fractions.
inline const char* ReadDigits(const char* at, const char* end, std::uint64_t& value)
{
    std::uint64_t digits = value;
    for (; at != end && IsDigit(*at); ++at) {
        digits = digits * 10 + DigitOf(*at);
    }
    value = digits;
    return at;
}

/// Reads what follows the mantissa; 0 if that is no exponent. Stops growing where nothing brings a number back.
inline std::int64_t ReadExponent(const char* at, const char* end)
{
    constexpr std::int64_t LIMIT = 1'000'000'000'000'000;
    if (at == end || LowerCase(*at) != 'e') {
        return 0;
    }
    ++at;
    const bool isNegative = at != end && *at == '-';
    if (isNegative || (at != end && *at == '+')) {
        ++at;
    }
    std::int64_t exponent = 0;
    for (; at != end && IsDigit(*at); ++at) {
        exponent = std::min(exponent * 10 + DigitOf(*at), LIMIT);
    }
    return isNegative ? -exponent : exponent;
}

/// Gives nothing for a text that begins with no decimal digits.
inline std::optional<Decimal> ReadDecimal(const char* first, const char* end)
{
    std::uint64_t mantissa = 0;
    const char* at = ReadDigits(first, end, mantissa);
    std::ptrdiff_t digits = at - first;
    std::ptrdiff_t fractionDigits = 0;
    if (at != end && *at == '.') {
        const char* const fraction = at + 1;
        at = ReadDigits(fraction, end, mantissa);
        fractionDigits = at - fraction;
        digits += fractionDigits;
    }
    if (digits == 0) {
        return std::nullopt;
    }
    if (digits > DIGITS_THAT_FIT) { // but zeros in front don't count
        digits = at - std::find_if(first, at, [](char c) { return c != '0' && c != '.'; });
    }
    return Decimal{mantissa, ReadExponent(at, end) - fractionDigits, digits <= DIGITS_THAT_FIT};
}

/// Gives nothing unless both the mantissa and the power of ten are exact: then one operation rounds once.
inline std::optional<double> ScaleExactly(const Decimal& decimal)
{
    constexpr std::array<double, 23> POWERS = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13,
        1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr std::int64_t HIGHEST = POWERS.size() - 1;
    if (decimal.mantissa > 2 * DoubleBits::HIDDEN || decimal.exponent < -HIGHEST || decimal.exponent > HIGHEST) {
        return std::nullopt;
    }
    const auto mantissa = static_cast<double>(static_cast<std::int64_t>(decimal.mantissa));
    return decimal.exponent < 0 ? mantissa / POWERS[static_cast<std::size_t>(-decimal.exponent)]
                                : mantissa * POWERS[static_cast<std::size_t>(decimal.exponent)];
}

/// Gives nothing where 64 bits of a power of ten don't settle the result, and for results that are not normal numbers.
/// The mantissa is not 0.
inline std::optional<std::uint64_t> RoundToDouble(std::uint64_t mantissa, std::int64_t exponent)
{
    if (exponent < PowersOfTen::LOWEST || exponent > PowersOfTen::HIGHEST) {
        return std::nullopt;
    }
    const int decimal = static_cast<int>(exponent);
    const int zeros = std::countl_zero(mantissa);
    const WideProduct product = MultiplyWide(mantissa << zeros, PowersOfTen::Significand(decimal));
    const int carry = static_cast<int>(product.high >> 63);
    const int surplus = 63 - DoubleBits::MANTISSA - 1 + carry;
    const std::uint64_t half = std::uint64_t{1} << (surplus - 1);
    const std::uint64_t rest = product.high & (2 * half - 1);
    std::uint64_t rounded = product.high >> surplus;
    if (decimal >= 0 && decimal <= PowersOfTen::HIGHEST_EXACT) {
        const bool isTie = rest == half && product.low == 0;
        rounded += rest >= half && !(isTie && (rounded & 1) == 0) ? 1 : 0;
    } else if (rest == half || rest == half - 1) { // the truth is up to 2 above
        return std::nullopt;
    } else {
        rounded += rest >= half ? 1 : 0;
    }
    const int biased = FloorLog2OfPowerOfTen(decimal) + 63 - zeros + carry + DoubleBits::BIAS;
    if (biased < 1 || biased >= DoubleBits::SPECIAL - 1) {
        return std::nullopt;
    }
    // The hidden bit, or a carry, goes on into the exponent.
    return (static_cast<std::uint64_t>(biased - 1) << DoubleBits::MANTISSA) + rounded;
}

bool IsOrdinary(double magnitude)
{
    return magnitude > std::numeric_limits<double>::min() && magnitude <= std::numeric_limits<double>::max();
}

double ParseTerminated(const char* text)
{
    static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    if (cLocale == nullptr) {
        throw std::bad_alloc();
    }
    return ::strtod_l(text, nullptr, cLocale);
}

/// Tells whether a text that rounds to the smallest normal number lies below it. Machines differ in whether that sets
/// errno, and the 32-bit ones say that it does.
bool IsRoundedUpToNormal(const char* text)
{
    const int rounding = std::fegetround();
    std::fesetround(FE_TOWARDZERO);
    const double truncated = ParseTerminated(text);
    std::fesetround(rounding);
    return std::abs(truncated) < std::numeric_limits<double>::min();
}

/// Takes every text: infinities, NaN with its payload, hexadecimal numbers, results that are not normal.
Parsed<double> ParseByLibrary(std::string_view text)
{
    std::array<char, 128> shortCopy;
    std::string longCopy;
    const char* terminated = shortCopy.data();
    if (text.size() < shortCopy.size()) {
        std::memcpy(shortCopy.data(), text.data(), text.size());
        shortCopy[text.size()] = '\0';
    } else {
        longCopy = text;
        terminated = longCopy.c_str();
    }
    const int savedError = errno;
    errno = 0;
    Parsed<double> parsed{ParseTerminated(terminated), 0};
    parsed.error = errno;
    if (parsed.error == 0 && std::abs(parsed.value) == std::numeric_limits<double>::min() &&
        IsRoundedUpToNormal(terminated)) {
        parsed.error = ERANGE;
    }
    errno = savedError;
    return parsed;
}

Parsed<double> ParseUnsettled(std::string_view text, const char* number, bool isNegative)
{
    double magnitude = 0.0;
    const std::from_chars_result result = std::from_chars(number, text.data() + text.size(), magnitude);
    if (result.ec == std::errc{} && IsOrdinary(magnitude)) {
        return {isNegative ? -magnitude : magnitude, 0};
    }
    return ParseByLibrary(text);
}

} // namespace

Parsed<std::int64_t> ParseSigned(std::string_view text) noexcept
{
    using Limits = std::numeric_limits<std::int64_t>;
    const Magnitude magnitude = ReadMagnitude(text);
    const std::uint64_t bound = static_cast<std::uint64_t>(Limits::max()) + (magnitude.isNegative ? 1 : 0);
    if (magnitude.isTooLarge || magnitude.value > bound) {
        return {magnitude.isNegative ? Limits::min() : Limits::max(), ERANGE};
    }
    return {static_cast<std::int64_t>(magnitude.isNegative ? 0 - magnitude.value : magnitude.value), 0};
}

Parsed<std::uint64_t> ParseUnsigned(std::string_view text) noexcept
{
    const Magnitude magnitude = ReadMagnitude(text);
    if (magnitude.isTooLarge) {
        return {std::numeric_limits<std::uint64_t>::max(), ERANGE};
    }
    return {magnitude.isNegative ? 0 - magnitude.value : magnitude.value, 0};
}

Parsed<double> ParseDouble(std::string_view text)
{
    const char* const end = text.data() + text.size();
    const Sign sign = ReadSign(text.data(), end);
    const char* const number = sign.next;
    const std::optional<Decimal> decimal = ReadDecimal(number, end);
    if (!decimal) {
        const bool isNamed = number != end && (LowerCase(*number) == 'i' || LowerCase(*number) == 'n');
        return isNamed ? ParseByLibrary(text) : Parsed<double>{0.0, 0};
    }
    const std::uint64_t signBit = sign.isNegative ? DoubleBits::SIGN : 0;
    if (decimal->isComplete && decimal->mantissa != 0) {
        if (const std::optional<double> magnitude = ScaleExactly(*decimal)) {
            return {std::bit_cast<double>(std::bit_cast<std::uint64_t>(*magnitude) | signBit), 0};
        }
        if (const std::optional<std::uint64_t> bits = RoundToDouble(decimal->mantissa, decimal->exponent)) {
            return {std::bit_cast<double>(*bits | signBit), 0};
        }
        return ParseUnsettled(text, number, sign.isNegative);
    }
    const bool isHexadecimal = *number == '0' && end - number > 1 && LowerCase(number[1]) == 'x';
    if (isHexadecimal) {
        return ParseByLibrary(text);
    }
    return decimal->isComplete ? Parsed<double>{std::bit_cast<double>(signBit), 0}
                               : ParseUnsettled(text, number, sign.isNegative);
}

} // namespace MERVO::Tessera
