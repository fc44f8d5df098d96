#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

/// A loader with its name in messages and with two rows by two columns of data.
struct Loader {
    const char* name;
    const void* data;
    MERVO_TESSERA_TYPEID type;
    std::function<int32_t(MERVO_TSR_CONTEXT*, const void*, const MERVO_TSR_SHAPE*)> load;
};

template <typename Element>
Loader LoaderOf(const char* name, MERVO_TESSERA_TYPEID type, const Element* data,
    int32_t (*load)(MERVO_TSR_CONTEXT*, const Element*, const MERVO_TSR_SHAPE*))
{
    return {name, data, type, [load](MERVO_TSR_CONTEXT* handle, const void* cells, const MERVO_TSR_SHAPE* shape) {
                return load(handle, static_cast<const Element*>(cells), shape);
            }};
}

const Loader* AllKindsOfLoaders()
{
    static const std::int32_t numbers[] = {1, 2, 3, 4};
    static const bool bits[] = {true, false, false, true};
    static const char* const texts[] = {"a", "", "c", "d"};
    static const Loader loaders[] = {LoaderOf("ReadData", TESSERA_INT32, numbers, ReadDataInt32),
        LoaderOf("ReadData", TESSERA_BOOL, bits, ReadDataBool),
        LoaderOf("ReadDataString", TESSERA_STRING, texts, ReadDataString), {nullptr, nullptr, TESSERA_INVALID, {}}};
    return loaders;
}

TEST(Loaders, RefuseBadInputAndKeepWhatTheTableHeld)
{
    constexpr std::uint32_t MAX = 0xFFFFFFFFU;
    for (const Loader* loader = AllKindsOfLoaders(); loader->name != nullptr; ++loader) {
        const std::vector<MERVO_TESSERA_TYPEID> types(1100, loader->type);
        const Handle table(TableOf(Column<double>("kept", {1.5})));
        DataFrameRef windowBehind(table.Table());
        MERVO_TSR_CONTEXT window{nullptr, &windowBehind};
        MERVO_TSR_CONTEXT neither{nullptr, nullptr};
        MERVO_TSR_CONTEXT both{&table.Table(), &windowBehind};
        const MERVO_TSR_SHAPE good{2, 2, types.data()};
        const MERVO_TSR_SHAPE noTypes{2, 2, nullptr};
        const auto shaped = [&](std::uint32_t rows, std::uint32_t columns) {
            return MERVO_TSR_SHAPE{rows, columns, types.data()};
        };
        const std::string invalidInput = "[" + std::string(loader->name) + "] Invalid input";
        const std::string invalidShape = "[" + std::string(loader->name) + "] input shape is invalid";
        const std::string failed = "[ReadData] Failed to read vector";
        const struct {
            MERVO_TSR_CONTEXT* handle;
            const void* data;
            const MERVO_TSR_SHAPE* shape;
        } nulls[] = {{nullptr, loader->data, &good}, {&window, loader->data, &good}, {&neither, loader->data, &good},
            {&both, loader->data, &good}, {table.Get(), nullptr, &good}, {table.Get(), loader->data, nullptr},
            {table.Get(), loader->data, &noTypes}};
        for (const auto& [handle, data, shape] : nulls) {
            const LogCapture log;
            EXPECT_EQ(loader->load(handle, data, shape), 36);
            EXPECT_THAT(log.Texts(1), ElementsAre(invalidInput));
        }
        const struct {
            MERVO_TSR_SHAPE shape;
            int32_t code;
            std::string log;
        } shapes[] = {
            {shaped(2, 1025), 1, invalidShape},
            {shaped(1, MAX), 1, invalidShape},
            {shaped(MAX, 1), 1, invalidShape},
            {shaped(MAX, 0), 1, invalidShape},
            {shaped(1U << 22U, 1024), 1, invalidShape}, // cells beyond 32 bits, which would wrap to 0
            {shaped((1U << 22U) + 1, 1024), 1, invalidShape},
            {shaped(0, 2), 34, failed},
            {shaped(2, 0), 34, failed},
            {shaped(0, 0), 34, failed},
        };
        for (const auto& [shape, code, text] : shapes) {
            SCOPED_TRACE(std::to_string(shape.rows) + " x " + std::to_string(shape.cols));
            const LogCapture log;
            EXPECT_EQ(loader->load(table.Get(), loader->data, &shape), code);
            EXPECT_EQ(log.Texts(1).back(), text);
        }
        EXPECT_EQ(table.Table().GetError().code, 0);
        EXPECT_THAT(table.Table().To1DVector<double>(), ElementsAre(1.5));
        EXPECT_EQ(loader->load(table.Get(), loader->data, &good), 0);
        EXPECT_EQ(table.Table().Type(), loader->type);
        EXPECT_EQ(table.Table().RowCount(), 2U);
    }
}

