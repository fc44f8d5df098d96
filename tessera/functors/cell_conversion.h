#pragma once

#include <cerrno>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tessera/core/cell_text.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/error.h"
#include "tessera/core/number_texts.h"
#include "tessera/core/numeric_cast.h"
#include "tessera/core/short_number.h"
#include "tessera/functors/assign_text.h"
#include "tessera/platform/logger.h"

/// How single cells become text and text becomes cells; a cast of a column and a file of fields agree by using these.
namespace MERVO::Tessera::Func {

/// Parses a text that is not empty. False beyond the parser's range.
template <Arithmetic T>
bool ParseNumber(std::string_view text, T& cell)
{
    if constexpr (std::is_floating_point_v<T>) {
        double value = 0.0;
        if (ParseShortDecimal(text, value)) {
            cell = ConvertNumber<T>(value);
            return true;
        }
        const Parsed<double> parsed = ParseDouble(text);
        cell = parsed.error == 0 ? ConvertNumber<T>(parsed.value) : cell;
        return parsed.error == 0;
    } else {
        std::int32_t value = 0;
        if (ParseShortInteger(text, value)) {
            cell = ConvertNumber<T>(value);
            return true;
        }
        const auto parsed = [text] {
            if constexpr (std::is_signed_v<T>) {
                return ParseSigned(text);
            } else {
                return ParseUnsigned(text);
            }
        }();
        cell = parsed.error == 0 ? ConvertNumber<T>(parsed.value) : cell;
        return parsed.error == 0;
    }
}

/// Writes a number's text, without a terminator: integers in decimal, float and double as "%.5e", true as 1 and false
/// as nothing. `first` has NUMBER_TEXT_ROOM characters, or SHORT_NUMBER_ROOM for 32 bits, float and double.
/// @return one past the last character.
template <Arithmetic T>
char* WriteCell(char* first, T value) noexcept
{
    if constexpr (std::is_same_v<T, bool>) {
        *first = '1';
        return first + (value ? 1 : 0);
    } else if constexpr (std::is_floating_point_v<T>) {
        return WriteScientific(first, static_cast<double>(value));
    } else if constexpr (sizeof(T) > sizeof(std::int32_t)) {
        return WriteInteger(first, value);
    } else {
        using Word = std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>;
        return WriteInteger(first, static_cast<Word>(value));
    }
}

/// Whether a number's text fits NumberText.
template <typename T>
inline constexpr bool IS_SHORT_NUMBER = std::is_floating_point_v<T> ||
    (std::is_integral_v<T> && sizeof(T) <= sizeof(std::int32_t));

/// Writes the texts of short numbers, each as WriteCell does.
template <typename T, typename Place>
requires IS_SHORT_NUMBER<T>
void WriteNumberTexts(Place numbers, std::uint32_t count, NumberText* texts) noexcept
{
    if constexpr (std::is_floating_point_v<T>) {
        WriteScientifics(numbers, count, texts);
    } else if constexpr (std::is_same_v<T, std::int32_t> || std::is_same_v<T, std::uint32_t>) {
        WriteIntegers(numbers, count, texts);
    } else {
        for (NumberText* text = texts; text != texts + count; ++text, ++numbers) {
            char* const first = text->characters.data();
            text->size = static_cast<std::uint8_t>(WriteCell<T>(first, *numbers) - first);
        }
    }
}

/**
 * Sets a cell from a text, and says nothing to the log. An empty text is 0, NaN, false, an empty string, or the moment
 * 0. Numbers are parsed in 64 bits or as a double, and narrowed without a test.
 * @return 0, or 1: a number beyond the parser's range, or white space for a time. The cell stays then. Throws
 *         std::bad_alloc when memory is short.
 */
template <typename T>
[[nodiscard]] ErrorCode FromText(std::string_view text, T& cell)
{
    if constexpr (std::is_same_v<T, bool>) {
        cell = !text.empty();
    } else if constexpr (std::is_same_v<T, std::string>) {
        cell.assign(text.data(), text.size());
    } else if constexpr (std::is_same_v<T, DateTime>) {
        DateTime parsed;
        if (!parsed.ParseText(text)) {
            return ERROR_GENERAL;
        }
        cell = parsed;
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        DataFrame table;
        if (table.ReadVector(std::vector<std::string>(1, std::string(text)), {1, 1}) != ERROR_NONE) {
            throw std::bad_alloc();
        }
        cell = std::move(table);
    } else if (text.empty()) {
        cell = std::numeric_limits<T>::quiet_NaN(); // 0 for integers
    } else {
        return ParseNumber(text, cell) ? ERROR_NONE : ERROR_GENERAL;
    }
    return ERROR_NONE;
}

/// Tells the log of a text that FromText has refused; gives the code again.
template <typename T>
ErrorCode TellRefusedText(std::string_view text)
{
    if constexpr (std::is_same_v<T, DateTime>) {
        static_cast<void>(DateTime().StringToTime(std::string(text)));
    } else if constexpr (Arithmetic<T>) {
        LogError("typecast from string to arithmetic int has error: %d", ERANGE);
    }
    return ERROR_GENERAL;
}

} // namespace MERVO::Tessera::Func
