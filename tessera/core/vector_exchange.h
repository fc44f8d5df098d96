#pragma once

#include <array>
#include <vector>

#include "tessera/core/error.h"
#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

class DataFrameRef;

/// The bodies of the vector calls of tables, which say what they do. They exist for the 14 value types.
template <typename T>
class TESSERA_API VectorExchange {
public:
    using Rows = std::vector<std::vector<T>>;
    using Columns = std::vector<std::vector<T>>;
    using Shape = std::array<unsigned int, 2>;
    using Types = std::vector<MERVO_TESSERA_TYPEID>;
    using Containers = std::vector<ContainerID>;

    static ErrorCode Check1D(const DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types,
        const Containers& containers);
    static ErrorCode Check2D(const Columns& data, const Types& types);
    static ErrorCode Check2DSecond(const DataFrame& table, const Columns& data, const Types& types);
    static ErrorCode Read1D(
        DataFrame& table, const std::vector<T>& data, Shape shape, const Types& types, const Containers& containers);
    static ErrorCode Read2D(DataFrame& table, Columns&& data, const Types& types, const Containers& containers);
    static Rows Write2D(const DataFrameRef& table);
    static std::vector<T> Write1D(const DataFrameRef& table);
};

} // namespace MERVO::Tessera
