#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using CastCall = int32_t (*)(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);

struct FlatCast {
    const char* name;
    CastCall call;
    MERVO_TESSERA_TYPEID type;
};

const FlatCast FLAT_CASTS[] = {
    {"MERVO_TSR_TypeCast", [](auto* dst, const auto* src) { return MERVO_TSR_TypeCast(dst, src, TESSERA_INT64); },
        TESSERA_INT64},
    {"MERVO_TSR_TypeCastBool", &MERVO_TSR_TypeCastBool, TESSERA_BOOL},
    {"MERVO_TSR_TypeCastInt8", &MERVO_TSR_TypeCastInt8, TESSERA_INT8},
    {"MERVO_TSR_TypeCastUint8", &MERVO_TSR_TypeCastUint8, TESSERA_UINT8},
    {"MERVO_TSR_TypeCastInt16", &MERVO_TSR_TypeCastInt16, TESSERA_INT16},
    {"MERVO_TSR_TypeCastUint16", &MERVO_TSR_TypeCastUint16, TESSERA_UINT16},
    {"MERVO_TSR_TypeCastInt32", &MERVO_TSR_TypeCastInt32, TESSERA_INT32},
    {"MERVO_TSR_TypeCastUint32", &MERVO_TSR_TypeCastUint32, TESSERA_UINT32},
    {"MERVO_TSR_TypeCastInt64", &MERVO_TSR_TypeCastInt64, TESSERA_INT64},
    {"MERVO_TSR_TypeCastUint64", &MERVO_TSR_TypeCastUint64, TESSERA_UINT64},
    {"MERVO_TSR_TypeCastFloat", &MERVO_TSR_TypeCastFloat, TESSERA_FLOAT},
    {"MERVO_TSR_TypeCastDouble", &MERVO_TSR_TypeCastDouble, TESSERA_DOUBLE},
    {"MERVO_TSR_TypeCastString", &MERVO_TSR_TypeCastString, TESSERA_STRING},
    {"MERVO_TSR_TypeCastDateTime", &MERVO_TSR_TypeCastDateTime, TESSERA_DATETIME},
    {"MERVO_TSR_TypeCastDataFrame", &MERVO_TSR_TypeCastDataFrame, TESSERA_DATAFRAME},
};

/// A handle on the test's own table or window.
MERVO_TSR_CONTEXT HandleOf(DataFrame& table) { return {&table, nullptr}; }

MERVO_TSR_CONTEXT HandleOf(DataFrameRef& window) { return {nullptr, &window}; }

DataFrame Numbers() { return TableOf(Column<std::int32_t>("a", {1, 0, 77}), Column<std::int32_t>("b", {5, 6, 7})); }

TEST(FlatTypeCast, CastsFromTablesAndWindows)
{
    for (const auto& [name, call, type] : FLAT_CASTS) {
        DataFrame table = Numbers();
        DataFrameRef window = table.Slice({1, 3}, {0, 1});
        DataFrame result;
        DataFrame windowResult;
        MERVO_TSR_CONTEXT dst = HandleOf(result);
        const MERVO_TSR_CONTEXT src = HandleOf(table);
        EXPECT_EQ(call(&dst, &src), 0) << name;
        EXPECT_EQ(result.Type(), type) << name;
        EXPECT_EQ(result.RowCount(), 3U) << name;
        EXPECT_THAT(result.GetColumnName(), testing::ElementsAre("a", "b")) << name;
        EXPECT_EQ(table.Type(), TESSERA_INT32) << name;

        MERVO_TSR_CONTEXT windowDst = HandleOf(windowResult);
        const MERVO_TSR_CONTEXT windowSrc = HandleOf(window);
        EXPECT_EQ(call(&windowDst, &windowSrc), 0) << name;
        EXPECT_EQ(windowResult.Type(), type) << name;
        EXPECT_EQ(windowResult.RowCount(), 2U) << name;
    }
}

TEST(FlatTypeCast, CastsAHandleIntoItself)
{
    for (const auto& [name, call, type] : FLAT_CASTS) {
        DataFrame table = Numbers();
        MERVO_TSR_CONTEXT handle = HandleOf(table);
        EXPECT_EQ(call(&handle, &handle), 0) << name;
        EXPECT_EQ(table.Type(), type) << name;
        EXPECT_EQ(table.RowCount(), 3U) << name;
        EXPECT_THAT(table.GetColumnName(), testing::ElementsAre("a", "b")) << name;
    }
}

