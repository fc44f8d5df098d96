#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tessera/core/column_list.h"
#include "tessera/core/data_frame_ref.h"

namespace MERVO::Tessera {

class BaseGroups;
class DateTime;
class Groups;
class Samples;

/**
 * A table: the owner of its columns.
 *
 * Copying a table copies its cells; moving one shares them. As the destination of a functor it gets new columns, as
 * many as the source has, whose length and value type may differ from before. Slices taken before such a change see the
 * changed columns, or none; they answer with a code then, never with a fault.
 */
class TESSERA_API DataFrame : public DataFrameRef {
public:
    using Types = std::vector<MERVO_TESSERA_TYPEID>;
    using Containers = std::vector<ContainerID>;

    DataFrame() = default;
    /// Takes the columns. They must have one length, else the table holds 15.
    explicit DataFrame(Columns&& columns);
    DataFrame(DataFrame&& other) noexcept = default;
    /// To copy a table, or to assign a copy, throws std::bad_alloc where memory is short.
    DataFrame(const DataFrame& other);
    DataFrame(const DataFrameRef& other);

    virtual DataFrame& operator=(const DataFrame& other);
    virtual DataFrame& operator=(DataFrame&& other) noexcept;
    DataFrame& operator=(const DataFrameRef& other);
    /**
     * Assigns a slice. One that selects columns of this very table, with all its rows, moves them: this table keeps
     * only those, and older slices find null columns. Any other slice is deep-copied.
     */
    DataFrame& operator=(DataFrameRef&& other);

    /// Copies the window's cells; windows begin at 0 afterwards. A failure is stored here; one of other's makes it
    /// ours.
    void DeepCopy(const DataFrameRef& other);
    /// Takes the other's columns, windows, error and names without copying a cell.
    void ShallowCopy(const DataFrameRef& other);

    using DataFrameRef::operator[];
    /// Rows by range.
    DataFrameRef operator[](Range rows) const override;
    /// One row; 4294967295 stands for the whole table.
    DataFrameRef operator[](unsigned int row) const override;

    [[nodiscard]] ErrorCode ApplyInplace(
        const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs) override;
    [[nodiscard]] ErrorCode ApplyInplace(const UnaryFactory& factory, const DataFrameRef& src) override;
    [[nodiscard]] ErrorCode ApplyInplace(const NullaryFactory& factory) override;

    /**
     * Runs a unary functor over the rows of src instead of its columns: its r-th result row comes from src's row r.
     * @tparam T src's one value type.
     * @return 0, or 2: src mixes containers; 7: src has no columns; 22: src or this table mixes value types or has
     * none; the code of a table that failed before; or the functor's code.
     */
    template <typename T>
    [[nodiscard]] ErrorCode ApplyRowInplace(const UnaryFactory& factory, const DataFrame& src)
    {
        return ApplyRows(factory, src, TYPE_ID_OF<T>);
    }

    /**
     * Fills the table from a row-major vector: cell (r, c) is data[c + columns * r]. What it held before is replaced.
     * @param shape      rows and columns, neither 0.
     * @param types      what each column shall hold, or nothing; a column that differs from T is cast.
     * @param containers one per column, or nothing for arrays.
     * @return 0, or 15: the shape fits neither the data nor the lists, or a column could not be built; 1: a cast
     * failed; the table's own if it failed before. The last two are stored in the table.
     */
    template <typename T>
    [[nodiscard]] ErrorCode ReadVector(const std::vector<T>& data, std::array<unsigned int, 2> shape,
        const Types& types = {}, const Containers& containers = {})
    {
        return VectorExchange<T>::Read1D(*this, data, shape, types, containers);
    }
    template <typename T>
    [[nodiscard]] ErrorCode ReadVector(std::vector<T>&& data, std::array<unsigned int, 2> shape,
        const Types& types = {}, const Containers& containers = {})
    {
        return VectorExchange<T>::Read1D(*this, data, shape, types, containers);
    }

