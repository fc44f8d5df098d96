#include "tessera/functors/cast_kernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tessera/core/cell_text.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/numeric_cast.h"
#include "tessera/core/short_numbers.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/cell_conversion.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

// ---- Copies

template <typename T>
ErrorCode CopyCells(const void* from, void* to, std::uint32_t count)
{
    const auto* source = static_cast<const T*>(from);
    auto* target = static_cast<T*>(to);
    for (std::uint32_t i = 0; i < count; ++i) {
        target[i] = source[i];
    }
    return ERROR_NONE;
}

template <std::size_t SIZE>
ErrorCode CopyBytes(const void* from, void* to, std::uint32_t count)
{
    std::memmove(to, from, SIZE * count);
    return ERROR_NONE;
}

// ---- Conversions that can't fail

template <typename T>
bool IsTrue(const T& value)
{
    if constexpr (std::is_floating_point_v<T>) {
        return !(std::abs(value) <= std::numeric_limits<T>::epsilon()); // NaN is true
    } else if constexpr (std::is_same_v<T, std::string>) {
        return !value.empty();
    } else {
        return value != 0;
    }
}

template <typename D, typename S>
D ConvertCell(const S& from)
{
    if constexpr (std::is_same_v<S, DateTime>) {
        return ConvertCell<D>(static_cast<std::int32_t>(from.TimeStamp()));
    } else if constexpr (std::is_same_v<D, DateTime>) {
        return DateTime(ConvertNumber<std::int32_t>(from));
    } else if constexpr (std::is_same_v<D, bool>) {
        return IsTrue(from);
    } else {
        return ConvertNumber<D>(from);
    }
}

template <typename S, typename D>
ErrorCode ConvertCells(const void* from, void* to, std::uint32_t count)
{
    const auto* source = static_cast<const S*>(from);
    auto* target = static_cast<D*>(to);
    for (std::uint32_t i = 0; i < count; ++i) {
        target[i] = ConvertCell<D>(source[i]);
    }
    return ERROR_NONE;
}

template <std::size_t SIZE>
using UnsignedOf = std::conditional_t<SIZE == 1, std::uint8_t,
    std::conditional_t<SIZE == 2, std::uint16_t, std::conditional_t<SIZE == 4, std::uint32_t, std::uint64_t>>>;

/// The type under which a target is written. Integers wrap, so their sign alters no bit, unless a float is truncated.
template <typename S, typename D>
using WrittenAs = std::conditional_t<std::is_integral_v<D> && !std::is_same_v<D, bool> && !std::is_floating_point_v<S>,
    UnsignedOf<sizeof(D)>, D>;

/// The type under which a source is read. The sign of an integer matters only where it is widened.
template <typename S, typename D>
consteval auto ReadAs()
{
    constexpr bool IS_CUT = std::is_same_v<D, bool> || (std::is_integral_v<D> && sizeof(D) <= sizeof(S)) ||
        (std::is_same_v<D, DateTime> && sizeof(std::int32_t) <= sizeof(S));
    if constexpr (std::is_same_v<S, bool> || (std::is_integral_v<S> && IS_CUT)) {
        return std::type_identity<UnsignedOf<sizeof(S)>>{};
    } else {
        return std::type_identity<S>{};
    }
}

/// Pairs whose results have the same bits share a kernel.
template <typename S, typename D>
consteval CastKernel ConversionOf()
{
    if constexpr (std::is_integral_v<S> && std::is_integral_v<D> && !std::is_same_v<D, bool> &&
        sizeof(S) == sizeof(D)) {
        return &CopyBytes<sizeof(D)>;
    } else {
        return &ConvertCells<typename decltype(ReadAs<S, D>())::type, WrittenAs<S, D>>;
    }
}

// ---- To text

/// Makes a text that is short whatever the number is: its digits are written to where they stay.
template <typename S>
void MakeNumberText(std::string* text, S number)
{
    static constexpr std::array<char, READ_AHEAD> ROOM = {};
    static_assert(ROOM.size() >= SHORT_NUMBER_ROOM);
    std::construct_at(text, ROOM.data(), ROOM.size());
    char* const first = text->data();
    text->erase(static_cast<std::size_t>(WriteCell(first, number) - first));
}

/// Makes a text that may be long.
template <typename S>
requires(std::is_integral_v<S> && sizeof(S) > sizeof(std::int32_t)) void MakeNumberText(std::string* text, S number)
{
    std::array<char, NUMBER_TEXT_ROOM> buffer = {};
    static_assert(NUMBER_TEXT_ROOM >= READ_AHEAD);
    const char* const end = WriteCell(buffer.data(), number);
    MakeText(text, buffer.data(), static_cast<std::size_t>(end - buffer.data()));
}

/// Makes short texts, which are written side by side. Without wide vectors that would only be one more copy.
template <typename S>
void MakeByMany(const S* numbers, std::string*& next, const std::string* end)
{
    constexpr std::size_t MANY = 64;
    std::array<NumberText, MANY> written; // filled as far as it is read
    while (next != end) {
        const std::size_t count = std::min(MANY, static_cast<std::size_t>(end - next));
        WriteNumberTexts<S>(numbers, static_cast<std::uint32_t>(count), written.data());
        for (std::size_t i = 0; i < count; ++i) {
            MakeText(next, written[i].characters.data(), written[i].size);
            ++next; // one by one, as the next text may have no room
        }
        numbers += count;
    }
}

