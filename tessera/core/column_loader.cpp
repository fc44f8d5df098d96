#include "tessera/core/column_loader.h"

#include "tessera/core/series_cast.h"

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

Error ColumnLoader::BuildColumns(
    std::array<unsigned int, 2> shape, MERVO_TESSERA_TYPEID type, std::vector<Cursor>& cursors)
{
    for (unsigned int c = 0; c < shape[1]; ++c) {
        const ContainerID container = containers.empty() ? CONTAINER_ARRAY : containers[c];
        SeriesPtr column = BuildSeries({shape[0], container, type}, "col_" + std::to_string(c));
        if (column->GetTypeId() == TESSERA_INVALID) {
            return {ERROR_BAD_SHAPE, "Failed to build series"};
        }
        Cursor cursor = column->GetIterator();
        if (cursor == nullptr) {
            return {ERROR_BAD_SHAPE, "Failed to build container"};
        }
        cursors.push_back(std::move(cursor));
        columns.push_back(std::move(column));
    }
    return {};
}

Error ColumnLoader::CastColumns(MERVO_TESSERA_TYPEID loadedType)
{
    for (std::size_t c = 0; c < types.size(); ++c) {
        if (types[c] == loadedType) {
            continue;
        }
        SeriesPtr target = BuildSeries(WithType(columns[c]->GetAttr(), types[c]), columns[c]->GetName());
        const Error failure = CastSeries(columns[c], target);
        if (failure.code != ERROR_NONE) {
            LogError(
                "Failed to cast %d to %d when error happens", static_cast<int>(loadedType), static_cast<int>(types[c]));
            columns.resize(c); // those behind were never cast
            return {failure.code, "Failed to cast form 2d vector"};
        }
        columns[c] = std::move(target);
    }
    return {};
}

ErrorCode ColumnLoader::Install(const Error& failure)
{
    table.series = std::make_shared<DataFrame::Columns>(std::move(columns));
    table.isColNameDirty = true;
    if (failure.code != ERROR_NONE) {
        table.RefreshShape();
        table.SetError(failure);
        return failure.code;
    }
    const ErrorCode code = table.RefreshView();
    if (code != ERROR_NONE) {
        table.SetError({code, "Error on Refresh view"});
    }
    return code;
}

} // namespace MERVO::Tessera
