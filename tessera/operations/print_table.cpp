#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/element_text.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int MOST_ROWS = 10;
constexpr unsigned int MOST_COLUMNS = 20;
constexpr std::size_t WIDEST_TEXT = 24;
constexpr const char* LEFT_OUT = "...";

/// A printed column: name, value type, and a text per printed row.
struct Block {
    std::vector<std::string> lines;
    bool isText = false;
};

/// True for a byte that continues a UTF-8 character, and takes no place of its own.
bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

std::size_t WidthOf(const std::string& text)
{
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsContinuation));
}

/// One line, no longer than a cell may be; line breaks and other controls would tear the table.
std::string FitText(std::string text)
{
    if (WidthOf(text) > WIDEST_TEXT) {
        std::size_t end = 0;
        for (std::size_t width = 0; width < WIDEST_TEXT - 3 || IsContinuation(text[end]); ++end) {
            width += IsContinuation(text[end]) ? 0 : 1;
        }
        text = text.substr(0, end) + LEFT_OUT;
    }
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x20U; }, ' ');
    return text;
}

template <typename T>
std::string CellText(const Cursor& cell)
{
    if constexpr (std::is_same_v<T, bool>) {
        return GetValueFromIterator<bool>(cell, 0) ? "true" : "false";
    } else if (cell->IsMemoryContiguous()) { // and not from a copy, which of a nested table may be large
        return ElementText(*CursorAs<CONTAINER_ARRAY, T>(cell).mHead);
    } else {
        return ElementText(*CursorAs<CONTAINER_LIST, T>(cell).mHead);
    }
}

constexpr auto CELL_TEXTS =
    ForEachValueType([](auto number) -> std::string (*)(const Cursor&) { return &CellText<ValueTypes::At<number()>>; });

std::string TextAt(const DataFrameView& table, const SeriesPtr& column, unsigned int row)
{
    const unsigned int place = table.GetRowIndex()[0] + row;
    const Cursor cell = place < column->Size() ? column->GetIterator(place, place + 1) : nullptr;
    return cell == nullptr ? std::string() : CELL_TEXTS[static_cast<std::size_t>(cell->GetAttr().typeId)](cell);
}

/// The first and last places of a count, with a gap marked by `count` itself.
std::vector<unsigned int> ChosenPlaces(unsigned int count, unsigned int most)
{
    std::vector<unsigned int> places;
    for (unsigned int i = 0; i < count; ++i) {
        if (count <= most || i < most / 2 || i >= count - most / 2) {
            places.push_back(i);
        } else if (i == most / 2) {
            places.push_back(count);
            i = count - most / 2 - 1;
        }
    }
    return places;
}

Block ColumnBlock(const DataFrameView& table, unsigned int k, const std::vector<unsigned int>& rows)
{
    Block block;
    const SeriesPtr& column = table.GetColumn(k);
    if (column == nullptr) {
        block.lines = {"", "moved away"};
        block.lines.resize(rows.size() + 2);
        return block;
    }
    const MERVO_TESSERA_TYPEID type = column->GetTypeId();
    block.isText = type == TESSERA_STRING;
    block.lines = {FitText(column->GetName()), GetTypeNameById(type)};
    for (const unsigned int row : rows) {
        block.lines.push_back(row == table.RowCount() ? LEFT_OUT : FitText(TextAt(table, column, row)));
    }
    return block;
}

Block RowNumberBlock(const DataFrameView& table, const std::vector<unsigned int>& rows)
{
    Block block;
    block.lines = {"", ""};
    for (const unsigned int row : rows) {
        block.lines.push_back(row == table.RowCount() ? LEFT_OUT : std::to_string(row));
    }
    return block;
}

void AppendPadded(std::string& line, const std::string& text, std::size_t width, bool isText)
{
    const std::string padding(width - WidthOf(text), ' ');
    line += isText ? text + padding : padding + text;
}

std::string JoinBlocks(const std::vector<Block>& blocks)
{
    std::vector<std::string> lines(blocks.front().lines.size());
    for (const Block& block : blocks) {
        std::size_t width = 0;
        for (const std::string& text : block.lines) {
            width = std::max(width, WidthOf(text));
        }
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i] += lines[i].empty() && &block == &blocks.front() ? "" : "  ";
            AppendPadded(lines[i], block.lines[i], width, block.isText);
        }
    }
    std::string joined;
    for (const std::string& line : lines) {
        joined += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return joined;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const DataFrameView& table)
{
    const Error& error = table.GetError();
    if (error.code != ERROR_NONE) {
        return stream << "[error " + std::to_string(error.code) + ": " + error.message + "]\n";
    }
    static_cast<void>(table.RefreshColumnName()); // duplicated names would puzzle; a failure only leaves them so
    const std::vector<unsigned int> rows = ChosenPlaces(table.RowCount(), MOST_ROWS);
    std::vector<Block> blocks{RowNumberBlock(table, rows)};
    for (const unsigned int k : ChosenPlaces(table.ColumnCount(), MOST_COLUMNS)) {
        const bool isGap = k == table.ColumnCount();
        blocks.push_back(
            isGap ? Block{std::vector<std::string>(rows.size() + 2, LEFT_OUT)} : ColumnBlock(table, k, rows));
    }
    const std::string text = table.ColumnCount() == 0 ? std::string() : JoinBlocks(blocks);
    return stream << text + "[" + std::to_string(table.RowCount()) + " rows x " + std::to_string(table.ColumnCount()) +
        " columns]\n";
}

} // namespace MERVO::Tessera
