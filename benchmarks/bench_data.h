#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera::Bench {

inline constexpr std::uint32_t ROWS = 1000000;

/// The path of a file of benchmark data. They lie in the folder that TESSERA_BENCH_DATA names, else in
/// tessera-bench-data in the temporary folder.
inline std::string DataPath(const std::string& file)
{
    const char* folder = std::getenv("TESSERA_BENCH_DATA");
    const std::filesystem::path present =
        folder != nullptr ? folder : std::filesystem::temp_directory_path() / "tessera-bench-data";
    return (present / file).string();
}

/// The values of a raw little-endian file; none, and the benchmark marked as skipped, where there are fewer.
template <typename T>
std::vector<T> ReadRaw(benchmark::State& state, const std::string& file, std::size_t count)
{
    std::vector<T> values(count);
    const auto bytes = static_cast<std::streamsize>(count * sizeof(T));
    std::ifstream stream(DataPath(file), std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(values.data()), bytes)) {
        state.SkipWithError(("no data in " + DataPath(file) + "; benchmarks/make_data.py writes them").c_str());
        values.clear();
    }
    return values;
}

/// A column of the numbers of a raw file.
template <typename T>
SeriesPtr ReadNumbers(benchmark::State& state, const std::string& file, const std::string& name)
{
    const std::vector<T> values = ReadRaw<T>(state, file, ROWS);
    SeriesPtr column = BuildSeries({ROWS, CONTAINER_ARRAY, TYPE_ID_OF<T>}, name);
    std::copy(values.begin(), values.end(), CursorAs<CONTAINER_ARRAY, T>(column->GetIterator()).mHead);
    return column;
}

/// A column of the strings of a raw file, all of `width` bytes.
inline SeriesPtr ReadTexts(benchmark::State& state, const std::string& file, const std::string& name, std::size_t width)
{
    const std::vector<char> bytes = ReadRaw<char>(state, file, ROWS * width);
    SeriesPtr column = BuildSeries({ROWS, CONTAINER_ARRAY, TESSERA_STRING}, name);
    std::string* cell = CursorAs<CONTAINER_ARRAY, std::string>(column->GetIterator()).mHead;
    for (std::size_t first = 0; first < bytes.size(); first += width, ++cell) {
        cell->assign(bytes.data() + first, width);
    }
    return column;
}

/// A table of the columns of a raw file, which lie one after the other; without columns, and the benchmark marked as
/// skipped, where the file has fewer.
template <typename T>
DataFrame ReadColumns(benchmark::State& state, const std::string& file, std::uint32_t columnCount)
{
    const std::vector<T> values = ReadRaw<T>(state, file, std::size_t{ROWS} * columnCount);
    DataFrame::Columns columns;
    for (std::size_t first = 0; first < values.size(); first += ROWS) {
        SeriesPtr column = BuildSeries({ROWS, CONTAINER_ARRAY, TYPE_ID_OF<T>}, "col_" + std::to_string(columns.size()));
        std::copy_n(values.data() + first, ROWS, CursorAs<CONTAINER_ARRAY, T>(column->GetIterator()).mHead);
        columns.push_back(std::move(column));
    }
    return DataFrame(std::move(columns));
}

/// What a cell adds to a check: a string its length, and what is missing nothing.
template <typename T>
double CheckOfCell(const T& cell)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return static_cast<double>(cell.size());
    } else {
        const auto value = static_cast<double>(cell);
        return value == value ? value : 0.0;
    }
}

/// The sum over all cells of a table but stamps, to be held against that of other systems. Where the order of rows is
/// given, those of row i count 1 + i % 1009 times.
inline double CheckOf(const DataFrame& table, bool isOrdered, unsigned int firstColumn = 0)
{
    double sum = 0.0;
    for (unsigned int k = firstColumn; k < table.ColumnCount(); ++k) {
        const Cursor cells = table.GetSlicedIterator(table.GetColumn(k));
        std::uint32_t row = 0;
        const auto add = [&](const auto& cell) { sum += CheckOfCell(cell) * (isOrdered ? 1 + row++ % 1009 : 1); };
        switch (table.GetColumn(k)->GetAttr().typeId) {
        case TESSERA_BOOL:
            Func::ForEachElement<bool>(cells, add);
            break;
        case TESSERA_INT32:
            Func::ForEachElement<std::int32_t>(cells, add);
            break;
        case TESSERA_INT64:
            Func::ForEachElement<std::int64_t>(cells, add);
            break;
        case TESSERA_DOUBLE:
            Func::ForEachElement<double>(cells, add);
            break;
        case TESSERA_STRING:
            Func::ForEachElement<std::string>(cells, add);
            break;
        default:
            break;
        }
    }
    return sum;
}

} // namespace MERVO::Tessera::Bench
