#include "tessera/operations/stable_order.h"

#include <algorithm>
#include <array>
#include <bit>

#include "tessera/core/block.h"
#include "tessera/operations/key_prefix.h"
#include "tessera/operations/merge_sort.h"
#include "tessera/operations/pair_parts.h"
#include "tessera/operations/radix_pairs.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::span<std::uint32_t>;

/// So few positions are sorted faster by insertion.
constexpr std::size_t FEW = 24;

/// Texts that differ only after so many keys are left to comparisons, which need no stack.
constexpr unsigned int DEEPEST = 64;

/// How many prefixes are made at a time, so that they stay in the cache meanwhile.
constexpr std::size_t BLOCK = 512;

/// From so many positions on, sorting part by part is faster.
constexpr std::size_t MANY = std::size_t{1} << 19;
/// From so many on, it takes no more than half as long again, and saves room that is worth it.
constexpr std::size_t SOME = std::size_t{1} << 13;

/// Room for a word per position, and a second one, or else less room in front of the first.
struct Rooms {
    std::uint64_t* first;
    std::uint64_t* second; ///< null without one
    std::size_t inFront;   ///< words in front of the first one, where that is all

    /// The rooms of `count` positions from a place on, once those before need theirs no more.
    Rooms From(std::size_t place, std::size_t count) const
    {
        if (second != nullptr) {
            return {first + place, second + place, 0};
        }
        return {first + place, inFront + place < count ? nullptr : first - inFront, inFront + place};
    }
};

/// How far a sort has come when keys have been read, and what these leave open.
struct Level {
    std::size_t offset; ///< of the keys
    unsigned int depth;
    bool isWhole;   ///< prefixes tell all keys apart
    bool anyGoesOn; ///< behind its key
};

/// One sort on its way.
class StableOrder {
public:
    StableOrder(const SortKeys& sortKeys, bool ascending, Positions allPositions, std::uint8_t* changeFlags,
        Block<std::uint64_t>& block)
        : keys(sortKeys), words(block), flip(ascending ? 0 : ~std::uint64_t{0}),
          positionBits(
              static_cast<unsigned int>(std::bit_width(*std::max_element(allPositions.begin(), allPositions.end())))),
          firstPosition(allPositions.data()), flags(changeFlags)
    {
    }

    void Order(Positions positions, std::size_t offset, Rooms rooms, unsigned int depth) const;
    /// Gives the order of Order, in place; where there may be NaN, with room for half of the positions.
    void OrderByComparison(Positions positions) const;

private:
    void OrderFew(Positions positions, std::size_t offset, Rooms rooms, unsigned int depth) const;
    void OrderByRadix(
        Positions positions, std::size_t offset, Rooms rooms, const KeyRange& range, unsigned int depth) const;
    void OrderInParts(Positions positions, Rooms rooms, unsigned int keyBits, const Level& level) const;
    void OrderPairs(Positions positions, Rooms rooms, unsigned int keyBits, const Level& level) const;
    void OrderWithNan(Positions positions) const;
    template <typename IsSame, typename HasMore>
    void OrderEqualOnes(
        Positions positions, std::size_t offset, Rooms rooms, unsigned int depth, IsSame isSame, HasMore hasMore) const;
    void OrderByRest(
        Positions positions, std::size_t offset, Rooms rooms, unsigned int depth, const std::uint64_t* read) const;

    std::size_t SkippedBytes(Positions positions) const;
    std::size_t SharedBytesOf(std::span<const std::uint64_t> read, const KeyRange& range) const;
    bool IsBefore(std::uint32_t left, std::uint32_t right) const;
    std::uint32_t PositionOf(std::uint64_t pair) const
    {
        return static_cast<std::uint32_t>(pair & ((std::uint64_t{1} << positionBits) - 1));
    }
    /// Notes that the element at a position differs from that before.
    void Mark(const std::uint32_t& position) const { flags[&position - firstPosition] = 1; }
    void ReadKeys(std::span<const std::uint32_t> positions, std::size_t offset, std::uint64_t* to) const
    {
        keys.Read(positions, offset, to);
        for (std::size_t i = 0; i < positions.size(); ++i) {
            to[i] ^= flip;
        }
    }
    bool IsNan(std::uint64_t key) const { return keys.MayHaveNan() && (key ^ flip) == SortKeys::NAN_KEY; }
    bool IsLess(std::uint64_t left, std::uint64_t right) const { return left < right && !IsNan(left) && !IsNan(right); }
    bool GoesOn(std::uint64_t key) const { return keys.GoesOn(key ^ flip); }
    bool AnyGoesOn(std::span<const std::uint64_t> read) const
    {
        return std::any_of(read.begin(), read.end(), [this](std::uint64_t key) { return GoesOn(key); });
    }