    /// Fills an empty table from a list of columns of one length. Returns 2 for a table with columns, else as
    /// ReadVector.
    template <typename T>
    [[nodiscard]] ErrorCode ReadVectorByCol(
        const std::vector<std::vector<T>>& data, const Types& types = {}, const Containers& containers = {})
    {
        return VectorExchange<T>::Read2D(*this, std::vector<std::vector<T>>(data), types, containers);
    }
    template <typename T>
    [[nodiscard]] ErrorCode ReadVectorByCol(
        std::vector<std::vector<T>>&& data, const Types& types = {}, const Containers& containers = {})
    {
        return VectorExchange<T>::Read2D(*this, std::move(data), types, containers);
    }

    /// Tell whether data could be read: 0, 15, or the table's own code.
    template <typename T>
    [[nodiscard]] ErrorCode Check1DVector(const std::vector<T>& data, std::array<unsigned int, 2> shape,
        const Types& types, const Containers& containers) const
    {
        return CheckLoad(*this, data.size(), shape, types.size(), containers.size());
    }
    template <typename T>
    [[nodiscard]] ErrorCode Check2DVector(const std::vector<std::vector<T>>& data, const Types& types) const
    {
        return CheckLengths(LengthsOf(data), types.size());
    }
    template <typename T>
    [[nodiscard]] ErrorCode Check2DVectorSec(const std::vector<std::vector<T>>& data, const Types& types) const
    {
        return CheckColumnCount(*this, data.size(), types.size());
    }

    /**
     * Reads a file of lines of fields into an empty table. Nothing is quoted; empty lines are passed over, CR LF ends a
     * line as LF does, and a line that ends in the separator has an empty field behind it. Fields become cells as by a
     * cast from string. The file is held in memory until it is read.
     * @param path      a regular file or a pipe.
     * @param types     one value type per column.
     * @param hasHeader takes the first line for the names; otherwise they are "col_0", "col_1" and so on.
     * @param separator one byte or more.
     * @return 0, or 2: the table has columns, no separator, no such file, no content, lines of different field counts
     *         (the log tells the line, counted from 1), or another count of types; 3: no memory; 1: a field that can't
     *         be cast, and 5: a type that is none, which the table then holds, with the columns before it; or the
     *         table's own.
     */
    [[nodiscard]] ErrorCode ReadCSV(std::string path, const Types& types, bool hasHeader, const std::string& separator);
    /// The same with one value type for all columns; any but uint8_t.
    template <typename T>
    [[nodiscard]] ErrorCode ReadCSV(std::string path, bool hasHeader, const std::string& separator)
    {
        static_assert(ValueTypes::NumberOf<T> >= 0 && !std::is_same_v<T, std::uint8_t>);
        return ReadUniformCSV(std::move(path), TYPE_ID_OF<T>, hasHeader, separator);
    }
    /// Appends all fields of a file to cells, and tells the fields per line. Returns 0, 2 or 3 as ReadCSV; with 2 or 3
    /// cells may hold a part of the file.
    [[nodiscard]] ErrorCode GetCSVVec(
        const std::string& path, const std::string& separator, std::vector<std::string>& cells, unsigned int& columns);
    /// Appends the fields of one line to cells; returns their number, 0 for a line without content.
    static unsigned int Str2Vector(
        const std::string& line, const std::string& separator, std::vector<std::string>& cells);
    /// Makes the table anew from the fields of GetCSVVec; with 2 or 3 it keeps what it held. Returns as ReadCSV.
    [[nodiscard]] ErrorCode ReadFormVec(
        const std::vector<std::string>& cells, unsigned int columns, const Types& types, bool hasHeader);

