// Small inputs that ask for huge results, or for endless work: each ends soon, in a refusal or within little memory.

#include <fcntl.h>
#include <iostream>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tessera/tessera.hpp"
#include "tests/support/child_process.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"
#include "tests/support/temporary_folder.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;
using Range = DataFrame::Range;

constexpr std::uint32_t ALL = 0xFFFFFFFFU;
constexpr int DONE = 100; ///< what a bomb gives that has a result

template <template <ContainerID, typename...> class F, typename... Args>
UnaryFactory Make(Args... args)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Args...>{args...};
}

DataFrame Zeros(std::uint32_t rows, std::uint32_t columns = 1)
{
    DataFrame table;
    EXPECT_EQ(table.ReadVector(std::vector<std::int32_t>(std::size_t{rows} * columns), {rows, columns}), 0);
    return table;
}

DataFrame Texts(std::uint32_t rows, std::size_t length)
{
    return TableOf(Column("t", std::vector<std::string>(rows, std::string(length, 't'))));
}

int CodeOf(const DataFrame& table) { return table.GetError().code == 0 ? DONE : table.GetError().code; }
int CodeOf(ErrorCode code) { return code == 0 ? DONE : code; }

/// A table in a table, and so on; made by moves, which nothing limits.
DataFrame Nested(int levels, int cells)
{
    DataFrame table = Zeros(1);
    for (int level = 0; level < levels; ++level) {
        SeriesPtr column = BuildSeries({static_cast<std::uint32_t>(cells), CONTAINER_ARRAY, TESSERA_DATAFRAME}, "c");
        auto* const places = CursorAs<CONTAINER_ARRAY, DataFrame>(column->GetIterator()).mHead;
        for (int i = 0; i < cells; ++i) {
            places[i].ShallowCopy(table);
        }
        table = TableOf(std::move(column));
    }
    return table;
}

DataFrame InItself()
{
    DataFrame table = Nested(1, 2);
    CursorAs<CONTAINER_ARRAY, DataFrame>(table.GetColumn(0)->GetIterator()).mHead[1].ShallowCopy(table);
    return table;
}

/// Ends the circle, which would keep its columns for ever.
void Untie(const DataFrame& table)
{
    CursorAs<CONTAINER_ARRAY, DataFrame>(table.GetColumn(0)->GetIterator()).mHead[1] = DataFrame();
}

int ReadText(const std::string& text, MERVO_TESSERA_TYPEID type)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("bomb.csv", text);
    DataFrame table;
    const std::size_t columns = static_cast<std::size_t>(std::count(
                                    text.begin(), text.begin() + static_cast<std::ptrdiff_t>(text.find('\n')), ',')) +
        1;
    return CodeOf(table.ReadCSV(path, DataFrame::Types(columns, type), false, ","));
}

struct Bomb {
    const char* name;
    int wanted;
    std::function<int()> run;
    bool needsBound = false; ///< takes what memory there is before it is refused
};

