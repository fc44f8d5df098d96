#include "fuzz/support/inputs.h"

#include <array>
#include <bit>
#include <limits>

namespace MERVO::Tessera::Fuzz {
namespace {

constexpr std::array<const char*, 20> TEXTS = {"", " ", "0", "-1", "1", "nan", "-nan", "inf", "1e400", "1e-320",
    "0x1p3", "12abc", "true", "ffill", "bfill", "2024-03-05 07:09:02", "1901-1-1", "9223372036854775808",
    "-99999999999999999999", "\xC3\xA4\xFF"};
constexpr std::array<const char*, 8> NAMES = {"a", "b", "a_1", "col_0", "", "a_1_1", "time", "with space"};

template <std::floating_point T>
T DrawReal(Random& random, Cells kind)
{
    using Limits = std::numeric_limits<T>;
    using Bits = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;
    switch (kind) {
    case Cells::FEW:
        return std::array<T, 4>{1, 2, -T(0), Limits::quiet_NaN()}[random.Below(4)];
    case Cells::EVERYDAY:
        return static_cast<T>(random.Below(2000)) / T(8) - T(100);
    case Cells::EXTREME:
        return std::array<T, 12>{Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN(),
            Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min(), Limits::epsilon(), T(0), T(1e19),
            T(-2147483649.0)}[random.Below(12)];
    default:
        return std::bit_cast<T>(static_cast<Bits>(random.Next()));
    }
}

template <std::integral T>
T DrawInteger(Random& random, Cells kind)
{
    using Limits = std::numeric_limits<T>;
    switch (kind) {
    case Cells::FEW:
        return static_cast<T>(random.Below(3));
    case Cells::EVERYDAY:
        return static_cast<T>(random.Below(200) - 50U);
    case Cells::EXTREME:
        return std::array<T, 5>{Limits::min(), Limits::max(), T(0), static_cast<T>(-1),
            static_cast<T>(Limits::max() / 2 + 1)}[random.Below(5)];
    default:
        return static_cast<T>(random.Next());
    }
}

std::string DrawText(Random& random, Cells kind)
{
    switch (kind) {
    case Cells::FEW:
        return std::string(random.Below(3), 'x');
    case Cells::EVERYDAY:
        return std::to_string(static_cast<std::int32_t>(random.Next()) / 1000) + "." + std::to_string(random.Below(50));
    case Cells::EXTREME:
        return TEXTS[random.Below(TEXTS.size())];
    default:
        std::string text(random.Below(40), '\0');
        for (char& byte : text) {
            byte = static_cast<char>(random.Next());
        }
        return text;
    }
}

DateTime DrawMoment(Random& random, Cells kind)
{
    switch (kind) {
    case Cells::FEW:
        return DateTime(1700000000 + static_cast<long>(random.Below(4)) * 3600);
    case Cells::EVERYDAY:
        return DateTime(1700000000 + static_cast<long>(random.Below(5000)) * 60);
    default:
        return DateTime(DrawInteger<std::int32_t>(random, kind));
    }
}

DataFrame DrawTable(Random& random, Cells kind)
{
    DataFrame table;
    if (kind == Cells::EXTREME && random.Below(2) == 0) {
        table.SetError({static_cast<ErrorCode>(random.Below(2)), "drawn"});
    } else if (kind == Cells::ANY) {
        static_cast<void>(table.ReadVector(std::vector<DataFrame>(2, DrawTable(random, Cells::EVERYDAY)), {2, 1}));
    } else {
        static_cast<void>(table.ReadVector<double>({DrawReal<double>(random, kind), 5}, {1, 2}));
    }
    return table;
}

template <typename T>
void Fill(const SeriesPtr& column, Random& random, Cells kind)
{
    const Cursor cursor = column->GetIterator();
    for (std::uint32_t row = 0; cursor != nullptr && row < column->Size(); ++row) {
        SetValueToIterator<T>(cursor, DrawCell<T>(random, kind), row);
    }
}

constexpr auto FILLERS = ForEachValueType([](auto number) { return &Fill<ValueTypes::At<number()>>; });

} // namespace

template <typename T>
T DrawCell(Random& random, Cells kind)
{
    if constexpr (std::is_same_v<T, bool>) {
        return random.Below(kind == Cells::EXTREME ? 1 : 2) != 0;
    } else if constexpr (std::is_floating_point_v<T>) {
        return DrawReal<T>(random, kind);
    } else if constexpr (std::is_integral_v<T>) {
        return DrawInteger<T>(random, kind);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return DrawText(random, kind);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return DrawMoment(random, kind);
    } else {
        return DrawTable(random, kind);
    }
}

template bool DrawCell(Random& random, Cells kind);
template std::int8_t DrawCell(Random& random, Cells kind);
template std::uint8_t DrawCell(Random& random, Cells kind);
template std::int16_t DrawCell(Random& random, Cells kind);
template std::uint16_t DrawCell(Random& random, Cells kind);
template std::int32_t DrawCell(Random& random, Cells kind);
template std::uint32_t DrawCell(Random& random, Cells kind);
template std::int64_t DrawCell(Random& random, Cells kind);
template std::uint64_t DrawCell(Random& random, Cells kind);
template float DrawCell(Random& random, Cells kind);
template double DrawCell(Random& random, Cells kind);
template std::string DrawCell(Random& random, Cells kind);
template DateTime DrawCell(Random& random, Cells kind);

std::uint32_t Inputs::Index(std::uint32_t size)
{
    const std::uint32_t kind = Below(16);
    if (kind == 0) {
        return PickValueInArray<std::uint32_t>({size, size + 1, 1024, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF});
    }
    return size == 0 ? kind / 4 : Below(size);
}

std::vector<std::uint32_t> Inputs::Indices(std::uint32_t size, std::uint32_t most)
{
    std::vector<std::uint32_t> indices(Below(most + 1));
    for (std::uint32_t& index : indices) {
        index = Index(size);
    }
    return indices;
}

std::string Inputs::Text()
{
    return ConsumeBool() ? std::string(PickValueInArray(TEXTS)) : ConsumeRandomLengthString(24);
}

std::string Inputs::Name() { return PickValueInArray(NAMES); }

MERVO_TESSERA_TYPEID Inputs::Type()
{
    const std::uint32_t number = Below(32);
    return number < 30 ? static_cast<MERVO_TESSERA_TYPEID>(number % TESSERA_TYPE_END)
                       : PickValueInArray({TESSERA_INVALID, TESSERA_TYPE_END, MIX_TYPE});
}

SeriesPtr Inputs::Column(MERVO_TESSERA_TYPEID type, std::uint32_t rows, ContainerID container)
{
    SeriesPtr column = BuildSeries({rows, container, type}, Name());
    Random random = Seed();
    FILLERS[static_cast<std::size_t>(type)](column, random, CellKind());
    return column;
}

DataFrame Inputs::Table(std::uint32_t rows, bool withLists)
{
    const std::uint32_t length = Below(rows + 1);
    const std::uint32_t uniform = Below(2 * TESSERA_TYPE_END); // many operations want one type for all
    DataFrame::Columns columns(1 + Below(4));
    for (SeriesPtr& column : columns) {
        const ContainerID container = withLists && Below(16) == 0 ? CONTAINER_LIST : CONTAINER_ARRAY;
        column = Column(
            uniform < TESSERA_TYPE_END ? static_cast<MERVO_TESSERA_TYPEID>(uniform) : ValueType(), length, container);
    }
    return DataFrame(std::move(columns));
}

} // namespace MERVO::Tessera::Fuzz
