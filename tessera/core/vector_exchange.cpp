#include "tessera/core/vector_exchange.h"

#include <new>
#include <utility>

#include "tessera/core/column_loader.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/table_reader.h"

namespace MERVO::Tessera {
namespace {

ErrorCode CheckShape(const char* name, std::size_t listSize, std::uint64_t dataSize, std::array<unsigned int, 2> shape)
{
    const std::size_t rows = shape[0];
    const std::size_t columns = shape[1];
    if (rows == 0 || columns == 0) {
        LogError("Invalid shape, shape[0] %zu, shape[1] %zu", rows, columns);
        return ERROR_BAD_SHAPE;
    }
    if (listSize != 0 && listSize != columns) {
        LogError("Type size and shape mismatch, %s.size() %zu, shape[1] %zu", name, listSize, columns);
        return ERROR_BAD_SHAPE;
    }
    if (dataSize != std::uint64_t{shape[0]} * shape[1]) {
        LogError("Data size and shape mismatch, %s.size: %zu, shape: (%zu, %zu)", name,
            static_cast<std::size_t>(dataSize), rows, columns);
        return ERROR_BAD_SHAPE;
    }
    return ERROR_NONE;
}

ErrorCode CheckTypeCount(std::size_t columnCount, std::size_t typeCount)
{
    if (typeCount != 0 && typeCount != columnCount) {
        LogError("Invalid type length %zu, series size %zu", typeCount, columnCount);
        return ERROR_BAD_SHAPE;
    }
    return ERROR_NONE;
}

/// Loads columns of the given lengths into an empty table; `fill` writes their cells.
ErrorCode LoadColumns(DataFrame& table, const std::vector<std::size_t>& lengths, const DataFrame::Types& types,
    const DataFrame::Containers& containers, const CellVisit& fill)
{
    const ErrorCode own = table.GetError().code;
    if (own != ERROR_NONE) {
        LogError("Failed to read 2d vector, invalid dataframe %d", own);
        return own;
    }
    if (table.ColumnCount() != 0) {
        LogError("Failed to read 2d vector, dataFrame is not empty, row size %zu, col size %zu",
            std::size_t{table.RowCount()}, std::size_t{table.ColumnCount()});
        return ERROR_BAD_KIND;
    }
    ErrorCode code = CheckLengths(lengths, types.size());
    code = code != ERROR_NONE ? code : CheckColumnCount(table, lengths.size(), types.size());
    if (code != ERROR_NONE) {
        return code;
    }
    const ColumnLoader::Shape shape{
        static_cast<unsigned int>(lengths.front()), static_cast<unsigned int>(lengths.size())};
    const auto cells = std::uint64_t{lengths.front()} * lengths.size(); // a length beyond 32 bits misses its shape
    return ColumnLoader::Load(table, cells, shape, types, containers, fill);
}

/// The cells of a window as one count; throws std::bad_alloc where there is none.
std::size_t CountCells(const DataFrameRef& table)
{
    const std::uint64_t count = std::uint64_t{table.ColumnCount()} * table.RowCount();
    if (!std::in_range<std::size_t>(count)) { // a 32-bit machine has the memory for so many bits, and no count for them
        throw std::bad_alloc();
    }
    return static_cast<std::size_t>(count);
}

} // namespace

ErrorCode CheckLoad(const DataFrameView& table, std::uint64_t dataSize, std::array<unsigned int, 2> shape,
    std::size_t typeCount, std::size_t containerCount)
{
    if (table.GetError().code != ERROR_NONE) {
        LogError("Failed to read 1d vector, invalid dataframe %d", table.GetError().code);
        return table.GetError().code;
    }
    const ErrorCode code = CheckShape("types", typeCount, dataSize, shape);
    return code != ERROR_NONE ? code : CheckShape("containers", containerCount, dataSize, shape);
}

ErrorCode CheckLengths(const std::vector<std::size_t>& lengths, std::size_t typeCount)
{
    if (lengths.empty() || lengths.front() == 0) {
        LogError("Empty data, vector size %zu", lengths.size());
        return ERROR_BAD_SHAPE;
    }
    const ErrorCode code = CheckTypeCount(lengths.size(), typeCount);
    if (code != ERROR_NONE) {
        return code;
    }
    for (const std::size_t length : lengths) {
        if (length != lengths.front()) {
            LogError("Vector length must be equal to begin size %zu, mismatch size %zu", lengths.front(), length);
            return ERROR_BAD_SHAPE;
        }
    }
    return ERROR_NONE;
}

ErrorCode CheckColumnCount(const DataFrameView& table, std::size_t columnCount, std::size_t typeCount)
{
    const ErrorCode own = table.GetError().code;
    if (own != ERROR_NONE) {
        LogError("Failed to check 2d vector, invalid dataframe %d.", own);
        return own;
    }
    if (columnCount == 0) {
        LogError("Empty data, vector size %zu in checking 2d vector", columnCount);
        return ERROR_BAD_SHAPE;
    }
    return CheckTypeCount(columnCount, typeCount);
}

template <typename T>
ErrorCode VectorExchange<T>::Read1D(
    DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types, const Containers& containers)
try {
    const std::size_t columns = shape[1];
    return ColumnLoader::Load(table, data.size(), shape, types, containers,
        CellVisit::Of<T>([&data, columns](auto&& cell, std::size_t row, std::size_t column) {
            cell = data[column + columns * row];
        }));
} catch (...) { // no memory
    return TellNoMemory("ReadVector");
}

template <typename T>
ErrorCode VectorExchange<T>::Read2D(DataFrame& table, Columns&& data, const Types& types, const Containers& containers)
try {
    return LoadColumns(table, LengthsOf(data), types, containers,
        CellVisit::Of<T>([&data](auto&& cell, std::size_t row, std::size_t column) {
            if constexpr (std::is_same_v<T, std::string>) {
                cell = std::move(data[column][row]);
            } else {
                cell = data[column][row];
            }
        }));
} catch (...) { // no memory
    return TellNoMemory("ReadVectorByCol");
}

template <typename T>
typename VectorExchange<T>::Rows VectorExchange<T>::Write2D(const DataFrameRef& table)
try {
    TableReader reader(table);
    if (!reader.CanRead(TYPE_ID_OF<T>, "2d", "Type mismatch on exporting 2d vector") || reader.Open() != ERROR_NONE) {
        return {};
    }
    Rows rows(table.RowCount(), std::vector<T>(table.ColumnCount()));
    reader.Read(
        CellVisit::Of<T>([&rows](auto&& cell, std::size_t row, std::size_t column) { rows[row][column] = cell; }));
    return rows;
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("ToVector"));
    return {};
}