    /**
     * Make a new table of some of the rows, in their order; columns keep their names.
     * @param boolFilter one column of bools, a row for each of this table. Selecting keeps the rows whose bit is set,
     *                   dropping those whose bit is clear.
     * @return the table, or one with the code: this table's or the filter's own; 17: a filter of another shape; 2: a
     *         filter of another value type.
     */
    DataFrame SelectRow(const DataFrame& boolFilter) const;
    DataFrame DropRow(const DataFrame& boolFilter) const;
    /// The rows at the given positions, in the order of the list; repeats are allowed, and no position gives no row.
    /// With the code: this table's own; 7: it has no rows; 21: there is no such row.
    DataFrame SelectRow(const std::vector<std::uint32_t>& index) const;
    /// All rows but those at the given positions. With the code: this table's own; 7: it has no rows; 4: there is no
    /// such row; 3: no memory.
    DataFrame DropRow(const std::vector<std::uint32_t>& index) const;

    /// Put the table that the form without Inplace gives in this one's place, also where it failed. Return its code.
    ErrorCode SelectRowInplace(const DataFrame& boolFilter);
    ErrorCode SelectRowInplace(const std::vector<std::uint32_t>& index);
    ErrorCode DropRowInplace(const DataFrame& boolFilter);
    ErrorCode DropRowInplace(const std::vector<std::uint32_t>& index);

    /**
     * Make a new table of copies of some of the columns, with their names.
     *
     * Positions and names count among all columns of the table, and give whole columns; bools count in the window, one
     * row of them with a column for each of its columns, and the copies are cut to its rows.
     * @return the table, or one with the code: this table's or the filter's own; 4: there is no such position; 5: no
     *         such name, or a filter that is not bool; 17: a filter of another shape; 21: a column in a list, which
     *         can't be copied; 3: no memory.
     */
    DataFrame SelectCol(const std::vector<std::uint32_t>& index) const;
    DataFrame SelectCol(const std::vector<std::string>& names) const;
    DataFrame SelectCol(const DataFrame& boolFilter) const;
    /// Make a new table of copies of all other columns, in their order; true drops. With the code as SelectCol, but 2:
    /// there is no such position. An empty list gives a copy of the whole.
    DataFrame DropCol(const std::vector<std::uint32_t>& index) const;
    DataFrame DropCol(const std::vector<std::string>& names) const;
    DataFrame DropCol(const DataFrame& boolFilter) const;

    /// Put the table that the form without Inplace gives in this one's place, also where it failed. Return its code.
    ErrorCode SelectColInplace(const std::vector<std::uint32_t>& index);
    ErrorCode SelectColInplace(const std::vector<std::string>& names);
    ErrorCode SelectColInplace(const DataFrame& boolFilter);
    ErrorCode DropColInplace(const std::vector<std::uint32_t>& index);
    ErrorCode DropColInplace(const std::vector<std::string>& names);
    ErrorCode DropColInplace(const DataFrame& boolFilter);

    /**
     * Puts copies of another table's columns in front of the column at `position`. Names become unique when they are
     * next needed. After a failure this table has the columns that it had.
     * @param other    as many rows as this table; cut to its windows. A table without columns becomes a copy of it.
     * @param position 0 to the number of columns, which appends.
     * @return 0, or the code that this table then holds: its own; 6: another number of rows; 5: a position too far; 21:
     *         a column in a list, which can't be copied; 3: no memory. Not held by this table: other's own code, and 7
     *         where it has no columns.
     */
    ErrorCode InsertColInplace(const DataFrame& other, const unsigned int& position);
    /// Puts copies of another table's columns behind the last one; returns as InsertColInplace.
    ErrorCode AppendColInplace(const DataFrame& other);

