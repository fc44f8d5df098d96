#include "tessera/core/data_frame_view.h"

#include <new>
#include <set>
#include <string_view>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/core/memory_room.h"
#include "tessera/core/window_bounds.h"

namespace MERVO::Tessera {
namespace {

/// Finds names that no column has. Of many equal ones it does not try again what was taken before: thousands would
/// take hours. Their lengths add up to the square of their number, so those are watched too.
class TakenNames {
public:
    explicit TakenNames(const DataFrameView::NameMap& taken) : names(taken) {}

    std::string FreeNameFrom(std::string name)
    {
        if (names.count(name) == 0) {
            return name;
        }
        constexpr std::string_view SUFFIX = "_1"; // the count of uses, which never passes 1
        std::size_t& count = suffixCounts[name];
        const std::uint64_t added = std::uint64_t{SUFFIX.size()} * (count + 1);
        addedBytes += 2 * added; // in the map and in the column
        if (!HasRoomFor(addedBytes, 1)) {
            throw std::bad_alloc();
        }
        name.reserve(name.size() + static_cast<std::size_t>(added));
        for (std::size_t i = 0; i < count; ++i) {
            name += SUFFIX;
        }
        do {
            name += SUFFIX;
            ++count;
        } while (names.count(name) != 0);
        return name;
    }

private:
    const DataFrameView::NameMap& names;
    std::map<std::string, std::size_t> suffixCounts; ///< by a name: how many suffixes behind it give no free one
    std::uint64_t addedBytes = 0;
};

} // namespace

DataFrameView::DataFrameView() : series(std::make_shared<Columns>()), nameToIndex(std::make_shared<NameMap>()) {}

DataFrameView::DataFrameView(DataFrameView&& other) noexcept
    : isColNameDirty(other.isColNameDirty), series(other.series), nameToIndex(other.nameToIndex),
      rowIndex(other.rowIndex), colIndex(other.colIndex), error(std::move(other.error))
{
}

void DataFrameView::ShareColumnsOf(const DataFrameView& other) noexcept
{
    isColNameDirty = other.isColNameDirty;
    series = other.series;
    nameToIndex = other.nameToIndex;
    rowIndex = other.rowIndex;
    colIndex = other.colIndex;
}

Cursor DataFrameView::GetSlicedIterator(const SeriesPtr& column) const
{
    return HasRows(*this, column) ? column->GetIterator(rowIndex[0], rowIndex[1]) : nullptr;
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
        TakenNames taken(*nameToIndex);
        for (std::size_t i = 0; i < series->size() && (*series)[i] != nullptr; ++i) {
            const bool isRenamed = nameToIndex->count((*series)[i]->GetName()) != 0;
            std::string name = taken.FreeNameFrom((*series)[i]->GetName());
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
try {
    if (error.code != ERROR_NONE) {
        LogError("Trying to get ColumnName from invalid Dataframe [%d]", error.code);
        return {};
    }
    std::vector<std::string> names;
    if (IsFarBeyondColumns(*this)) {
        LogError("The window is beyond the columns");
        return names;
    }
    if (RefreshColumnName() != ERROR_NONE) {
        return names;
    }
    for (unsigned int k = 0; k < ColumnCount(); ++k) {
        const SeriesPtr& column = GetColumn(k);
        names.push_back(column == nullptr ? std::string() : column->GetName());
    }
    return names;
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("GetColumnName"));
    return {};
}

ErrorCode DataFrameView::SetColumnName(const std::vector<std::string>& names)
try {
    if (error.code != ERROR_NONE) {
        LogError("Trying to set ColumnName from invalid Dataframe [%d]", error.code);
        return ERROR_FAILED_TABLE;
    }
    if (names.size() != ColumnCount()) {
        LogError("Number of column names and number of series in DataFrame not match (%d != %d)",
            static_cast<int>(names.size()), static_cast<int>(ColumnCount()));
        return ERROR_BAD_VALUE;
    }
    if (std::set<std::string_view>(names.begin(), names.end()).size() < names.size()) {
        LogWarning("Some names are duplicated, the actual column name might be different");
    }
    std::vector<std::string> copies(names); // before the first column is named
    for (unsigned int k = 0; k < ColumnCount(); ++k) {
        if (GetColumn(k) != nullptr) {
            GetColumn(k)->SetName(std::move(copies[k]));
        }
    }
    isColNameDirty = true;
    return ERROR_NONE;
} catch (...) { // no memory
    return TellNoMemory("SetColumnName");
}

} // namespace MERVO::Tessera
