#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"
#include "tests/support/temporary_folder.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Types = DataFrame::Types;

// ---- Which reason wins

struct RefusalCase {
    const char* name;
    std::string text;
    Types types;
    ErrorCode code;
    std::string told;   ///< by the log at level 1, first
    std::string stored; ///< in the table
    unsigned int columnsKept;
};

const std::string OUT_OF_RANGE = "typecast from string to arithmetic int has error: 34";
const std::string HEALTHY = "healthy dataframe";
const std::string BIG(30, '9');

const RefusalCase REFUSAL_CASES[] = {
    {"RaggedBeforeTypesAndCasts", BIG + ",1\n\n1,2,3\n", {TESSERA_INT32}, 2,
        "Index 3 length is not match , last length 2, vec size 3", HEALTHY, 0},
    {"RaggedBeforeCasts", BIG + ",1\n1\n", {TESSERA_INT32, TESSERA_INT32}, 2,
        "Index 2 length is not match , last length 2, vec size 1", HEALTHY, 0},
    {"TypesBeforeCasts", BIG + ",1\n1,2\n", {TESSERA_INT32}, 2, "Type length 1 mismatch csv column size 2", HEALTHY, 0},
    {"NoTypes", "1,2\n", {}, 2, "Type length 0 mismatch csv column size 2", HEALTHY, 0},
    {"LowestColumnBeforeEarliestRow", "1,2," + BIG + "\n1," + BIG + ",3\n",
        {TESSERA_INT32, TESSERA_INT16, TESSERA_UINT64}, 1, OUT_OF_RANGE, "Failed to cast string to int16", 1},
    {"FirstColumn", "1e999,2\n", {TESSERA_DOUBLE, TESSERA_INT16}, 1, OUT_OF_RANGE, "Failed to cast string to double",
        0},
    {"NoType", "1,2,3\n", {TESSERA_INT32, static_cast<MERVO_TESSERA_TYPEID>(14), TESSERA_INT32}, 5,
        "TypeID should be in range of [TESSERA_TYPE_BEGIN, TESSERA_TYPE_END) ",
        "Failed to cast string to The Type ID is out of range", 1},
    {"CastBeforeNoType", BIG + ",2\n", {TESSERA_INT32, TESSERA_INVALID}, 1, OUT_OF_RANGE,
        "Failed to cast string to int32", 0},
    {"NoTypeBehindRagged", "1,2\n1\n", {TESSERA_INVALID, TESSERA_INT32}, 2,
        "Index 2 length is not match , last length 2, vec size 1", HEALTHY, 0},
};

class CsvRefusals : public testing::TestWithParam<RefusalCase> {};

TEST_P(CsvRefusals, TellTheFirstReason)
{
    const auto& [name, text, types, code, told, stored, columnsKept] = GetParam();
    const TemporaryFolder folder;
    const std::string path = folder.Write("refused.csv", text);
    LogCapture log;
    DataFrame table;
    EXPECT_EQ(table.ReadCSV(path, types, false, ","), code);
    const std::vector<std::string> errors = log.Texts(1);
    EXPECT_EQ(errors.front(), told);
    EXPECT_EQ(std::count(errors.begin(), errors.end(), told), 1);
    EXPECT_EQ(table.GetError().message, stored);
    EXPECT_EQ(table.ColumnCount(), columnsKept);
}

INSTANTIATE_TEST_SUITE_P(Cases, CsvRefusals, testing::ValuesIn(REFUSAL_CASES),
    [](const auto& tested) { return std::string(tested.param.name); });

// ---- The words of the two forms

