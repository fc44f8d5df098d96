#ifndef TESSERA_TESSERA_H
#define TESSERA_TESSERA_H

/**
 * Every flat call of Tessera, in plain C99: tables behind opaque handles, typed buffers in and out, codes as results.
 *
 * A handle holds one table, or one window on the columns of a table. It belongs to the host, which releases it once,
 * and to one thread at a time. Buffers and records stay the host's; nothing is kept of them after a call.
 *
 * Codes. 0 is success. A call on tables returns the code that the receiving table holds afterwards; a table keeps its
 * first failure, so a table that failed once returns that code ever after.
 *    1  an operation, conversion or kernel failed, or does not serve the value type; or a shape is invalid
 *    2  bad kind of argument or state: container, separator, file, a table that is not empty
 *    3  no memory, or no room for the result
 *    4  an index or range is out of limits
 *    5  invalid parameter value; or a value type that the operation has no result for
 *    6  a table with an error was asked for names, or a table is too long to transpose
 *    7  a table without columns or rows where content is needed
 *   12  a functor found an empty source or destination
 *   15  a column could not be built, or loaded data do not fit their shape
 *   17  a boolean table was required
 *   18  a functor asks for another container than the destination has
 *   19  two inputs cannot broadcast
 *   20  a window used as destination differs in size
 *   21  a functor refused its columns, or had no working storage
 *   22  one value type is needed and the table mixes several
 *   33  a handle or record is null, or a handle holds neither or both of a table and a window
 *   34  loading a typed buffer failed; the table, or the log, says why
 *   36  a loader received a null pointer, or a handle that holds no table
 *
 * Each failure is reported to ORLELogStr, which the host may define itself (see the README).
 */

#include <stdbool.h>
#include <stdint.h>

#if defined(__GNUC__)
#define MERVO_TSR_API __attribute__((visibility("default")))
#else
#define MERVO_TSR_API
#endif

