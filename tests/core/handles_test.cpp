#include "tessera/core/handles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The loader and the reader of a value type.
template <typename T, typename Element>
struct CallsOf {
    using BufferElement = Element;
    int32_t (*load)(MERVO_TSR_CONTEXT*, const Element*, const MERVO_TSR_SHAPE*);
    int32_t (*read)(MERVO_TSR_CONTEXT*, MERVO_TSR_RESULT*);
};

constexpr auto CALLS = std::tuple{
    CallsOf<bool, bool>{ReadDataBool, MERVO_TSR_GetResultBool},
    CallsOf<std::int8_t, std::int8_t>{ReadDataInt8, MERVO_TSR_GetResultInt8},
    CallsOf<std::uint8_t, std::uint8_t>{ReadDataUint8, MERVO_TSR_GetResultUint8},
    CallsOf<std::int16_t, std::int16_t>{ReadDataInt16, MERVO_TSR_GetResultInt16},
    CallsOf<std::uint16_t, std::uint16_t>{ReadDataUint16, MERVO_TSR_GetResultUint16},
    CallsOf<std::int32_t, std::int32_t>{ReadDataInt32, MERVO_TSR_GetResultInt32},
    CallsOf<std::uint32_t, std::uint32_t>{ReadDataUint32, MERVO_TSR_GetResultUint32},
    CallsOf<std::int64_t, std::int64_t>{ReadDataInt64, MERVO_TSR_GetResultInt64},
    CallsOf<std::uint64_t, std::uint64_t>{ReadDataUint64, MERVO_TSR_GetResultUint64},
    CallsOf<float, float>{ReadDataFloat, MERVO_TSR_GetResultFloat},
    CallsOf<double, double>{ReadDataDouble, MERVO_TSR_GetResultDouble},
    CallsOf<std::string, const char*>{ReadDataString, MERVO_TSR_GetResultString},
    CallsOf<DateTime, DateTime>{nullptr, MERVO_TSR_GetResultDateTime},
    CallsOf<DataFrame, DataFrame>{nullptr, MERVO_TSR_GetResultDataFrame},
};

template <typename T>
constexpr const auto& CALLS_OF = std::get<static_cast<std::size_t>(TYPE_ID_OF<T>)>(CALLS);

/// Row buffers and the record for a reader.
template <typename T>
class Result {
public:
    Result(std::uint32_t rowCount, std::uint32_t columns)
        : record{nullptr, 77, 88}, cells(new T[std::size_t{rowCount} * columns]())
    {
        for (std::uint32_t r = 0; r < rowCount; ++r) {
            rows.push_back(&cells[std::size_t{r} * columns]);
        }
        record.rows = rows.data();
    }
    std::vector<T> Cells(std::size_t count) const { return std::vector<T>(cells.get(), cells.get() + count); }

    MERVO_TSR_RESULT record;
    std::vector<void*> rows;

private:
    std::unique_ptr<T[]> cells;
};

template <typename T>
class ValuesOf : public testing::Test {
};
TYPED_TEST_SUITE(ValuesOf, AllValueTypes);

template <typename T>
class LoadedValuesOf : public testing::Test {
};
using LoadedTypes = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string>;
TYPED_TEST_SUITE(LoadedValuesOf, LoadedTypes);

TYPED_TEST(LoadedValuesOf, ComeBackFromATable)
{
    using T = TypeParam;
    const std::vector<T> values = SampleValues<T>(12);
    using Element = typename std::decay_t<decltype(CALLS_OF<T>)>::BufferElement;
    const std::unique_ptr<Element[]> buffer(new Element[12]);
    for (std::size_t i = 0; i < 12; ++i) {
        if constexpr (std::is_same_v<T, std::string>) {
            buffer[i] = values[i].c_str();
        } else {
            buffer[i] = values[i];
        }
    }
    const std::vector<MERVO_TESSERA_TYPEID> types(3, TYPE_ID_OF<T>);
    const MERVO_TSR_SHAPE shape{4, 3, types.data()};
    const Handle handle;
    for (int time = 0; time < 2; ++time) { // a second load replaces the first
        ASSERT_EQ(CALLS_OF<T>.load(handle.Get(), buffer.get(), &shape), 0);
        EXPECT_EQ(handle.Table().Type(), TYPE_ID_OF<T>);
        EXPECT_EQ(handle.Table().ContainerType(), CONTAINER_ARRAY);
        EXPECT_THAT(handle.Table().GetColumnName(), ElementsAre("col_0", "col_1", "col_2"));
        Result<T> result(4, 3);
        ASSERT_EQ(CALLS_OF<T>.read(handle.Get(), &result.record), 0);
        EXPECT_EQ(result.record.rowCount, 4U);
        EXPECT_EQ(result.record.colCount, 3U);
        EXPECT_EQ(result.Cells(12), values) << "row-major in, row by row out";
    }
}

