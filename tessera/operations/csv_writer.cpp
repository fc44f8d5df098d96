#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/cell_conversion.h"
#include "tessera/operations/file_replacement.h"

namespace MERVO::Tessera {
namespace {

// ---- Text on its way to a file

/// Collects text in one large buffer. The place up to which it is filled travels with the caller.
class TextSink {
public:
    explicit TextSink(FileReplacement& written) : file(written), buffer(new char[SIZE + 1]), limit(buffer.get() + SIZE)
    {
    }

    char* Begin() const { return buffer.get(); }
    /// Makes sure that `count` characters fit behind a place, and gives the place where they do.
    char* MakeRoom(char* at, std::size_t count)
    {
        return limit - at >= static_cast<std::ptrdiff_t>(count) ? at : Flush(at);
    }
    char* Append(char* at, std::string_view text)
    {
        at = MakeRoom(at, text.size());
        if (text.size() <= SIZE) {
            std::memcpy(at, text.data(), text.size());
            return at + text.size();
        }
        isHealthy = isHealthy && file.Write(text.data(), text.size());
        return at;
    }
    /// Most texts of cells are short; those are copied with what stands behind them, which takes no loop or call.
    char* AppendCell(char* at, const std::string& text)
    {
        if (text.size() > Func::READ_AHEAD || text.capacity() < Func::READ_AHEAD) {
            return Append(at, text);
        }
        at = MakeRoom(at, Func::READ_AHEAD);
        std::memcpy(at, text.data(), Func::READ_AHEAD);
        return at + text.size();
    }
    char* AppendCell(char* at, const NumberText& text)
    {
        at = MakeRoom(at, sizeof text);
        std::memcpy(at, &text, sizeof text); // the rest is written over
        return at + text.size;
    }
    /// Puts a separator or a line end behind a cell. There is always room for one byte.
    char* AppendEnd(char* at, std::string_view end)
    {
        if (end.size() == 1) {
            *at = end.front();
            return at + 1;
        }
        return Append(at, end);
    }
    /// Writes what stands in front of a place, and gives the buffer's begin.
    char* Flush(char* at)
    {
        isHealthy = isHealthy && file.Write(Begin(), static_cast<std::size_t>(at - Begin()));
        return Begin();
    }
    /// False once a write has failed; nothing is written any more then.
    bool IsHealthy() const { return isHealthy; }

private:
    static constexpr std::size_t SIZE = 1024 * 1024;

    FileReplacement& file;
    std::unique_ptr<char[]> buffer;
    char* limit;
    bool isHealthy = true;
};

// ---- Cells

using AppendCell = char* (*)(TextSink& sink, char* at, const Cursor& cursor, std::uint32_t row);
using WriteNumbers = void (*)(const Cursor& cursor, std::uint32_t row, std::uint32_t count, NumberText* texts);

template <typename T>
auto PlaceOf(const Cursor& cursor, std::uint32_t row)
{
    return CursorAs<CONTAINER_ARRAY, T>(cursor).mHead + static_cast<std::ptrdiff_t>(row);
}

template <typename T>
char* AppendCellOf(TextSink& sink, char* at, const Cursor& cursor, std::uint32_t row)
{
    if constexpr (std::is_same_v<T, DateTime>) {
        return sink.Append(at, PlaceOf<T>(cursor, row)->ToString());
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        return at; // has no text; only a column without rows comes here
    } else {
        return Func::WriteCell<T>(sink.MakeRoom(at, NUMBER_TEXT_ROOM), *PlaceOf<T>(cursor, row));
    }
}

template <typename T>
void WriteNumbersOf(const Cursor& cursor, std::uint32_t row, std::uint32_t count, NumberText* texts)
{
    Func::WriteNumberTexts<T>(PlaceOf<T>(cursor, row), count, texts);
}

/// Numbers whose texts are short are written by many, each column for itself; null for the others.
constexpr auto NUMBER_WRITERS = ForEachValueType([](auto number) -> WriteNumbers {
    using T = ValueTypes::At<number()>;
    if constexpr (Func::IS_SHORT_NUMBER<T>) {
        return &WriteNumbersOf<T>;
    } else {
        return nullptr;
    }
});

/// What is neither a short number nor a string is written cell by cell; null for those.
constexpr auto CELL_APPENDERS = ForEachValueType([](auto number) -> AppendCell {
    using T = ValueTypes::At<number()>;
    if constexpr (Func::IS_SHORT_NUMBER<T> || std::is_same_v<T, std::string>) {
        return nullptr;
    } else {
        return &AppendCellOf<T>;
    }
});

/// How many rows' numbers are written before they go into the file: few of many columns, whose texts would fill caches.
std::uint32_t BlockRowsOf(const DataFrameRef& table)
{
    constexpr std::size_t MOST_ROWS = 128;
    constexpr std::size_t TEXTS = 4096; // in all columns
    const std::size_t rows = std::clamp<std::size_t>(TEXTS / table.ColumnCount(), 1, MOST_ROWS);
    return std::min(static_cast<std::uint32_t>(rows), table.RowCount());
}

/// A column in one of three forms: numbers with room for a block of texts, strings, or cells with a function.
struct WrittenColumn {
    WrittenColumn(Cursor opened, MERVO_TESSERA_TYPEID typeId, std::uint32_t blockRows)
        : cursor(std::move(opened)), write(NUMBER_WRITERS[static_cast<std::size_t>(typeId)]),
          texts(write == nullptr ? 0 : blockRows),
          strings(typeId == TESSERA_STRING ? PlaceOf<std::string>(cursor, 0) : nullptr),
          append(CELL_APPENDERS[static_cast<std::size_t>(typeId)])
    {
    }

