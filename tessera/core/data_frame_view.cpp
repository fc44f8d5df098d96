#include "tessera/core/data_frame_view.h"

#include <new>
#include <set>
#include <utility>

namespace MERVO::Tessera {

DataFrameView::DataFrameView() : series(std::make_shared<Columns>()), nameToIndex(std::make_shared<NameMap>()) {}

DataFrameView::DataFrameView(DataFrameView&& other) noexcept
    : isColNameDirty(other.isColNameDirty), series(other.series), nameToIndex(other.nameToIndex),
      rowIndex(other.rowIndex), colIndex(other.colIndex), error(std::move(other.error))
{
}

Cursor DataFrameView::GetSlicedIterator(const SeriesPtr& column) const
{
    // A column may have been replaced by a shorter one since this window was cut.
    if (column == nullptr || rowIndex[0] > rowIndex[1] || rowIndex[1] > column->Size()) {
        return nullptr;
    }
    return column->GetIterator(rowIndex[0], rowIndex[1]);
}

const SeriesPtr& DataFrameView::GetColumn(unsigned int k) const
{
    static const SeriesPtr noColumn;
    const std::size_t position = static_cast<std::size_t>(colIndex[0]) + k;
    return k < ColumnCount() && position < series->size() ? (*series)[position] : noColumn;
}

void DataFrameView::SetError(const Error& newError) const
{
    if (newError.code == ERROR_NONE) {
        return;
    }
    if (error.code == ERROR_NONE) {
        error = newError;
    }
    LogError("set df error %d, %s, df error %d", newError.code, newError.message.c_str(), error.code);
}

void DataFrameView::RefreshShape()
{
    colIndex = {0, static_cast<unsigned int>(series->size())};
    rowIndex = {0, series->empty() || series->front() == nullptr ? 0 : series->front()->Size()};
}

ErrorCode DataFrameView::RefreshView()
{
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataframe %d while refreshing view", error.code);
        return error.code;
    }
    RefreshShape();
    const ErrorCode code = RefreshColumnName();
    if (code != ERROR_NONE) {
        LogError("Refresh column name error %d while refreshing view", code);
    }
    return code;
}

ErrorCode DataFrameView::RefreshColumnName() const
{
    if (!isColNameDirty) {
        return ERROR_NONE;
    }
    try {
        nameToIndex = std::make_shared<NameMap>();
        for (std::size_t i = 0; i < series->size() && (*series)[i] != nullptr; ++i) {
            std::string name = (*series)[i]->GetName();
            bool isRenamed = false;
            for (; nameToIndex->count(name) != 0; isRenamed = true) {
                name += "_1"; // the count of uses, which never passes 1: only the name that is free at last is taken
            }
            nameToIndex->emplace(name, static_cast<unsigned int>(i));
            if (isRenamed) { // else nothing is written: other threads may be reading the column through their slices
                (*series)[i]->SetName(std::move(name));
            }
        }
    } catch (const std::bad_alloc&) {
        SetError({ERROR_OUT_OF_MEMORY, "out of memory on refreshing view."});
        return error.code;
    }
    isColNameDirty = false;
    return ERROR_NONE;
}

std::shared_ptr<const DataFrameView::NameMap> DataFrameView::GetNameToIndex() const
{
    const ErrorCode code = RefreshColumnName();
    if (code != ERROR_NONE) {
        LogError("Failed to get name2Index %d", code);
        return nullptr;
    }
    return nameToIndex;
}

std::vector<std::string> DataFrameView::GetColumnName() const
{
    if (error.code != ERROR_NONE) {
        LogError("Trying to get ColumnName from invalid Dataframe [%d]", error.code);
        return {};
    }
    std::vector<std::string> names;
    if (RefreshColumnName() != ERROR_NONE) {
        return names;
    }
    for (unsigned int k = 0; k < ColumnCount(); ++k) {
        const SeriesPtr& column = GetColumn(k);
        names.push_back(column == nullptr ? std::string() : column->GetName());
    }
    return names;
}

ErrorCode DataFrameView::SetColumnName(const std::vector<std::string>& names)
{
    if (error.code != ERROR_NONE) {
        LogError("Trying to set ColumnName from invalid Dataframe [%d]", error.code);
        return ERROR_FAILED_TABLE;
    }
    if (names.size() != ColumnCount()) {
        LogError("Number of column names and number of series in DataFrame not match (%d != %d)",
            static_cast<int>(names.size()), static_cast<int>(ColumnCount()));
        return ERROR_BAD_VALUE;
    }
    if (std::set<std::string>(names.begin(), names.end()).size() < names.size()) {
        LogWarning("Some names are duplicated, the actual column name might be different");
    }
    for (unsigned int k = 0; k < ColumnCount(); ++k) {
        if (GetColumn(k) != nullptr) {
            GetColumn(k)->SetName(names[k]);
        }
    }
    isColNameDirty = true;
    return ERROR_NONE;
}

} // namespace MERVO::Tessera