TYPED_TEST(ValuesOf, AreReadFromTablesAndWindowsOfBothContainers)
{
    using T = TypeParam;
    const std::vector<T> values = SampleValues<T>(10);
    const std::vector<T> left(values.begin(), values.begin() + 5);
    const std::vector<T> right(values.begin() + 5, values.end());
    const Handle table(TableOf(Column<T>("l", left), Column<T>("r", right, CONTAINER_LIST)));
    const Handle window(table.Table().Slice({1, 4}, {0, 2}));
    Result<T> result(3, 2);
    ASSERT_EQ(CALLS_OF<T>.read(window.Get(), &result.record), 0);
    EXPECT_EQ(result.record.rowCount, 3U);
    EXPECT_EQ(result.record.colCount, 2U);
    EXPECT_TRUE(AreSame(result.Cells(6), {values[1], values[6], values[2], values[7], values[3], values[8]}));

    // What was read is the caller's: cells that change later don't show in it.
    ASSERT_TRUE(SetValueToIterator<T>(table.Table().GetColumn(0)->GetIterator(), values[9], 1));
    EXPECT_TRUE(IsSame<T>(result.Cells(1)[0], values[1]));
}

TYPED_TEST(ValuesOf, AreNotReadFromOtherTypes)
{
    using T = TypeParam;
    const bool isInt = std::is_same_v<T, std::int32_t>;
    const DataFrame ints = TableOf(Column<std::int32_t>("a", {1, 2}), Column<std::int32_t>("b", {3, 4}));
    const DataFrame doubles = TableOf(Column<double>("a", {1, 2}), Column<double>("b", {3, 4}));
    const DataFrame mixed = TableOf(
        Column<T>("a", SampleValues<T>(2)), isInt ? Column<double>("b", {1, 2}) : Column<std::int32_t>("b", {1, 2}));
    for (const DataFrame* table : {isInt ? &doubles : &ints, &mixed}) {
        const Handle handle(*table);
        Result<T> result(2, 2);
        const LogCapture log;
        EXPECT_EQ(CALLS_OF<T>.read(handle.Get(), &result.record), 0) << "succeeds in silence";
        EXPECT_EQ(result.record.rowCount, 2U);
        EXPECT_EQ(result.record.colCount, 2U);
        EXPECT_TRUE(AreSame(result.Cells(4), std::vector<T>(4)));
        EXPECT_TRUE(log.Has(1,
            "Type mismatch on exporting 2d vector (" + GetTypeNameById(table->Type()) + " vs " +
                GetTypeNameById(TYPE_ID_OF<T>) + ")."));
    }
}

TYPED_TEST(ValuesOf, ReaderRefusesNullsAndUnfitHandles)
{
    using T = TypeParam;
    const auto read = CALLS_OF<T>.read;
    DataFrame table = TableOf(Column<T>("a", SampleValues<T>(2)));
    DataFrameRef window(table);
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    MERVO_TSR_CONTEXT both{&table, &window};
    MERVO_TSR_CONTEXT good{&table, nullptr};
    Result<T> result(2, 1);
    Result<T> withoutARow(2, 1);
    withoutARow.rows[1] = nullptr;
    MERVO_TSR_RESULT withoutRows{nullptr, 77, 88};
    const LogCapture log;
    EXPECT_EQ(read(nullptr, &result.record), 33);
    EXPECT_EQ(read(&neither, &result.record), 33);
    EXPECT_EQ(read(&both, &result.record), 33);
    EXPECT_EQ(read(&good, nullptr), 33);
    EXPECT_EQ(read(&good, &withoutRows), 33);
    EXPECT_EQ(read(&good, &withoutARow.record), 33);
    EXPECT_EQ(log.Texts(1), std::vector<std::string>(6, "[MERVO_TSR_GetResult] Input is nullptr"));
    EXPECT_EQ(withoutRows.rowCount, 77U) << "a refusal writes nothing";
    EXPECT_TRUE(AreSame(withoutARow.Cells(2), std::vector<T>(2)));
    EXPECT_EQ(table.GetError().code, 0);
}

