#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/core/handles.h"
#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

template <typename T>
DataFrame Table(unsigned int rows, unsigned int columns)
{
    DataFrame table;
    EXPECT_EQ(table.ReadVector<T>(SampleValues<T>(rows * columns), {rows, columns}), 0);
    return table;
}

template <typename T>
class TransposeOfType : public testing::Test {
};
TYPED_TEST_SUITE(TransposeOfType, AllValueTypes);

TYPED_TEST(TransposeOfType, SwapsRowsAndColumns)
{
    // Row counts on both sides of the blocks in which cells are walked, and of a byte of bits; more than 4 MiB.
    for (const auto& [rows, columns] :
        {std::pair{1U, 1U}, {2U, 3U}, {9U, 1U}, {1U, 9U}, {70U, 33U}, {1024U, 17U}, {1000U, 1067U}}) {
        if (std::is_same_v<TypeParam, DataFrame> ? rows > 9 : !Arithmetic<TypeParam> && columns > 33) {
            continue; // slow
        }
        const DataFrame table = Table<TypeParam>(rows, columns);
        const DataFrame turned = table.Transpose();
        ASSERT_EQ(turned.GetError().code, 0);
        ASSERT_EQ(turned.RowCount(), columns);
        std::vector<TypeParam> expected;
        for (unsigned int c = 0; c < columns; ++c) {
            for (unsigned int r = 0; r < rows; ++r) {
                expected.push_back(SampleValue<TypeParam>(c + r * columns));
            }
        }
        ASSERT_TRUE(AreSame(turned.To1DVector<TypeParam>(), expected));
    }
}

TEST(Transpose, NamesColumnsByTheirFormerRow)
{
    EXPECT_THAT(Table<std::int32_t>(2, 3).Transpose().GetColumnName(), testing::ElementsAre("col_0", "col_1"));
}

TEST(Transpose, CountsRowsOfAWindowFromTheFirstOfItsColumns)
{
    const DataFrame table = TableOf(Column<std::int32_t>("a", {0, 2, 4, 6}), Column<std::int32_t>("b", {1, 3, 5, 7}));
    const DataFrame turned = table.Slice({2, 4}, {1, 2}).Transpose();
    EXPECT_THAT(turned.To1DVector<std::int32_t>(), testing::ElementsAre(1, 3)); // rows 0 and 1 of column 1
}

TEST(Transpose, RefusesWithCodeAndMessage)
{
    DataFrame failed;
    failed.SetError({15, "an earlier failure"});
    DataFrame noRows(GetEmptyDataFrame({0, 2}, TESSERA_INT32));
    DataFrame mixed;
    ASSERT_EQ(mixed.ReadVector<std::int32_t>({1, 2}, {1, 2}, {TESSERA_INT32, TESSERA_DOUBLE}), 0);
    DataFrame mixedContainers;
    ASSERT_EQ(mixedContainers.ReadVector<std::int32_t>({1, 2}, {1, 2}, {}, {CONTAINER_ARRAY, CONTAINER_LIST}), 0);
    DataFrame list;
    ASSERT_EQ(list.ReadVector<std::int32_t>({1, 2}, {1, 2}, {}, {CONTAINER_LIST, CONTAINER_LIST}), 0);
    struct Case {
        const char* name;
        const DataFrame table;
        ErrorCode code;
        const char* message;
        const char* log;
    };
    const Case cases[] = {
        {"failed", std::move(failed), 15, "this is invalid DataFrame", "Invalid input dataFrame 15"},
        {"no columns", DataFrame(), 7, "there is no cols in dataframe",
            "there is no cols in dataframe for transposing"},
        {"no rows", std::move(noRows), 7, "there is no rows in dataframe",
            "there is no rows in dataframe for transposing"},
        {"too many rows", Table<std::int8_t>(1025, 1), 6, "Invalid dataFrame",
            "cannot transpose DataFrame contains more than 1024 rows, current number of rows: 1025"},
        {"mixed types", std::move(mixed), 22, "dataframe is mix-type",
            "set df error 22, Cannot transpose on MIX_TYPE dataframe with: , df error 22"},
        {"mixed containers", std::move(mixedContainers), 2, "Container Type is out of range",
            "Container -1 should be in range of [CONTAINER_BEGIN, CONTAINER_END) for transposing"},
        {"lists, which no functor serves", std::move(list), 21, "Check param failed in functor: ErrorUnaryFunctor",
            "Trying to get an error functor's check params"},
    };
    for (const Case& wanted : cases) {
        SCOPED_TRACE(wanted.name);
        const LogCapture log;
        const DataFrame result = wanted.table.Transpose();
        EXPECT_EQ(result.GetError().code, wanted.code);
        EXPECT_EQ(result.GetError().message, wanted.message);
        EXPECT_TRUE(log.Has(1, wanted.log));
        EXPECT_EQ(result.ColumnCount(), 0U);
        const bool marksSource = wanted.code == 22 || wanted.code == 15;
        EXPECT_EQ(wanted.table.GetError().code, marksSource ? wanted.code : 0);
    }
}

