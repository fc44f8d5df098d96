#include "tessera/operations/radix_pairs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace MERVO::Tessera {
namespace {

constexpr unsigned int PASSES_IN_WIDE = (MOST_KEY_BITS + WIDEST_DIGIT - 1) / WIDEST_DIGIT;
constexpr unsigned int PASSES_IN_NARROW = (MOST_KEY_BITS + NARROW_DIGIT - 1) / NARROW_DIGIT;
constexpr std::size_t COUNTERS = std::size_t{PASSES_IN_WIDE} << WIDEST_DIGIT;
static_assert(std::size_t{PASSES_IN_NARROW} << NARROW_DIGIT <= COUNTERS);

/// How keys are cut into digits, all of one width.
struct Digits {
    Digits(std::uint32_t pairCount, unsigned int positionBits, unsigned int keyBits) : lowest(positionBits)
    {
        const unsigned int widest = pairCount < MANY_PAIRS ? NARROW_DIGIT : WIDEST_DIGIT;
        passes = (keyBits + widest - 1) / widest;
        width = passes == 0 ? 0 : (keyBits + passes - 1) / passes;
        values = 1U << width;
    }
    std::uint32_t Of(std::uint64_t pair, unsigned int pass) const
    {
        return static_cast<std::uint32_t>(pair >> (lowest + pass * width)) & (values - 1);
    }

    unsigned int lowest;
    unsigned int passes;
    unsigned int width;
    std::uint32_t values;
};

/// How often each digit has each value, in each pass.
class DigitCounters {
public:
    DigitCounters(const std::uint64_t* pairs, std::uint32_t pairCount, const Digits& keyDigits)
        : digits(keyDigits), count(pairCount)
    {
        std::fill_n(counters.begin(), std::size_t{digits.passes} * digits.values, 0U);
        constexpr std::array<void (DigitCounters::*)(const std::uint64_t*), PASSES_IN_NARROW + 1> COUNTS{
            &DigitCounters::Count<0>, &DigitCounters::Count<1>, &DigitCounters::Count<2>, &DigitCounters::Count<3>,
            &DigitCounters::Count<4>};
        (this->*COUNTS[digits.passes])(pairs);
    }

    /// The last pass that moves anything, and so has to be done; -1 without one.
    int LastPass(std::uint64_t anyPair) const
    {
        auto pass = static_cast<int>(digits.passes) - 1;
        while (pass >= 0 && IsShared(anyPair, static_cast<unsigned int>(pass))) {
            --pass;
        }
        return pass;
    }
    bool IsShared(std::uint64_t anyPair, unsigned int pass) const
    {
        return counters[std::size_t{pass} * digits.values + digits.Of(anyPair, pass)] == count;
    }

    /// Calls put(place, pair) for each pair, with its place in the order of a digit.
    template <typename Put>
    void Distribute(const std::uint64_t* pairs, unsigned int pass, Put&& put)
    {
        std::uint32_t* const places = counters.data() + std::size_t{pass} * digits.values;
        std::uint32_t before = 0;
        for (std::uint32_t value = 0; value < digits.values; ++value) {
            before += std::exchange(places[value], before);
        }
        const Digits cut = digits; // a copy, which what is put can't touch
        for (std::uint32_t i = 0; i < count; ++i) {
            put(places[cut.Of(pairs[i], pass)]++, pairs[i]);
        }
    }

private:
    template <unsigned int PASSES>
    void Count(const std::uint64_t* pairs)
    {
        const Digits cut = digits; // a copy, which no counter can touch
        for (std::uint32_t i = 0; i < count; ++i) {
            for (unsigned int pass = 0; pass < PASSES; ++pass) {
                ++counters[pass * cut.values + cut.Of(pairs[i], pass)];
            }
        }
    }

    const Digits& digits;
    std::uint32_t count;
    std::array<std::uint32_t, COUNTERS> counters;
};

/// All passes but the last; what they leave is in `pairs`.
void RunPasses(std::uint64_t*& pairs, std::uint64_t*& spare, DigitCounters& counters, int last)
{
    for (int pass = 0; pass < last; ++pass) {
        if (!counters.IsShared(pairs[0], static_cast<unsigned int>(pass))) {
            counters.Distribute(pairs, static_cast<unsigned int>(pass),
                [spare](std::uint32_t place, std::uint64_t pair) { spare[place] = pair; });
            std::swap(pairs, spare);
        }
    }
}

} // namespace

std::uint64_t* SortPairs(
    std::uint64_t* pairs, std::uint64_t* spare, std::uint32_t count, unsigned int positionBits, unsigned int keyBits)
{
    const Digits digits(count, positionBits, keyBits);
    DigitCounters counters(pairs, count, digits);
    RunPasses(pairs, spare, counters, counters.LastPass(pairs[0]) + 1);
    return pairs;
}

void SortPairs(std::uint64_t* pairs, std::uint64_t* spare, std::uint32_t count, unsigned int positionBits,
    unsigned int keyBits, std::uint32_t* positions)
{
    const std::uint64_t mask = (std::uint64_t{1} << positionBits) - 1;
    const Digits digits(count, positionBits, keyBits);
    DigitCounters counters(pairs, count, digits);
    const int last = counters.LastPass(pairs[0]);
    RunPasses(pairs, spare, counters, last);
    const auto put = [positions, mask](std::uint32_t place, std::uint64_t pair) {
        positions[place] = static_cast<std::uint32_t>(pair & mask);
    };
    if (last >= 0) {
        counters.Distribute(pairs, static_cast<unsigned int>(last), put);
        return;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        put(i, pairs[i]);
    }
}

} // namespace MERVO::Tessera
