#include "tessera/numeric/power.h"

#include <bit>
#include <cmath>

namespace MERVO::Tessera::Func {
namespace {

/// A number as the sum of two doubles, the second smaller than half a unit in the last place of the first.
struct Pair {
    double high;
    double low;
};

/// The halves of a double, each short enough for products of two halves to be exact (Dekker 1971, Veltkamp).
Pair Split(double value)
{
    constexpr double SPLITTER = 134217729.0; // 2^27 + 1
    const double scaled = SPLITTER * value;
    const double high = scaled - (scaled - value);
    return {high, value - high};
}

/// The exact product, unless it leaves the range of double.
Pair Product(double left, double right)
{
    const Pair a = Split(left);
    const Pair b = Split(right);
    const double high = left * right;
    return {high, ((a.high * b.high - high) + a.high * b.low + a.low * b.high) + a.low * b.low};
}

/// The sum of two numbers of which the second is smaller.
Pair Normalized(double high, double low)
{
    const double sum = high + low;
    return {sum, low - (sum - high)};
}

Pair Product(const Pair& left, const Pair& right)
{
    const Pair product = Product(left.high, right.high);
    return Normalized(product.high, product.low + (left.high * right.low + left.low * right.high));
}

/// True where no step to a power can have lost bits at the ends of the range of double. False for NaN.
bool IsTame(double power)
{
    constexpr double LARGEST = 0x1p900;
    constexpr double SMALLEST = 0x1p-900;
    const double magnitude = std::abs(power);
    return magnitude < LARGEST && magnitude > SMALLEST;
}

} // namespace

double WholePower(double base, std::uint32_t exponent)
{
    if (exponent == 0) {
        return 1.0; // even of NaN
    }
    Pair power{base, 0.0};
    for (int bit = static_cast<int>(std::bit_width(exponent)) - 2; bit >= 0; --bit) {
        power = Product(power, power);
        if ((exponent >> bit & 1U) != 0) {
            power = Product(power, {base, 0.0});
        }
    }
    // All powers on the way lie between 1 and the last one.
    return IsTame(power.high) ? power.high : std::pow(base, static_cast<double>(exponent));
}

double PowerOneAndAHalf(double base)
{
    const double root = std::sqrt(base);
    const Pair square = Product(root, root);
    const double rest = ((base - square.high) - square.low) / (root + root);
    const Pair power = Product(Normalized(root, rest), {base, 0.0});
    return IsTame(power.high) && IsTame(base) ? power.high : std::pow(base, 1.5);
}

} // namespace MERVO::Tessera::Func
