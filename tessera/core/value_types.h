#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tessera/platform/export.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

using ::MERVO_TESSERA_MERGE_JOINTYPE;
using ::MERVO_TESSERA_TYPEID;

class DataFrame;
class DateTime;

/// The element type of the error column.
struct InvalidType {};

/// Element types in the order of MERVO_TESSERA_TYPEID: a type's place in the list is its number. This list is the only
/// place that knows all of them; every table over value types is generated from it.
struct ValueTypes {
    using Tuple = std::tuple<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
        std::int64_t, std::uint64_t, float, double, std::string, DateTime, DataFrame>;
    static constexpr std::size_t COUNT = std::tuple_size_v<Tuple>;
    template <std::size_t I>
    using At = std::tuple_element_t<I, Tuple>;

    /// The number of T, or -1 for a type that no column can hold.
    template <typename T>
    static constexpr std::int32_t NumberOf = []<std::size_t... I>(std::index_sequence<I...>)
    {
        std::int32_t number = -1;
        ((std::is_same_v<T, At<I>> ? (number = static_cast<std::int32_t>(I)) : 0), ...);
        return number;
    }
    (std::make_index_sequence<COUNT>{});
};
static_assert(ValueTypes::COUNT == TESSERA_TYPE_END);

template <typename T>
inline constexpr MERVO_TESSERA_TYPEID TYPE_ID_OF = static_cast<MERVO_TESSERA_TYPEID>(ValueTypes::NumberOf<T>);

/// What Type() of a table of several value types gives; the messages call it MIX_TYPE. No column has it.
inline constexpr auto MIX_TYPE = static_cast<MERVO_TESSERA_TYPEID>(15);

/// Lets a table of 14 functions, one for each value type, be laid out at compile time:
/// make(std::integral_constant) is asked once for each number.
template <typename Make>
constexpr auto ForEachValueType(Make make)
{
    return [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::array{make(std::integral_constant<std::size_t, I>{})...};
    }
    (std::make_index_sequence<ValueTypes::COUNT>{});
}

inline constexpr std::array<const char*, ValueTypes::COUNT> VALUE_TYPE_NAMES = {"bool", "int8", "uint8", "int16",
    "uint16", "int32", "uint32", "int64", "uint64", "float", "double", "string", "datetime", "dataframe"};

template <typename T>
struct TypeTraitsImpl {
    static constexpr const char* name = VALUE_TYPE_NAMES[ValueTypes::NumberOf<T>];
};

template <>
struct TypeTraitsImpl<InvalidType> {
    static constexpr const char* name = "invalid_type";
};

/// Value types that are numbers, bool among them.
template <typename T>
concept Arithmetic = std::is_arithmetic_v<T>;

/// How a column stores its elements.
enum ContainerID : std::int32_t {
    CONTAINER_BEGIN = 0,
    CONTAINER_ARRAY = 0, ///< one block: bits for bool, elements for all others
    CONTAINER_LIST = 1,  ///< circular doubly linked nodes
    CONTAINER_END = 2
};

constexpr bool IsValueType(MERVO_TESSERA_TYPEID type) { return type >= TESSERA_TYPE_BEGIN && type < TESSERA_TYPE_END; }

constexpr bool IsContainer(ContainerID container) { return container >= CONTAINER_BEGIN && container < CONTAINER_END; }

/// The container of a table whose columns disagree, and of the error column's missing answer.
inline constexpr auto NO_CONTAINER = static_cast<ContainerID>(-1);

/// All that BuildSeries needs to make a column.
struct SeriesAttr {
    std::uint32_t length = 0;
    ContainerID containerId = CONTAINER_ARRAY;
    MERVO_TESSERA_TYPEID typeId = TESSERA_INVALID;
};

constexpr SeriesAttr WithLength(SeriesAttr attr, std::uint32_t length)
{
    attr.length = length;
    return attr;
}

constexpr SeriesAttr WithType(SeriesAttr attr, MERVO_TESSERA_TYPEID typeId)
{
    attr.typeId = typeId;
    return attr;
}

/// The name of a value type: "invalid_type" for -1, "The Type ID is out of range" for any number that is no type.
TESSERA_API std::string GetTypeNameById(MERVO_TESSERA_TYPEID id);

} // namespace MERVO::Tessera
