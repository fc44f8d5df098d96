#include <gtest/gtest.h>

#include <sstream>

#include "tessera/core/handles.h"
#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

std::string Printed(const DataFrameView& table)
{
    std::ostringstream stream;
    stream << table;
    return stream.str();
}

std::string Shown(const DataFrameView& table)
{
    testing::internal::CaptureStdout();
    table.Show("a message");
    return testing::internal::GetCapturedStdout();
}

DataFrame Readings()
{
    return TableOf(Column<std::string>("place", {"north", "a very long name of a southern place"}),
        Column<double>("celsius", {21.5, -1234567.0}), Column<bool>("valid", {true, false}),
        Column<std::int8_t>("level", {65, -7}, CONTAINER_LIST));
}

TEST(PrintedTable, AlignsAndCuts)
{
    EXPECT_EQ(Printed(Readings()),
        "   place                          celsius  valid  level\n"
        "   string                          double   bool   int8\n"
        "0  north                             21.5   true     65\n"
        "1  a very long name of a...  -1.23457e+06  false     -7\n"
        "[2 rows x 4 columns]\n");
}

TEST(PrintedTable, ShowsEnds)
{
    std::vector<std::int32_t> numbers(11);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = static_cast<std::int32_t>(i * i);
    }
    DataFrame table;
    ASSERT_EQ(table.ReadVector<std::int32_t>(numbers, {11, 1}), 0);
    EXPECT_EQ(Printed(table),
        "     col_0\n     int32\n  0      0\n  1      1\n  2      4\n  3      9\n  4     16\n...    ...\n"
        "  6     36\n  7     49\n  8     64\n  9     81\n 10    100\n[11 rows x 1 columns]\n");
    EXPECT_EQ(Printed(table.Slice(0, {9, 11})), "   col_0\n   int32\n0     81\n1    100\n[2 rows x 1 columns]\n");

    DataFrame wide;
    ASSERT_EQ(wide.ReadVector<std::int8_t>(std::vector<std::int8_t>(21, 1), {1, 21}), 0);
    const std::string text = Printed(wide);
    EXPECT_NE(text.find("col_9  ...  col_11"), std::string::npos) << text;
    EXPECT_EQ(text.find("col_10"), std::string::npos);
}

TEST(PrintedTable, KeepsItsLinesWhateverTheCells)
{
    DataFrame table;
    const std::string umlauts = "\xC3\xA4\xC3\xB6\xC3\xBC"; // three letters in six bytes
    ASSERT_EQ(
        table.ReadVector<std::string>(
            {"two\nlines", umlauts + umlauts + umlauts + umlauts + umlauts + umlauts + umlauts + umlauts + umlauts},
            {2, 1}),
        0);
    const std::string text = Printed(table);
    EXPECT_NE(text.find("0  two lines\n"), std::string::npos) << text;
    const DataFrame nested =
        TableOf(Column<DataFrame>("tables", {TableOf(Column<int>("n", {1, 2, 3}))}), Column<float>("float", {0.1F}));
    EXPECT_NE(Printed(nested).find("0    [3 x 1]    0.1\n"), std::string::npos) << Printed(nested);
    EXPECT_NE(text.find("1  " + umlauts + umlauts + umlauts + umlauts + umlauts + umlauts + umlauts + "...\n"),
        std::string::npos)
        << text;
}

TEST(PrintedTable, TellsWhatIsMissing)
{
    EXPECT_EQ(Printed(DataFrame()), "[0 rows x 0 columns]\n");
    DataFrame failed;
    failed.SetError({19, "Cannot broadcast"});
    EXPECT_EQ(Printed(failed), "[error 19: Cannot broadcast]\n");

    DataFrame table = Readings();
    const DataFrameRef older = table.Slice(1, {0, 2});
    table = table.Slice(1, {1, 2}); // moves the second column away from the older slice
    EXPECT_NE(Printed(older).find("moved away"), std::string::npos);
    EXPECT_NE(Printed(table).find("celsius"), std::string::npos);
}

TEST(Show, WritesStateToTheLogAndColumnsToStandardOutput)
{
    const DataFrame table = Readings();
    const LogCapture log;
    EXPECT_EQ(Shown(table[DataFrame::Range{1, 2}]),
        "NameToIndex: [celsius,1] [level,3] [place,0] [valid,2] \n"
        "[000 string ] \"place\" : a very long name of a southern place, \n"
        "[001 double ] \"celsius\" : -1.23457e+06, \n"
        "[002 bool ] \"valid\" : 0, \n"
        "[003 int8 ] \"level\" : -7, \n"
        "------------------------- end -------------------------\n");
    EXPECT_TRUE(log.Has(4, "MESSAGE: [a message]"));
    EXPECT_TRUE(log.Has(4, "isRef 1, IsColNameDirty 0, Shape:[1,4], column size 4"));
    EXPECT_TRUE(log.Has(4, "RowIndex [1, 2], ColIndex [0, 4]"));
}

TEST(Show, TellsAFailedTableAndMovedColumns)
{
    DataFrame failed;
    failed.SetError({7, "empty dataframe"});
    const LogCapture log;
    EXPECT_EQ(Shown(failed), "");
    EXPECT_TRUE(log.Has(4, "DataFrame is invalid 7 empty dataframe"));
    EXPECT_TRUE(log.Has(4, "Shape:[0,0], column size 0"));

    DataFrame table = Readings();
    const DataFrameRef older = table.Slice(1, {0, 1});
    table = table.Slice(1, {0, 1});
    EXPECT_NE(Shown(older).find("[000 invalid_type ] null Series ptr\n"), std::string::npos);
}

TEST(ShowFlatCall, ShowsEitherKindAndRefusesNone)
{
    DataFrame table = Readings();
    DataFrameRef column = table["valid"];
    MERVO_TSR_CONTEXT tableHandle{&table, nullptr};
    MERVO_TSR_CONTEXT windowHandle{nullptr, &column};
    const LogCapture log;
    testing::internal::CaptureStdout();
    MERVO_TSR_Show(&tableHandle);
    MERVO_TSR_Show(&windowHandle);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("[003 int8 ] \"level\" : 65, -7, \n"), std::string::npos);
    EXPECT_NE(text.find("[000 bool ] \"valid\" : 1, 0, \n"), std::string::npos);
    EXPECT_TRUE(log.Has(4, "MESSAGE: [Show DataFrame]"));
    EXPECT_FALSE(log.Has(1, "[MERVO_TSR_Show] Input is Invalid"));
    MERVO_TSR_Show(nullptr);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_Show] Input is Invalid"));
}

} // namespace
} // namespace MERVO::Tessera
