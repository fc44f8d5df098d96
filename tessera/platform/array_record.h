#pragma once

/**
 * The array record in which a whole table leaves the library.
 *
 * A host that has an array layer of its own builds the library with TESSERA_HOST_ARRAY_RECORD defined as the name of
 * its header, quotes or angle brackets included; MERVO::NdData and MERVO::GetDType are then taken from there. Its
 * record must be made by `NdData{}` and by `NdData{block, shape, dtype, 1}`, with a block that is moved in as a
 * std::unique_ptr<std::byte[]>.
 */
#ifdef TESSERA_HOST_ARRAY_RECORD

#include TESSERA_HOST_ARRAY_RECORD

#else

#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

#include "tessera/tessera.h"

namespace MERVO {

/// The tag of an element type: its number in MERVO_TESSERA_TYPEID, TESSERA_BOOL to TESSERA_DOUBLE.
template <typename T>
consteval std::int32_t GetDType()
{
    using Numbers = std::tuple<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
        std::uint32_t, std::int64_t, std::uint64_t, float, double>;
    static_assert(std::tuple_size_v<Numbers> == TESSERA_DOUBLE + 1);
    constexpr std::int32_t NUMBER = []<typename... N>(std::type_identity<std::tuple<N...>>) {
        std::int32_t number = -1;
        std::int32_t next = 0;
        ((number = std::is_same_v<T, N> ? next : number, ++next), ...);
        return number;
    }(std::type_identity<Numbers>{});
    static_assert(NUMBER >= 0, "an array holds bools or numbers");
    return NUMBER;
}

/// A table of numbers in one block. A default record, with a null block, stands for no array.
struct NdData {
    std::unique_ptr<std::byte[]> data; ///< shape[0] * shape[1] elements, a bool a byte; owned by the record
    std::vector<std::uint32_t> shape;  ///< rows, columns
    std::int32_t dtype = 1;            ///< GetDType of the element type
    std::uint32_t count = 0;           ///< holders of the block: 1 in a record that holds one
};

} // namespace MERVO

#endif