TEST(Transpose, RefusesAWindowWhoseColumnsGotShorter)
{
    DataFrame table = Table<std::int32_t>(4, 1);
    const DataFrameRef window = table.Slice(0, {0, 3});
    ASSERT_EQ(
        table.ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, Table<std::int32_t>(2, 1)), 0);
    const LogCapture log;
    EXPECT_EQ(window.Transpose().GetError().code, 5);
    EXPECT_TRUE(log.Has(1, "Column 0 of the window can't be read"));
}

TEST(TransposeFlatCall, AnswersInTheDestination)
{
    const std::int32_t data[] = {1, 2, 3, 4, 5, 6};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_INT32, TESSERA_INT32, TESSERA_INT32};
    const MERVO_TSR_SHAPE shape{2, 3, types};
    MERVO_TSR_CONTEXT* table = MERVO_TSR_CreateDF();
    MERVO_TSR_CONTEXT* turned = MERVO_TSR_CreateDF();
    ASSERT_EQ(ReadDataInt32(table, data, &shape), 0);

    EXPECT_EQ(MERVO_TSR_Transpose(turned, table), 0);
    EXPECT_THAT(turned->dataFrame->To1DVector<std::int32_t>(), testing::ElementsAre(1, 4, 2, 5, 3, 6));
    EXPECT_EQ(MERVO_TSR_Transpose(turned, turned), 0);
    EXPECT_THAT(turned->dataFrame->To1DVector<std::int32_t>(), testing::ElementsAre(1, 2, 3, 4, 5, 6));

    DataFrameRef column = (*table->dataFrame)["col_1"];
    MERVO_TSR_CONTEXT window{nullptr, &column};
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    EXPECT_EQ(MERVO_TSR_Transpose(turned, &window), 0);
    EXPECT_THAT(turned->dataFrame->To1DVector<std::int32_t>(), testing::ElementsAre(2, 5));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_Transpose(&window, table), 33); // a window can't be given another shape
    EXPECT_EQ(MERVO_TSR_Transpose(nullptr, table), 33);
    EXPECT_EQ(MERVO_TSR_Transpose(table, nullptr), 33);
    EXPECT_EQ(MERVO_TSR_Transpose(table, &neither), 33);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_Transpose] Input is nullptr"));

    MERVO_TSR_CONTEXT* empty = MERVO_TSR_CreateDF();
    EXPECT_EQ(MERVO_TSR_Transpose(turned, empty), 7);
    EXPECT_EQ(turned->dataFrame->GetError().message, "there is no cols in dataframe");
    for (MERVO_TSR_CONTEXT* handle : {table, turned, empty}) {
        MERVO_TSR_Release(&handle);
    }
}

} // namespace
} // namespace MERVO::Tessera
