#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/window_bounds.h"
#include "tessera/functors/error_functors.h"
#include "tessera/functors/table_combination.h"
#include "tessera/operations/complete_rows.h"

namespace MERVO::Tessera {
namespace {

using Func::FailedTable;
using Positions = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

/// The words of one rule for rows.
struct RowTexts {
    const char* functor; ///< that marks what is missing
    const char* noMemory;
};

/// Why NaN can't be looked for in a column; code 0 where it can.
Error RefusalOf(const Cursor& column, const std::string& functor)
{
    if (column == nullptr) {
        return {ERROR_BAD_VALUE, "nullptr error in unary functor" + functor};
    }
    if (!column->IsMemoryContiguous()) {
        return Func::GetErrorFunctor<Func::UnaryBase>()->ProcessSeries(column, column, true);
    }
    if (column->GetAttr().typeId == TESSERA_DATAFRAME) {
        LogError("%s not support Type DataFrame", functor.c_str());
        return {ERROR_GENERAL, "Error on calling functor: " + functor};
    }
    return {};
}

constexpr const char* ANY_REFUSED = "DropNanRow(any) check param failed";

/// The positions of named columns, counted in the window. One outside of it gets a number that no column has.
ErrorCode PositionsOf(const DataFrame& table, const Names& names, Positions& positions)
{
    const ErrorCode code = table.GetIndexVector(positions, names);
    for (std::uint32_t& position : positions) {
        position -= table.GetColIndex()[0];
    }
    return code;
}

/// Drops the rows of a table that have more than `limit` NaN in the columns at some positions.
DataFrame DropRowsByNans(const DataFrame& table, const Positions& positions, std::uint32_t limit, const RowTexts& texts)
{
    std::vector<NanSource> sources;
    for (const std::uint32_t position : positions) {
        const Cursor column = table.GetSlicedIterator(table.GetColumn(position));
        const Error refusal = RefusalOf(column, texts.functor);
        if (refusal.code != ERROR_NONE) {
            return FailedTable(refusal.code, refusal.message);
        }
        sources.emplace_back(column);
    }
    if (limit == 0) {
        if (std::optional<DataFrame> complete = CompleteRows(table, sources)) {
            return std::move(*complete);
        }
    }
    const DataFrame filter = GetEmptyDataFrame({table.RowCount(), 1}, TESSERA_BOOL);
    const Cursor marks = filter.GetSlicedIterator(filter.GetColumn(0));
    if (marks == nullptr) {
        return FailedTable(ERROR_OUT_OF_MEMORY, texts.noMemory);
    }
    MarkRowsByNans(sources, table.RowCount(), limit, CursorAs<CONTAINER_ARRAY, bool>(marks).mHead);
    return table.DropRow(filter);
}

/// Drops the columns of a table that have more than `limit` NaN.
DataFrame DropColumnsByNans(const DataFrame& table, std::uint32_t limit, bool dropsEmpty, const char* failure)
{
    if (table.ColumnCount() == 0) {
        return FailedTable(ERROR_EMPTY_TABLE, failure);
    }
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Error refusal = RefusalOf(table.GetSlicedIterator(table.GetColumn(k)), "IsNan");
        if (refusal.code != ERROR_NONE) {
            return FailedTable(refusal.code, failure);
        }
    }
    DataFrame filter = GetEmptyDataFrame({1, table.ColumnCount()}, TESSERA_BOOL);
    if (filter.GetError().code != ERROR_NONE) {
        return FailedTable(ERROR_OUT_OF_MEMORY, failure);
    }
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const Cursor column = table.GetSlicedIterator(table.GetColumn(k));
        if (column == nullptr) {
            return FailedTable(ERROR_OUT_OF_MEMORY, failure);
        }
        const bool goes = table.RowCount() == 0 ? dropsEmpty : HasMoreNans(NanSource(column), table.RowCount(), limit);
        if (!SetValueToIterator<bool>(filter.GetColumn(k)->GetIterator(), goes, 0)) {
            return FailedTable(ERROR_OUT_OF_MEMORY, failure);
        }
    }
    return table.DropCol(filter);
}

} // namespace

bool DataFrame::DropNanRowPreCheck(const Positions&, std::set<std::uint32_t>& columns, ErrorCode& code) const
{
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        LogError("Invalid dataframe shape [%d, %d] error %d", static_cast<int>(RowCount()),
            static_cast<int>(ColumnCount()), error.code);
        code = error.code;
        return false;
    }
    if (columns.empty()) {
        bool isThere = true; // one that is not is refused later; more of them need no mention
        for (std::uint32_t position = 0; isThere && position < ColumnCount(); ++position) {
            columns.insert(columns.end(), position);
            isThere = GetColumn(position) != nullptr;
        }
    } else if (*columns.rbegin() >= ColumnCount()) {
        code = ERROR_OUT_OF_RANGE;
        return false;
    }
    return true;
}