const Bomb BOMBS[] = {
    {"MergeOfEqualKeys", 3,
        [] {
            return CodeOf(Zeros(1 << 20).Merge(Zeros(4000), {0}, {0}, TESSERA_JOIN_INNER, {"_x", "_y"}));
        }},
    {"OuterProduct", 3,
        [] {
            return CodeOf(Zeros(60000).Merge(Zeros(60000), {}, {}, TESSERA_JOIN_INNER, {"_x", "_y"}));
        }},
    {"MergeBeyond32Bits", 3,
        [] {
            return CodeOf(Zeros(100000).Merge(Zeros(100000), {0}, {0}, TESSERA_JOIN_OUTER, {"_x", "_y"}));
        }},
    {"ResampleOfALongSpan", 3,
        [] {
            const DataFrame table = TableOf(Column<DateTime>("t", {DateTime(INT32_MIN), DateTime(INT32_MAX)}));
            return table.Resample(0, DateTime(1), true, true).GetGroupNum() == 0 ? 3 : DONE;
        }},
    {"WindowOfAllNumbers", DONE,
        [] {
            DataFrame sums;
            return CodeOf(
                sums.ApplyInplace(Make<Func::RollingSum, uint32_t, bool, uint32_t>(ALL, true, ALL), Zeros(100000)));
        }},
    {"WindowOfALastRow", DONE,
        [] {
            DataFrame sums;
            return CodeOf(sums.ApplyInplace(
                Make<Func::RollingMean, uint32_t, bool, uint32_t>(0x80000000U, false, 1), Zeros(100000)));
        }},
    {"PivotOfDistinctKeys", 3,
        [] {
            constexpr std::uint32_t ROWS = 200000;
            const DataFrame table = TableOf(Column("a", SampleValues<std::int32_t>(ROWS)),
                Column("b", SampleValues<std::int32_t>(ROWS)), Column("v", SampleValues<double>(ROWS)));
            return table.PivotTable({{2}, {0}, {1}}, Make<Func::Sum>(), 0).ColumnCount() == 0 ? 3 : DONE;
        }},
    {"ReplaceByALongText", 3,
        [] {
            const std::string longText(1 << 20, 'x');
            DataFrame table;
            return CodeOf(
                table.ApplyInplace(Make<Func::Replace, std::string, std::string>("t", longText), Texts(1 << 20, 1)));
        }},
    {"ALongTextAtManyPlaces", 3, [] { return CodeOf(Texts(1, 1 << 20).SelectRow(Positions(1 << 20))); }},
    {"MergeOfLongTexts", 3,
        [] {
            const DataFrame left =
                TableOf(Column<std::int32_t>("k", {0}), Column<std::string>("t", {std::string(1 << 20, 't')}));
            return CodeOf(left.Merge(Zeros(1 << 20), {0}, {0}, TESSERA_JOIN_INNER, {"_x", "_y"}));
        }},
    {"OneColumnMeetsThousands", 3,
        [] {
            DataFrame table;
            const uint32_t index = 0;
            const Func::FunctorFactory<Func::InsertRow, Func::BinaryBase, const uint32_t&> insert(index);
            return CodeOf(table.ApplyInplace(insert, Zeros(1 << 22), Zeros(1, 20000)));
        }},
    {"RowsOfAWideTable", 3, [] { return CodeOf(Zeros(1, 20000).SelectRow(Positions(1 << 22))); }},
    {"ListBeyondMemory", 3,
        [] {
            return BuildSeries({ALL, CONTAINER_LIST, TESSERA_STRING}, "l")->GetTypeId() == TESSERA_INVALID ? 3 : DONE;
        }},
    {"ArrayBeyondMemory", 3,
        [] {
            return BuildSeries({ALL, CONTAINER_ARRAY, TESSERA_DATAFRAME}, "a")->GetIterator() == nullptr ? 3 : DONE;
        }},
    {"EmptyTableOfAllRows", 15,
        [] {
            DataFrame table;
            return CodeOf(table.ReadVector(std::vector<double>(1), {ALL, ALL}));
        }},
    {"DatesByTheSecond", DONE,
        [] {
            return DateRange(DateTime(INT32_MIN), DateTime(INT32_MAX - 1), 0, DateTime(1)).size() <= 1000000 ? DONE : 0;
        }},
    {"DatesAllPeriods", DONE,
        [] { return DateRange(DateTime(0), DateTime(INT32_MAX), ALL, DateTime(1)).size() <= 1000000 ? DONE : 0; }},
    {"LongTableTransposed", 6, [] { return CodeOf(Zeros(1 << 20).Transpose()); }},
    {"CsvOfManyColumns", 3, [] { return ReadText(std::string(20 << 20, ',') + "\n", TESSERA_INT8); }, true},
    {"CsvOfEmptyTables", 3,
        [] {
            std::string text;
            for (int i = 0; i < 100000; ++i) {
                text += ",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,\n";
            }
            return ReadText(text, TESSERA_DATAFRAME);
        },
        true},
    {"CsvQuoteThatNeverCloses", 2,
        [] { return ReadText("\"a,b\n" + std::string(1 << 20, '"') + "\n", TESSERA_STRING); }},
    {"CsvOfEqualNames", DONE,
        [] {
            const TemporaryFolder folder;
            std::string names = "a";
            for (int i = 1; i < 4000; ++i) {
                names += ",a";
            }
            DataFrame table;
            const ErrorCode code =
                table.ReadCSV<std::int32_t>(folder.Write("names.csv", names + "\n" + names + "\n"), true, ",");
            return code == 1 ? DONE : CodeOf(code); // "a" is no number
        }},
    {"EqualNames", DONE,
        [] {
            DataFrame table = Zeros(1, 4000);
            EXPECT_EQ(table.SetColumnName(std::vector<std::string>(4000, "a")), 0);
            return table.GetColumnName().back().size() == 1 + 2 * 3999 ? DONE : 0;
        }},
    {"EqualNamesBeyondMemory", 3,
        [] {
            DataFrame table = Zeros(1, 40000);
            EXPECT_EQ(table.SetColumnName(std::vector<std::string>(40000, "a")), 0);
            static_cast<void>(table.GetColumnName());
            return CodeOf(table);
        },
        true},
    {"WindowOnBillionsOfColumns", DONE,
        [] {
            const DataFrame table = Zeros(2, 2);
            DataFrameRef wide(table);
            wide.SetColIndex({0, ALL});
            DataFrame copy;
            std::ostringstream text;
            text << wide;
            std::cout.setstate(std::ios::failbit);
            wide.Show("wide");
            DataFrame merged;
            merged.ShallowCopy(wide);
            const bool isRefused = wide.GetColumnName().empty() && copy.ApplyInplace(Make<Func::Sum>(), wide) != 0 &&
                wide.Type() == MIX_TYPE && (table + wide).GetError().code != 0 && wide.ToVector<int32_t>().empty() &&
                GetEmptyDataFrame(wide).ColumnCount() == 0 && wide.ToCSV("/dev/null", true, ",") != 0 &&
                wide.Transpose().GetError().code != 0 && wide.Slice(0U, Range{0, 1}).Unique(ALL).GetError().code != 0 &&
                merged.Merge(merged, {0}, {0}, TESSERA_JOIN_INNER, {"", ""}).GetError().code != 0 &&
                merged.DropNanRow(true).GetError().code != 0 && merged.DropNanCol(true).GetError().code != 0 &&
                merged.GroupBy({0U}, false, true, true).GetGroupNum() == 0 && DataFrame(wide).GetError().code != 0;
            return isRefused ? DONE : 0;
        }},
    {"WindowOnBillionsOfRows", DONE,
        [] {
            const DataFrame table = Zeros(2, 2);
            DataFrameRef tall(table);
            tall.SetRowIndex({0, ALL});
            DataFrame copy;
            std::ostringstream text;
            text << tall;
            DataFrame other;
            other.ShallowCopy(tall);
            const bool isRefused = copy.ApplyInplace(Make<Func::Sum>(), tall) != 0 &&
                DataFrame(tall).GetError().code != 0 && tall.ToVector<int32_t>().empty() &&
                tall.ToCSV("/dev/null", true, ",") != 0 && other.Sort({0U}, true) != 0 &&
                other.DropNanRow(true).GetError().code != 0 && other.Duplicated({}, "first").GetError().code != 0 &&
                other.GroupBy({0U}, false, true, true).GetGroupNum() == 0;
            return isRefused ? DONE : 0;
        }},
    {"TablesNestedDeep", DONE,
        [] {
            const DataFrame table = Nested(100000, 1);
            std::ostringstream text;
            text << table;
            std::cout.setstate(std::ios::failbit);
            table.Show("deep");
            DataFrame copy;
            copy.DeepCopy(table);
            const DataFrame sum = table + table;
            const DataFrame equal = table == table;
            return copy.GetError().code == 3 && sum.GetError().code == 3 && equal.GetError().code != 0 ? DONE : 0;
        }},
    {"TablesNestedWide", 3,
        [] {
            DataFrame copy;
            copy.DeepCopy(Nested(40, 2));
            return CodeOf(copy);
        },
        true},
    {"TableInItself", 3,
        [] {
            const DataFrame table = InItself();
            DataFrame copy;
            copy.DeepCopy(table);
            const DataFrame sum = table + table;
            Untie(table);
            return sum.GetError().code == 3 ? CodeOf(copy) : 0;
        }},
    {"LongEqualTexts", DONE,
        [] {
            DataFrame table = Texts(20, 1 << 20);
            return CodeOf(table.Sort({0U}, true));
        }},
};