    /**
     * Makes a new table of the rows that are not short of values. Missing is a NaN in a float or double column.
     * @param any    true leaves out rows with a NaN in at least one of the columns looked at, false those with NaN in
     *               all of them.
     * @param subset the columns looked at, each once, counted in the window; all where it is empty.
     * @return the table, or one with the code: this table's own; 4: there is no such column; 5: no such name; 1: a
     *         column of nested tables; 21: a column in a list; 3: no memory.
     */
    DataFrame DropNanRow(bool any, const std::vector<std::uint32_t>& subset = {}) const;
    DataFrame DropNanRow(bool any, const std::vector<std::string>& subset) const;
    /**
     * The same by a number of cells.
     * @param thresh leaves out rows with fewer present cells in the columns looked at. Below 1 it gives a copy; above
     *               their number, a table without columns.
     * @param subset as above, but the present cells of a column that is given twice count twice.
     * @return as above; also 7: no rows.
     */
    DataFrame DropNanRow(int thresh, const std::vector<std::uint32_t>& subset = {}) const;
    DataFrame DropNanRow(int thresh, const std::vector<std::string>& subset) const;
    /**
     * Makes a new table of the columns that are not short of values.
     * @param any true leaves out columns with at least one NaN, false those of nothing but NaN; a column without rows
     *            is one of these.
     * @return the table, or one with the code: this table's own; 7: no columns; 1: a column of nested tables; 21: a
     *         column in a list; 3: no memory.
     */
    DataFrame DropNanCol(bool any) const;
    /// The same for columns with fewer than `thresh` present cells. Below 1 it gives a copy; above the number of rows,
    /// a table without columns and without error.
    DataFrame DropNanCol(int thresh) const;

    /// Put the table that the form without Inplace gives in this one's place, also where it failed. Return its code; 5
    /// or 3, and nothing is changed, where a name can't be found.
    ErrorCode DropNanRowInplace(bool any, const std::vector<std::uint32_t>& subset = {});
    ErrorCode DropNanRowInplace(bool any, const std::vector<std::string>& subset);
    ErrorCode DropNanRowInplace(int thresh, const std::vector<std::uint32_t>& subset = {});
    ErrorCode DropNanRowInplace(int thresh, const std::vector<std::string>& subset);
    ErrorCode DropNanColInplace(bool any);
    ErrorCode DropNanColInplace(int thresh);

    /// The check of the row forms by `any`: fills an empty `columns` with all positions. False, and the code where
    /// there is one, for a table that failed before or has no columns, and for a position that no column has.
    bool DropNanRowPreCheck(
        const std::vector<std::uint32_t>& subset, std::set<std::uint32_t>& columns, ErrorCode& code) const;
    /// The same for the row forms by `thresh`; it fills an empty `subset`.
    bool DropNanRowThreshCheck(std::vector<std::uint32_t>& subset, ErrorCode& code) const;

    /**
     * Marks rows that are equal to another one, in one column of bools named "col_0".
     *
     * Floating numbers are equal if they lie within 2^-52 (float: 2^-23) of the next row in order, NaN never is; all
     * others if they are the same. Working set: with floating numbers, for which rows are sorted, 29 bytes per row;
     * else a byte per row, and some 32 bytes per distinct row (56 per distinct string) or 4 per row.
     * @param subset the columns that count, as absolute positions; all of the table's without any.
     * @param keep   which of equal rows is not marked: "first", "last", or "false" for none of them.
     * @return the marks, or a table with the code: this one's own; 7: no rows or columns; 5: another keep; 4: no such
     *         column; 1: nested tables; 18, in a subset 21: a column in a list; 3: no memory.
     */
    DataFrame Duplicated(const std::vector<std::uint32_t>& subset, const std::string& keep) const;
    /// The marks of all rows of a table, a byte of 0 or 1 each; any other keep counts as "first". None after a failure,
    /// which `columns` then holds.
    static std::vector<std::uint8_t> DropDuplicatesSubSet(DataFrame& columns, const std::string& keep);
    /// Drops the rows that Duplicated marks. Returns 0, or the code of Duplicated, when nothing changes, or of
    /// DropRowInplace.
    ErrorCode DropDuplicatesInplace(const std::vector<std::uint32_t>& subset, const std::string& keep);
    /// The rows that Duplicated leaves unmarked, as a new table; with a failure it holds the code.
    DataFrame DropDuplicatesOutplace(const std::vector<std::uint32_t>& subset, const std::string& keep) const;