    const SortKeys& keys;
    Block<std::uint64_t>& words; ///< all rooms
    std::uint64_t flip;          ///< turns the order of keys round
    unsigned int positionBits;
    const std::uint32_t* firstPosition;
    std::uint8_t* flags; ///< null where nobody asks
};

/// How many bytes to pass over at once, since all texts have them in common. A few of them tell whether it is worth
/// looking at all.
std::size_t StableOrder::SkippedBytes(Positions positions) const
{
    std::array<std::uint32_t, FEW> samples;
    std::array<std::uint64_t, FEW> read;
    for (std::size_t i = 0; i < FEW; ++i) {
        samples[i] = positions[positions.size() / FEW * i];
    }
    ReadKeys(samples, 0, read.data());
    const bool areSame = std::equal(read.begin() + 1, read.end(), read.begin()) && GoesOn(read.front());
    return areSame ? keys.SharedBytes(positions, 0) : 0;
}

/// How many of the bytes that some keys stand for all texts have in common.
std::size_t StableOrder::SharedBytesOf(std::span<const std::uint64_t> read, const KeyRange& range) const
{
    std::uint64_t shortest = SortKeys::BYTES;
    for (const std::uint64_t key : read) {
        shortest = std::min(shortest, (key ^ flip) & 0xFF);
    }
    return std::min(static_cast<std::size_t>(std::countl_zero(range.varying)) / 8, static_cast<std::size_t>(shortest));
}

void StableOrder::Order(Positions positions, std::size_t offset, Rooms rooms, unsigned int depth) const
{
    if (depth > DEEPEST) {
        OrderByComparison(positions);
        return;
    }
    if (positions.size() <= FEW) {
        OrderFew(positions, offset, rooms, depth);
        return;
    }
    if (keys.AreOfTexts() && depth == 0) {
        offset = SkippedBytes(positions);
    }
    const std::span<const std::uint64_t> read(rooms.first, positions.size());
    ReadKeys(positions, offset, rooms.first);
    KeyRange range(read);
    if (keys.AreOfTexts() && range.varying >> 56 == 0 && range.varying != 0 && AnyGoesOn(read)) {
        offset += SharedBytesOf(read, range);
        ReadKeys(positions, offset, rooms.first);
        range = KeyRange(read);
    }
    if (IsNan(range.lowest) || IsNan(range.highest)) {
        OrderWithNan(positions);
    } else if (range.lowest == range.highest) {
        if (GoesOn(range.lowest)) {
            Order(positions, keys.SharedBytes(positions, offset), rooms, depth + 1);
        }
    } else if (!range.isSorted) {
        OrderByRadix(positions, offset, rooms, range, depth);
    } else {
        OrderByRest(positions, offset, rooms, depth, read.data());
    }
}

/// Goes through each run of positions that are the same so far, and sorts those that have more by what follows from
/// `offset` on.
template <typename IsSame, typename HasMore>
void StableOrder::OrderEqualOnes(
    Positions positions, std::size_t offset, Rooms rooms, unsigned int depth, IsSame isSame, HasMore hasMore) const
{
    for (std::size_t begin = 0, end = 0; begin < positions.size(); begin = end) {
        for (end = begin + 1; end < positions.size() && isSame(begin, end);) {
            ++end;
        }
        if (flags != nullptr && begin != 0) {
            Mark(positions[begin]);
        }
        if (end - begin > 1 && hasMore(begin)) {
            Order(positions.subspan(begin, end - begin), offset, rooms.From(begin, end - begin), depth + 1);
        }
    }
}

