#include "tessera/operations/sort_keys.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/scattered.h"
#include "tessera/operations/different_elements.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera {
namespace {

template <std::unsigned_integral T>
std::uint64_t KeyOf(T number)
{
    return number;
}

template <std::signed_integral T>
std::uint64_t KeyOf(T number)
{
    return static_cast<std::uint64_t>(std::int64_t{number}) ^ (std::uint64_t{1} << 63);
}

/// The bits of a positive number are in its order already, those of a negative one in the opposite.
template <std::floating_point T>
std::uint64_t KeyOf(T number)
{
    using Bits = std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    constexpr Bits SIGN = Bits{1} << (8 * sizeof(Bits) - 1);
    const Bits bits = std::bit_cast<Bits>(number + T{0}); // -0.0 + 0.0 is 0.0
    const Bits key = (bits & SIGN) != 0 ? ~bits : bits | SIGN;
    return number == number ? key : SortKeys::NAN_KEY;
}

std::uint64_t KeyOf(const DateTime& time) { return KeyOf(static_cast<std::int64_t>(time.TimeStamp())); }

/// The elements of an array by position.
template <typename T>
class OneArray {
public:
    explicit OneArray(const Cursor& column) : head(CursorAs<CONTAINER_ARRAY, T>(column).mHead) {}
    auto PlaceOf(std::uint32_t position) const { return head + position; }

private:
    typename Iterator<CONTAINER_ARRAY, T>::Position head;
};

/// The same of two arrays, the second one behind the first.
template <typename T>
class TwoArrays {
public:
    TwoArrays(const Cursor& firstColumn, const Cursor& secondColumn)
        : first(firstColumn), second(secondColumn), firstCount(firstColumn->Length())
    {
    }
    auto PlaceOf(std::uint32_t position) const
    {
        return position < firstCount ? first.PlaceOf(position) : second.PlaceOf(position - firstCount);
    }

private:
    OneArray<T> first;
    OneArray<T> second;
    std::uint32_t firstCount;
};

/// Calls visit(i, place) for the element at each position; bits have no address to be asked for.
template <typename T, typename Elements, typename Visit>
void VisitElements(const Elements& elements, SortKeys::Positions positions, Visit visit)
{
    if constexpr (std::is_same_v<T, bool>) {
        for (std::size_t i = 0; i < positions.size(); ++i) {
            visit(i, elements.PlaceOf(positions[i]));
        }
    } else {
        VisitScattered(
            positions.size(), [elements, positions](std::size_t i) { return elements.PlaceOf(positions[i]); }, visit);
    }
}

template <typename T, typename Elements>
void MarkChangesOf(const Elements& elements, SortKeys::Positions positions, std::uint8_t* __restrict flags)
{
    if (positions.empty()) {
        return;
    }
    auto before = elements.PlaceOf(positions.front());
    VisitElements<T>(elements, positions, [&before, flags](std::size_t i, auto place) {
        flags[i] = i != 0 && AreDifferent<T>(*place, *before) ? 1 : flags[i];
        before = place;
    });
}

template <typename T, typename Elements>
class NumberKeys final : public SortKeys {
public:
    template <typename... Columns>
    explicit NumberKeys(const Columns&... columns)
        : SortKeys(std::is_floating_point_v<T> ? Kind::FLOATING_NUMBERS : Kind::NUMBERS), elements(columns...)
    {
    }

    void Read(Positions positions, std::size_t, std::uint64_t* keys) const override
    {
        VisitElements<T>(elements, positions, [keys](std::size_t i, auto place) { keys[i] = KeyAt(place); });
    }
    void ReadRange(std::uint32_t first, std::uint32_t count, std::uint64_t lowest, std::uint64_t* keys) const override
    {
        HasWideVectors() ? ReadWide(elements, first, count, lowest, keys)
                         : ReadEach(elements, first, count, lowest, keys);
    }
    std::pair<std::uint64_t, std::uint64_t> BoundsOf(std::uint32_t count) const override
    {
        return HasWideVectors() ? BoundsWide(elements, count) : BoundsOfEach(elements, count);
    }
    std::size_t SharedBytes(Positions, std::size_t) const override { return 0; }
    void MarkChanges(Positions positions, std::uint8_t* flags) const override
    {
        MarkChangesOf<T>(elements, positions, flags);
    }

private:
    using Bounds = std::pair<std::uint64_t, std::uint64_t>;

    [[gnu::always_inline]] static void ReadEach(
        const Elements& elements, std::uint32_t first, std::uint32_t count, std::uint64_t lowest, std::uint64_t* keys)
    {
        const Elements own = elements; // which no key that is written can alter
        for (std::uint32_t i = 0; i < count; ++i) {
            keys[i] = KeyAt(own.PlaceOf(first + i)) - lowest;
        }
    }
    TESSERA_WIDE_VECTORS static void ReadWide(
        const Elements& elements, std::uint32_t first, std::uint32_t count, std::uint64_t lowest, std::uint64_t* keys)
    {
        ReadEach(elements, first, count, lowest, keys);
    }