bool DataFrame::DropNanRowThreshCheck(Positions& subset, ErrorCode& code) const
{
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        LogError("Invalid DataFrame shape [%d, %d] error %d", static_cast<int>(RowCount()),
            static_cast<int>(ColumnCount()), error.code);
        code = error.code;
        return false;
    }
    if (subset.empty() && IsFarBeyondColumns(*this)) {
        code = ERROR_BAD_VALUE;
        return false;
    }
    if (subset.empty()) {
        subset.resize(ColumnCount());
        std::iota(subset.begin(), subset.end(), 0U);
    } else if (*std::max_element(subset.begin(), subset.end()) >= ColumnCount()) {
        code = ERROR_OUT_OF_RANGE;
        return false;
    }
    return true;
}

DataFrame DataFrame::DropNanRow(bool any, const Positions& subset) const
try {
    std::set<std::uint32_t> columns(subset.begin(), subset.end());
    ErrorCode code = ERROR_NONE;
    if (!DropNanRowPreCheck(subset, columns, code)) {
        LogError("DropNanRow(any) check param failed, error %d", code);
        return FailedTable(code, ANY_REFUSED);
    }
    const auto most = static_cast<std::uint32_t>(columns.size() - 1);
    return DropRowsByNans(*this, Positions(columns.begin(), columns.end()), any ? 0 : most,
        {"IsNan", "Out of memory on DropNanRow(any)"});
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanRow");
}

DataFrame DataFrame::DropNanRow(bool any, const Names& subset) const
try {
    Positions positions;
    const ErrorCode code = PositionsOf(*this, subset, positions);
    return code == ERROR_NONE ? DropNanRow(any, positions) : FailedTable(code, ANY_REFUSED);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanRow");
}

DataFrame DataFrame::DropNanRow(int thresh, const Positions& subset) const
try {
    Positions columns = subset;
    ErrorCode code = ERROR_NONE;
    if (!DropNanRowThreshCheck(columns, code)) {
        LogError("DropNanRow(thresh) check param failed, error %d", code);
        return FailedTable(code, "DropNanRow(thresh) check param failed");
    }
    if (thresh < 1) {
        return DataFrame(*this);
    }
    const auto wanted = static_cast<std::uint32_t>(thresh);
    const auto count = static_cast<std::uint32_t>(columns.size());
    if (wanted > count) {
        return {};
    }
    DataFrame result =
        DropRowsByNans(*this, columns, count - wanted, {"IsNanInt", "Out of memory on DropNanRow(thresh)"});
    if (RowCount() == 0 && result.GetError().code == ERROR_NONE) {
        return DropRow(Positions{}); // which refuses a table without rows
    }
    return result;
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanRow");
}

DataFrame DataFrame::DropNanRow(int thresh, const Names& subset) const
try {
    Positions positions;
    const ErrorCode code = PositionsOf(*this, subset, positions);
    return code == ERROR_NONE ? DropNanRow(thresh, positions)
                              : FailedTable(code, "DropNanRow(thresh, subset) check param failed");
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanRow");
}

DataFrame DataFrame::DropNanCol(bool any) const
try {
    if (error.code != ERROR_NONE) {
        LogError("Dataframe %d invalid.", error.code);
        return FailedTable(error.code, "Dataframe " + std::to_string(error.code) + " invalid.");
    }
    const std::uint32_t most = RowCount() == 0 ? 0 : RowCount() - 1;
    return DropColumnsByNans(*this, any ? 0 : most, !any, "Drop nan error on calculate isnan.");
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanCol");
}

DataFrame DataFrame::DropNanCol(int thresh) const
try {
    if (error.code != ERROR_NONE) {
        LogError("DropNanCol(thresh): Dataframe %d invalid.", error.code);
        return FailedTable(error.code, error.message);
    }
    if (thresh < 1) {
        return DataFrame(*this);
    }
    const auto wanted = static_cast<std::uint32_t>(thresh);
    if (RowCount() < wanted) {
        LogWarning("Empty DataFrame after drop col");
        return {};
    }
    return DropColumnsByNans(*this, RowCount() - wanted, false, "DropNanCol(thresh): Error on calculate isnan");
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropNanCol");
}

ErrorCode DataFrame::DropNanRowInplace(bool any, const Positions& subset)
{
    *this = DropNanRow(any, subset);
    return error.code;
}

ErrorCode DataFrame::DropNanRowInplace(bool any, const Names& subset)
{
    Positions positions;
    const ErrorCode code = PositionsOf(*this, subset, positions);
    return code == ERROR_NONE ? DropNanRowInplace(any, positions) : code;
}

ErrorCode DataFrame::DropNanRowInplace(int thresh, const Positions& subset)
{
    *this = DropNanRow(thresh, subset);
    return error.code;
}

ErrorCode DataFrame::DropNanRowInplace(int thresh, const Names& subset)
{
    Positions positions;
    const ErrorCode code = PositionsOf(*this, subset, positions);
    return code == ERROR_NONE ? DropNanRowInplace(thresh, positions) : code;
}

ErrorCode DataFrame::DropNanColInplace(bool any)
{
    *this = DropNanCol(any);
    return error.code;
}

ErrorCode DataFrame::DropNanColInplace(int thresh)
{
    *this = DropNanCol(thresh);
    return error.code;
}

} // namespace MERVO::Tessera
