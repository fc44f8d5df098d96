#include "tessera/core/data_frame_ref.h"
#include "tessera/core/flat_call.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int WHOLE_WINDOW = 0xFFFFFFFFU;

/// Adds to a window's begin; false where the end passes the window's, also beyond 32 bits.
bool Narrow(const DataFrameView::Range& window, const DataFrameView::Range& wanted, DataFrameView::Range& narrowed)
{
    if (window[0] > window[1] || wanted[1] > window[1] - window[0]) {
        return false;
    }
    narrowed = {window[0] + wanted[0], window[0] + wanted[1]};
    return true;
}

} // namespace

DataFrameRef DataFrameRef::FailedSlice(ErrorCode code, const std::string& message) const
{
    DataFrameRef failed;
    failed.SetError({code, message});
    return failed;
}

DataFrameRef DataFrameRef::Slice(Range rows, Range columns) const
try {
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataFrame %d for slice", error.code);
        return FailedSlice(error.code, error.message);
    }
    if (rows[0] >= rows[1] || columns[0] >= columns[1]) {
        return FailedSlice(ERROR_OUT_OF_RANGE, "The first index in slicing range should less than ths second");
    }
    Range newRows{};
    Range newColumns{};
    if (!Narrow(rowIndex, rows, newRows) || !Narrow(colIndex, columns, newColumns)) {
        return FailedSlice(ERROR_OUT_OF_RANGE, "Out of index range in Slicing");
    }
    if (GetNameToIndex() == nullptr) {
        return FailedSlice(ERROR_OUT_OF_MEMORY, "Failed to get name2Index");
    }
    DataFrameRef slice(*this);
    slice.rowIndex = newRows;
    slice.colIndex = newColumns;
    slice.isColNameDirty = true;
    return slice;
} catch (...) { // no memory
    return FailedSlice(ERROR_OUT_OF_MEMORY, "out of memory");
}

DataFrameRef DataFrameRef::Slice(unsigned int axis, Range range) const
{
    return axis == 0 ? Slice(range, Range{0, ColumnCount()}) : Slice(Range{0, RowCount()}, range);
}

bool DataFrameRef::FindColumn(const std::string& name, unsigned int& place, Error& failure) const
{
    const auto names = GetNameToIndex();
    if (names == nullptr) {
        failure = {ERROR_OUT_OF_MEMORY, "Failed to get name2Index"};
        return false;
    }
    const auto found = names->find(name);
    if (found == names->end() || found->second < colIndex[0]) {
        failure = {ERROR_BAD_VALUE, "The dataframe does not contain this column name: " + name + "."};
        return false;
    }
    place = found->second - colIndex[0];
    return true;
}

DataFrameRef DataFrameRef::Slice(Range rows, NameRange columns) const
try {
    Range places{};
    Error failure;
    if (!FindColumn(columns[0], places[0], failure) || !FindColumn(columns[1], places[1], failure)) {
        return FailedSlice(failure.code, failure.message);
    }
    return Slice(rows, places);
} catch (...) { // no memory
    return FailedSlice(ERROR_OUT_OF_MEMORY, "out of memory");
}

DataFrameRef DataFrameRef::operator[](Range columns) const { return Slice(1U, columns); }

DataFrameRef DataFrameRef::operator[](NameRange columns) const
{
    return Slice(Range{0, RowCount()}, std::move(columns));
}

DataFrameRef DataFrameRef::operator[](unsigned int column) const
{
    if (column == WHOLE_WINDOW) {
        return Slice(Range{0, RowCount()}, Range{0, ColumnCount()});
    }
    return Slice(1U, Range{column, column + 1});
}

DataFrameRef DataFrameRef::operator[](const char* name) const
try {
    if (name == nullptr) {
        return FailedSlice(ERROR_BAD_VALUE, "Column name cannot be nullptr in operator [].");
    }
    unsigned int place = 0;
    Error failure;
    if (!FindColumn(name, place, failure)) {
        return FailedSlice(failure.code, failure.message);
    }
    return Slice(1U, Range{place, place + 1});
} catch (...) { // no memory
    return FailedSlice(ERROR_OUT_OF_MEMORY, "out of memory");
}

ErrorCode DataFrameRef::GetIndexVector(std::vector<std::uint32_t>& index, const std::vector<std::string>& names) const
try {
    index.resize(names.size());
    const auto positions = GetNameToIndex();
    if (positions == nullptr) {
        return ERROR_OUT_OF_MEMORY;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto found = positions->find(names[i]);
        if (found == positions->end()) {
            LogError("dataframe does not contain this column name: %s", names[i].c_str());
            return ERROR_BAD_VALUE;
        }
        index[i] = found->second;
    }
    return ERROR_NONE;
} catch (...) { // no memory
    return TellNoMemory("GetIndexVector");
}

MERVO_TESSERA_TYPEID DataFrameRef::Type() const
{
    if (error.code != ERROR_NONE || ColumnCount() == 0 || GetColumn(0) == nullptr) {
        return TESSERA_INVALID;
    }
    const MERVO_TESSERA_TYPEID first = GetColumn(0)->GetTypeId();
    for (unsigned int k = 1; k < ColumnCount(); ++k) {
        if (GetColumn(k) == nullptr || GetColumn(k)->GetTypeId() != first) {
            return MIX_TYPE;
        }
    }
    return first;
}

ContainerID DataFrameRef::ContainerType() const
{
    if (error.code != ERROR_NONE || ColumnCount() == 0 || GetColumn(0) == nullptr) {
        return NO_CONTAINER;
    }
    const ContainerID first = GetColumn(0)->GetAttr().containerId;
    for (unsigned int k = 1; k < ColumnCount(); ++k) {
        if (GetColumn(k) == nullptr || GetColumn(k)->GetAttr().containerId != first) {
            return NO_CONTAINER;
        }
    }
    return first;
}

} // namespace MERVO::Tessera