    Cursor cursor;
    WriteNumbers write;
    std::vector<NumberText> texts;
    const std::string* strings;
    AppendCell append;
};

/// Opens the columns of a window. Returns 0, or 2 where a cast to strings would fail: for a failed table or one without
/// columns, nested tables, lists, and columns that do not have the window's rows any more; or 3: no memory.
ErrorCode OpenColumns(const DataFrameRef& table, std::vector<WrittenColumn>& columns)
{
    const DataFrameView::Range& rows = table.GetRowIndex();
    if (table.GetError().code != ERROR_NONE || table.ColumnCount() == 0 || rows[0] > rows[1]) {
        return ERROR_BAD_KIND;
    }
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        if (column == nullptr || column->GetAttr().containerId != CONTAINER_ARRAY ||
            column->GetTypeId() == TESSERA_INVALID || column->Size() < rows[1]) {
            return ERROR_BAD_KIND;
        }
        if (column->GetTypeId() == TESSERA_DATAFRAME && table.RowCount() != 0) {
            LogError("cannot cast dataframe to other types except dataframe");
            return ERROR_BAD_KIND;
        }
        Cursor cursor = table.GetSlicedIterator(column);
        if (cursor == nullptr) {
            return ERROR_OUT_OF_MEMORY;
        }
        columns.emplace_back(std::move(cursor), column->GetTypeId(), BlockRowsOf(table));
    }
    return ERROR_NONE;
}

char* AppendHeader(TextSink& sink, char* at, const std::vector<std::string>& names, std::string_view separator)
{
    for (std::size_t k = 0; k < names.size(); ++k) {
        at = k == 0 ? at : sink.Append(at, separator);
        at = sink.Append(at, names[k]);
    }
    return sink.Append(at, "\n");
}

char* AppendRows(TextSink& sink, char* at, std::vector<WrittenColumn>& columns, std::uint32_t first,
    std::uint32_t count, std::string_view separator)
{
    for (WrittenColumn& column : columns) {
        if (column.write != nullptr) {
            column.write(column.cursor, first, count, column.texts.data());
        }
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const WrittenColumn& column = columns[k];
            at = k == 0 ? at : sink.AppendEnd(at, separator);
            if (column.write != nullptr) {
                at = sink.AppendCell(at, column.texts[i]);
            } else if (column.strings != nullptr) {
                at = sink.AppendCell(at, column.strings[first + i]);
            } else {
                at = column.append(sink, at, column.cursor, first + i);
            }
        }
        at = sink.AppendEnd(at, "\n");
    }
    return at;
}

// ---- Files

/// Resolves the folder of a path, which must exist, while the file need not.
bool ResolveFolder(std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return true;
    }
    std::string folder = path.substr(0, slash == 0 ? 1 : slash);
    if (!DataFrameRef::PathCheck(folder)) {
        return false;
    }
    path.replace(0, slash, folder == "/" ? "" : folder);
    return true;
}

ErrorCode WriteTable(const DataFrameRef& table, std::string path, bool writeHeader, std::string_view separator)
{
    std::vector<WrittenColumn> columns;
    const ErrorCode code = OpenColumns(table, columns);
    if (code != ERROR_NONE) {
        LogError("Failed to cast to string");
        return code;
    }
    const std::vector<std::string> names = table.GetColumnName();
    if (names.size() != columns.size()) {
        return ERROR_OUT_OF_MEMORY; // which the table has told
    }
    if (!ResolveFolder(path)) {
        LogError("ToCSV Error: File does not exist");
        return ERROR_BAD_KIND;
    }
    FileReplacement file;
    if (!file.Open(path)) {
        LogError("Invalid file path after checking file open or not");
        return ERROR_BAD_KIND;
    }
    TextSink sink(file);
    char* at = sink.Begin();
    if (writeHeader) {
        at = AppendHeader(sink, at, names, separator);
    }
    const std::uint32_t rows = table.RowCount();
    const std::uint32_t blockRows = BlockRowsOf(table);
    for (std::uint32_t row = 0; row < rows && sink.IsHealthy();) {
        const std::uint32_t count = std::min(blockRows, rows - row);
        at = AppendRows(sink, at, columns, row, count, separator);
        row += count;
    }
    sink.Flush(at);
    return sink.IsHealthy() && file.Commit() ? ERROR_NONE : ERROR_BAD_KIND;
}

} // namespace

ErrorCode DataFrameRef::ToCSV(std::string path, bool writeHeader, const std::string& separator) const
{
    if (separator.empty()) {
        LogError("Empty separator to csv");
        return ERROR_BAD_KIND;
    }
    return Guarded("ToCSV", [&] { return WriteTable(*this, std::move(path), writeHeader, separator); });
}

} // namespace MERVO::Tessera
