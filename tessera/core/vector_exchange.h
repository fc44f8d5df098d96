#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tessera/core/error.h"
#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

class DataFrameRef;
class DataFrameView;

/**
 * Checks a load of dataSize cells, with the texts of all loads. The lists count 0 where they are left out.
 * @return 0; the table's own code if it failed before; or 15: a shape without cells, a list of another length than
 *         shape[1], or data that don't fill the shape.
 */
TESSERA_API ErrorCode CheckLoad(const DataFrameView& table, std::uint64_t dataSize, std::array<unsigned int, 2> shape,
    std::size_t typeCount, std::size_t containerCount);
/// Checks that columns have one length, which is not 0, and are as many as the types if there are any. Returns 0 or 15.
TESSERA_API ErrorCode CheckLengths(const std::vector<std::size_t>& lengths, std::size_t typeCount);
/// Checks that there are columns, as many as the types if there are any. Returns 0, 15, or the table's own code.
TESSERA_API ErrorCode CheckColumnCount(const DataFrameView& table, std::size_t columnCount, std::size_t typeCount);

template <typename T>
std::vector<std::size_t> LengthsOf(const std::vector<std::vector<T>>& columns)
{
    std::vector<std::size_t> lengths;
    lengths.reserve(columns.size());
    for (const std::vector<T>& column : columns) {
        lengths.push_back(column.size());
    }
    return lengths;
}

/// The bodies of the vector calls of tables, which say what they do. They exist for the 14 value types.
template <typename T>
class TESSERA_API VectorExchange {
public:
    using Rows = std::vector<std::vector<T>>;
    using Columns = std::vector<std::vector<T>>;
    using Shape = std::array<unsigned int, 2>;
    using Types = std::vector<MERVO_TESSERA_TYPEID>;
    using Containers = std::vector<ContainerID>;

    static ErrorCode Read1D(
        DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types, const Containers& containers);
    static ErrorCode Read2D(DataFrame& table, Columns&& data, const Types& types, const Containers& containers);
    static Rows Write2D(const DataFrameRef& table);
    static std::vector<T> Write1D(const DataFrameRef& table);
};

} // namespace MERVO::Tessera
