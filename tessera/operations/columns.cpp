#include <set>
#include <utility>

#include "tessera/functors/table_combination.h"
#include "tessera/operations/bool_filter.h"
#include "tessera/operations/column_copies.h"

namespace MERVO::Tessera {
namespace {

using Func::FailedTable;
using Positions = std::vector<std::uint32_t>;

DataFrame CopiesOf(const DataFrameRef& window, const Positions& positions)
{
    DataFrame::Columns copies;
    const Error outcome = CopyColumns(window, positions, copies);
    return outcome.code == ERROR_NONE ? DataFrame(std::move(copies)) : FailedTable(outcome.code, outcome.message);
}

DataFrame FilterColumns(const DataFrame& table, const DataFrame& filter, bool wanted, const FilterTexts& texts)
{
    const bool fits = filter.RowCount() == 1 && filter.ColumnCount() == table.ColumnCount();
    const Error refusal = FilterRefusal(table, filter, fits, filter.GetError().code, texts);
    if (refusal.code != ERROR_NONE) {
        return FailedTable(refusal.code, refusal.message);
    }
    if (filter.Type() != TESSERA_BOOL) {
        LogError("Invalid boolFilter type %d", static_cast<int>(filter.Type()));
        return FailedTable(ERROR_BAD_VALUE, "Invalid boolFilter type");
    }
    Positions kept;
    for (unsigned int k = 0; k < filter.ColumnCount(); ++k) {
        const Cursor cell = filter.GetSlicedIterator(filter.GetColumn(k));
        if (cell == nullptr) {
            return FailedTable(ERROR_NOT_BOOLEAN, texts.refusal);
        }
        if (GetValueFromIterator<bool>(cell, 0) == wanted) {
            kept.push_back(k);
        }
    }
    return CopiesOf(table, kept);
}

constexpr const char* NAMES_FAILED = "Error on transformming string list to index list in Select.";

} // namespace

DataFrame DataFrame::SelectCol(const Positions& index) const
try {
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataFrame %d", error.code);
        return FailedTable(error.code, error.message);
    }
    DataFrameRef whole(*this);
    whole.RefreshShape();
    for (const std::uint32_t position : index) {
        if (position >= whole.ColumnCount()) {
            return FailedTable(ERROR_OUT_OF_RANGE, "Index out of max columns number");
        }
    }
    return CopiesOf(whole, index);
} catch (...) { // no memory
    return Func::TableWithoutMemory("SelectCol");
}

DataFrame DataFrame::SelectCol(const std::vector<std::string>& names) const
try {
    Positions index;
    const ErrorCode code = GetIndexVector(index, names);
    return code == ERROR_NONE ? SelectCol(index) : FailedTable(code, NAMES_FAILED);
} catch (...) { // no memory
    return Func::TableWithoutMemory("SelectCol");
}

DataFrame DataFrame::SelectCol(const DataFrame& boolFilter) const
try {
    constexpr FilterTexts TEXTS{"Invalid dataframe %d selecting column", "Invalid boolFilter %d selecting column",
        "Select column shape mismatch, boolFilter[%d, %d], this[%d, %d]", "SelectCol received invalid bool dataframe."};
    return FilterColumns(*this, boolFilter, true, TEXTS);
} catch (...) { // no memory
    return Func::TableWithoutMemory("SelectCol");
}

DataFrame DataFrame::DropCol(const Positions& index) const
try {
    if (error.code != ERROR_NONE) {
        LogError("the input dataframe is invalid : %d", error.code);
        return DataFrame(*this);
    }
    if (index.empty()) {
        LogWarning("the indexlist is null");
        return DataFrame(*this);
    }
    const std::set<std::uint32_t> dropped(index.begin(), index.end());
    const auto count = static_cast<std::uint32_t>(series->size());
    if (*dropped.rbegin() >= count) {
        LogError(
            "Invalid series index: %d, column size %d", static_cast<int>(*dropped.rbegin()), static_cast<int>(count));
        return FailedTable(ERROR_BAD_KIND, "this is from dropcol by index");
    }
    Positions kept;
    for (std::uint32_t position = 0; position < count; ++position) {
        if (dropped.count(position) == 0) {
            kept.push_back(position);
        }
    }
    return SelectCol(kept);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropCol");
}

DataFrame DataFrame::DropCol(const std::vector<std::string>& names) const
try {
    Positions index;
    const ErrorCode code = GetIndexVector(index, names);
    if (code != ERROR_NONE) {
        LogError("%s", NAMES_FAILED);
        return FailedTable(code, "this is from dropcol by nameList");
    }
    return DropCol(index);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropCol");
}

DataFrame DataFrame::DropCol(const DataFrame& boolFilter) const
try {
    constexpr FilterTexts TEXTS{
        "Invalid dataframe %d", "Invalid boolFilter %d", nullptr, "DropNan received invalid bool dataframe."};
    return FilterColumns(*this, boolFilter, false, TEXTS);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropCol");
}

ErrorCode DataFrame::SelectColInplace(const Positions& index)
{
    *this = SelectCol(index);
    return error.code;
}

ErrorCode DataFrame::SelectColInplace(const std::vector<std::string>& names)
{
    *this = SelectCol(names);
    return error.code;
}

ErrorCode DataFrame::SelectColInplace(const DataFrame& boolFilter)
{
    *this = SelectCol(boolFilter);
    return error.code;
}

ErrorCode DataFrame::DropColInplace(const Positions& index)
{
    *this = DropCol(index);
    return error.code;
}

ErrorCode DataFrame::DropColInplace(const std::vector<std::string>& names)
{
    *this = DropCol(names);
    return error.code;
}

ErrorCode DataFrame::DropColInplace(const DataFrame& boolFilter)
{
    *this = DropCol(boolFilter);
    return error.code;
}

} // namespace MERVO::Tessera
