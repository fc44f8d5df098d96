#include "benchmarks/measured/seeded_tables.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <unistd.h>

#include "tests/support/random.h"

namespace MERVO::Tessera::Bench {
namespace {

constexpr std::uint32_t FEW = 100; // values of the small keys
constexpr std::uint32_t FAR = 97;  // between keys: too many numbers for a place for each

template <typename T, typename MakeCell>
SeriesPtr MakeColumn(const std::string& name, std::uint32_t rows, MakeCell makeCell)
{
    SeriesPtr column = BuildSeries({rows, CONTAINER_ARRAY, TYPE_ID_OF<T>}, name);
    T* cell = CursorAs<CONTAINER_ARRAY, T>(column->GetIterator()).mHead;
    for (const T* const end = cell + rows; cell != end; ++cell) {
        *cell = makeCell();
    }
    return column;
}

std::string Text(std::string prefix, std::size_t length, std::uint32_t number)
{
    char digits[10];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), number);
    const auto count = static_cast<std::size_t>(end.ptr - digits);
    prefix.append(length - prefix.size() - count, '0').append(digits, count);
    return prefix;
}

double Millionths(Random& random) { return random.Below(FEW * 1000000) / 1e6; }

/// The columns of the records by name, where `add` takes a name and what makes a cell.
template <typename Add>
void DescribeRecords(Random& random, std::uint32_t groups, Add add)
{
    const auto text = [&random](std::size_t length, std::uint32_t values) {
        return [&random, length, values] { return Text("id", length, 1 + random.Below(values)); };
    };
    const auto number = [&random](std::uint32_t values) {
        return [&random, values] { return static_cast<std::int32_t>(1 + random.Below(values)); };
    };
    add("id1", text(5, FEW));
    add("id2", text(5, FEW));
    add("id3", text(12, groups));
    add("id4", number(FEW));
    add("id5", number(FEW));
    add("id6", number(groups));
    add("v1", number(5));
    add("v2", number(15));
    add("v3", [&random] { return Millionths(random); });
}

void AddRecords(
    DataFrame::Columns& columns, std::uint32_t rows, std::uint32_t groups, const std::vector<std::string>& names)
{
    Random random(1);
    DescribeRecords(random, groups, [&](const char* name, auto makeCell) {
        if (names.empty() || std::find(names.begin(), names.end(), name) != names.end()) {
            columns.push_back(MakeColumn<decltype(makeCell())>(name, rows, makeCell));
        }
    });
}

} // namespace

DataFrame MakeRecords(std::uint32_t rows, std::uint32_t groups, const std::vector<std::string>& names)
{
    DataFrame::Columns columns;
    AddRecords(columns, rows, groups, names);
    return DataFrame(std::move(columns));
}

DataFrame MakeRecordsOfSizes(std::uint32_t rows, std::uint32_t groups)
{
    DataFrame records = MakeRecords(rows, groups);
    Func::ForEachElement<std::string>(records.GetColumn(2)->GetIterator(), [](std::string& cell) {
        const std::string digits = cell.substr(cell.find_first_not_of("id0"));
        cell = std::string(static_cast<std::size_t>(digits.back() - '0') % 9, 'x') + digits;
    });
    return records;
}

DataFrame MakeNumbers(std::uint32_t rows, std::uint32_t columnCount, std::uint32_t nanEvery, std::uint64_t seed)
{
    Random random(seed);
    DataFrame::Columns columns;
    for (std::uint32_t k = 0; k < columnCount; ++k) {
        columns.push_back(MakeColumn<double>("col_" + std::to_string(k), rows, [&] {
            const bool isNan = nanEvery != 0 && random.Below(nanEvery) == 0;
            return isNan ? std::numeric_limits<double>::quiet_NaN() : Millionths(random);
        }));
    }
    return DataFrame(std::move(columns));
}

std::vector<std::uint32_t> MakePermutation(std::uint32_t rows)
{
    Random random(3);
    std::vector<std::uint32_t> positions(rows);
    std::iota(positions.begin(), positions.end(), 0U);
    for (std::uint32_t i = rows; i > 1; --i) {
        std::swap(positions[i - 1], positions[random.Below(i)]);
    }
    return positions;
}

DataFrame MakeSide(std::uint32_t rows, std::uint32_t firstKey, SideKey form, std::uint32_t recordGroups)
{
    const std::uint32_t step = form == SideKey::FAR ? FAR : 1;
    Random random(4);
    const std::vector<std::uint32_t> positions = MakePermutation(rows);
    auto position = positions.begin();
    DataFrame::Columns columns;
    if (form == SideKey::TEXT) {
        columns.push_back(MakeColumn<std::string>("key", rows, [&] { return Text("k", 9, firstKey + *position++); }));
    } else {
        columns.push_back(MakeColumn<std::int32_t>(
            "key", rows, [&] { return static_cast<std::int32_t>((firstKey + *position++) * step); }));
    }
    columns.push_back(MakeColumn<double>("value", rows, [&] { return Millionths(random); }));
    if (recordGroups != 0) {
        AddRecords(columns, rows, recordGroups, {});
    }
    return DataFrame(std::move(columns));
}

DataFrame MakeTimes(std::uint32_t rows)
{
    constexpr std::uint32_t WEEK = 7 * 24 * 60 * 60;
    Random random(5);
    DataFrame::Columns columns;
    columns.push_back(MakeColumn<DateTime>(
        "stamp", rows, [&] { return DateTime(static_cast<std::int32_t>(1700000000 + random.Below(WEEK))); }));
    for (const char* name : {"a", "b"}) {
        columns.push_back(MakeColumn<double>(name, rows, [&] { return Millionths(random); }));
    }
    return DataFrame(std::move(columns));
}

RecordsFile::RecordsFile(std::uint32_t rows, std::uint32_t groups)
    : path((std::filesystem::temp_directory_path() / "tessera-records-XXXXXX").string())
{
    const int descriptor = ::mkstemp(path.data());
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(::fdopen(descriptor, "w"), &std::fclose);
    if (file == nullptr) {
        throw std::runtime_error("no file " + path);
    }
    std::fputs("id1,id2,id3,id4,id5,id6,v1,v2,v3\n", file.get());
    Random random(1);
    std::string line;
    for (std::uint32_t row = 0; row < rows; ++row) {
        line.clear();
        DescribeRecords(random, groups, [&line](const char*, auto makeCell) {
            const auto cell = makeCell();
            if constexpr (std::is_same_v<decltype(makeCell()), std::string>) {
                line += cell;
            } else {
                char digits[32];
                line.append(digits, std::to_chars(digits, digits + sizeof(digits), cell).ptr);
            }
            line += ',';
        });
        line.back() = '\n';
        std::fputs(line.c_str(), file.get());
    }
}

RecordsFile::~RecordsFile() { std::filesystem::remove(path); }

const DataFrame::Types& RecordsFile::Types()
{
    static const DataFrame::Types types = {TESSERA_STRING, TESSERA_STRING, TESSERA_STRING, TESSERA_INT32, TESSERA_INT32,
        TESSERA_INT32, TESSERA_INT32, TESSERA_INT32, TESSERA_DOUBLE};
    return types;
}

} // namespace MERVO::Tessera::Bench
