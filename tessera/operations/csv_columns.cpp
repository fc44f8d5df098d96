#include "tessera/operations/csv_columns.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "tessera/core/memory_room.h"
#include "tessera/core/short_number.h"
#include "tessera/core/short_numbers.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/cell_conversion.h"

namespace MERVO::Tessera {
namespace {

/// Fills cells from row `first` on; returns how many, less than `count` if a text was refused.
using FillCells = std::size_t (*)(
    const Cursor& cursor, std::size_t first, const FieldColumn& fields, std::size_t count);
using TellRefused = ErrorCode (*)(std::string_view text);

/// As ParseShortInteger, in one load, since the bytes behind a field can be read.
template <typename T>
bool FillShortInteger(std::string_view text, T& cell)
{
    static_assert(SHORT_TEXT < FieldColumn::FIELD_GUARD);
    const std::size_t sign = std::is_signed_v<T> && *text.data() == '-' ? 1 : 0;
    const std::size_t size = text.size() - sign;
    if (size - 1 >= SHORT_TEXT) {
        return false;
    }
    std::uint32_t magnitude = 0;
    const bool isNumber = JoinShortText(LoadCharacters<SHORT_TEXT>(text.data() + sign), size, magnitude);
    const auto value = static_cast<std::int32_t>(magnitude);
    cell = static_cast<T>(sign == 0 ? value : -value);
    return isNumber;
}

template <typename T>
bool FillCell(std::string_view text, T& cell)
{
    if constexpr (std::is_integral_v<T>) {
        if (FillShortInteger(text, cell)) {
            return true;
        }
    } else if constexpr (std::is_same_v<T, std::string>) {
        static_assert(Func::READ_AHEAD <= FieldColumn::FIELD_GUARD);
        Func::AssignText(cell, text.data(), text.size());
        return true;
    }
    return Func::FromText(text, cell) == ERROR_NONE;
}

/// Parses as many fields at once as can be, from a row on; returns how many.
template <typename T>
std::size_t FillMany(const FieldColumn& fields, std::size_t row, std::size_t count, T* cells)
{
    static_assert(SHORT_NUMBER_GUARD <= FieldColumn::FIELD_GUARD);
    std::array<std::string_view, 32> texts;
    const std::size_t taken = std::min(texts.size(), count);
    for (std::size_t i = 0; i < taken; ++i) {
        texts[i] = fields[row + i];
    }
    if constexpr (std::is_same_v<T, double>) {
        return ParseShortDecimals(texts.data(), taken, cells);
    } else {
        return ParseShortIntegers(texts.data(), taken, cells);
    }
}

template <typename T>
inline constexpr bool IS_FILLED_BY_MANY = std::is_same_v<T, double> || std::is_same_v<T, std::int32_t>;

template <typename T>
std::size_t FillCellsOf(const Cursor& cursor, std::size_t first, const FieldColumn& fields, std::size_t count)
{
    const auto place = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead + static_cast<std::ptrdiff_t>(first);
    const FieldColumn column = fields; // in registers
    std::size_t single = 1;            // cells between trials to fill many, twice as many after each that failed
    for (std::size_t row = 0; row < count;) {
        if constexpr (IS_FILLED_BY_MANY<T>) {
            const std::size_t filled = FillMany(column, row, count - row, &place[row]);
            single = filled == 0 ? 2 * single : 1;
            row += filled;
        } else {
            single = count;
        }
        for (const std::size_t end = row + std::min(single, count - row); row < end; ++row) {
            if constexpr (std::is_same_v<T, bool>) {
                *(place + static_cast<std::ptrdiff_t>(row)) = !column[row].empty();
            } else if (!FillCell(column[row], place[row])) {
                return row;
            }
        }
    }
    return count;
}

struct Conversion {
    FillCells fill;
    TellRefused tell;
};

constexpr auto CONVERSIONS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    return Conversion{&FillCellsOf<T>, &Func::TellRefusedText<T>};
});

ErrorCode RefuseForMemory(std::size_t rows, std::size_t columns)
{
    LogError("Out of memory for columns of a csv, row size %zu, col size %zu", rows, columns);
    return ERROR_OUT_OF_MEMORY;
}

} // namespace

ErrorCode CsvColumns::Build(const std::vector<std::string_view>& names, const DataFrame::Types& types, std::size_t rows)
{
    // Fields may be empty, and a column's own memory is far more than its name in the file.
    constexpr std::uint64_t COLUMN_BYTES = 256;
    std::uint64_t rowBytes = 0;
    for (const MERVO_TESSERA_TYPEID type : types) {
        rowBytes += CellSizeOf(type);
    }
    if (rows > std::numeric_limits<std::uint32_t>::max() || !HasRoomFor(rows, rowBytes) ||
        !HasRoomFor(types.size(), COLUMN_BYTES)) {
        return RefuseForMemory(rows, types.size());
    }
    for (std::size_t c = 0; c < types.size(); ++c) {
        std::string name = names.empty() ? "col_" + std::to_string(c) : std::string(names[c]);
        targets.push_back({nullptr, nullptr, types[c]});
        if (!IsValueType(types[c])) {
            return ERROR_NONE; // nothing can be cast to it, which is told when its turn comes
        }
        Target& target = targets.back();
        target.series = BuildSeries({static_cast<std::uint32_t>(rows), CONTAINER_ARRAY, types[c]}, std::move(name));
        if (target.series->GetTypeId() != TESSERA_INVALID) {
            target.cursor = target.series->GetIterator();
        }
        if (target.cursor == nullptr) {
            return RefuseForMemory(rows, types.size());
        }
        ++openCount;
    }
    return ERROR_NONE;
}

void CsvColumns::Fill(std::size_t column, std::size_t first, const FieldColumn& fields, std::size_t count)
{
    const Target& target = targets[column];
    const auto type = static_cast<std::size_t>(target.type);
    const std::size_t filled = CONVERSIONS[type].fill(target.cursor, first, fields, count);
    if (filled != count) {
        refused = fields[filled];
        openCount = column;
    }
}

Error CsvColumns::TellRefusal() const
{
    const MERVO_TESSERA_TYPEID type = targets[openCount].type;
    const std::string message = "Failed to cast string to " + GetTypeNameById(type);
    if (IsValueType(type)) {
        return {CONVERSIONS[static_cast<std::size_t>(type)].tell(refused), message};
    }
    static_cast<void>(BuildSeries({0, CONTAINER_ARRAY, type}, "")); // logs why there is no such column
    return {ERROR_BAD_VALUE, message};
}

ErrorCode CsvColumns::MoveTo(DataFrame& table)
{
    DataFrame::Columns columns;
    columns.reserve(openCount);
    for (std::size_t c = 0; c < openCount; ++c) {
        columns.push_back(std::move(targets[c].series));
    }
    DataFrame loaded(std::move(columns));
    if (openCount < targets.size()) {
        loaded.SetError(TellRefusal());
    }
    const ErrorCode code = loaded.RefreshView();
    if (code != ERROR_OUT_OF_MEMORY) {
        table = std::move(loaded);
    }
    return code;
}

} // namespace MERVO::Tessera
