#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <sstream>

#include "tessera/tessera.hpp"
#include "tests/support/random.h"

namespace MERVO::Tessera {

/// FNV-1a over 64 bits: simple, and any changed bit shows.
class Digest {
public:
    void AddBytes(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i) {
            value = (value ^ bytes[i]) * 0x100000001B3ULL;
        }
    }
    template <Arithmetic T>
    void Add(T number)
    {
        AddBytes(&number, sizeof(number));
    }
    void Add(const std::string& text)
    {
        Add(static_cast<std::uint32_t>(text.size()));
        AddBytes(text.data(), text.size());
    }
    void Add(const DateTime& time) { Add(static_cast<std::int32_t>(time.TimeStamp())); }
    std::string Hex() const
    {
        std::ostringstream text;
        text << std::hex << value;
        return text.str();
    }

private:
    std::uint64_t value = 0xCBF29CE484222325ULL;
};

/// Any bit pattern, near decimals, whole numbers, and what the IEEE formats hold besides numbers.
template <std::floating_point T>
T RandomCell(Random& random)
{
    using Bits = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;
    constexpr T INFINITE = std::numeric_limits<T>::infinity();
    switch (random.Below(8)) {
    case 0:
        return std::bit_cast<T>(static_cast<Bits>(random.Next()));
    case 1:
        return std::array<T, 5>{INFINITE, -INFINITE, T{0}, -T{0}, std::numeric_limits<T>::quiet_NaN()}[random.Below(5)];
    case 2:
        return static_cast<T>(static_cast<std::int64_t>(random.Next()));
    case 3:
        return static_cast<T>(random.Below(1000));
    default:
        return static_cast<T>(static_cast<std::int32_t>(random.Next())) / T{1000};
    }
}

template <std::integral T>
T RandomCell(Random& random)
{
    return static_cast<T>(random.Below(4) == 0 ? random.Below(100) : random.Next());
}

template <std::same_as<DateTime> T>
T RandomCell(Random& random)
{
    return DateTime(static_cast<std::int32_t>(random.Next()));
}

/// Numbers in many spellings, dates, and words.
template <std::same_as<std::string> T>
T RandomCell(Random& random)
{
    // One draw per statement: compilers differ on which part of an expression comes first.
    const auto drawn = static_cast<std::int64_t>(random.Next());
    const std::int64_t number = drawn >> random.Below(60);
    const std::uint32_t first = random.Below(1000000);
    const std::uint32_t second = random.Below(1000);
    switch (random.Below(7)) {
    case 0:
        return std::to_string(number);
    case 1:
        return std::to_string(number) + "." + std::to_string(first);
    case 2:
        return "-0." + std::to_string(second) + "e" + std::to_string(first % 200);
    case 3:
        return " +" + std::to_string(second) + "rest";
    case 4:
        return std::to_string(1900 + first % 140) + "-" + std::to_string(second % 14) + "-" +
            std::to_string(first % 40) + " 7:8";
    case 5:
        return second % 2 == 0 ? "" : "word";
    default:
        return std::array<const char*, 4>{"inf", "nan", "0x1p-3", "1e-300"}[first % 4];
    }
}

template <typename T>
DataFrame RandomTable(unsigned int rows, unsigned int columns)
{
    Random random(std::uint64_t{rows} * 1000 + columns);
    std::vector<T> cells(std::size_t{rows} * columns);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = RandomCell<T>(random);
    }
    DataFrame table;
    EXPECT_EQ(table.ReadVector<T>(cells, {rows, columns}), 0);
    return table;
}

template <typename T>
void AddColumn(Digest& digest, const Cursor& cursor)
{
    Func::ForEachElement<T>(cursor, [&digest](const auto& cell) { digest.Add(static_cast<const T&>(cell)); });
}

/// Code, shape, types and cells of a table.
inline void AddTable(Digest& digest, const DataFrame& table)
{
    digest.Add(table.GetError().code);
    digest.Add(table.RowCount());
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Cursor cursor = table.GetSlicedIterator(table.GetColumn(k));
        const MERVO_TESSERA_TYPEID type = cursor->GetAttr().typeId;
        digest.Add(static_cast<std::int32_t>(type));
        [&]<std::size_t... I>(std::index_sequence<I...>)
        {
            ((type == static_cast<MERVO_TESSERA_TYPEID>(I) ? AddColumn<ValueTypes::At<I>>(digest, cursor) : void()),
                ...);
        }
        (std::make_index_sequence<TESSERA_DATAFRAME>{});
    }
}

template <typename Add>
void ForEachFlatType(Add add)
{
    [&]<std::size_t... I>(std::index_sequence<I...>) { (add(std::type_identity<ValueTypes::At<I>>{}), ...); }
    (std::make_index_sequence<TESSERA_DATAFRAME>{});
}

/// A factory of one of the library's unary functors.
template <template <ContainerID, typename...> class F, typename... Arguments>
UnaryFactory Make(Arguments... arguments)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Arguments...>{arguments...};
}

using Count = std::uint32_t;

/// Few different rows, so that ties count.
template <typename T>
DataFrame FewRows(unsigned int rows)
{
    std::vector<std::uint32_t> positions(rows);
    Random random(rows);
    std::generate(positions.begin(), positions.end(), [&] { return random.Below(rows / 3 + 1); });
    return RandomTable<T>(rows, 3).SelectRow(positions);
}

} // namespace MERVO::Tessera