TEST(CsvForms, HaveTheirOwnWordsForEachReason)
{
    const TemporaryFolder folder;
    const std::string good = folder.Write("two.csv", "1,2\n3,4\n");
    const std::string empty = folder.Write("empty.csv", "\r\n\n");
    const std::string missing = folder.Path("missing");
    const DataFrame healthy;
    const DataFrame full = TableOf(Column<double>("d", {1.0, 2.0, 3.0}));
    DataFrame failed;
    failed.SetError({13, "before"});
    const struct {
        const DataFrame& table;
        std::string path;
        const char* separator;
        ErrorCode code;
        std::string typed; ///< words of the form with a list of types
        std::string uniform;
    } cases[] = {
        {failed, good, ",", 13, "Failed to read csv, invalid dataframe 13 while reading csv",
            "Failed to read csv, invalid dataframe 13"},
        {full, good, ",", 2, "Failed to read, dataFrame is not empty, row size 3, col size 1",
            "Failed to read csv, dataFrame is not empty, row size 3, col size 1"},
        {healthy, missing, "", 2, "Empty separator while reading csv", "Empty separator"},
        {healthy, missing, ",", 2, "Invalid file path " + missing + " in function ReadCSV", "Invalid file path"},
        {healthy, empty, ",", 2, "Failed to read data form " + empty + " while reading csv",
            "Failed to read data form"},
    };
    for (const auto& [given, path, separator, code, typed, uniform] : cases) {
        for (const bool isUniform : {false, true}) {
            DataFrame table;
            table.ShallowCopy(given);
            const LogCapture log;
            EXPECT_EQ(isUniform ? table.ReadCSV<std::int32_t>(path, false, separator)
                                : table.ReadCSV(path, {TESSERA_INT32, TESSERA_INT32}, false, separator),
                code);
            EXPECT_EQ(log.Texts(1).back(), isUniform ? uniform : typed);
            EXPECT_EQ(log.Count(1), path == empty ? 2U : 1U) << "\"Empty vector\" before";
            EXPECT_EQ(table.GetError().message, given.GetError().message);
            EXPECT_EQ(table.ColumnCount(), given.ColumnCount());
        }
    }
}

TEST(CsvCells, AreNotReadWithoutSeparatorOrFile)
{
    const TemporaryFolder folder;
    DataFrame table;
    std::vector<std::string> cells = {"before"};
    unsigned int columns = 5;
    const LogCapture log;
    EXPECT_EQ(table.GetCSVVec(folder.Write("a.csv", "a"), "", cells, columns), 2);
    EXPECT_EQ(table.GetCSVVec(folder.Path("missing"), ",", cells, columns), 2);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Empty separator", "Failed to open " + folder.Path("missing") + ": No such file or directory"));
    EXPECT_THAT(cells, ElementsAre("before"));
    EXPECT_EQ(columns, 5U);
}

// ---- From cells to a table

struct CellsCase {
    const char* name;
    std::vector<std::string> cells;
    Types types;
    unsigned int columns;
    bool hasHeader;
    ErrorCode code;
    std::vector<std::string> names; ///< of a table that was replaced
    std::vector<std::int32_t> values;
};

const CellsCase CELLS_CASES[] = {
    {"Header", {"a", "b", "1", "2"}, {TESSERA_INT32, TESSERA_INT32}, 2, true, 0, {"a", "b"}, {1, 2}},
    {"NoHeader", {"1", "2", "3", "4"}, {TESSERA_INT32, TESSERA_INT32}, 2, false, 0, {"col_0", "col_1"}, {1, 2, 3, 4}},
    {"PartOfARowIsLeftOut", {"1", "2", "3"}, {TESSERA_INT32, TESSERA_INT32}, 2, false, 0, {"col_0", "col_1"}, {1, 2}},
    {"NoCells", {}, {TESSERA_INT32}, 1, false, 0, {"col_0"}, {}},
    {"NoColumns", {"1"}, {}, 0, true, 0, {}, {}},
    {"FewerCellsThanTheHeader", {"a"}, {TESSERA_INT32, TESSERA_INT32}, 2, true, 2, {"before"}, {7}},
    {"OtherTypeCount", {"1", "2"}, {TESSERA_INT32}, 2, false, 2, {"before"}, {7}},
};

class CsvFromCells : public testing::TestWithParam<CellsCase> {};

