#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "tessera/core/data_frame_view.h"
#include "tessera/core/factories.h"
#include "tessera/core/vector_exchange.h"
#include "tessera/platform/array_record.h"

namespace MERVO::Tessera {

/**
 * A window on columns that a table holds.
 *
 * A slice shares the columns: what is written through it, the table and all its other slices see. Its length,
 * containers and value types can't change. Copying a window gives a second one on the same cells; assigning to a window
 * copies cell values into it.
 *
 * Failing slices come back as an empty window that holds the code; the source is not marked. Codes: the source's own
 * when it failed before; 4 for an empty or reversed range, or one beyond the window; 5 for a name that is null or
 * missing; 3 for no memory.
 */
class TESSERA_API DataFrameRef : public DataFrameView {
public:
    DataFrameRef() = default;
    DataFrameRef(const DataFrameRef&) = default;
    DataFrameRef(DataFrameRef&&) noexcept = default;

    /// Rows and columns by range, counted from the window's first.
    virtual DataFrameRef Slice(Range rows, Range columns) const;
    /// Axis 0: rows by range, all columns. Any other axis: columns by range, all rows.
    virtual DataFrameRef Slice(unsigned int axis, Range range) const;
    /// Rows by range, columns from the first name to before the second.
    virtual DataFrameRef Slice(Range rows, NameRange columns) const;

    /// Columns by range.
    virtual DataFrameRef operator[](Range columns) const;
    /// Columns from the first name to before the second.
    virtual DataFrameRef operator[](NameRange columns) const;
    /// One column; 4294967295 stands for the whole window.
    virtual DataFrameRef operator[](unsigned int column) const;
    /// The named column.
    virtual DataFrameRef operator[](const char* name) const;
    /// As operator[](unsigned int); keeps `table[0]` from meaning a null name.
    DataFrameRef operator[](int place) const { return (*this)[static_cast<unsigned int>(place)]; }

    /**
     * Run a functor over this table as destination, column by column.
     *
     * A window receives results in its existing cells; a table gets new columns (see DataFrame). Where the destination
     * overlaps a source, everything is computed before anything is written.
     * @return 0, or the code of the first failure: the table's own earlier one; 7: a source without columns; 18 to 20:
     *         containers, column counts or lengths don't fit; 21: the functor refused, as it does when a window would
     *         change its value type; else the functor's code. 7 and 18 to 20 are told by the log, and stored only for
     *         column counts that can't fit; all others are stored.
     */
    [[nodiscard]] virtual ErrorCode ApplyInplace(
        const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);
    [[nodiscard]] virtual ErrorCode ApplyInplace(const UnaryFactory& factory, const DataFrameRef& src);
    [[nodiscard]] virtual ErrorCode ApplyInplace(const NullaryFactory& factory);

    /// Copies cell values into the window. A failure is stored as "operator = (assign) failed".
    DataFrameRef& operator=(const DataFrameRef& other);

    /**
     * Compute with this table as left operand and destination, cell by cell, and return it. Columns are paired as by
     * the operators of tessera/functors/table_operators.h; a window keeps its length and value type.
     *
     * After a failure this table holds the first code and "operator+= failed", or the text of the other operator.
     */
    DataFrameRef& operator+=(const DataFrameRef& rhs);
    DataFrameRef& operator-=(const DataFrameRef& rhs);
    DataFrameRef& operator*=(const DataFrameRef& rhs);
    DataFrameRef& operator/=(const DataFrameRef& rhs);
    DataFrameRef& operator%=(const DataFrameRef& rhs);
    DataFrameRef& operator&=(const DataFrameRef& rhs);
    DataFrameRef& operator|=(const DataFrameRef& rhs);

    /// Tell whether any, or each, cell of a table of bools is true. False, with an error in the log, for a table that
    /// failed before, is not of bools only, or has no cells.
    bool Any() const;
    bool All() const;

    /**
     * Sorts the rows by key columns, the first one given the most significant; a key counts where it is given first.
     * Equal rows keep their order, also when it is descending.
     *
     * A table gets its columns in the new order one after the other, a window has its cells rearranged in place.
     * Numbers come by size, false before true, strings by their bytes and then by length, stamps by time; where NaN
     * comes to stand, std::stable_sort with `<` decides. Working set: up to 21 bytes per row (with NaN 28), then 4 and
     * one column, of short strings 16; where that can't be had, cells change places.
     * @param keys positions in the window, or names.
     * @return 0, or 5: no keys, or no such name; 4: no such column; 1: a key of nested tables; 21: a column in a list;
     *         3: no memory; or the table's own code. Whatever fails, the rows stay as they are; what fails while they
     *         move is stored.
     */
    [[nodiscard]] ErrorCode Sort(const std::vector<std::uint32_t>& keys, const bool& ascending);
    [[nodiscard]] ErrorCode Sort(const std::vector<std::string>& keys, const bool& ascending);
    /// The same for lists written out, which the forms above would leave open.
    [[nodiscard]] ErrorCode Sort(std::initializer_list<std::uint32_t> keys, const bool& ascending)
    {
        return Sort(std::vector<std::uint32_t>(keys), ascending);
    }
    [[nodiscard]] ErrorCode Sort(std::initializer_list<std::string> keys, const bool& ascending)
    {
        return Sort(std::vector<std::string>(keys), ascending);
    }