TEST(FlatTypeCast, RefusesHandlesThatAreNoTable)
{
    for (const auto& [name, call, type] : FLAT_CASTS) {
        DataFrame table = Numbers();
        DataFrameRef window = table.Slice(0, {0, 1});
        MERVO_TSR_CONTEXT good = HandleOf(table);
        MERVO_TSR_CONTEXT neither = {nullptr, nullptr};
        MERVO_TSR_CONTEXT both = {&table, &window};
        for (MERVO_TSR_CONTEXT* bad : {static_cast<MERVO_TSR_CONTEXT*>(nullptr), &neither, &both}) {
            LogCapture log;
            EXPECT_EQ(call(bad, &good), 33) << name;
            EXPECT_EQ(call(&good, bad), 33) << name;
            const std::string message = "[" + std::string(name) + "] Input is nullptr";
            EXPECT_THAT(log.Texts(1), testing::ElementsAre(message, message));
        }
        EXPECT_EQ(table.GetError().code, 0);
        EXPECT_EQ(table.Type(), TESSERA_INT32) << name;
    }
}

TEST(FlatTypeCast, RefusesAWindowThatWouldChangeItsType)
{
    for (const auto& [name, call, type] : FLAT_CASTS) {
        DataFrame table = Numbers();
        DataFrameRef window = table.Slice(0, {0, 3});
        MERVO_TSR_CONTEXT dst = HandleOf(window);
        const MERVO_TSR_CONTEXT src = HandleOf(table);
        EXPECT_EQ(call(&dst, &src), type == TESSERA_INT32 ? 0 : 21) << name;
        EXPECT_THAT(table.To1DVector<std::int32_t>(), testing::ElementsAre(1, 5, 0, 6, 77, 7)) << name;
    }
}

TEST(FlatTypeCast, LeavesTheCodeOfASourceWithoutColumnsUnstored)
{
    DataFrame nothing;
    DataFrame table = Numbers();
    MERVO_TSR_CONTEXT dst = HandleOf(table);
    const MERVO_TSR_CONTEXT src = HandleOf(nothing);
    LogCapture log;
    EXPECT_EQ(MERVO_TSR_TypeCastDouble(&dst, &src), 0);
    EXPECT_TRUE(log.Has(3, "Input dataFrame is zero-column when applying unary functor: TypeCast."));
    EXPECT_EQ(table.Type(), TESSERA_INT32);
}

TEST(FlatTypeCast, ReturnsWhatTheTableHasStored)
{
    DataFrame texts = TableOf(Column<std::string>("a", {"99999999999999999999"}));
    DataFrame fine = Numbers();
    DataFrame result;
    MERVO_TSR_CONTEXT dst = HandleOf(result);
    const MERVO_TSR_CONTEXT bad = HandleOf(texts);
    const MERVO_TSR_CONTEXT good = HandleOf(fine);
    EXPECT_EQ(MERVO_TSR_TypeCastInt32(&dst, &bad), 1);
    EXPECT_EQ(MERVO_TSR_TypeCastInt32(&dst, &good), 1); // the first failure stays

    DataFrame other;
    MERVO_TSR_CONTEXT otherDst = HandleOf(other);
    EXPECT_EQ(MERVO_TSR_TypeCast(&otherDst, &good, static_cast<MERVO_TESSERA_TYPEID>(14)), 5);
}

TEST(FlatCastOnLoad, CastsOrAnswersThirtyFour)
{
    const char* const cells[] = {"12", "1.5", "abc", "2.5"};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_UINT16, TESSERA_FLOAT};
    const MERVO_TSR_SHAPE shape{2, 2, types};
    DataFrame table;
    MERVO_TSR_CONTEXT handle = HandleOf(table);
    ASSERT_EQ(ReadDataString(&handle, cells, &shape), 0);
    EXPECT_THAT(CellsOf<std::uint16_t>(table.GetColumn(0)->GetIterator()), testing::ElementsAre(12, 0));
    EXPECT_THAT(CellsOf<float>(table.GetColumn(1)->GetIterator()), testing::ElementsAre(1.5F, 2.5F));

    const bool bytes[] = {true, false, true, true};
    const MERVO_TESSERA_TYPEID times[] = {TESSERA_STRING, TESSERA_DATETIME};
    const MERVO_TSR_SHAPE timesShape{2, 2, times};
    DataFrame failed;
    MERVO_TSR_CONTEXT failedHandle = HandleOf(failed);
    LogCapture log;
    EXPECT_EQ(ReadDataBool(&failedHandle, bytes, &timesShape), 34);
    EXPECT_EQ(failed.GetError().code, 1);
    EXPECT_EQ(failed.GetError().message, "Failed to cast form 2d vector");
    EXPECT_THAT(log.Texts(1),
        testing::IsSupersetOf({"cannot cast bool to datetime", "Failed to cast 0 to 12 when error happens",
            "[ReadData] Failed to read vector"}));
}

} // namespace
} // namespace MERVO::Tessera