template <typename S>
void MakeNumberTexts(const void* numbers, std::string* texts, std::uint32_t count)
{
    struct EmptyUnlessMade {
        ~EmptyUnlessMade() { std::uninitialized_default_construct(next, end); }
        std::string* next;
        std::string* end;
    };
    const auto* number = static_cast<const S*>(numbers);
    EmptyUnlessMade rest{texts, texts + count};
    if constexpr (IS_SHORT_NUMBER<S>) {
        if (HasWideVectors()) {
            MakeByMany(number, rest.next, rest.end);
            return;
        }
    }
    for (; rest.next != rest.end; ++rest.next) {
        MakeNumberText(rest.next, *number++);
    }
}

template <typename S>
ErrorCode WriteCells(const void* from, void* to, std::uint32_t count)
{
    const auto* source = static_cast<const S*>(from);
    auto* target = static_cast<std::string*>(to);
    for (std::uint32_t i = 0; i < count; ++i) {
        if constexpr (std::is_same_v<S, bool>) {
            target[i].assign(source[i] ? 1 : 0, '1'); // an empty text is false again
        } else if constexpr (std::is_same_v<S, DateTime>) {
            target[i] = source[i].ToString();
        } else {
            std::destroy_at(&target[i]);
            MakeNumberTexts<S>(&source[i], &target[i], 1);
        }
    }
    return ERROR_NONE;
}

// ---- From text

template <typename D>
ErrorCode ParseCells(const void* from, void* to, std::uint32_t count)
{
    constexpr std::uint32_t FEW = 16; // texts between looks at whether many can be parsed at once
    const auto* source = static_cast<const std::string*>(from);
    auto* target = static_cast<D*>(to);
    for (std::uint32_t i = 0; i < count;) {
        if constexpr (std::is_same_v<D, std::int32_t>) {
            i += static_cast<std::uint32_t>(ParseShortIntegers(source + i, count - i, target + i));
        } else if constexpr (std::is_same_v<D, double>) {
            i += static_cast<std::uint32_t>(ParseShortDecimals(source + i, count - i, target + i));
        }
        for (const std::uint32_t end = i + std::min(FEW, count - i); i < end; ++i) {
            if (FromText(source[i], target[i]) != ERROR_NONE) {
                return TellRefusedText<D>(source[i]);
            }
        }
    }
    return ERROR_NONE;
}

// ---- To nested tables

template <typename S>
ErrorCode WrapCells(const void* from, void* to, std::uint32_t count)
{
    const auto* source = static_cast<const S*>(from);
    auto* target = static_cast<DataFrame*>(to);
    for (std::uint32_t i = 0; i < count; ++i) {
        DataFrame table;
        const ErrorCode code = table.ReadVector(std::vector<S>(1, source[i]), {1, 1});
        if (code != ERROR_NONE) {
            return code;
        }
        target[i] = std::move(table);
    }
    return ERROR_NONE;
}

// ---- All pairs

template <typename S, typename D>
consteval CastKernel KernelOf()
{
    if constexpr (std::is_same_v<S, D> && std::is_arithmetic_v<S>) {
        return &CopyBytes<sizeof(S)>;
    } else if constexpr (std::is_same_v<S, D>) {
        return &CopyCells<S>;
    } else if constexpr (std::is_same_v<D, DataFrame>) {
        return &WrapCells<S>;
    } else if constexpr (std::is_same_v<S, DataFrame> || (std::is_same_v<S, bool> && std::is_same_v<D, DateTime>)) {
        return nullptr;
    } else if constexpr (std::is_same_v<D, std::string>) {
        return &WriteCells<S>;
    } else if constexpr (std::is_same_v<S, std::string> && !std::is_same_v<D, bool>) {
        return &ParseCells<D>;
    } else {
        return ConversionOf<S, D>();
    }
}

/// Row by source, column by target.
constexpr auto CAST_KERNELS = ForEachValueType([](auto from) {
    using S = ValueTypes::At<from()>;
    return ForEachValueType([](auto to) { return KernelOf<S, ValueTypes::At<to()>>(); });
});

constexpr auto TEXT_MAKERS = ForEachValueType([](auto from) -> TextMaker {
    using S = ValueTypes::At<from()>;
    if constexpr (Arithmetic<S> && !std::is_same_v<S, bool>) {
        return &MakeNumberTexts<S>;
    } else {
        return nullptr;
    }
});

} // namespace

CastKernel CastKernelFor(MERVO_TESSERA_TYPEID from, MERVO_TESSERA_TYPEID to)
{
    return CAST_KERNELS[static_cast<std::size_t>(from)][static_cast<std::size_t>(to)];
}

TextMaker TextMakerFor(MERVO_TESSERA_TYPEID from) { return TEXT_MAKERS[static_cast<std::size_t>(from)]; }

} // namespace MERVO::Tessera::Func
