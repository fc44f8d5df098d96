#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tessera/core/error.h"
#include "tessera/core/series.h"

namespace MERVO::Tessera {

/**
 * Shape, names and error state of a table, and its hold on the columns.
 *
 * A table and its slices share one vector of columns and one name map; each has its own windows and its own error. A
 * table keeps its first failure until something is assigned over it.
 */
class TESSERA_API DataFrameView {
public:
    using Range = std::array<unsigned int, 2>; ///< begin and end, end exclusive
    using NameRange = std::array<std::string, 2>;
    using Columns = std::vector<SeriesPtr>;
    using NameMap = std::map<std::string, unsigned int>;

    DataFrameView();

    /// A cursor on the window's rows of a column. Null for a null column, for rows that the column does not have (any
    /// more), and when memory is short.
    virtual Cursor GetSlicedIterator(const SeriesPtr& column) const;
    virtual ~DataFrameView() = default;
    DataFrameView(const DataFrameView&) = default;
    /// Shares the columns, as copying does, so that what was moved from can still be asked.
    DataFrameView(DataFrameView&& other) noexcept;

    const Range& GetRowIndex() const { return rowIndex; }
    const Range& GetColIndex() const { return colIndex; }
    void SetRowIndex(const Range& rows) { rowIndex = rows; }
    void SetColIndex(const Range& columns) { colIndex = columns; }
    unsigned int RowCount() const { return LengthOf(rowIndex); }
    unsigned int ColumnCount() const { return LengthOf(colIndex); }

    /// Column k of the window, counted from 0; a null column where there is none (any more).
    const SeriesPtr& GetColumn(unsigned int k) const;

    /// The table's first failure; code 0 and "healthy dataframe" without one.
    const Error& GetError() const { return error; }
    /// Notes a failure. A table that has one keeps its code and message. Code 0 does nothing.
    void SetError(const Error& newError) const;

    /// Opens the windows to all columns and all rows of the first column. For owners: it discards a window.
    void RefreshShape();
    /// RefreshShape and RefreshColumnName. Returns the table's code at once if it failed before.
    ErrorCode RefreshView();
    /**
     * Rebuilds the name map if it is stale, and makes the names unique on the way: of three columns `a` the second
     * becomes `a_1` and the third `a_1_1`.
     * @return 0, or 3: no memory, which the table then holds.
     */
    ErrorCode RefreshColumnName() const;

    /// The map from unique name to absolute column position, refreshed; null when it could not be made.
    std::shared_ptr<const NameMap> GetNameToIndex() const;
    /// The names of the window's columns, in order; none for a failed table, and without memory for them.
    std::vector<std::string> GetColumnName() const;
    /**
     * Names the window's columns. Duplicates are allowed, and become unique when names are next needed.
     * @return 0, or 6: the table failed before; 5: the count differs from the window's columns; 3: no memory. After a
     *         failure all names are as before.
     */
    ErrorCode SetColumnName(const std::vector<std::string>& names);

    /// Writes a diagnosis: the table's state under a message to the log at level 4, its columns to standard output.
    void Show(const std::string& message) const;

protected:
    DataFrameView& operator=(const DataFrameView&) = default;
    /// Takes all but the error.
    void ShareColumnsOf(const DataFrameView& other) noexcept;

    /// A reversed window, which only SetRowIndex and SetColIndex can make, is empty.
    static unsigned int LengthOf(const Range& window) { return window[1] > window[0] ? window[1] - window[0] : 0; }

    bool SharesColumnsWith(const DataFrameView& other) const { return series == other.series; }

    mutable bool isColNameDirty = true;
    std::shared_ptr<Columns> series;
    mutable std::shared_ptr<NameMap> nameToIndex;
    Range rowIndex{0, 0};
    Range colIndex{0, 0};
    mutable Error error{ERROR_NONE, "healthy dataframe"};
};

/**
 * Prints a table as text: a line of names, a line of value types, the first and last five rows when there are more than
 * ten, numbers to the right, long strings cut, and the shape as "[1461 rows x 6 columns]". A failed table prints its
 * code and message.
 */
TESSERA_API std::ostream& operator<<(std::ostream& stream, const DataFrameView& table);

} // namespace MERVO::Tessera
