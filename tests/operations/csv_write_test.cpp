#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"
#include "tests/support/temporary_folder.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A column of each value type that has a text.
DataFrame TableOfAllTypes(unsigned int rows)
{
    return TableOf(Column("b", SampleValues<bool>(rows)), Column("i8", SampleValues<std::int8_t>(rows)),
        Column("u8", SampleValues<std::uint8_t>(rows)), Column("i16", SampleValues<std::int16_t>(rows)),
        Column("u16", SampleValues<std::uint16_t>(rows)), Column("i32", SampleValues<std::int32_t>(rows)),
        Column("u32", SampleValues<std::uint32_t>(rows)), Column("i64", SampleValues<std::int64_t>(rows)),
        Column("u64", SampleValues<std::uint64_t>(rows)), Column("f", SampleValues<float>(rows)),
        Column("d", SampleValues<double>(rows)), Column("s", SampleValues<std::string>(rows)),
        Column("t", SampleValues<DateTime>(rows)));
}

/// What a window's text must be: its cells cast to strings, and joined.
std::string JoinedCast(const DataFrameRef& window, bool writeHeader, const std::string& separator)
{
    DataFrame strings;
    const Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID> make(TESSERA_STRING);
    EXPECT_EQ(strings.ApplyInplace(make, window), 0);
    std::vector<std::vector<std::string>> lines = strings.ToVector<std::string>();
    if (writeHeader) {
        lines.insert(lines.begin(), window.GetColumnName());
    }
    std::string text;
    for (const std::vector<std::string>& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            text += (i == 0 ? "" : separator) + line[i];
        }
        text += '\n';
    }
    return text;
}

struct WindowCase {
    const char* name;
    DataFrameView::Range rows;
    DataFrameView::Range columns;
};

const WindowCase WINDOW_CASES[] = {
    {"Everything", {0, 40}, {0, 13}},
    {"Rows", {13, 29}, {0, 13}}, // bits that begin within a byte
    {"OneCell", {39, 40}, {12, 13}},
    {"BoolsAlone", {3, 11}, {0, 1}}, // lines without any byte
    {"Columns", {0, 40}, {8, 12}},
};

class CsvOfWindow : public testing::TestWithParam<std::tuple<WindowCase, std::string, bool>> {};

TEST_P(CsvOfWindow, IsTheJoinedCast)
{
    const auto& [window, separator, writeHeader] = GetParam();
    const TemporaryFolder folder;
    const DataFrame table = TableOfAllTypes(40);
    const DataFrameRef slice = table.Slice(window.rows, window.columns);
    ASSERT_EQ(slice.ToCSV(folder.Path("out.csv"), writeHeader, separator), 0);
    EXPECT_EQ(folder.Read("out.csv"), JoinedCast(slice, writeHeader, separator));
}

INSTANTIATE_TEST_SUITE_P(Cases, CsvOfWindow,
    testing::Combine(testing::ValuesIn(WINDOW_CASES),
        testing::Values(",", "||", std::string(1, '\0'), std::string(30, '.')), testing::Bool()),
    [](const auto& tested) {
        return std::string(std::get<0>(tested.param).name) + std::to_string(tested.index) +
            (std::get<2>(tested.param) ? "WithHeader" : "");
    });

TEST(CsvLargerThanTheBuffer, IsTheJoinedCast)
{
    constexpr std::size_t BUFFER = 1024 * 1024;
    const TemporaryFolder folder;
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < 40000; ++i) {
        texts.push_back(std::string(i % 37, static_cast<char>('a' + i % 26)));
    }
    // Cells that fill the buffer to the last byte, and that have no room in it.
    texts[20000] = std::string(BUFFER, 'B');
    texts[20002] = std::string(BUFFER - 3, 'C');
    texts[20003] = std::string(3 * BUFFER + 1, 'D');
    const DataFrame table = TableOf(Column("n", SampleValues<std::int64_t>(40000)), Column("s", texts),
        Column("i", SampleValues<std::int32_t>(40000)), Column("d", SampleValues<double>(40000)));
    for (const std::string& separator : {std::string(","), std::string(BUFFER + 1, '=')}) {
        const DataFrameRef window = separator.size() == 1 ? table[table.RowCount() + 0xFFFFFFFFU - table.RowCount()]
                                                          : table.Slice(0U, {20000, 20004});
        ASSERT_EQ(window.ToCSV(folder.Path("large.csv"), true, separator), 0);
        ASSERT_TRUE(folder.Read("large.csv") == JoinedCast(window, true, separator)); // no print of megabytes
    }
}

