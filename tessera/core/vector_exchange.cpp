#include "tessera/core/vector_exchange.h"

#include <new>
#include <utility>

#include "tessera/core/column_loader.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/table_reader.h"

namespace MERVO::Tessera {

template <typename T>
ErrorCode VectorExchange<T>::Check1D(
    const DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types, const Containers& containers)
{
    return CheckLoad(table, data.size(), shape, types.size(), containers.size());
}

template <typename T>
ErrorCode VectorExchange<T>::Check2D(const Columns& data, const Types& types)
{
    if (data.empty() || data.front().empty()) {
        LogError("Empty data, vector size %zu", data.size());
        return ERROR_BAD_SHAPE;
    }
    if (!types.empty() && types.size() != data.size()) {
        LogError("Invalid type length %zu, series size %zu", types.size(), data.size());
        return ERROR_BAD_SHAPE;
    }
    for (const std::vector<T>& column : data) {
        if (column.size() != data.front().size()) {
            LogError(
                "Vector length must be equal to begin size %zu, mismatch size %zu", data.front().size(), column.size());
            return ERROR_BAD_SHAPE;
        }
    }
    return ERROR_NONE;
}

template <typename T>
ErrorCode VectorExchange<T>::Check2DSecond(const DataFrame& table, const Columns& data, const Types& types)
{
    const ErrorCode own = table.GetError().code;
    if (own != ERROR_NONE) {
        LogError("Failed to check 2d vector, invalid dataframe %d.", own);
        return own;
    }
    if (data.empty()) {
        LogError("Empty data, vector size %zu in checking 2d vector", data.size());
        return ERROR_BAD_SHAPE;
    }
    if (!types.empty() && types.size() != data.size()) {
        LogError("Invalid type length %zu, series size %zu", types.size(), data.size());
        return ERROR_BAD_SHAPE;
    }
    return ERROR_NONE;
}

template <typename T>
ErrorCode VectorExchange<T>::Read1D(
    DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types, const Containers& containers)
try {
    const ErrorCode code = Check1D(table, data, shape, types, containers);
    if (code != ERROR_NONE) {
        return code;
    }
    const std::size_t columns = shape[1];
    return ColumnLoader(table, types, containers)
        .Load<T>(shape, [&data, columns](auto&& cell, std::size_t row, std::size_t column) {
            cell = data[column + columns * row];
        });
} catch (...) { // no memory
    return TellNoMemory("ReadVector");
}

template <typename T>
ErrorCode VectorExchange<T>::Read2D(DataFrame& table, Columns&& data, const Types& types, const Containers& containers)
try {
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
    ErrorCode code = Check2D(data, types);
    code = code != ERROR_NONE ? code : Check2DSecond(table, data, types);
    if (code != ERROR_NONE) {
        return code;
    }
    const Shape shape{static_cast<unsigned int>(data.front().size()), static_cast<unsigned int>(data.size())};
    const auto cells = std::uint64_t{data.front().size()} * data.size(); // a length beyond 32 bits misses its shape
    code = CheckLoad(table, cells, shape, types.size(), containers.size());
    if (code != ERROR_NONE) {
        return code;
    }
    return ColumnLoader(table, types, containers)
        .Load<T>(shape, [&data](auto&& cell, std::size_t row, std::size_t column) {
            if constexpr (std::is_same_v<T, std::string>) {
                cell = std::move(data[column][row]);
            } else {
                cell = data[column][row];
            }
        });
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
    reader.Read<T>([&rows](auto&& cell, std::size_t row, std::size_t column) { rows[row][column] = cell; });
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
    const std::size_t columns = table.ColumnCount();
    const std::uint64_t count = std::uint64_t{columns} * table.RowCount();
    if (!std::in_range<std::size_t>(count)) { // a 32-bit machine has the memory for so many bits, and no count for them
        throw std::bad_alloc();
    }
    std::vector<T> cells(static_cast<std::size_t>(count));
    reader.Read<T>(
        [&cells, columns](auto&& cell, std::size_t row, std::size_t column) { cells[column + row * columns] = cell; });
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