    /**
     * Brings rows with equal keys together; each group of rows is then a run of them. The first key is the most
     * significant one, and rows with equal keys keep their order.
     *
     * A group ends where a key differs from that of the next row: floating numbers if they lie more than 2^-52 (float:
     * 2^-23) apart, NaN always, so that each row with NaN is a group of its own. Nested tables as keys neither sort nor
     * end groups. Working set: that of Sort, and a byte per row; without inPlace a copy of the table.
     * @param keyCount  how many keys there are; without keys there are no groups.
     * @param keys      column positions, or in the other forms names, each once.
     * @param inPlace   reorders this table, whose columns the groups then share; else they get columns of their own.
     * @param ascending the order of the keys.
     * @param sorted    false brings equal keys together in the order of their first appearance (see Func::SortIndex).
     * @return the groups. None, and the reason in the log, for a table that has failed or is without columns or
     *         rows; for no keys, one that is no column, or one given twice (which is not logged); for a column in a
     *         list; and for want of memory. A failure changes no row and is not stored.
     */
    Groups GroupBy(unsigned int keyCount, const unsigned int* keys, bool inPlace, bool ascending, bool sorted);
    Groups GroupBy(const std::vector<std::uint32_t>& keys, bool inPlace, bool ascending, bool sorted);
    Groups GroupBy(const std::vector<std::string>& names, bool inPlace, bool ascending, bool sorted);
    /// The same for lists written out, which the forms above would leave open.
    Groups GroupBy(std::initializer_list<std::uint32_t> keys, bool inPlace, bool ascending, bool sorted);
    Groups GroupBy(std::initializer_list<std::string> names, bool inPlace, bool ascending, bool sorted);

    /**
     * Makes a table of what functors make of groups of rows with equal keys: the key columns with a row for each group,
     * then the value columns with the results. It is, in every bit and in the order of rows,
     * SelectCol(keys and values).GroupBy(the keys, false, false, false).Apply(creators), but moves no row that it can
     * count where it lies.
     *
     * Working set: 4 bytes per row, and some 32 bytes per distinct key (a string 40, or up to 16 per row); 16 per
     * group. A functor other than Sum, Mean, Max, Min, Std and Var takes another 4 bytes per row and a copy of a
     * column. Floating keys are sorted, which takes 29 bytes per row.
     * @param keys    columns of the table.
     * @param values  the columns to evaluate.
     * @param creator a functor for all value columns; in the other form there may be one for each of them.
     * @return the table, or one with the code of SelectCol, or else of BaseGroups::Apply.
     */
    DataFrame Aggregate(const ColumnList& keys, const ColumnList& values, const UnaryFactory& creator) const;
    DataFrame Aggregate(
        const ColumnList& keys, const ColumnList& values, const std::vector<UnaryFactory>& creators) const;
    /**
     * Makes a table of the key columns and, in place of the values of each row, what a functor makes of its group. Rows
     * are in the table's own order; the cells are those of BaseGroups::Transform. The rest is as with Aggregate.
     * @param creator a functor that gives one value for each group.
     */
    DataFrame TransformGroups(const ColumnList& keys, const ColumnList& values, const UnaryFactory& creator) const;