#ifdef __cplusplus
namespace MERVO {
namespace Tessera {
class DataFrame;
class DataFrameRef;
} // namespace Tessera
} // namespace MERVO
typedef MERVO::Tessera::DataFrame MERVO_TSR_DATAFRAME;
typedef MERVO::Tessera::DataFrameRef MERVO_TSR_DATAFRAME_REF;
extern "C" {
/* C++ would leave the width of a plain enumeration to the compiler. */
enum MERVO_TESSERA_TYPEID : int32_t {
#else
typedef struct MERVO_TSR_DATAFRAME MERVO_TSR_DATAFRAME;
typedef struct MERVO_TSR_DATAFRAME_REF MERVO_TSR_DATAFRAME_REF;
typedef enum MERVO_TESSERA_TYPEID {
#endif
    TESSERA_INVALID = -1, /* no type; the type of a column that could not be made */
    TESSERA_TYPE_BEGIN = 0,
    TESSERA_BOOL = 0,
    TESSERA_INT8 = 1,
    TESSERA_UINT8 = 2,
    TESSERA_INT16 = 3,
    TESSERA_UINT16 = 4,
    TESSERA_INT32 = 5,
    TESSERA_UINT32 = 6,
    TESSERA_INT64 = 7,
    TESSERA_UINT64 = 8,
    TESSERA_FLOAT = 9,
    TESSERA_DOUBLE = 10,
    TESSERA_STRING = 11,
    TESSERA_DATETIME = 12,  /* seconds since 1970 in 32 bits */
    TESSERA_DATAFRAME = 13, /* a table in a cell */
    TESSERA_TYPE_END = 14
#ifdef __cplusplus
};
#else
} MERVO_TESSERA_TYPEID;
#endif

/** A handle. At most one of the two is set. */
typedef struct Tag_MERVO_TSR_CONTEXT {
    MERVO_TSR_DATAFRAME* dataFrame;        /* a table, owned by the handle */
    MERVO_TSR_DATAFRAME_REF* dataFrameRef; /* a window, owned by the handle; its columns live as long as any holder */
} MERVO_TSR_CONTEXT;

/** The shape of a buffer to load. */
typedef struct {
    uint32_t rows;
    uint32_t cols;                     /* 1 to 1024 */
    const MERVO_TESSERA_TYPEID* types; /* cols entries: what each column shall hold */
} MERVO_TSR_SHAPE;

/** Where a table is read into. */
typedef struct {
    void** rows;       /* a caller's buffer for each row of the table, each with room for a cell of every column */
    uint32_t rowCount; /* written by the call */
    uint32_t colCount; /* written by the call */
} MERVO_TSR_RESULT;

/**
 * Makes a handle with a healthy, empty table.
 * @return the handle, which the caller releases; null when memory is short.
 */
MERVO_TSR_API MERVO_TSR_CONTEXT* MERVO_TSR_CreateDF(void);

/**
 * Releases a handle with what it holds, and sets the caller's pointer to null.
 * @return 0, or 33: the pointer or the handle is null.
 */
MERVO_TSR_API int32_t MERVO_TSR_Release(MERVO_TSR_CONTEXT** handle);

/**
 * The loaders fill an empty table from a row-major buffer: the cell of row r and column c is data[c + cols * r].
 *
 * Columns are named "col_0", "col_1" and so on. A column whose entry in shape->types differs from the buffer's type is
 * cast on the way in, as MERVO_TSR_TypeCast does it. ReadDataBool takes a byte per cell, zero for false. ReadDataString
 * takes terminated texts, which are copied.
 * @param handle a table; what it held before is replaced.
 * @return 0, or 36: a null pointer, also among the texts, or a handle that holds no table; 1: more than 1024 columns,
 *         4294967295 rows, or more cells than 32 bits count; 34: no rows or columns, a table that failed before, or a
 *         cast that failed, which the table then holds; 3: no memory.
 */
MERVO_TSR_API int32_t ReadDataBool(MERVO_TSR_CONTEXT* handle, const bool* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataInt8(MERVO_TSR_CONTEXT* handle, const int8_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataUint8(MERVO_TSR_CONTEXT* handle, const uint8_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataInt16(MERVO_TSR_CONTEXT* handle, const int16_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataUint16(MERVO_TSR_CONTEXT* handle, const uint16_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataInt32(MERVO_TSR_CONTEXT* handle, const int32_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataUint32(MERVO_TSR_CONTEXT* handle, const uint32_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataInt64(MERVO_TSR_CONTEXT* handle, const int64_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataUint64(MERVO_TSR_CONTEXT* handle, const uint64_t* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataFloat(MERVO_TSR_CONTEXT* handle, const float* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataDouble(MERVO_TSR_CONTEXT* handle, const double* data, const MERVO_TSR_SHAPE* shape);
MERVO_TSR_API int32_t ReadDataString(MERVO_TSR_CONTEXT* handle, const char* const* data, const MERVO_TSR_SHAPE* shape);

/**
 * The readers copy a table or window out, row by row: the cell of row r and column c goes to element c of
 * result->rows[r].
 *
 * All columns must have the value type of the call; with any other, nothing is copied, though the counts are written
 * and 0 is returned. A reader does not convert: cast first. MERVO_TSR_GetResultString assigns to std::string,
 * MERVO_TSR_GetResultDateTime to MERVO::Tessera::DateTime and MERVO_TSR_GetResultDataFrame to
 * MERVO::Tessera::DataFrame; the caller constructs these, so these three are for C++ hosts.
 * @param handle a table or window.
 * @param result receives the cells and both counts.
 * @return 0, or 33: a null pointer, also among result->rows, or a handle that holds neither or both; 5: a window whose
 *         columns its table has replaced by fewer or shorter ones; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_GetResultBool(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultInt8(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultUint8(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultInt16(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultUint16(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultInt32(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultUint32(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultInt64(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultUint64(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultFloat(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultDouble(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultString(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultDateTime(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);
MERVO_TSR_API int32_t MERVO_TSR_GetResultDataFrame(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result);

/**
 * Copies all cells of a table or window. What dst held before, also a failure, is replaced.
 * @param dst a table; receives n rows by c columns, named as in src.
 * @param src n rows by c columns; only read, and may be a window on dst.
 * @return dst's code: 0, or 33: src fails its check, or dst holds no table; src's own if it failed before; 2: columns
 *         that are no arrays; 5: a window whose columns its table has replaced; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_DeepCopy(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);

/**
 * Casts every column of a table to one value type.
 *
 * Numbers convert as in C, wrapping to the target's width; NaN becomes 0 and values beyond the range of a 32-bit (for
 * 64-bit targets a 64-bit) integer clamp to its nearest end. Text parses as by strtoll, strtoull and strtod in the C
 * locale: trailing text is ignored, an empty cell is 0 or NaN. Numbers print in decimal, float and double as by "%.5e",
 * true as "1" and false as an empty text.
 * @param dst  receives n rows by c columns, named as in src. A window can't change its value type (21).
 * @param src  n rows by c columns; only read, and may be the handle dst.
 * @param type the target, TESSERA_BOOL to TESSERA_DATAFRAME.
 * @return dst's code: 0, or 33: a handle fails its check; 1: a text out of the target's range, or a pair that has no
 *         conversion; 5: no such type; 7: src has no columns (told by the log, not stored); 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_TypeCast(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, MERVO_TESSERA_TYPEID type);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastBool(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastInt8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastUint8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastInt16(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastUint16(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastInt32(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastUint32(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastInt64(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastUint64(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastFloat(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastDouble(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastString(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastDateTime(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_TypeCastDataFrame(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);

/**
 * Turns the rows of a table of one value type into columns, named "col_" and the row's number.
 * @param dst a table; receives c rows by n columns.
 * @param src n rows (1 to 1024) by c columns of one value type. Rows are counted from the first of the columns, also
 *            where src is a window that begins further down.
 * @return dst's code: 0, or 33: a handle fails its check; 7: no columns or no rows; 6: more than 1024 rows; 22: several
 *         value types, which src then holds too; 2: a container out of range; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Transpose(MERVO_TSR_CONTEXT* dst, MERVO_TSR_CONTEXT* src);

/** Writes a diagnosis of a table or window: its state to the log at level 4, its columns to standard output. */
MERVO_TSR_API void MERVO_TSR_Show(MERVO_TSR_CONTEXT* handle);

/**
 * Makes a window on some rows and columns of a table or of another window, counted from its first ones.
 *
 * The window shares the columns: what is written through one, the other sees. They live until their last holder is
 * released, in any order.
 * @param src  a table or window; only read.
 * @param rows the first row and the one behind the last; rowsLength is 2.
 * @param cols the same for columns; colsLength is 2.
 * @return a new handle, which the caller releases; null, and the reason in the log, for a null pointer, another length,
 *         an empty or reversed range or one beyond src, a src that failed before, or no memory.
 */
MERVO_TSR_API MERVO_TSR_CONTEXT* MERVO_TSR_Slice(
    const MERVO_TSR_CONTEXT* src, const uint32_t* rows, const uint32_t* cols, uint32_t rowsLength, uint32_t colsLength);

/**
 * Leaves out rows of a table; those that stay keep their order, and columns their names.
 * @param dst     a table; receives the rows that stay, or in case of a failure a table without columns.
 * @param src     a table; only read, and may be the handle dst.
 * @param filter  one column of bools, a row for each of src: true goes. A table or window.
 * @param indices `count` row numbers, 1 at least; repeats count once.
 * @return dst's code: 0, or 33: a null pointer, no row numbers, or a handle that fails its check; src's or filter's own
 *         code; 17: a filter of another shape; 2: a filter of another value type; 7: src has no rows; 4: there is no
 *         such row; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_DropRowByBool(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* filter);
MERVO_TSR_API int32_t MERVO_TSR_DropRowByIndex(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const uint32_t* indices, uint32_t count);

/**
 * Leaves out columns of a table; those that stay are copied, keep their order and their names.
 * @param dst     a table; receives the columns that stay, or in case of a failure a table without columns.
 * @param src     a table; only read, and may be the handle dst.
 * @param filter  one row of bools, a column for each of src: true goes. A table or window.
 * @param indices `count` column numbers, 1 at least; repeats count once.
 * @param names   `count` terminated texts, 1 at least.
 * @return dst's code: 0, or 33: a null pointer, nothing to drop, or a handle that fails its check; src's or filter's
 * own code; 17: a filter of another shape; 5: a filter of another value type, or there is no such name; 2: there is no
 * such column number; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_DropColByBool(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* filter);
MERVO_TSR_API int32_t MERVO_TSR_DropColByIndex(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const uint32_t* indices, uint32_t count);
MERVO_TSR_API int32_t MERVO_TSR_DropColByName(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* const* names, uint32_t count);

/**
 * Puts copies of a table's columns into another one, in front of the column at `position`.
 * @param table    a table; receives the columns. Without columns it becomes a copy of other, whatever the position.
 * @param other    a table of as many rows; only read, and may be the handle table.
 * @param position 0 to the number of table's columns, which appends.
 * @return table's code: 0, or 33: a handle fails its check; 6: another number of rows; 5: a position too far; 3: no
 *         memory. If other failed before, or has no columns, the log tells, and nothing happens.
 */
MERVO_TSR_API int32_t MERVO_TSR_InsertColInplace(
    MERVO_TSR_CONTEXT* table, const MERVO_TSR_CONTEXT* other, uint32_t position);

/**
 * Names all columns of a table. Of equal names, all but the first get "_1" behind them, as often as it needs.
 * @param names `count` terminated texts, which are copied.
 * @return 0, or 33: a null pointer, also among the texts, no names, or a handle that holds no table; 5: the count is
 *         not that of the columns; 6: the table failed before; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_SetColumnName(MERVO_TSR_CONTEXT* table, const char* const* names, uint32_t count);

/**
 * Leave out rows or columns of a table that have missing values, which are NaN in float and double columns.
 * @param dst a table; receives what stays, or in case of a failure a table without columns.
 * @param src a table; only read, and may be the handle dst.
 * @param any true leaves out what has at least one NaN, false what has nothing else.
 * @return dst's code: 0, or 33: a handle fails its check; src's own code; 1: a column of nested tables; 7: src has no
 *         columns (MERVO_TSR_DropNanCol); 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_DropNanRow(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool any);
MERVO_TSR_API int32_t MERVO_TSR_DropNanCol(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool any);

/**
 * Writes the cells of each column in order, each column for itself. Equal cells keep their order; where NaN comes to
 * stand, a stable merge sort with `<` decides.
 * @param dst       receives n rows by c columns, named as in src.
 * @param src       n rows by c columns of numbers or bools; only read, and may be the handle dst.
 * @param ascending false turns the order round, though not that of equal cells.
 * @return dst's code: 0, or 33: a handle fails its check; 1: a column of strings, stamps or tables; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_SortValue(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool ascending);

/**
 * Takes rows by position: row i of dst is row positions[i] of src. Repeats and any order are allowed.
 * @param dst       receives m rows by c columns, named as in src; with one column in src, as the positions.
 * @param positions m rows, 1 at least, of uint32, below n. One column for all of src, or a column for each.
 * @param src       n rows, 1 at least, by c columns; with one column it serves each column of positions. Only read.
 * @return dst's code: 0, or 33: a handle fails its check; 4: a position that is no row of src; 21: positions of another
 *         value type, or no rows; 19: column counts that don't fit; 7: no columns (told by the log, not stored); 3: no
 *         memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Reorder(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* positions, const MERVO_TSR_CONTEXT* src);

/**
 * Lists the distinct values of one column, in the order in which they come first. All NaN are one value, and so are 0.0
 * and -0.0.
 * @param dst    a table; receives one column, named as in src, or in case of a failure no column.
 * @param src    a table or window; only read, and may be the handle dst.
 * @param column counted from src's first.
 * @return dst's code: 0, or 33: a handle fails its check; src's own code; 7: src has no columns or no rows; 5: no such
 *         column; 1: nested tables; 21: a column in a list; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Unique(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t column);

/** Tables made at once. The entries are handles that belong to the record: they are not released for themselves. */
typedef struct {
    MERVO_TSR_CONTEXT* entries;
    uint32_t count;
} MERVO_TSR_GROUP_ARRAY;

/**
 * Sorts a table by key columns, in descending order, and makes a table of each run of rows with equal keys.
 *
 * The first key is the most significant one, and rows with equal keys keep their order. Floating numbers are equal up
 * to a distance of 2^-52 (float: 2^-23) from the next row; each NaN is a group of its own.
 * @param table    is reordered; on a failure before that it stays as it is. Nothing is stored in it.
 * @param keys     keyCount column positions, each once.
 * @return the groups in descending order of their keys, which the caller releases; null, and the reason in the log, for
 *         a null pointer, no keys, a handle that holds no table, a table that failed or is without columns or rows, a
 *         key that is no column or comes twice, or no memory.
 */
MERVO_TSR_API MERVO_TSR_GROUP_ARRAY* MERVO_TSR_GroupBy(
    MERVO_TSR_CONTEXT* table, const uint32_t* keys, uint32_t keyCount);
/**
 * Sorts a table by key columns as MERVO_TSR_GroupBy does, and makes one table of it in which each row has a statistic
 * of its group in place of its values. Key columns stay as they are.
 * @param functor 0: the largest value, 1: the smallest, 2: the standard deviation, 3: the sum, 4: the mean.
 * @return a record of one table, which the caller releases; null, and the reason in the log, for what
 *         MERVO_TSR_GroupBy refuses, another functor, or a column that the functor does not serve.
 */
MERVO_TSR_API MERVO_TSR_GROUP_ARRAY* MERVO_TSR_GroupBy_Transform(
    MERVO_TSR_CONTEXT* table, const uint32_t* keys, uint32_t keyCount, uint32_t functor);
/**
 * Cuts a table's rows into windows of one width by a column of moments, and makes a table of each window.
 *
 * The first window starts at the earliest moment, or, unless closedLeft, ends there. Rows come by time, and their
 * moments become the label of the window. A window without rows is a table of one row: NaN in columns of float and
 * double, 0, false, an empty text or table, or the moment 0 in others.
 * @param table      only read.
 * @param timeColumn counted among all columns.
 * @param gapSeconds the windows' width, 1 at least.
 * @param labelLeft  the label is the window's start, else its end.
 * @param closedLeft a window includes its start and not its end, else the other way round.
 * @return the windows in order, which the caller releases; null, and the reason in the log, for a handle that is null
 *         or holds no table, a table that failed or is without columns or rows, a column that there is not or that is
 *         not of moments, a width below 1, more rows than memory can hold, or no memory.
 */
MERVO_TSR_API MERVO_TSR_GROUP_ARRAY* MERVO_TSR_Resample(
    MERVO_TSR_CONTEXT* table, uint32_t timeColumn, int32_t gapSeconds, bool labelLeft, bool closedLeft);
/** Releases the tables and the record, and sets the caller's pointer to null. A null pointer is told to the log. */
MERVO_TSR_API void MERVO_TSR_ReleaseGroupArray(MERVO_TSR_GROUP_ARRAY** array);

/** Which rows without a match a merge keeps. */
#ifdef __cplusplus
enum MERVO_TESSERA_MERGE_JOINTYPE : int32_t {
#else
typedef enum MERVO_TESSERA_MERGE_JOINTYPE {
#endif
    TESSERA_JOIN_INNER = 0, /* none */
    TESSERA_JOIN_RIGHT = 1, /* those of the right table */
    TESSERA_JOIN_LEFT = 2,  /* those of the left table */
    TESSERA_JOIN_OUTER = 3  /* those of both */
#ifdef __cplusplus
};
#else
} MERVO_TESSERA_MERGE_JOINTYPE;
#endif

/** The key columns of a merge: `count` positions in each table. */
typedef struct {
    const uint32_t* left;
    const uint32_t* right;
    uint32_t count;
} MERVO_TSR_MERGE_KEYS;

/**
 * Joins two tables: a row for each pair of a left and a right row with equal keys.
 *
 * Rows come in descending order of their keys, the last key being the most significant one, and among equal keys in the
 * order of left, then of right. Floating numbers match up to a distance of 2^-52 (float: 2^-23) from the next one in
 * order, NaN never. The columns are the keys as they are named in left, then left's others with "_x" behind their
 * names, then right's others with "_y". A missing row gives NaN in floating columns and in all others 0, false, an
 * empty text or a stamp of 0.
 * @param dst   a table; receives the result, which has no columns where it has no rows.
 * @param left  a table; only read, and may be the handle dst, as right may.
 * @param keys  each position counts once, and they are taken in ascending order: the lowest one of left is paired with
 *              the lowest one of right, and so on. A count of 0 lets every row match every other.
 * @param type  a MERVO_TESSERA_MERGE_JOINTYPE.
 * @return dst's code: 0, or 33: a null pointer, or a handle that holds no table; 5: a table that failed, a type that is
 *         none, keys that are no columns, differ in number or value type, or are nested tables; 3: no memory, or more
 *         than 4294967295 rows.
 */
MERVO_TSR_API uint32_t MERVO_TSR_Merge(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* left,
    const MERVO_TSR_CONTEXT* right, const MERVO_TSR_MERGE_KEYS* keys, int32_t type);

/**
 * The reductions turn each column of src into one cell of dst, named as in src.
 *
 * Sum:    added from the first row to the last; float in float, bool counted as int64, DateTime in 32 bits, all others
 *         in double. NaN stays NaN.
 * Mean:   without NaN; NaN when nothing is left. float for float, DateTime for DateTime, else double.
 * Max:    of the column's type. NaN in the first row stays, a later one is passed over. Serves strings too.
 * Min:    as Max, without strings.
 * Ptp:    largest less smallest, in the column's type and wrapping in it; any NaN gives NaN.
 * IdxMax: the first row of the largest value, as uint32.
 * @param dst receives 1 row by c columns. A window receives only if it has one row of fitting types.
 * @param src n rows by c columns; only read.
 * @return dst's code: 0, or 33: a handle fails its check; 5: Sum or Mean of strings or tables; 1: a value type that
 *         the reduction does not serve; 21: no rows (Max, Min, Ptp, IdxMax); 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Sum(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_Mean(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_Max(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_Min(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_Ptp(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_IdxMax(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);

/**
 * Statistics of each column of src, as one cell of dst: float for float columns, double for other numbers.
 *
 * With n elements x and their mean m:
 * Var:    the sum of (x - m)^2 over n - ddof; a ddof of n divides by zero, a greater one turns the sign.
 * Std:    the root of that sum over n - ddof, which here wraps in 32 bits; a ddof of n gives NaN.
 * Moment: the sum of (x - m)^degree over n.
 * Kstat:  the k-statistic of degree 1 to 4, the unbiased estimate of a cumulant (R. A. Fisher, "Moments and Product
 *         Moments of Sampling Distributions", 1930). Fewer elements than the degree give infinity or NaN.
 * NaN goes through all four to the result. Var, Std and Moment take bools as 0 and 1.
 * @param dst receives 1 row by c columns, named as in src. A window receives only if it has one row of fitting types.
 * @param src n rows by c columns of numbers; only read.
 * @return dst's code: 0, or 33: a handle fails its check; 5: a column of strings, stamps or tables, or a degree outside
 *         1 to 4 (Kstat); 1: bools (Kstat); 21: no rows (Kstat); 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Var(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof);
MERVO_TSR_API int32_t MERVO_TSR_Std(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof);
MERVO_TSR_API int32_t MERVO_TSR_Moment(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t degree);
MERVO_TSR_API int32_t MERVO_TSR_Kstat(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t degree);

/**
 * Skewness and excess kurtosis of each column of src, computed in double, as one cell of dst: float for float columns,
 * double for other numbers.
 *
 * With bias they are g1 and g2 of the elements, without it G1 and G2, estimates for the population (D. N. Joanes and
 * C. A. Gill, "Comparing Measures of Sample Skewness and Kurtosis", 1998). Too few elements for a formula give NaN, and
 * so does the G1 of equal ones; a magnitude below the epsilon of the result's type is 0.
 * @param dst     receives 1 row by c columns, named as in src. A window receives only if it has one row of fitting
 *                types.
 * @param src     n rows by c columns of numbers; only read.
 * @param skipNan leaves NaN out; without it a NaN is the result.
 * @return dst's code: 0, or 33: a handle fails its check; 5: a column of strings, stamps or tables; 1: a column of
 *         bools; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Skew(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool skipNan, bool bias);
MERVO_TSR_API int32_t MERVO_TSR_Kurt(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool skipNan, bool bias);

/**
 * The sum or mean of a moving window, for each row of each column of src.
 *
 * Row i covers rows i - window + 1 to i; centred, rows i - window / 2 to i + window - 1 - window / 2. Each window is
 * added newest row first. NaN and rows beyond either end count as missing, and are left out.
 * @param dst        receives n rows by c columns, named as in src: double for integer columns, else of the column's
 *                   type.
 * @param src        n rows by c columns of numbers; only read.
 * @param window     width in rows. 0 gives zeros; more than n gives NaN everywhere.
 * @param center     puts row i in the middle of its window, with the odd row of an even window before it.
 * @param minPeriods how many present rows a window needs, else its result is NaN. 0xFFFFFFFF: none may be missing. More
 *                   than window: no result is NaN for want of rows.
 * @return dst's code: 0, or 33: a handle fails its check; 21: a column of bools, or no memory for partial sums; 1: a
 *         column of strings, stamps or tables; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_RollingSum(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t window, bool center, uint32_t minPeriods);
MERVO_TSR_API int32_t MERVO_TSR_RollingMean(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t window, bool center, uint32_t minPeriods);

/**
 * Finds or repairs what is missing in each column of src: NaN in float and double columns, and nothing else.
 *
 * IsNan:       a bool per cell, true for NaN.
 * FillNan:     each NaN becomes the last present cell before it ("ffill") or the next one behind it ("bfill"); where
 *              there is none, it stays.
 * ReplaceNan:  each NaN becomes the value of a text, parsed as by strtod, in the C locale: what follows a number is
 *              ignored, and a text without one is 0. It must do for the other columns too: for integers by strtoll or
 *              strtoull, for DateTime as a time.
 * Interpolate: each gap becomes a straight line between its neighbours; at the end it takes the last present cell, at
 *              the begin it stays. Integer columns become double.
 * @param dst        receives n rows by c columns, named as in src; but for IsNan, and integers under Interpolate, of
 * the same types. A window receives only if its columns have the types of the result.
 * @param src        n rows by c columns; only read, and may be the handle dst.
 * @param fillType   "ffill" or "bfill"; five characters are read.
 * @param replaceNum `length` characters; no terminator is needed.
 * @param length     of the text in characters: for FillNan 6, as the terminator counts there.
 * @return dst's code: 0, or 33: a handle fails its check; 5: a null text, or one of another length; 21: another fill
 *         type, no rows (FillNan, Interpolate), bools, strings, stamps or tables (Interpolate); 1: tables (IsNan,
 *         FillNan), bools (FillNan), a text beyond the range of its number; 2: blanks for a DateTime; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_IsNan(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
MERVO_TSR_API int32_t MERVO_TSR_FillNan(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* fillType, uint32_t length);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceNan(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* replaceNum, uint32_t length);
MERVO_TSR_API int32_t MERVO_TSR_Interpolate(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);

/**
 * Puts newValue in place of every element of src that has oldValue, and copies all others.
 *
 * Both values are cast to each column's own type first, as MERVO_TSR_TypeCast would; but a text is parsed as a number
 * for bools too, of which 0 is false. In columns of doubles an element counts as old if it differs by less than 2^-52,
 * in those of floats by less than 2^-23, so infinities and NaN stay. In all others it must be equal.
 * @param dst receives n rows by c columns, of the types and names of src.
 * @param src n rows by c columns; only read, and may be the handle dst.
 * @return dst's code: 0, or 33: a handle fails its check, or a text is null; 5: oldValue is NaN in a column of floats
 *         or doubles; 1: a text out of a column's range, a bool or a blank text for stamps, or a column of tables; 3:
 * no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_ReplaceBool(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool oldValue, bool newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceInt8(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int8_t oldValue, int8_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceUint8(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint8_t oldValue, uint8_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceInt16(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int16_t oldValue, int16_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceUint16(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint16_t oldValue, uint16_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceInt32(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int32_t oldValue, int32_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceUint32(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t oldValue, uint32_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceInt64(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int64_t oldValue, int64_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceUint64(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint64_t oldValue, uint64_t newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceFloat(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, float oldValue, float newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceDouble(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, double oldValue, double newValue);
MERVO_TSR_API int32_t MERVO_TSR_ReplaceString(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* oldValue, const char* newValue);

/**
 * Rounds the elements of src to a number of decimals, halves away from zero.
 *
 * It is the binary product with 10^decimals that is rounded: 1.005 with two decimals gives 1.0, for it lies below.
 * NaN gives 0, and a result of 0 has no sign. An element whose product does not fit into 64 bits is copied, and the log
 * is told at level 0.
 * @param dst      receives n rows by c columns, of the types and names of src.
 * @param src      n rows by c columns of numbers; only read, and may be the handle dst.
 * @param decimals 0 to 10.
 * @return dst's code: 0, or 33: a handle fails its check; 4: more decimals; 1: a column of bools, strings, stamps or
 *         tables; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Round(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t decimals);

/**
 * The difference between each row and the one `periods` rows before it, or behind it where periods is negative.
 *
 * Integers wrap in their own type. Rows that have no other one get NaN, or 0 in columns of integers.
 * @param dst receives n rows by c columns, of the types and names of src.
 * @param src n rows by c columns of numbers; only read, and may be the handle dst.
 * @return dst's code: 0, or 33: a handle fails its check; 1: a column of bools, strings, stamps or tables; 3: no
 * memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_Diff(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int32_t periods);

/**
 * Tells of each element of src whether it is among those of the column beside it in compare.
 *
 * 0.0 and -0.0 are the same, and so are all NaN.
 * @param src     n rows by c columns; only read, and may be the handle dst.
 * @param compare c columns of the types in src, or one for all of them, of at least one row each; if src has one
 * column, it meets all of compare. Only read.
 * @param dst     receives a bool for each element. A window receives only if it has n rows of bools.
 * @return dst's code: 0, or 33: a handle fails its check; 21: the types differ, or compare has no rows; 19: numbers of
 *         columns that don't fit; 1: a column of tables; 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_IsIn(
    const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* compare, MERVO_TSR_CONTEXT* dst);

/**
 * Splices rows into a table: dst gets the first `index` rows of base, all of rows, and the rest of base.
 * @param rows  m rows by c columns; only read, and may be the handle dst.
 * @param base  n rows by c columns of the same types; only read, and may be the handle dst. One column on either side
 *              meets all of the other side's.
 * @param dst   a table; receives m + n rows by c columns, named as in rows unless base has more of them.
 * @param index the row of dst that the first of rows becomes, 0 to n.
 * @return dst's code: 0, or 33: a handle fails its check; 5: an index beyond n; 21: the types differ; 19: numbers of
 *         columns that don't fit; 20: dst is a window (told by the log, not stored); 3: no memory.
 */
MERVO_TSR_API int32_t MERVO_TSR_InsertRow(
    const MERVO_TSR_CONTEXT* rows, const MERVO_TSR_CONTEXT* base, MERVO_TSR_CONTEXT* dst, uint32_t index);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
