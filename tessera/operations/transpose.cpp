#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/table_reader.h"
#include "tessera/functors/cell_place.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/platform/streaming_store.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int MOST_ROWS = 1024;

using Cursors = std::vector<Cursor>;
using TransposeKernel = void (*)(const Cursors& sources, const Cursors& results);

std::vector<std::byte*> HeadsOf(const Cursors& columns)
{
    std::vector<std::byte*> heads(columns.size());
    std::transform(columns.begin(), columns.end(), heads.begin(),
        [](const Cursor& column) { return Func::CellPlace(column).element; });
    return heads;
}

/// Turns numbers tile by tile. A tile's rows are whole lines of the cache in the results, which would otherwise be read
/// before they are written, each from memory, as no two follow each other. Working set: a place per column.
template <std::size_t SIZE>
void StreamCells(const Cursors& sources, const Cursors& results)
{
    constexpr std::size_t ROWS = 16;
    constexpr std::size_t COLUMNS = 256 / SIZE;
    using Cell = std::array<std::byte, SIZE>;
    const std::vector<std::byte*> from = HeadsOf(sources);
    const std::vector<std::byte*> to = HeadsOf(results);
    std::array<std::array<Cell, COLUMNS>, ROWS> tile;
    for (std::size_t column = 0; column < from.size(); column += COLUMNS) {
        const std::size_t columns = std::min(COLUMNS, from.size() - column);
        for (std::size_t row = 0; row < to.size(); row += ROWS) {
            const std::size_t rows = std::min(ROWS, to.size() - row);
            for (std::size_t c = 0; c < columns; ++c) {
                const Cell* const cells = reinterpret_cast<const Cell*>(from[column + c]) + row;
                for (std::size_t r = 0; r < rows; ++r) {
                    tile[r][c] = cells[r];
                }
            }
            for (std::size_t r = 0; r < rows; ++r) {
                StreamBytes(to[row + r] + column * SIZE, tile[r][0].data(), columns * SIZE);
            }
        }
    }
    FinishStreaming();
}

/// Result column r takes element r of each source column. Working set: a place per source column.
template <typename T>
void TransposeCells(const Cursors& sources, const Cursors& results)
{
    if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        if (HasStreamingStores() && sources.size() * results.size() >= STREAMED_FROM / sizeof(T)) {
            StreamCells<sizeof(T)>(sources, results);
            return;
        }
    }
    std::vector<typename Iterator<CONTAINER_ARRAY, T>::Position> heads(sources.size());
    std::transform(sources.begin(), sources.end(), heads.begin(),
        [](const Cursor& source) { return CursorAs<CONTAINER_ARRAY, T>(source).mHead; });
    const auto copy = [&heads](auto&& cell, std::uint32_t sourceColumn, std::uint32_t sourceRow) {
        cell = *(heads[sourceColumn] + static_cast<std::ptrdiff_t>(sourceRow));
    };
    CellVisit::Of<T>(copy).ForEachCell(results, static_cast<std::uint32_t>(sources.size()));
}

constexpr auto TRANSPOSE_KERNELS =
    ForEachValueType([](auto number) -> TransposeKernel { return &TransposeCells<ValueTypes::At<number()>>; });

DataFrame Failed(ErrorCode code, const std::string& message)
{
    DataFrame result;
    result.SetError({code, message});
    return result;
}

/// Why a window can't be transposed; code 0 where it can.
Error Refusal(const DataFrameRef& table)
{
    const std::size_t rows = table.RowCount();
    if (table.GetError().code != ERROR_NONE) {
        LogError("Invalid input dataFrame %d", table.GetError().code);
        return {table.GetError().code, "this is invalid DataFrame"};
    }
    if (table.ColumnCount() == 0) {
        LogError("there is no cols in dataframe for transposing");
        return {ERROR_EMPTY_TABLE, "there is no cols in dataframe"};
    }
    if (rows == 0) {
        LogError("there is no rows in dataframe for transposing");
        return {ERROR_EMPTY_TABLE, "there is no rows in dataframe"};
    }
    if (rows > MOST_ROWS) {
        LogError("cannot transpose DataFrame contains more than 1024 rows, current number of rows: %zu", rows);
        return {ERROR_FAILED_TABLE, "Invalid dataFrame"};
    }
    if (table.Type() == MIX_TYPE || table.Type() == TESSERA_INVALID) {
        table.SetError({ERROR_MIXED_TYPES, "Cannot transpose on MIX_TYPE dataframe with: "});
        return {ERROR_MIXED_TYPES, "dataframe is mix-type"};
    }
    const ContainerID container = table.ContainerType();
    if (!IsContainer(container)) {
        LogError("Container %d should be in range of [CONTAINER_BEGIN, CONTAINER_END) for transposing",
            static_cast<int>(container));
        return {ERROR_BAD_KIND, "Container Type is out of range"};
    }
    return {};
}

} // namespace

DataFrame DataFrameRef::Transpose() const
try {
    const Error refusal = Refusal(*this);
    if (refusal.code != ERROR_NONE) {
        return Failed(refusal.code, refusal.message);
    }
    DataFrameRef rows(*this);
    rows.SetRowIndex({0, RowCount()});
    Cursors sources;
    const ErrorCode opened = OpenColumns(rows, sources);
    if (opened != ERROR_NONE) {
        return Failed(opened, "columns can't be read on transposing");
    }
    const SeriesAttr attr = WithLength(sources.front()->GetAttr(), ColumnCount());
    Columns columns;
    Cursors results;
    for (unsigned int row = 0; row < RowCount(); ++row) {
        columns.push_back(BuildSeries(attr, "col_" + std::to_string(row)));
        results.push_back(columns.back()->GetIterator());
        if (results.back() == nullptr) {
            return Failed(ERROR_OUT_OF_MEMORY, "out of memory on transposing");
        }
    }
    // Cells are copied as CopySeries copies them, so a container that it does not serve is refused by its own factory.
    const auto copier = Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}(attr.containerId);
    if (!copier->CheckParams(results.front(), results.front())) {
        return Failed(ERROR_PARAMETERS_REFUSED, "Check param failed in functor: " + copier->GetName());
    }
    TRANSPOSE_KERNELS[static_cast<std::size_t>(attr.typeId)](sources, results);
    return DataFrame(std::move(columns));
} catch (...) { // no memory
    return Func::TableWithoutMemory("Transpose");
}

} // namespace MERVO::Tessera