    /**
     * Joins this table and another one: a row for each pair of a left and a right row with equal keys.
     *
     * Rows come in descending order of their keys, the last key being the most significant one, and among equal keys in
     * the order of this table, then of `right`. Integers, strings, bools and stamps match if they are the same,
     * floating numbers if they lie within 2^-52 (float: 2^-23) of the next row's in order, NaN never; there is no
     * conversion. First come the key columns under this table's names, then this table's other columns, then those of
     * `right`. A missing row gives NaN in floating columns and in all others 0, false, nothing or a stamp of 0.
     *
     * Working set: for each row of both tables 14 bytes while they are sorted, up to 22 where many keys begin alike or
     * there are fewer than 2^13 rows, with NaN 29; then 5, with 8 for each row of the result, which alone stay until
     * the result is whole. Keys are not copied. Where the values of a single key lie close together, up to 20 bytes for
     * each row take the place of the first two.
     * @param leftOn   positions of the keys in this table's window. Each counts once, and they are taken in ascending
     *                 order: the lowest one is paired with the lowest of rightOn, and so on. Without keys every row
     *                 matches every other.
     * @param type     which rows without a match stay: none, those of right, of this table, or both.
     * @param suffixes put behind the names of columns that are no keys: this table's, and those of right.
     * @return the table, without columns where it has no rows; or one with the code: 5: a table that failed, a type
     *         that is none, keys that are no columns, differ in number or value type, or are nested tables; 3: no
     *         memory, or more than 4294967295 rows; 21: a column in a list.
     */
    DataFrame Merge(const DataFrame& right, const std::vector<std::uint32_t>& leftOn,
        const std::vector<std::uint32_t>& rightOn, MERVO_TESSERA_MERGE_JOINTYPE type,
        const std::array<std::string, 2>& suffixes) const;
    /// Puts what Merge gives with the suffixes "_x" and "_y" in this table's place. Returns 0, also for a result
    /// without columns, which changes nothing; or Merge's code, and the table stays as it was.
    ErrorCode MergeInplace(const DataFrame& right, const std::vector<std::uint32_t>& leftOn,
        const std::vector<std::uint32_t>& rightOn, MERVO_TESSERA_MERGE_JOINTYPE type);

    /// A run of equal keys in the sorted rows of two tables: where the rows of each side begin, and how many there are.
    struct MergeIndex {
        std::uint32_t leftBegin;
        std::uint32_t leftCount;
        std::uint32_t rightBegin;
        std::uint32_t rightCount;
    };

    /**
     * Cuts the rows into windows of one width by a column of moments. The first window starts at the earliest moment,
     * or, unless closedLeft, ends there; the others follow, and one without rows has a row of missing values. This
     * table stays as it is.
     *
     * Rows come by time, those of one moment in their order. Only stamps count, so no window knows a calendar. Windows
     * are counted before anything is built. Working set: that of Sort, 8 bytes per row, and a copy of the table.
     * @param timeColumn a position, or a name.
     * @param gap        the windows' width in seconds, 1 at least.
     * @param labelLeft  the moments become the starts of their windows, else the ends. What no moment can be becomes
     *                   the first or the last one that can.
     * @param closedLeft a window includes its start and not its end, else the other way round.
     * @return the windows as groups. None, and the reason in the log, for a table that has failed or is without columns
     *         or rows; a width below 1; no such column, or one of another type; more rows than 32 bits count or than
     *         memory can hold; and for want of memory. A failure is not stored.
     */
    Samples Resample(unsigned int timeColumn, const DateTime& gap, bool labelLeft, bool closedLeft) const;
    Samples Resample(std::string timeColumnName, const DateTime& gap, bool labelLeft, bool closedLeft) const;