TEST(Loaders, TakeAsManyColumnsAsAllowed)
{
    const std::vector<std::int32_t> data(1024, 7);
    const std::vector<MERVO_TESSERA_TYPEID> types(1024, TESSERA_INT32);
    const MERVO_TSR_SHAPE shape{1, 1024, types.data()};
    const Handle table;
    EXPECT_EQ(ReadDataInt32(table.Get(), data.data(), &shape), 0);
    EXPECT_EQ(table.Table().ColumnCount(), 1024U);
    EXPECT_EQ(table.Table().GetColumnName()[1023], "col_1023");
}

TEST(Loaders, RefuseANullText)
{
    const char* const texts[] = {"a", "b", nullptr, "d"};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_STRING, TESSERA_STRING};
    const MERVO_TSR_SHAPE shape{2, 2, types};
    const Handle table(TableOf(Column<double>("kept", {1.5})));
    const LogCapture log;
    EXPECT_EQ(ReadDataString(table.Get(), texts, &shape), 36);
    EXPECT_THAT(log.Texts(1), ElementsAre("[ReadDataString] Invalid input"));
    EXPECT_THAT(table.Table().To1DVector<double>(), ElementsAre(1.5));
}

TEST(Loaders, TakeAnyByteButZeroForTrue)
{
    const unsigned char bytes[] = {0, 1, 2, 255, 128, 0, 16, 0, 3, 0};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_BOOL};
    const MERVO_TSR_SHAPE shape{10, 1, types};
    const Handle table;
    ASSERT_EQ(ReadDataBool(table.Get(), reinterpret_cast<const bool*>(bytes), &shape), 0);
    EXPECT_THAT(
        table.Table().To1DVector<bool>(), ElementsAre(false, true, true, true, true, false, true, false, true, false));
}

TEST(Loaders, FailOnAFailedTableWhichKeepsItsError)
{
    const std::int32_t data[] = {1};
    const MERVO_TESSERA_TYPEID types[] = {TESSERA_INT32};
    const MERVO_TSR_SHAPE shape{1, 1, types};
    const Handle table;
    table.Table().SetError({9, "it failed"});
    const LogCapture log;
    EXPECT_EQ(ReadDataInt32(table.Get(), data, &shape), 34);
    EXPECT_EQ(table.Table().GetError().code, 9);
    EXPECT_EQ(table.Table().GetError().message, "it failed");
    EXPECT_THAT(
        log.Texts(1), ElementsAre("Failed to read 1d vector, invalid dataframe 9", "[ReadData] Failed to read vector"));
}

TEST(Loaders, TellABadCastAndKeepTheColumnsBeforeIt)
{
    const char* const texts[] = {"1", "99999999999999999999", "3", "4", "5", "6"};
    const MERVO_TESSERA_TYPEID impossible[] = {TESSERA_INT32, TESSERA_INT32, TESSERA_STRING};
    const MERVO_TESSERA_TYPEID noType[] = {TESSERA_STRING, static_cast<MERVO_TESSERA_TYPEID>(99), TESSERA_STRING};
    const struct {
        const MERVO_TESSERA_TYPEID* types;
        ErrorCode stored;
        std::string log;
    } cases[] = {
        {impossible, 1, "Failed to cast 11 to 5 when error happens"},
        {noType, 5, "Failed to cast 11 to 99 when error happens"},
    };
    for (const auto& [types, stored, text] : cases) {
        const MERVO_TSR_SHAPE shape{2, 3, types};
        const Handle table(TableOf(Column<double>("old", {1, 2, 3})));
        const LogCapture log;
        EXPECT_EQ(ReadDataString(table.Get(), texts, &shape), 34);
        EXPECT_TRUE(log.Has(1, text));
        EXPECT_EQ(log.Texts(1).back(), "[ReadData] Failed to read vector");
        EXPECT_EQ(table.Table().GetError().code, stored);
        EXPECT_EQ(table.Table().GetError().message, "Failed to cast form 2d vector");
        EXPECT_EQ(table.Table().ColumnCount(), 1U);
        EXPECT_EQ(table.Table().RowCount(), 2U);
        EXPECT_EQ(table.Table().GetColumn(0)->GetTypeId(), types[0]);
    }
}

} // namespace
} // namespace MERVO::Tessera
