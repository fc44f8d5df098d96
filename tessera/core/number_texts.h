#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "tessera/core/cell_text.h"

namespace MERVO::Tessera {

/// The text of a number that needs no more than SHORT_NUMBER_ROOM. What stands behind its end may be copied, too.
struct NumberText {
    std::array<char, 15> characters;
    std::uint8_t size;
};
static_assert(sizeof(NumberText) == 16 && SHORT_NUMBER_ROOM <= 15);

/// Write the text of each number as WriteInteger and WriteScientific do, four at a time where the processor has wide
/// vectors.
void WriteIntegers(const std::int32_t* values, std::size_t count, NumberText* texts) noexcept;
void WriteIntegers(const std::uint32_t* values, std::size_t count, NumberText* texts) noexcept;
void WriteScientifics(const double* values, std::size_t count, NumberText* texts) noexcept;
void WriteScientifics(const float* values, std::size_t count, NumberText* texts) noexcept;

} // namespace MERVO::Tessera