    /// Column positions for PivotTable.
    struct TableParams {
        std::vector<std::uint32_t> values;  ///< what fills the cells
        std::vector<std::uint32_t> index;   ///< the columns whose values become rows
        std::vector<std::uint32_t> columns; ///< the columns whose values become columns of the result
    };
    /// A functor for each column of values, by its position.
    using PivotCreators = std::map<std::uint32_t, UnaryFactory>;
    /**
     * Makes a cross table: a row for each combination of the values in the index columns, and, for each combination of
     * those in `columns`, a column for each of the values. A cell holds what a functor makes of the values of the rows
     * with its two combinations.
     *
     * The index columns come first. Behind them, combinations come before values; the mean of `sales` for 2021 and
     * east is in column "sales-2021-east", the keys in the form of a cast to string. Rows and columns are in the order
     * in which GroupBy without sorting brings the combinations. Without `columns` the result has a column for each of
     * the values, under its own name. Working set: a copy of the selected columns, that of GroupBy, and twice the
     * aggregated values.
     * @tparam T   any number type but bool and long.
     * @param creators a functor for each of the values, or one for all. If it gives several rows for a combination, the
     *             first one counts.
     * @param fill what cells without rows hold, cast to the value's type.
     * @return the table; one with this table's own code if that failed before. An empty one, and the reason in the log,
     *         for a position that is no column or comes twice in a list; a functor without a value or a value without a
     *         functor; no values or no index; a table without rows; a column in a list; a functor that fails; more
     *         cells than memory can hold, or no memory.
     */
    template <typename T>
    DataFrame PivotTable(const TableParams& params, const PivotCreators& creators, T fill) const;
    template <typename T>
    DataFrame PivotTable(const TableParams& params, const UnaryFactory& creator, T fill) const;

private:
    void CopyOrThrow(const DataFrame& other);

    friend class ColumnLoader;
    friend class BaseGroups; // which shares the columns

    bool CheckGroupIndex(unsigned int keyCount, const unsigned int* keys) const;
    Groups GroupByInPlace(unsigned int keyCount, const unsigned int* keys, const std::vector<std::uint32_t>& index,
        std::vector<std::uint8_t>& flags);
    Groups GroupByOutPlace(unsigned int keyCount, const unsigned int* keys, const std::vector<std::uint32_t>& index,
        std::vector<std::uint8_t>& flags);
    Groups GroupByKeys(unsigned int keyCount, const unsigned int* keys, bool inPlace, bool ascending, bool sorted);
    Samples ResampleInner(unsigned int timeColumn, const DateTime& gap, bool labelLeft, bool closedLeft) const;

    // The steps of PivotTable, which share their code for all types of the fill: it comes as a column of one cell.
    bool IsPivotTableParamValid(const TableParams& params) const;
    /// Puts the creators in the order of the values. Returns 0, or -1: one too many, or too few.
    std::int32_t ProcessTableParam(
        const TableParams& params, const PivotCreators& creators, std::vector<UnaryFactory>& ordered) const;
    DataFrame PivotByCreator(const TableParams& params, const UnaryFactory& creator, const SeriesPtr& fill) const;
    DataFrame PivotByCreators(const TableParams& params, const PivotCreators& creators, const SeriesPtr& fill) const;
    DataFrame PivotCells(TableParams params, const std::vector<UnaryFactory>& creators, const SeriesPtr& fill) const;
    // These are called on the table of aggregated values; `rows` groups it by index.
    ErrorCode InsertPivotKey(const Groups& rows, const std::vector<std::uint32_t>& index, DataFrame& result) const;
    ErrorCode InsertPivotValue(const Groups& rows, const TableParams& params, const SeriesPtr& fill, DataFrame& result);
    /// Fills a column of the result with the source's cells at the given rows.
    void InsertPivotValueSingle(
        const std::vector<std::uint32_t>& cellRows, const SeriesPtr& source, const SeriesPtr& destination) const;
    std::string GetPivotValueName(
        const TableParams& params, const Groups& columnGroups, unsigned int group, unsigned int value) const;

    using MergeRows = std::vector<std::uint32_t>; ///< positions of rows or columns