// Of many columns only some rows, or one, are written at a time.
TEST(CsvOfManyColumns, IsTheJoinedCast)
{
    const TemporaryFolder folder;
    for (const auto& [rows, columns] : {std::pair(301U, 70U), std::pair(3U, 5000U)}) {
        DataFrame table;
        ASSERT_EQ(table.ReadVector(SampleValues<std::int32_t>(rows * columns), {rows, columns}), 0);
        ASSERT_EQ(table.ToCSV(folder.Path("wide.csv"), false, ","), 0);
        EXPECT_TRUE(folder.Read("wide.csv") == JoinedCast(table, false, ",")) << columns;
    }
}

TEST(CsvWithoutRows, IsItsHeader)
{
    const TemporaryFolder folder;
    const DataFrame table = TableOf(Column<double>("x", {}), Column<DataFrame>("nested", {}));
    ASSERT_EQ(table.ToCSV(folder.Path("header.csv"), true, ";"), 0);
    EXPECT_EQ(folder.Read("header.csv"), "x;nested\n");
    ASSERT_EQ(table.ToCSV(folder.Path("header.csv"), false, ";"), 0);
    EXPECT_EQ(folder.Read("header.csv"), "");
}

// ---- Tables without a text

class CsvOfUnwritable : public testing::Test {
protected:
    void ExpectRefusal(const DataFrameRef& table, const std::vector<std::string>& words)
    {
        const LogCapture log;
        EXPECT_EQ(table.ToCSV(folder.Path("none.csv"), true, ","), 2);
        EXPECT_EQ(log.Texts(1), words);
        EXPECT_THAT(folder.Names(), IsEmpty());
    }
    const TemporaryFolder folder;
    const std::string castFailed = "Failed to cast to string";
};

TEST_F(CsvOfUnwritable, Tables)
{
    DataFrame failed = TableOf(Column<double>("x", {1.0}));
    failed.SetError({9, "before"});
    ExpectRefusal(failed, {castFailed});
    ExpectRefusal(DataFrame(), {castFailed});
    ExpectRefusal(TableOf(Column<std::int32_t>("x", {1}), Column<DataFrame>("nested", std::vector<DataFrame>(1))),
        {"cannot cast dataframe to other types except dataframe", castFailed});
    ExpectRefusal(TableOf(Column<double>("x", {1.0}, CONTAINER_LIST)), {castFailed});
}

TEST_F(CsvOfUnwritable, WindowsOnColumnsThatAreGone)
{
    DataFrame moved = TableOf(Column<double>("x", {1.0}), Column<double>("y", {2.0}));
    const DataFrameRef onMoved = moved[static_cast<const char*>("y")];
    moved = moved.Slice(1U, {1, 2});
    ExpectRefusal(onMoved, {castFailed});

    DataFrame shortened = TableOf(Column<double>("x", {1.0, 2.0, 3.0}));
    const DataFrameRef onShortened = shortened.Slice(0U, {1, 3});
    const DataFrame shorter = TableOf(Column<double>("x", {1.0}));
    ASSERT_EQ(shortened.ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, shorter), 0);
    ExpectRefusal(onShortened, {castFailed});
}

TEST_F(CsvOfUnwritable, NoSeparatorComesFirst)
{
    const LogCapture log;
    EXPECT_EQ(DataFrame().ToCSV(folder.Path("none.csv"), true, ""), 2);
    EXPECT_THAT(log.Texts(1), ElementsAre("Empty separator to csv"));
}

} // namespace
} // namespace MERVO::Tessera