TEST_P(CsvFromCells, ReplacesTheTableOrKeepsIt)
{
    const auto& [name, cells, types, columns, hasHeader, code, names, values] = GetParam();
    DataFrame table = TableOf(Column<std::int32_t>("before", {7}));
    const DataFrameRef slice = table["before"];
    EXPECT_EQ(table.ReadFormVec(cells, columns, types, hasHeader), code);
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_EQ(table.GetColumnName(), names);
    EXPECT_EQ(table.To1DVector<std::int32_t>(), values);
    EXPECT_THAT(slice.To1DVector<std::int32_t>(), ElementsAre(7));
}

INSTANTIATE_TEST_SUITE_P(Cases, CsvFromCells, testing::ValuesIn(CELLS_CASES),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(CsvFromCellsToAFailedTable, IsRefused)
{
    DataFrame table = TableOf(Column<std::int32_t>("before", {7}));
    table.SetError({13, "before"});
    EXPECT_EQ(table.ReadFormVec({"1"}, 1, {TESSERA_INT32}, false), 13);
    EXPECT_EQ(table.ColumnCount(), 1U);
}

// ---- Short of memory

/// Each allocation of a call fails once. It must give 3 then, and check() that all is as it was. The call is handed a
/// copy of the path, which it may consume.
template <typename Call, typename Check>
void FailEachAllocation(const std::string& path, Call&& call, Check&& check)
{
    for (AllocationRounds rounds; rounds.Next();) {
        std::string consumed = path;
        ErrorCode code = 0;
        {
            const FailingAllocation failing(rounds.Spared());
            code = call(std::move(consumed));
        }
        const bool hasFailed = FailingAllocation::HasFailed();
        ASSERT_EQ(code, hasFailed ? 3 : 0) << "allocation " << rounds.Spared();
        if (hasFailed) {
            ASSERT_NO_FATAL_FAILURE(check());
        }
    }
}

const std::string LONG_CELL(100, 'c');

TEST(CsvShortOfMemory, ReadingKeepsTheTable)
{
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("some.csv", "a long name of a column,b,c,d\n1," + LONG_CELL + ",1,x\n2,y,,z\n");
    const Types types = {TESSERA_INT32, TESSERA_STRING, TESSERA_BOOL, TESSERA_DATAFRAME};
    DataFrame table;
    FailEachAllocation(
        path, [&](std::string&& file) { return table.ReadCSV(std::move(file), types, true, ","); },
        [&] {
            ASSERT_EQ(table.ColumnCount(), 0U);
            ASSERT_EQ(table.GetError().code, 0);
        });
    EXPECT_EQ(table.RowCount(), 2U);
}

TEST(CsvShortOfMemory, ReplacingByCellsKeepsTheTable)
{
    const std::vector<std::string> cells = {"x", LONG_CELL, "1", LONG_CELL};
    const Types types = {TESSERA_INT8, TESSERA_STRING};
    DataFrame table = TableOf(Column<std::int32_t>("before", {7}));
    FailEachAllocation(
        "", [&](std::string&&) { return table.ReadFormVec(cells, 2, types, true); },
        [&] { ASSERT_THAT(table.To1DVector<std::int32_t>(), ElementsAre(7)); });
    EXPECT_EQ(table.ColumnCount(), 2U);
}

TEST(CsvShortOfMemory, WritingKeepsTheFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("kept.csv", "kept");
    const DataFrame table = TableOf(Column<std::string>("a", {LONG_CELL, "b"}), Column<DateTime>("t", {0, 1}));
    ASSERT_EQ(table.GetColumnName().size(), 2U); // settles the names, whose failure would mark the table
    FailEachAllocation(
        path, [&](std::string&& file) { return table.ToCSV(std::move(file), true, ","); },
        [&] {
            ASSERT_EQ(folder.Read("kept.csv"), "kept");
            ASSERT_EQ(folder.Names(), std::vector<std::string>{"kept.csv"});
        });
    EXPECT_NE(folder.Read("kept.csv"), "kept");
}

} // namespace
} // namespace MERVO::Tessera