template <typename T>
std::vector<T> VectorExchange<T>::Write1D(const DataFrameRef& table)
try {
    TableReader reader(table);
    if (!reader.CanRead(TYPE_ID_OF<T>, "1d", "Type mismatch type on exporting 1d vector") ||
        reader.Open() != ERROR_NONE) {
        return {};
    }
    std::vector<T> cells(CountCells(table));
    const std::size_t columns = table.ColumnCount();
    reader.Read(CellVisit::Of<T>(
        [&cells, columns](auto&& cell, std::size_t row, std::size_t column) { cells[column + row * columns] = cell; }));
    return cells;
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("To1DVector"));
    return {};
}

template class VectorExchange<bool>;
template class VectorExchange<std::int8_t>;
template class VectorExchange<std::uint8_t>;
template class VectorExchange<std::int16_t>;
template class VectorExchange<std::uint16_t>;
template class VectorExchange<std::int32_t>;
template class VectorExchange<std::uint32_t>;
template class VectorExchange<std::int64_t>;
template class VectorExchange<std::uint64_t>;
template class VectorExchange<float>;
template class VectorExchange<double>;
template class VectorExchange<std::string>;
template class VectorExchange<DateTime>;
template class VectorExchange<DataFrame>;

} // namespace MERVO::Tessera