/// Goes on where positions are sorted by keys that have been read.
void StableOrder::OrderByRest(
    Positions positions, std::size_t offset, Rooms rooms, unsigned int depth, const std::uint64_t* read) const
{
    if (keys.AreOfTexts() || flags != nullptr) {
        OrderEqualOnes(
            positions, offset + SortKeys::BYTES, rooms, depth,
            [read](std::size_t left, std::size_t right) { return read[left] == read[right]; },
            [this, read](std::size_t place) { return GoesOn(read[place]); });
    }
}

void StableOrder::OrderFew(Positions positions, std::size_t offset, Rooms rooms, unsigned int depth) const
{
    std::array<std::uint64_t, FEW> read;
    ReadKeys(positions, offset, read.data());
    if (std::any_of(read.begin(), read.begin() + positions.size(), [this](auto key) { return IsNan(key); })) {
        OrderByComparison(positions);
        return;
    }
    for (std::size_t i = 1; i < positions.size(); ++i) {
        const std::uint64_t key = read[i];
        const std::uint32_t position = positions[i];
        std::size_t place = i;
        for (; place != 0 && key < read[place - 1]; --place) {
            read[place] = read[place - 1];
            positions[place] = positions[place - 1];
        }
        read[place] = key;
        positions[place] = position;
    }
    OrderByRest(positions, offset, rooms, depth, read.data());
}

void StableOrder::OrderByRadix(
    Positions positions, std::size_t offset, Rooms rooms, const KeyRange& range, unsigned int depth) const
{
    const std::span<const std::uint64_t> read(rooms.first, positions.size());
    const KeyPrefix prefix(range, std::min(MOST_KEY_BITS, 64 - positionBits));
    const Level level{offset, depth, prefix.IsWhole(), keys.AreOfTexts() && AnyGoesOn(read)};
    const bool isInParts = rooms.second == nullptr;
    std::uint64_t* const pairs = isInParts ? rooms.first : rooms.second;
    for (std::size_t begin = 0; begin < positions.size(); begin += BLOCK) {
        const std::size_t count = std::min(BLOCK, positions.size() - begin);
        std::array<std::uint64_t, BLOCK> block; // pairs may take the place of their keys
        prefix.Write(read.subspan(begin, count), positionBits, block.data());
        for (std::size_t i = 0; i < count; ++i) {
            pairs[begin + i] = block[i] | positions[begin + i];
        }
    }
    if (isInParts) {
        OrderInParts(positions, rooms, prefix.Bits(), level);
    } else {
        OrderPairs(positions, {rooms.second, rooms.first, 0}, prefix.Bits(), level);
    }
}

/// Sorts the pairs in the first room part by part; in a second room where too many are of one part.
void StableOrder::OrderInParts(Positions positions, Rooms rooms, unsigned int keyBits, const Level& level) const
{
    const auto count = static_cast<std::uint32_t>(positions.size());
    if (count >= MANY_PAIRS && keyBits <= WIDEST_DIGIT && !level.anyGoesOn) {
        SortPairs(rooms.first, nullptr, count, positionBits, keyBits, positions.data());
        if (flags != nullptr) {
            keys.MarkChanges(positions, flags + (positions.data() - firstPosition));
        }
        return;
    }
    PairParts parts(rooms.first, count, rooms.inFront, positionBits, keyBits);
    if (!parts.AreCut() || !parts.MakeRoom()) {
        const Block<std::uint64_t> second = MakeBlock<std::uint64_t>(count);
        second == nullptr ? OrderByComparison(positions)
                          : OrderPairs(positions, {parts.All(), second.get(), 0}, keyBits, level);
        return;
    }
    for (std::uint32_t part = 0; part < parts.Count(); ++part) {
        const Positions own = positions.first(parts.SizeOf(part));
        positions = positions.subspan(own.size());
        if (own.empty()) {
            continue;
        }
        parts.Gather(part);
        OrderPairs(own, {parts.FirstRoom(), parts.SecondRoom(), 0}, parts.RestBits(part), level);
        if (flags != nullptr && own.data() != firstPosition) {
            Mark(own.front());
        }
    }
}

