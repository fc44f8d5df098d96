#include "tessera/operations/chosen_rows.h"

#include <algorithm>
#include <array>
#include <deque>
#include <string>
#include <utility>

#include "tessera/core/bit_scan.h"
#include "tessera/core/block.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/gathered_column.h"
#include "tessera/functors/table_combination.h"
#include "tessera/operations/marked_rows.h"
#include "tessera/platform/streaming_store.h"

namespace MERVO::Tessera {
namespace {

using Rows = std::span<const std::uint32_t>;

std::uint64_t RowSizeOf(const DataFrameRef& table)
{
    std::uint64_t bytes = 0;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        bytes += CellSizeOf(table.GetColumn(k)->GetTypeId());
    }
    return bytes;
}

/// The columns of a new table, all of which get the same rows.
class ChosenRows {
public:
    /// Takes a table that IsServed.
    ChosenRows(const DataFrameRef& table, std::uint32_t count)
    {
        const bool streams = count >= STREAMED_FROM / RowSizeOf(table);
        for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
            const SeriesPtr& column = table.GetColumn(k);
            columns.emplace_back(table.GetSlicedIterator(column), count, column->GetName(), streams);
        }
    }
    bool HasRoom() const
    {
        return std::all_of(
            columns.begin(), columns.end(), [](const Func::GatheredColumn& column) { return column.HasRoom(); });
    }
    void Append(Rows rows)
    {
        for (Func::GatheredColumn& column : columns) {
            column.Append(rows);
        }
    }
    /// Makes a list of the rows where a column needs one; the buffer has room for all of them, chosen or not.
    void Append(const Func::RowChoice& rows, std::span<std::uint32_t> buffer)
    {
        Rows positions;
        for (Func::GatheredColumn& column : columns) {
            if (column.IsCompressible()) {
                column.AppendChosen(rows);
                continue;
            }
            positions = positions.empty() ? rows.Positions(buffer) : positions;
            column.Append(positions);
        }
    }
    DataFrame Finish()
    {
        DataFrame::Columns finished;
        for (Func::GatheredColumn& column : columns) {
            finished.push_back(column.Finish());
        }
        return DataFrame(std::move(finished));
    }

private:
    std::deque<Func::GatheredColumn> columns;
};

bool IsServed(const DataFrameRef& table)
{
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Cursor cells = table.GetSlicedIterator(table.GetColumn(k));
        if (cells == nullptr || !cells->IsMemoryContiguous()) {
            return false;
        }
    }
    return table.ColumnCount() != 0;
}

DataFrame WithoutMemory(const char* functor)
{
    return Func::FailedTable(
        ERROR_OUT_OF_MEMORY, std::string("out of memory on building series for functor: ") + functor);
}

} // namespace

std::optional<DataFrame> RowsAt(const DataFrameRef& table, Rows rows)
{
    if (rows.empty() || !IsServed(table) || !Func::AreBelow(rows, table.RowCount())) {
        return std::nullopt;
    }
    if (!HasRoomFor(rows.size(), RowSizeOf(table))) { // rows may be given again and again
        return WithoutMemory("SelectRow");
    }
    ChosenRows chosen(table, static_cast<std::uint32_t>(rows.size()));
    if (!chosen.HasRoom()) {
        return WithoutMemory("SelectRow");
    }
    chosen.Append(rows);
    return chosen.Finish();
}

std::optional<DataFrame> RowsMarked(const DataFrameRef& table, const Cursor& marks, bool wanted)
{
    using BitWords::WORD_BITS;
    constexpr std::uint32_t LONGEST = 65536; // long enough for the processor to see where each column goes on
    const auto& all = CursorAs<CONTAINER_ARRAY, bool>(marks);
    const std::uint32_t length = marks->Length();
    const std::uint32_t set = CountBits(all.mHead, all.mTail);
    const std::uint32_t count = wanted ? set : length - set;
    if (count == 0 || !IsServed(table)) {
        return std::nullopt;
    }
    const std::uint32_t block = std::min(LONGEST, (length - 1) / WORD_BITS * WORD_BITS + WORD_BITS);
    const Block<std::uint32_t> room = MakeBlock<std::uint32_t>(block);
    std::array<BitWords::Word, LONGEST / WORD_BITS> bits;
    ChosenRows chosen(table, count);
    if (room == nullptr || !chosen.HasRoom()) {
        return WithoutMemory(wanted ? "SelectRowByBool" : "DropRowByBool");
    }
    for (MarkedRows rows(all.mHead, length, wanted); !rows.IsDone();) {
        chosen.Append(rows.Next(bits), {room.get(), block});
    }
    return chosen.Finish();
}

} // namespace MERVO::Tessera
