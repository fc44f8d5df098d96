// A file of any text, separator and types is read as a model reads it, by both roads; what was read is written as the
// model writes it, and where no cell hides a separator or a line end it is read again without a loss but of digits.
// Input: the text, and behind it the bytes that choose separator, header and types.

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/support/inputs.h"
#include "fuzz/support/memory.h"
#include "fuzz/support/require.h"
#include "fuzz/support/tables.h"
#include "tests/operations/csv_model.h"

namespace MERVO::Tessera::Fuzz {
namespace {

using Line = std::vector<std::string>;

/// A file of this process, in memory where the system has a folder for that.
class ScratchFile {
public:
    ScratchFile() = default;
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { ::unlink(path.c_str()); }

    const std::string& Path() const { return path; }
    void Write(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }
    std::string Read() const
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    const std::filesystem::path folder =
        ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
    const std::string path = folder / ("tessera-fuzz-" + std::to_string(::getpid()) + ".csv");
};

/// How a file is read and written.
struct Form {
    std::string separator;
    bool hasHeader = false;
    DataFrame::Types types;
};

Form DrawForm(Inputs& inputs)
{
    Form form;
    const auto kind = inputs.Below(8);
    form.separator =
        kind == 0 ? inputs.ConsumeRandomLengthString(4) : std::array{",", ";", "\t", "||", "aab", ", ", "|"}[kind - 1];
    form.hasHeader = inputs.ConsumeBool();
    return form;
}

ErrorCode Read(DataFrame& table, const std::string& path, const Form& form)
{
    const ErrorCode code = table.ReadCSV(path, form.types, form.hasHeader, form.separator);
    RequireSound(table, true);
    return code;
}

/// Holds a table that was read against the lines of the model.
void CheckRead(const DataFrame& table, const ModelFile& model, const Form& form)
{
    const std::size_t firstRow = form.hasHeader ? 1 : 0;
    Require(table.ColumnCount() == form.types.size(), "a file that is read has a column for each type");
    Require(table.RowCount() == model.lines.size() - firstRow, "a file that is read has a row for each line");
    for (std::size_t c = 0; c < form.types.size(); ++c) {
        const SeriesPtr& column = table.GetColumn(static_cast<unsigned int>(c));
        Require(column->GetTypeId() == form.types[c], "a column has the type that was asked for");
        if (form.types[c] != TESSERA_STRING) {
            continue; // casts are held against the C library elsewhere
        }
        const Cursor cursor = column->GetIterator();
        for (std::uint32_t row = 0; row < table.RowCount(); ++row) {
            Require(GetValueFromIterator<std::string>(cursor, row) == model.lines[row + firstRow][c],
                "a field is read as it stands in the file");
        }
    }
}

/// The other road: all fields as texts first.
void CheckReadByFields(const DataFrame& table, const std::string& path, const Form& form)
{
    std::vector<std::string> cells;
    unsigned int columns = 0;
    DataFrame other;
    Require(other.GetCSVVec(path, form.separator, cells, columns) == 0, "the fields of a file that was read are read");
    Require(columns == form.types.size(), "they are as many as there are types");
    static_cast<void>(other.ReadFormVec(cells, columns, form.types, form.hasHeader));
    Require(DigestOf(other) == DigestOf(table), "both roads into a table end at the same one");
}

std::string Join(const Line& cells, const std::string& separator)
{
    std::string text;
    for (std::size_t c = 0; c < cells.size(); ++c) {
        text += (c == 0 ? "" : separator) + cells[c];
    }
    return text;
}

DataFrame AsTexts(const DataFrame& table)
{
    DataFrame texts;
    const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID> cast{TESSERA_STRING};
    Require(texts.ApplyInplace(cast, table) == 0, "what is written can be cast to texts");
    return texts;
}

/// Whether a number's text comes back as the text of the same number: not beyond the range, or where digits get few.
bool IsPlain(const std::string& text, MERVO_TESSERA_TYPEID type)
{
    errno = 0;
    const double value = std::strtod(text.c_str(), nullptr);
    const bool isFew = type == TESSERA_FLOAT && value != 0 && std::fabs(value) < 0x1p-126;
    return (type != TESSERA_FLOAT && type != TESSERA_DOUBLE) || (errno == 0 && !isFew);
}

/// Writes a table, holds the file against the model, and reads it again where nothing in it is lost.
void CheckWrite(const DataFrame& table, const ScratchFile& file, const Form& form)
{
    const ErrorCode code = table.ToCSV(file.Path(), form.hasHeader, form.separator);
    if (std::count(form.types.begin(), form.types.end(), TESSERA_DATAFRAME) != 0) {
        Require(code == (table.RowCount() == 0 ? ERROR_NONE : ERROR_BAD_KIND), "nested tables are not written");
        return;
    }
    Require(code == ERROR_NONE, "a table that was read is written");

    const DataFrame texts = AsTexts(table);
    std::vector<Line> lines = texts.ToVector<std::string>();
    bool comesBack = true;
    for (const Line& line : lines) {
        for (std::size_t c = 0; c < line.size(); ++c) {
            comesBack = comesBack && IsPlain(line[c], form.types[c]);
        }
    }
    if (form.hasHeader) {
        lines.insert(lines.begin(), table.GetColumnName());
    }
    std::string wanted;
    for (const Line& line : lines) {
        const std::string text = Join(line, form.separator);
        comesBack = comesBack && ModelFields(text, form.separator) == line;
        wanted += text + '\n';
    }
    Require(file.Read() == wanted, "a file is written as the model writes it");
    if (!comesBack || lines.empty()) {
        return;
    }
    DataFrame again;
    Require(Read(again, file.Path(), form) == ERROR_NONE, "what was written is read");
    Require(DigestOf(AsTexts(again)) == DigestOf(texts), "what was written is read as it was");
    for (unsigned int c = 0; c < table.ColumnCount(); ++c) {
        Require(form.types[c] == TESSERA_FLOAT || form.types[c] == TESSERA_DOUBLE ||
                DigestOf(again.Slice(1, {c, c + 1})) == DigestOf(table.Slice(1, {c, c + 1})),
            "cells but for real numbers come back bit for bit");
    }
}

void CheckFile(Inputs& inputs)
{
    Form form = DrawForm(inputs);
    const bool isRightCount = inputs.Below(16) != 0;
    Random random = inputs.Seed();
    const std::string text = inputs.ConsumeRemainingBytesAsString();
    const ModelFile model(text, form.separator.empty() ? "," : form.separator);
    form.types.resize(model.ColumnCount() + (isRightCount ? 0 : 1));
    const std::uint32_t typeEnd = random.Below(8) == 0 ? TESSERA_TYPE_END + 1U : TESSERA_DATETIME + 1U;
    for (MERVO_TESSERA_TYPEID& type : form.types) {
        type = static_cast<MERVO_TESSERA_TYPEID>(random.Below(typeEnd));
    }

    const ScratchFile file;
    file.Write(text);
    DataFrame table;
    const ErrorCode code = Read(table, file.Path(), form);
    if (form.separator.empty() || model.lines.empty() || model.raggedLine != 0 || !isRightCount) {
        Require(code == ERROR_BAD_KIND && table.ColumnCount() == 0, "a file that is no table is refused");
        return;
    }
    Require(code == table.GetError().code, "a reader's code is stored");
    CheckReadByFields(table, file.Path(), form);
    if (code == ERROR_NONE) {
        CheckRead(table, model, form);
        CheckWrite(table, file, form);
    }
}

} // namespace
} // namespace MERVO::Tessera::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace MERVO::Tessera::Fuzz;
    const MemoryBudget budget;
    Inputs inputs(data, size);
    CheckFile(inputs);
    return 0;
}
