#pragma once

/**
 * The bounds-checked memory and format calls that the library asks of its platform.
 *
 * A host that has its own builds the library with TESSERA_HOST_BOUNDED_CALLS defined as the name of their header,
 * quotes or angle brackets included; the three are then taken from there and nothing of this file is compiled.
 */
#ifdef TESSERA_HOST_BOUNDED_CALLS

#include TESSERA_HOST_BOUNDED_CALLS

#else

#include <cstddef>

namespace MERVO::Tessera {

/**
 * Copies `count` bytes into a room of `room` bytes.
 * @return 0. EINVAL for a null pointer, areas that overlap, or a room beyond half of the address space; ERANGE for a
 *         count beyond the room. Then nothing is copied and the room, if there is a sensible one, is all zero.
 */
[[nodiscard]] int memcpy_s(void* destination, std::size_t room, const void* source, std::size_t count) noexcept;

/**
 * Formats as sprintf, into a room of `room` characters.
 * @return the length of the text. -1 if the text and its terminator don't fit, for a null pointer, and for "%n": then
 *         the room, if there is one, holds an empty text.
 */
[[nodiscard]] int sprintf_s(char* destination, std::size_t room, const char* format, ...) noexcept
    __attribute__((format(printf, 3, 4)));

/**
 * Scans numbers as sscanf.
 * @return how many were converted; EOF if the text ends before the first, for a null pointer, and for "%c", "%s" and
 *         "%[", which would need to be told how much room they have.
 */
[[nodiscard]] int sscanf_s(const char* text, const char* format, ...) noexcept __attribute__((format(scanf, 2, 3)));

} // namespace MERVO::Tessera

#endif