/// Sorts the pairs in the first room.
void StableOrder::OrderPairs(Positions positions, Rooms rooms, unsigned int keyBits, const Level& level) const
{
    const auto count = static_cast<std::uint32_t>(positions.size());
    if (level.isWhole && !level.anyGoesOn && flags == nullptr) {
        SortPairs(rooms.first, rooms.second, count, positionBits, keyBits, positions.data());
        return;
    }
    const std::uint64_t* const sorted = SortPairs(rooms.first, rooms.second, count, positionBits, keyBits);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        positions[i] = PositionOf(sorted[i]);
    }
    const auto isSamePrefix = [&](std::size_t left, std::size_t right) {
        return (sorted[left] ^ sorted[right]) >> positionBits == 0;
    };
    if (!level.isWhole) {
        OrderEqualOnes(positions, level.offset, rooms, level.depth, isSamePrefix, [](std::size_t) { return true; });
    } else {
        OrderEqualOnes(
            positions, level.offset + SortKeys::BYTES, rooms, level.depth, isSamePrefix, [&](std::size_t place) {
                std::uint64_t key = 0;
                return level.anyGoesOn &&
                    (keys.Read(positions.subspan(place, 1), level.offset, &key), keys.GoesOn(key));
            });
    }
}

/// Sorts pairs of key and position, which makes the same comparisons as sorting the elements themselves. NaN is seen
/// before anything is sorted, so that all rooms are free.
void StableOrder::OrderWithNan(Positions positions) const
{
    struct Pair {
        std::uint64_t key;
        std::uint64_t position;
    };
    words.reset();
    words = MakeBlock<std::uint64_t>(2 * positions.size());
    if (words == nullptr) {
        OrderByComparison(positions);
        return;
    }
    std::uint64_t* const read = words.get();
    ReadKeys(positions, 0, read);
    auto* const pairs = reinterpret_cast<Pair*>(read);
    for (std::size_t i = positions.size(); i-- != 0;) {
        const std::uint64_t key = read[i]; // a pair lies over keys that have had their turn
        new (pairs + i) Pair{key, positions[i]};
    }
    const auto isLess = [this](const Pair& left, const Pair& right) { return IsLess(left.key, right.key); };
    MergeSort<Pair, decltype(isLess)>(isLess).Sort(pairs, positions.size());
    for (std::size_t i = 0; i < positions.size(); ++i) {
        positions[i] = static_cast<std::uint32_t>(pairs[i].position);
    }
}

bool StableOrder::IsBefore(std::uint32_t left, std::uint32_t right) const
{
    for (std::size_t offset = 0;; offset += SortKeys::BYTES) {
        std::uint64_t leftKey = 0;
        std::uint64_t rightKey = 0;
        ReadKeys({&left, 1}, offset, &leftKey);
        ReadKeys({&right, 1}, offset, &rightKey);
        if (leftKey != rightKey || !GoesOn(leftKey)) {
            return IsLess(leftKey, rightKey);
        }
    }
}

void StableOrder::OrderByComparison(Positions positions) const
{
    const auto isBefore = [this](std::uint32_t left, std::uint32_t right) { return IsBefore(left, right); };
    if (keys.MayHaveNan()) {
        MergeSort<std::uint32_t, decltype(isBefore)>(isBefore).Sort(positions.data(), positions.size());
    } else {
        std::stable_sort(positions.begin(), positions.end(), isBefore);
    }
    for (std::size_t i = 1; flags != nullptr && i < positions.size(); ++i) {
        if (IsBefore(positions[i - 1], positions[i])) {
            Mark(positions[i]);
        }
    }
}

} // namespace

void OrderStably(const SortKeys& keys, bool ascending, std::span<std::uint32_t> positions,
    std::span<std::uint8_t> flags, SortRoom room)
{
    const std::size_t count = positions.size();
    if (count < 2) {
        return;
    }
    const bool isInParts = count >= (room == SortRoom::SCARCE ? SOME : MANY);
    const std::size_t inFront = isInParts ? PairParts::LeastSpare(count) : 0;
    Block<std::uint64_t> block = MakeBlock<std::uint64_t>(isInParts ? inFront + count : 2 * count);
    const StableOrder order(keys, ascending, positions, flags.data(), block);
    if (block == nullptr) {
        order.OrderByComparison(positions);
    } else {
        order.Order(positions, 0, {block.get() + inFront, isInParts ? nullptr : block.get() + count, inFront}, 0);
    }
    if (room == SortRoom::SCARCE) {
        DropBlock(block.release()); // kept for later, it would take up room beside what comes next
    }
}

} // namespace MERVO::Tessera