    /**
     * Makes a table of the distinct values of one column, in the order in which they come first. All NaN are one value,
     * and so are 0.0 and -0.0, of which the first one is kept.
     * @param column counted from the window's first.
     * @return the table, or one with the code: this one's own; 7: no columns or no rows; 5: no such column; 1: nested
     *         tables; 21: a column in a list; 3: no memory.
     */
    DataFrame Unique(std::uint32_t column) const;

    /// The columns' common value type; MIX_TYPE (15) if they differ; -1 for a failed table or an empty window.
    MERVO_TESSERA_TYPEID Type() const;
    /// The columns' common container; -1 if they differ, for a failed table or an empty window.
    ContainerID ContainerType() const;

    /// The window's cells, a vector per row. Empty, with an error in the log, unless Type() is T's and the table
    /// healthy.
    template <typename T>
    std::vector<std::vector<T>> ToVector() const
    {
        return VectorExchange<T>::Write2D(*this);
    }
    /// The window's cells row by row: (r, c) stands at c + r * columns. Else as ToVector.
    template <typename T>
    std::vector<T> To1DVector() const
    {
        return VectorExchange<T>::Write1D(*this);
    }

    /**
     * Copies a column of the window to a caller's array of `size` elements, from the first row on, until either ends.
     *
     * A bool takes a byte. For strings, stamps and tables `data` points to constructed objects, which are assigned to.
     * @param type   the array's element type, which must be the column's.
     * @param column counted from the window's first.
     * @return 0, or 5, told by the log: a failed table or one without columns, no array, no such column, another type;
     *         or a window whose column is gone or got shorter. Nothing is stored in the table.
     */
    [[nodiscard]] ErrorCode ColumnToArray(
        void* data, MERVO_TESSERA_TYPEID type, unsigned int size, unsigned int column) const;
    /// The window's cells in one block, column after column, though its shape tells the rows first: (r, c) stands at
    /// r + rows * c. The empty record, with an error in the log, for a table that failed before or is not of numbers or
    /// bools of one type, or has no cells, and where memory is short.
    operator NdData() const;

    /**
     * Tells the positions of named columns among all columns of the table, whatever the window.
     * @param index receives a position per name; after a failure, those before the name that failed.
     * @return 0, or 5: no such column; 3: no memory for the names.
     */
    [[nodiscard]] ErrorCode GetIndexVector(
        std::vector<std::uint32_t>& index, const std::vector<std::string>& names) const;

    /**
     * The window with its rows as columns, named "col_" and the row's number. Rows are counted from the first of the
     * columns, also where the window begins further down.
     * @return the table, or one with the code: 7: no columns or no rows; 6: more than 1024 rows; 22: several value
     * types, which is stored here too; 2: a container out of range; or this table's own.
     */
    DataFrame Transpose() const;

    /**
     * Writes the window as lines of fields between separators. Nothing is quoted: a cell that holds the separator or a
     * line feed does not survive reading back.
     *
     * A regular file is written beside its place and put there when it is whole, so a failure leaves what was there.
     * It keeps its permissions, and a link stays a link. A device or a pipe is written straight.
     * @param path      an existing folder's file; replaced if it exists.
     * @param writeHeader puts the column names in front.
     * @return 0, or 2: an empty separator, a table that has no text form, a folder that does not exist, a file that
     *         can't be written, or a full disk; 3: no memory. Nothing is stored in the table.
     */
    [[nodiscard]] ErrorCode ToCSV(std::string path, bool writeHeader, const std::string& separator) const;
    /// Resolves a path of an existing file or folder in place; false if it is longer than 4096 bytes or can't be
    /// resolved.
    static bool PathCheck(std::string& path);

protected:
    /// What a check says: the code to return, and whether to go on.
    using Verdict = std::pair<ErrorCode, bool>;

    DataFrameRef FailedSlice(ErrorCode code, const std::string& message) const;
    /// The position of a named column relative to the window; a code and message in `failure` without one.
    bool FindColumn(const std::string& name, unsigned int& place, Error& failure) const;

    bool OverlappingCheck(const DataFrameRef& other) const;
    Verdict UnaryCheck(const std::string& functor, const DataFrameRef& src) const;
    Verdict BinaryCheck(const std::string& functor, const DataFrameRef& lhs, const DataFrameRef& rhs) const;
    ErrorCode BinaryApplyCheck(const std::string& functor, const DataFrameRef& lhs, const DataFrameRef& rhs) const;
    ErrorCode NoCopyApply(const UnaryFactory& factory, const DataFrameRef& src);
    ErrorCode NoCopyApply(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);
    ErrorCode CopyApply(const UnaryFactory& factory, const DataFrameRef& src);
    ErrorCode CopyApply(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);
    ErrorCode TempToThis(const Columns& results);
    ErrorCode SortByPositions(const std::vector<std::uint32_t>& keys, bool ascending);
    /**
     * Puts the rows into a new order, all columns or none: row i becomes the one at positions[i]. Each row occurs once.
     * A failure is not stored. Throws std::bad_alloc while nothing has changed.
     */
    Error PermuteRows(const std::vector<std::uint32_t>& positions);
    Error PermuteBySelection(const std::vector<std::uint32_t>& positions, bool isOwner);
    /// Replaces the text of a failure, also of an earlier one, by that of the operator in which it showed.
    DataFrameRef& FinishOperator(ErrorCode code, const char* failure);
    DataFrameRef& AssignCombined(const BinaryFactory& factory, const DataFrameRef& rhs, const char* failure);
};

} // namespace MERVO::Tessera
