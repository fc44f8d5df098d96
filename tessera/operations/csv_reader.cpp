#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/operations/csv_columns.h"
#include "tessera/operations/csv_lines.h"
#include "tessera/operations/file_text.h"

namespace MERVO::Tessera {
namespace {

using Types = DataFrame::Types;

// ---- Refusals

ErrorCode RefuseRaggedLine(std::size_t line, std::size_t columns, std::size_t fields)
{
    LogError("Index %zu length is not match , last length %zu, vec size %zu", line, columns, fields);
    return ERROR_BAD_KIND;
}

ErrorCode RefuseTypeCount(std::size_t types, std::size_t columns)
{
    LogError("Type length %zu mismatch csv column size %zu", types, columns);
    return ERROR_BAD_KIND;
}

ErrorCode RefuseEmptyFile()
{
    LogError("Empty vector");
    return ERROR_BAD_KIND;
}

// ---- From a file to lines

/// Reads a file whole, and counts its lines with content on the way.
ErrorCode ReadFile(const std::string& path, FileText& file, std::size_t& lineCount)
{
    LineCounter counter;
    ErrorCode code = file.Open(path, RowSplitter::GUARD);
    for (bool isComplete = false; code == ERROR_NONE && !isComplete;) {
        code = file.ReadPiece(isComplete);
        counter.Advance(file.View());
    }
    lineCount = counter.Finish(file.View());
    return code;
}

bool FindContent(LineWalk& walk, std::string_view& content)
{
    bool isFound = walk.Next(content);
    while (isFound && content.empty()) {
        isFound = walk.Next(content);
    }
    return isFound;
}

ErrorCode CheckFieldCounts(LineWalk walk, std::string_view separator, std::size_t columns)
{
    for (std::string_view content; FindContent(walk, content);) {
        const std::size_t fields = CountFields(content, separator);
        if (fields != columns) {
            return RefuseRaggedLine(walk.LineNumber(), columns, fields);
        }
    }
    return ERROR_NONE;
}

// ---- From lines to columns

/// How a file is to be read.
struct CsvForm {
    const Types* types; ///< one for each column; null for `uniformType` in all of them
    MERVO_TESSERA_TYPEID uniformType;
    bool hasHeader;
    std::string_view separator;
};

/// Fills columns from a file's lines. Returns 0, also where the types do not fit the columns, which are not built then.
ErrorCode ReadLines(
    const CsvForm& form, std::string_view text, std::size_t lineCount, std::size_t& columnCount, CsvColumns& columns)
{
    LineWalk walk(text);
    std::string_view firstLine;
    if (!FindContent(walk, firstLine)) {
        return RefuseEmptyFile();
    }
    columnCount = CountFields(firstLine, form.separator);
    if (form.types != nullptr && form.types->size() != columnCount) {
        return CheckFieldCounts(walk, form.separator, columnCount);
    }
    std::vector<std::string_view> names;
    if (form.hasHeader) {
        ForEachField(firstLine, form.separator, [&names](std::string_view field) { names.push_back(field); });
    }
    const ErrorCode code =
        columns.Build(names, form.types == nullptr ? Types(columnCount, form.uniformType) : *form.types,
            form.hasHeader ? lineCount - 1 : lineCount);
    if (code != ERROR_NONE) {
        return code;
    }
    RowSplitter rows(form.hasHeader ? walk : LineWalk(text), form.separator, columnCount, {});
    for (std::size_t first = 0; rows.Next(); first += rows.RowCount()) {
        for (std::size_t c = 0; c < columns.OpenCount(); ++c) {
            columns.Fill(c, first, rows.Column(c), rows.RowCount());
        }
    }
    const RowSplitter::Misfit& misfit = rows.GetMisfit();
    return misfit.lineNumber == 0 ? ERROR_NONE : RefuseRaggedLine(misfit.lineNumber, columnCount, misfit.fieldCount);
}

/// What the two forms of reading say.
struct CsvTexts {
    const char* failedTable;
    const char* tableWithColumns;
    const char* noSeparator;
    const char* badPath;
    const char* noData;
};

constexpr CsvTexts TYPED_TEXTS = {"Failed to read csv, invalid dataframe %d while reading csv",
    "Failed to read, dataFrame is not empty, row size %zu, col size %zu", "Empty separator while reading csv",
    "Invalid file path %s in function ReadCSV", "Failed to read data form %s while reading csv"};
constexpr CsvTexts UNIFORM_TEXTS = {"Failed to read csv, invalid dataframe %d",
    "Failed to read csv, dataFrame is not empty, row size %zu, col size %zu", "Empty separator", "Invalid file path",
    "Failed to read data form"};

ErrorCode CheckRead(const DataFrame& table, std::string& path, const CsvForm& form, const CsvTexts& texts)
{
    if (table.GetError().code != ERROR_NONE) {
        LogError(texts.failedTable, table.GetError().code);
        return table.GetError().code;
    }
    if (table.ColumnCount() != 0) {
        LogError(texts.tableWithColumns, std::size_t{table.RowCount()}, std::size_t{table.ColumnCount()});
        return ERROR_BAD_KIND;
    }
    if (form.separator.empty()) {
        LogError("%s", texts.noSeparator);
        return ERROR_BAD_KIND;
    }
    if (!DataFrameRef::PathCheck(path)) {
        LogError(texts.badPath, path.c_str());
        return ERROR_BAD_KIND;
    }
    return ERROR_NONE;
}

ErrorCode ReadTable(DataFrame& table, std::string path, const CsvForm& form, const CsvTexts& texts)
{
    ErrorCode code = CheckRead(table, path, form, texts);
    if (code != ERROR_NONE) {
        return code;
    }
    FileText file;
    CsvColumns columns;
    std::size_t lineCount = 0;
    std::size_t columnCount = 0;
    code = ReadFile(path, file, lineCount);
    if (code == ERROR_NONE) {
        code = ReadLines(form, file.View(), lineCount, columnCount, columns);
    }
    if (code != ERROR_NONE) {
        LogError(texts.noData, path.c_str());
        return code;
    }
    if (form.types != nullptr && form.types->size() != columnCount) {
        return RefuseTypeCount(form.types->size(), columnCount);
    }
    return columns.MoveTo(table);
}

// ---- From cells

/// Fills a column with every stride-th of the cells. They pass through a text in which they stand as fields do in a
/// file.
void FillColumn(CsvColumns& columns, std::size_t column, const std::string* cells, std::size_t stride, std::size_t rows)
{
    constexpr std::size_t BLOCK_ROWS = 256;
    std::string text;
    std::array<FieldColumn::Position, BLOCK_ROWS + 1> ends = {};
    for (std::size_t first = 0; first < rows && column < columns.OpenCount();) {
        const std::size_t count = std::min(rows - first, BLOCK_ROWS);
        text.clear();
        for (std::size_t row = 0; row < count; ++row) {
            text += cells[(first + row) * stride];
            ends[row + 1] = text.size();
        }
        text.append(FieldColumn::FIELD_GUARD, '\n');
        columns.Fill(column, first, {text.data(), ends.data(), 1, 0}, count);
        first += count;
    }
}

ErrorCode ReadCells(DataFrame& table, const std::vector<std::string>& cells, const Types& types, bool hasHeader)
{
    const std::size_t columnCount = types.size();
    const std::size_t lineCount = columnCount == 0 ? 0 : cells.size() / columnCount;
    const bool takesHeader = hasHeader && columnCount != 0;
    if (takesHeader && lineCount == 0) {
        LogError("No header in cells, cell size %zu, col size %zu", cells.size(), columnCount);
        return ERROR_BAD_KIND;
    }
    const std::size_t rowCount = lineCount - (takesHeader ? 1 : 0);
    const std::string* const header = cells.data();
    const std::string* const rows = header + (takesHeader ? columnCount : 0);
    CsvColumns columns;
    const ErrorCode code = columns.Build({header, rows}, types, rowCount);
    if (code != ERROR_NONE) {
        return code;
    }
    for (std::size_t c = 0; c < columns.OpenCount(); ++c) {
        FillColumn(columns, c, rows + c, columnCount, rowCount);
    }
    return columns.MoveTo(table);
}

} // namespace

ErrorCode DataFrame::ReadCSV(std::string path, const Types& types, bool hasHeader, const std::string& separator)
{
    return Guarded("ReadCSV", [&] {
        return ReadTable(*this, std::move(path), {&types, TESSERA_INVALID, hasHeader, separator}, TYPED_TEXTS);
    });
}

ErrorCode DataFrame::ReadUniformCSV(
    std::string path, MERVO_TESSERA_TYPEID type, bool hasHeader, const std::string& separator)
{
    return Guarded("ReadCSV", [&] {
        return ReadTable(*this, std::move(path), {nullptr, type, hasHeader, separator}, UNIFORM_TEXTS);
    });
}

ErrorCode DataFrame::GetCSVVec(
    const std::string& path, const std::string& separator, std::vector<std::string>& cells, unsigned int& columns)
{
    return Guarded("GetCSVVec", [&]() -> ErrorCode {
        if (separator.empty()) {
            LogError("Empty separator");
            return ERROR_BAD_KIND;
        }
        FileText file;
        std::size_t lineCount = 0;
        const ErrorCode code = ReadFile(path, file, lineCount);
        if (code != ERROR_NONE) {
            return code;
        }
        std::size_t expected = 0;
        LineWalk walk(file.View());
        for (std::string_view content; FindContent(walk, content);) {
            const std::size_t fields =
                ForEachField(content, separator, [&cells](std::string_view field) { cells.emplace_back(field); });
            if (expected == 0) {
                expected = fields;
                columns = static_cast<unsigned int>(fields);
                const std::size_t mostLines = std::min(lineCount, file.View().size() / fields);
                cells.reserve(cells.size() + mostLines * fields);
            }
            if (fields != expected) {
                return RefuseRaggedLine(walk.LineNumber(), expected, fields);
            }
        }
        return cells.empty() ? RefuseEmptyFile() : ERROR_NONE;
    });
}

unsigned int DataFrame::Str2Vector(
    const std::string& line, const std::string& separator, std::vector<std::string>& cells)
{
    if (separator.empty()) {
        LogError("Empty separator");
        return 0;
    }
    return static_cast<unsigned int>(
        ForEachField(LineContent(line), separator, [&cells](std::string_view field) { cells.emplace_back(field); }));
}

ErrorCode DataFrame::ReadFormVec(
    const std::vector<std::string>& cells, unsigned int columns, const Types& types, bool hasHeader)
{
    if (GetError().code != ERROR_NONE) {
        LogError("Failed to read cells, invalid dataframe %d", GetError().code);
        return GetError().code;
    }
    if (types.size() != columns) {
        return RefuseTypeCount(types.size(), columns);
    }
    return Guarded("ReadFormVec", [&] { return ReadCells(*this, cells, types, hasHeader); });
}

} // namespace MERVO::Tessera