#if defined(__SANITIZE_ADDRESS__)
constexpr bool IS_BOUNDED = false; // the sanitizer's own memory is far beyond any bound
#else
constexpr bool IS_BOUNDED = sizeof(void*) > 4; // emulators of 32 bits set no bound, and take minutes to fill that much
#endif

class Bombs : public testing::TestWithParam<Bomb> {};

INSTANTIATE_TEST_SUITE_P(
    Cases, Bombs, testing::ValuesIn(BOMBS), [](const auto& bomb) { return std::string(bomb.param.name); });

TEST_P(Bombs, GoOffQuietly)
{
    if (GetParam().needsBound && !IS_BOUNDED) {
        GTEST_SKIP();
    }
    EXPECT_EQ(InChild([] {
        constexpr rlim_t MOST_BYTES = rlim_t{1} << 30;
        const rlimit memory{MOST_BYTES, MOST_BYTES};
        const rlimit time{60, 60}; // the watchdog: seconds of this process, not of the clock
        ::setrlimit(RLIMIT_CPU, &time);
        if (IS_BOUNDED) {
            ::setrlimit(RLIMIT_AS, &memory);
        }
        const LogCapture log;
        try {
            const int code = GetParam().run();
            return code == DONE || log.Count() != 0 ? code : 99;
        } catch (...) {
            return 98;
        }
    }),
        GetParam().wanted);
}

} // namespace
} // namespace MERVO::Tessera
