#include "tessera/core/column_loader.h"

#include "tessera/core/series_cast.h"

namespace MERVO::Tessera {
ErrorCode ColumnLoader::Load(DataFrame& table, std::uint64_t dataSize, Shape shape, const DataFrame::Types& types,
    const DataFrame::Containers& containers, const CellVisit& fill)
{
    const ErrorCode code = CheckLoad(table, dataSize, shape, types.size(), containers.size());
    if (code != ERROR_NONE) {
        return code;
    }
    ColumnLoader loader(table, types, containers);
    std::vector<Cursor> cursors;
    Error failure = loader.BuildColumns(shape, fill.Type(), cursors);
    fill.ForEachCell(cursors, shape[0]);
    if (failure.code == ERROR_NONE) {
        failure = loader.CastColumns(fill.Type());
    }
    return loader.Install(failure);
}

Error ColumnLoader::BuildColumns(Shape shape, MERVO_TESSERA_TYPEID type, std::vector<Cursor>& cursors)
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
