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

/// Copies a text that is short more often than not; a call would take longer than that.
char* CopyText(char* at, const char* text, std::size_t size)
{
    if (size >= 4 && size <= 16) { // two pieces that overlap
        const std::size_t piece = size >= 8 ? 8 : 4;
        std::array<char, 8> first;
        std::array<char, 8> last;
        std::memcpy(first.data(), text, piece);
        std::memcpy(last.data(), text + size - piece, piece);
        std::memcpy(at, first.data(), piece);
        std::memcpy(at + size - piece, last.data(), piece);
    } else {
        std::memcpy(at, text, size);
    }
    return at + size;
}

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
            return CopyText(at, text.data(), text.size());
        }
        isHealthy = isHealthy && file.Write(text.data(), text.size());
        return at;
    }
    char* Append(char* at, const NumberText& text)
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
    if constexpr (std::is_same_v<T, std::string>) {
        return sink.Append(at, *PlaceOf<T>(cursor, row));
    } else if constexpr (std::is_same_v<T, DateTime>) {
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

constexpr auto CELL_APPENDERS =
    ForEachValueType([](auto number) -> AppendCell { return &AppendCellOf<ValueTypes::At<number()>>; });

/// Numbers whose texts are short are written by many, each column for itself; null for the others.
constexpr auto NUMBER_WRITERS = ForEachValueType([](auto number) -> WriteNumbers {
    using T = ValueTypes::At<number()>;
    if constexpr (Func::IS_SHORT_NUMBER<T>) {
        return &WriteNumbersOf<T>;
    } else {
        return nullptr;
    }
});

constexpr std::uint32_t BLOCK_ROWS = 128; // whose texts fit the innermost cache

struct WrittenColumn {
    Cursor cursor;
    AppendCell append = nullptr;
    WriteNumbers write = nullptr;
    std::vector<NumberText> texts = {}; ///< those of a block of rows, if they are written by many
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
        const auto type = static_cast<std::size_t>(column->GetTypeId());
        columns.push_back({table.GetSlicedIterator(column), CELL_APPENDERS[type], NUMBER_WRITERS[type]});
        if (columns.back().cursor == nullptr) {
            return ERROR_OUT_OF_MEMORY;
        }
        columns.back().texts.resize(columns.back().write == nullptr ? 0 : BLOCK_ROWS);
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
            at = k == 0 ? at : sink.AppendEnd(at, separator);
            at = columns[k].write == nullptr ? columns[k].append(sink, at, columns[k].cursor, first + i)
                                             : sink.Append(at, columns[k].texts[i]);
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
    for (std::uint32_t row = 0; row < rows && sink.IsHealthy();) {
        const std::uint32_t count = std::min(BLOCK_ROWS, rows - row);
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