TEST(Readers, ServeTablesWithoutRowsAndFailedOnes)
{
    const Handle empty;
    MERVO_TSR_RESULT result{nullptr, 77, 88};
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_GetResultInt32(empty.Get(), &result), 0);
    EXPECT_EQ(result.rowCount, 0U);
    EXPECT_EQ(result.colCount, 0U);

    const Handle noRows(TableOf(Column<std::int32_t>("a", {})));
    EXPECT_EQ(MERVO_TSR_GetResultInt32(noRows.Get(), &result), 0);
    EXPECT_EQ(result.rowCount, 0U);
    EXPECT_EQ(result.colCount, 1U);

    const Handle failed(TableOf(Column<std::int32_t>("a", {5})));
    failed.Table().SetError({9, "failed"});
    Result<std::int32_t> cells(1, 1);
    EXPECT_EQ(MERVO_TSR_GetResultInt32(failed.Get(), &cells.record), 0);
    EXPECT_EQ(cells.record.rowCount, 1U);
    EXPECT_THAT(cells.Cells(1), ElementsAre(0));
    EXPECT_TRUE(log.Has(1, "Invalid dataFrame 9 to 2d vector"));
}

TEST(Readers, RefuseAWindowWhoseColumnsGotShorter)
{
    const Handle table(TableOf(Column<std::int32_t>("a", {5, 6, 7})));
    const Handle window(table.Table()[2U]);
    const DataFrame shorter = TableOf(Column<std::int32_t>("a", {9, 8}));
    ASSERT_EQ(table.Table().ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, shorter), 0);
    Result<std::int32_t> result(1, 1);
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_GetResultInt32(window.Get(), &result.record), 5);
    EXPECT_THAT(log.Texts(1), ElementsAre("Column 0 of the window can't be read"));
    EXPECT_THAT(result.Cells(1), ElementsAre(0));
}

TEST(Handle, IsMadeEmptyAndReleasedOnce)
{
    MERVO_TSR_CONTEXT* handle = MERVO_TSR_CreateDF();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->dataFrameRef, nullptr);
    EXPECT_EQ(handle->dataFrame->GetError().code, 0);
    EXPECT_EQ(handle->dataFrame->ColumnCount(), 0U);
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_Release(&handle), 0);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(log.Count(), 0U);
    EXPECT_EQ(MERVO_TSR_Release(&handle), 33);
    EXPECT_EQ(MERVO_TSR_Release(nullptr), 33);
    EXPECT_EQ(log.Texts(1), std::vector<std::string>(2, "[MERVO_TSR_RELEASE] Input is nullptr"));
}

TEST(Handle, OfAWindowKeepsTheColumns)
{
    auto table = std::make_unique<Handle>(TableOf(Column<std::int32_t>("a", {5, 6, 7})));
    const Handle window(table->Table()[DataFrame::Range{1, 3}]);
    table.reset();
    Result<std::int32_t> result(2, 1);
    EXPECT_EQ(MERVO_TSR_GetResultInt32(window.Get(), &result.record), 0);
    EXPECT_THAT(result.Cells(2), ElementsAre(6, 7));
}

TEST(Handle, IsTestedForWhatItHolds)
{
    DataFrame table;
    DataFrameRef window;
    const MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    const MERVO_TSR_CONTEXT withTable{&table, nullptr};
    const MERVO_TSR_CONTEXT withWindow{nullptr, &window};
    const MERVO_TSR_CONTEXT both{&table, &window};
    const struct {
        const MERVO_TSR_CONTEXT* handle;
        bool isTable;
        bool isWindow;
        const DataFrameRef* behind;
    } cases[] = {{nullptr, false, false, nullptr}, {&neither, false, false, nullptr}, {&withTable, true, false, &table},
        {&withWindow, false, true, &window}, {&both, false, false, nullptr}};
    for (const auto& [handle, isTable, isWindow, behind] : cases) {
        EXPECT_EQ(CheckDataFrame(handle), isTable);
        EXPECT_EQ(CheckDataFrameRef(handle), isWindow);
        EXPECT_EQ(TableBehind(handle), behind);
    }
}

TEST(Handle, IsNotMadeWithoutMemory)
{
    const LogCapture log;
    for (AllocationRounds rounds; rounds.Next();) {
        MERVO_TSR_CONTEXT* handle = nullptr;
        {
            const FailingAllocation failing(rounds.Spared());
            handle = MERVO_TSR_CreateDF();
        }
        ASSERT_EQ(handle == nullptr, FailingAllocation::HasFailed()) << "allocation " << rounds.Spared();
        const bool isOfTable = log.Has(1, "[MERVO_TSR_CreateDF] Create MERVO_TSR_CONTEXT dataframe failed");
        EXPECT_EQ(isOfTable, rounds.Spared() != 0);
        const bool isMade = handle != nullptr;
        EXPECT_EQ(MERVO_TSR_Release(&handle), isMade ? 0 : 33);
    }
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_CreateDF] Create MERVO_TSR_CONTEXT failed"));
}

} // namespace
} // namespace MERVO::Tessera