    [[gnu::always_inline]] static Bounds BoundsOfEach(const Elements& elements, std::uint32_t count)
    {
        const Elements own = elements;
        if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
            T lowest = std::numeric_limits<T>::max(); // narrow cells are compared many at a time
            T highest = std::numeric_limits<T>::min();
            for (std::uint32_t i = 0; i < count; ++i) {
                lowest = std::min(lowest, *own.PlaceOf(i));
                highest = std::max(highest, *own.PlaceOf(i));
            }
            return {KeyOf(lowest), KeyOf(highest)};
        } else {
            Bounds bounds{NAN_KEY, 0};
            for (std::uint32_t i = 0; i < count; ++i) {
                const std::uint64_t key = KeyAt(own.PlaceOf(i));
                bounds = {std::min(bounds.first, key), std::max(bounds.second, key)};
            }
            return bounds;
        }
    }
    TESSERA_WIDE_VECTORS static Bounds BoundsWide(const Elements& elements, std::uint32_t count)
    {
        return BoundsOfEach(elements, count);
    }

    template <typename Place>
    static std::uint64_t KeyAt(const Place& place)
    {
        if constexpr (std::is_same_v<T, bool>) {
            return *place ? 1 : 0;
        } else {
            return KeyOf(*place);
        }
    }

    Elements elements;
};

template <typename Word>
Word LoadHighFirst(const char* bytes)
{
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    static_assert(std::endian::native == std::endian::little);
    return sizeof word == sizeof(std::uint64_t)
        ? static_cast<Word>(__builtin_bswap64(word))
        : static_cast<Word>(__builtin_bswap32(static_cast<std::uint32_t>(word)));
}

/// Seven bytes, the first one highest and zeros where the text is shorter, above how many of them are the text's; eight
/// stand for more than seven. So a text that ends comes before one that goes on, even with a zero byte.
std::uint64_t KeyOfText(const char* bytes, std::size_t left)
{
    constexpr std::size_t WORD = sizeof(std::uint64_t);
    constexpr std::size_t HALF = sizeof(std::uint32_t);
    if (left >= WORD) {
        return (LoadHighFirst<std::uint64_t>(bytes) & ~std::uint64_t{0xFF}) | WORD;
    }
    std::uint64_t key = left;
    const auto put = [&key](std::uint64_t word, std::size_t end) { key |= word << (8 * (WORD - end)); };
    if (left >= HALF) {
        put(LoadHighFirst<std::uint32_t>(bytes), HALF);
        put(LoadHighFirst<std::uint32_t>(bytes + left - HALF), left);
    } else {
        for (std::size_t i = 0; i < left; ++i) {
            put(static_cast<unsigned char>(bytes[i]), i + 1);
        }
    }
    return key;
}

std::size_t SharedBytesOf(const std::string& left, const std::string& right, std::size_t from, std::size_t to)
{
    const char* const begin = left.data() + from;
    const std::size_t end = std::min({left.size(), right.size(), to});
    return from + static_cast<std::size_t>(std::mismatch(begin, left.data() + end, right.data() + from).first - begin);
}

template <typename Elements>
class TextKeys final : public SortKeys {
public:
    template <typename... Columns>
    explicit TextKeys(const Columns&... columns) : SortKeys(Kind::TEXTS), elements(columns...)
    {
    }

    void Read(Positions positions, std::size_t offset, std::uint64_t* keys) const override
    {
        VisitElements<std::string>(elements, positions, [keys, offset](std::size_t i, const std::string* text) {
            keys[i] = KeyOfText(text->data() + offset, text->size() - offset);
        });
    }
    void ReadRange(std::uint32_t, std::uint32_t, std::uint64_t, std::uint64_t*) const override {}
    std::pair<std::uint64_t, std::uint64_t> BoundsOf(std::uint32_t) const override { return {0, 0}; }
    std::size_t SharedBytes(Positions positions, std::size_t offset) const override
    {
        const std::string& first = *elements.PlaceOf(positions.front());
        std::size_t shared = first.size();
        for (const std::uint32_t position : positions.subspan(1)) {
            shared = SharedBytesOf(first, *elements.PlaceOf(position), offset, shared);
        }
        return shared;
    }
    void MarkChanges(Positions positions, std::uint8_t* flags) const override
    {
        MarkChangesOf<std::string>(elements, positions, flags);
    }

private:
    Elements elements;
};

template <template <typename> class Elements, typename T, typename... Columns>
std::unique_ptr<SortKeys> MakeKeys(const Columns&... columns)
{
    if constexpr (std::is_same_v<T, DataFrame>) {
        return nullptr;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return std::make_unique<TextKeys<Elements<T>>>(columns...);
    } else {
        return std::make_unique<NumberKeys<T, Elements<T>>>(columns...);
    }
}

constexpr auto MAKERS_FOR_ONE =
    ForEachValueType([](auto number) { return &MakeKeys<OneArray, ValueTypes::At<number()>, Cursor>; });
constexpr auto MAKERS_FOR_TWO =
    ForEachValueType([](auto number) { return &MakeKeys<TwoArrays, ValueTypes::At<number()>, Cursor, Cursor>; });

} // namespace

std::unique_ptr<SortKeys> KeysOf(const Cursor& column)
{
    return MAKERS_FOR_ONE[static_cast<std::size_t>(column->GetAttr().typeId)](column);
}

std::unique_ptr<SortKeys> KeysOf(const Cursor& first, const Cursor& second)
{
    return MAKERS_FOR_TWO[static_cast<std::size_t>(first->GetAttr().typeId)](first, second);
}

} // namespace MERVO::Tessera