    /// Merge behind its checks.
    DataFrame MergeInternal(const DataFrame& right, MergeRows& leftOn, MergeRows& rightOn,
        MERVO_TESSERA_MERGE_JOINTYPE type, const std::array<std::string, 2>& suffixes) const;
    /// The rows of both sides for each row of the result.
    Error PairMergeRows(const DataFrame& right, const MergeRows& leftOn, const MergeRows& rightOn,
        MERVO_TESSERA_MERGE_JOINTYPE type, MergeRows& leftRows, MergeRows& rightRows) const;
    /// Sorts the rows of both tables, this one's before those of the other, by each key: in descending order, the last
    /// key the most significant one. Flags where a key differs from that of the row before. Throws std::bad_alloc.
    MergeRows SortAndGetKey(const DataFrame& right, const MergeRows& leftOn, const MergeRows& rightOn,
        std::vector<std::uint8_t>& flags) const;
    // What follows takes rows in that order piece by piece, each of whole runs: the runs of all rows at once would take
    // more room than the rows.
    /// Counts the rows of each run, and appends it; a flag is set for the first row of a run.
    void CalculateMergeIndex(
        const std::vector<std::uint8_t>& flags, const MergeRows& index, std::vector<MergeIndex>& result) const;
    /// How many rows of the result runs make.
    std::uint64_t GetMergedSeriesLength(const std::vector<MergeIndex>& merge, MERVO_TESSERA_MERGE_JOINTYPE type) const;
    /// Appends the row of each side, or NO_ROW, for each of these rows; `index` is the one that the runs lie in.
    void GetLeftRightMergeIndex(const std::vector<MergeIndex>& merge, const MergeRows& index,
        MERVO_TESSERA_MERGE_JOINTYPE type, MergeRows& left, MergeRows& right) const;
    /// Append columns to a result; a failure is stored in it.
    void InsertMergeKey(const DataFrame& left, const DataFrame& right, const BinaryFactory& fillKeyFactory,
        unsigned int length, const std::tuple<MergeRows, MergeRows>& keys);
    void InsertMergeValue(const DataFrame& source, const MergeRows& rows, unsigned int length, const MergeRows& keys,
        const std::string& suffix);

    ErrorCode ApplyRows(const UnaryFactory& factory, const DataFrame& src, MERVO_TESSERA_TYPEID type);
    ErrorCode ReadUniformCSV(std::string path, MERVO_TESSERA_TYPEID type, bool hasHeader, const std::string& separator);
    bool UnaryApplyCheck(const std::string& functor, const DataFrameRef& src, ErrorCode& code) const;
    ErrorCode ApplyBinaryMultiVsMulti(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);
    ErrorCode ApplyBinarySingleVsMulti(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);
    bool ApplyRowPreCheck(const std::string& functor, const DataFrame& src, ErrorCode& code) const;

    /// Where results go: the columns at `position`, `count` of them, written one by one or, if sources would suffer, at
    /// the end.
    struct Landing {
        std::size_t position;
        unsigned int count;
        bool writesAtEnd;
    };
    /// The words of the two binary forms.
    struct BinaryTexts {
        const char* conversion;
        const char* containerChange;
    };
    /// Makes room for as many columns as a source has; returns where they land.
    std::size_t FitColumns(const DataFrameRef& multi);
    template <typename ComputeNext>
    ErrorCode ReplaceColumns(const Landing& landing, ComputeNext&& computeNext);
    ErrorCode ApplyBinary(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs,
        const Landing& landing, const BinaryTexts& texts);
    /// Keeps exactly the columns that an apply wrote, and refreshes the shape.
    void RemoveRedundantOnApply(const Landing& landing);
};

/// A table of shape[1] columns of shape[0] rows of one type, in arrays, named "col_0" and so on; 3 without memory.
TESSERA_API DataFrame GetEmptyDataFrame(std::array<unsigned int, 2> shape, MERVO_TESSERA_TYPEID type);
/// A table of new columns like those of a window, as long as the window, named "col_0" and so on; values are not kept.
TESSERA_API DataFrame GetEmptyDataFrame(const DataFrameRef& like);

} // namespace MERVO::Tessera
