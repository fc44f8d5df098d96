#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "tessera/tessera.hpp"
#include "tests/support/random.h"

namespace MERVO::Tessera::Fuzz {

/// How the cells of a column are drawn: few values, so that many are equal; numbers of everyday; ends and exceptions of
/// the type; any bits.
enum class Cells : std::uint8_t { FEW, EVERYDAY, EXTREME, ANY, kMaxValue = ANY };

/// Draws a cell. There is one for each value type.
template <typename T>
T DrawCell(Random& random, Cells kind);

/// Cuts the bytes of the fuzzer into arguments. A few bytes make a whole column, as a seed for its cells.
class Inputs : public FuzzedDataProvider {
public:
    using FuzzedDataProvider::FuzzedDataProvider;

    std::uint32_t Below(std::uint32_t bound) { return ConsumeIntegralInRange<std::uint32_t>(0, bound - 1); }
    /// A place in a list of `size`, more often than not; else one near its end, or nonsense.
    std::uint32_t Index(std::uint32_t size);
    std::vector<std::uint32_t> Indices(std::uint32_t size, std::uint32_t most);
    std::string Text();
    std::string Name();
    /// One of the value types, or seldom a number that is none.
    MERVO_TESSERA_TYPEID Type();
    MERVO_TESSERA_TYPEID ValueType() { return static_cast<MERVO_TESSERA_TYPEID>(Below(TESSERA_TYPE_END)); }
    Random Seed() { return Random(ConsumeIntegral<std::uint16_t>()); }
    Cells CellKind() { return ConsumeEnum<Cells>(); }
    template <typename T>
    T Cell()
    {
        Random random = Seed();
        return DrawCell<T>(random, CellKind());
    }

    SeriesPtr Column(MERVO_TESSERA_TYPEID type, std::uint32_t rows, ContainerID container);
    /// A table of up to `rows` rows; one of its columns may be a list.
    DataFrame Table(std::uint32_t rows, bool withLists);
};

} // namespace MERVO::Tessera::Fuzz
