// The reductions of tables, by flat call and by apply.

#include <gmock/gmock.h>

#include "tests/numeric/reduce.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

/// A handle that holds a table or a window.
class Handle {
public:
    Handle() : context(MERVO_TSR_CreateDF()) {}
    explicit Handle(const DataFrame& table) : Handle() { *context->dataFrame = table; }
    explicit Handle(const DataFrameRef& window) : context(new MERVO_TSR_CONTEXT{nullptr, new DataFrameRef(window)}) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { MERVO_TSR_Release(&context); }

    MERVO_TSR_CONTEXT* Get() const { return context; }
    const DataFrame& Table() const { return *context->dataFrame; }

private:
    MERVO_TSR_CONTEXT* context;
};

struct FlatCase {
    const char* name;
    int32_t (*call)(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src);
    double ofFirst;
    double ofSecond;
};

/// The results for the columns of DoubleTable().
const FlatCase FLAT_CASES[] = {
    {"MERVO_TSR_Sum", &MERVO_TSR_Sum, 6.5, -9.0},
    {"MERVO_TSR_Mean", &MERVO_TSR_Mean, 6.5 / 3.0, -3.0},
    {"MERVO_TSR_Max", &MERVO_TSR_Max, 4.0, -1.0},
    {"MERVO_TSR_Min", &MERVO_TSR_Min, 0.5, -5.0},
    {"MERVO_TSR_Ptp", &MERVO_TSR_Ptp, 3.5, 4.0},
    {"MERVO_TSR_IdxMax", &MERVO_TSR_IdxMax, 1.0, 2.0},
};

DataFrame DoubleTable()
{
    return TableOf(Column<double>("a", {2.0, 4.0, 0.5}), Column<double>("b", {-3.0, -5.0, -1.0}));
}

class FlatReductions : public testing::TestWithParam<FlatCase> {};

INSTANTIATE_TEST_SUITE_P(Calls, FlatReductions, testing::ValuesIn(FLAT_CASES),
    [](const auto& flat) { return std::string(flat.param.name); });

template <typename T>
std::vector<double> ReadCells(int32_t (*read)(MERVO_TSR_CONTEXT*, MERVO_TSR_RESULT*), const Handle& handle)
{
    std::vector<T> cells(2, T{77});
    void* rows[] = {cells.data()};
    MERVO_TSR_RESULT result{rows, 0, 0};
    EXPECT_EQ(read(handle.Get(), &result), 0);
    EXPECT_EQ(result.rowCount, 1U);
    EXPECT_EQ(result.colCount, 2U);
    return {cells.begin(), cells.end()};
}

std::vector<double> ReadResults(const FlatCase& tested, const Handle& handle)
{
    return tested.call == &MERVO_TSR_IdxMax ? ReadCells<std::uint32_t>(&MERVO_TSR_GetResultUint32, handle)
                                            : ReadCells<double>(&MERVO_TSR_GetResultDouble, handle);
}

TEST_P(FlatReductions, FillTheFirstHandleFromTheSecond)
{
    const FlatCase& tested = GetParam();
    const Handle src(DoubleTable());
    const Handle dst(TableOf(Column<std::string>("old", {"x", "y"}))); // what it held before goes
    ASSERT_EQ(tested.call(dst.Get(), src.Get()), 0);
    EXPECT_THAT(ReadResults(tested, dst), ElementsAre(tested.ofFirst, tested.ofSecond));
    EXPECT_THAT(dst.Table().GetColumnName(), ElementsAre("a", "b"));
    EXPECT_EQ(src.Table().RowCount(), 3U);
}

TEST_P(FlatReductions, ReduceATableIntoItself)
{
    const FlatCase& tested = GetParam();
    const Handle both(DoubleTable());
    ASSERT_EQ(tested.call(both.Get(), both.Get()), 0);
    EXPECT_THAT(ReadResults(tested, both), ElementsAre(tested.ofFirst, tested.ofSecond));
}

TEST_P(FlatReductions, ReadAWindowOnly)
{
    const FlatCase& tested = GetParam();
    const DataFrame around = TableOf(Column<double>("c", {1e9, 1e9, 1e9, 1e9, -1e9}),
        Column<double>("a", {1e9, 2.0, 4.0, 0.5, -1e9}), Column<double>("b", {1e9, -3.0, -5.0, -1.0, -1e9}));
    const Handle src(around.Slice({1, 4}, {1, 3}));
    const Handle dst;
    ASSERT_EQ(tested.call(dst.Get(), src.Get()), 0);
    EXPECT_THAT(ReadResults(tested, dst), ElementsAre(tested.ofFirst, tested.ofSecond));
}

TEST_P(FlatReductions, RefuseHandlesThatHoldNothingOrBoth)
{
    const FlatCase& tested = GetParam();
    const Handle good(DoubleTable());
    DataFrame table;
    DataFrameRef window;
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    MERVO_TSR_CONTEXT both{&table, &window};
    for (MERVO_TSR_CONTEXT* const bad : {static_cast<MERVO_TSR_CONTEXT*>(nullptr), &neither, &both}) {
        for (const bool isSource : {false, true}) {
            const LogCapture log;
            EXPECT_EQ(isSource ? tested.call(good.Get(), bad) : tested.call(bad, good.Get()), 33);
            EXPECT_THAT(log.Texts(1), ElementsAre("[" + std::string(tested.name) + "] Input is nullptr"));
        }
    }
    EXPECT_EQ(good.Table().RowCount(), 3U);
}

TEST_P(FlatReductions, ReturnWhatTheReceivingTableHolds)
{
    const FlatCase& tested = GetParam();
    const Handle full(DoubleTable());
    const Handle empty;
    EXPECT_EQ(tested.call(full.Get(), empty.Get()), 0); // a source without columns is told by the log alone
    EXPECT_EQ(full.Table().RowCount(), 3U);

    const Handle failed;
    failed.Table().SetError({17, "earlier"});
    EXPECT_EQ(tested.call(failed.Get(), full.Get()), 17);
    EXPECT_EQ(tested.call(full.Get(), failed.Get()), 0); // the source's failure is not the destination's
    EXPECT_EQ(full.Table().RowCount(), 3U);
}

TEST_P(FlatReductions, LeaveAWindowOfAnotherLengthAlone)
{
    const FlatCase& tested = GetParam();
    const DataFrame table = DoubleTable();
    const Handle dst(table.Slice({0, 2}, {0, 2}));
    const Handle src(DoubleTable());
    const LogCapture log;
    EXPECT_EQ(tested.call(dst.Get(), src.Get()), 0);
    EXPECT_THAT(log.Texts(1), ElementsAre("Functor can't change the row size of sliced dataframe (1 vs. 2)"));
    EXPECT_THAT(table.To1DVector<double>(), ElementsAre(2.0, -3.0, 4.0, -5.0, 0.5, -1.0));
}

TEST_P(FlatReductions, SurviveWantOfMemory)
{
    const FlatCase& tested = GetParam();
    const Handle src(DoubleTable());
    for (unsigned int spared = 0;; ++spared) {
        const LogCapture log;
        const Handle dst;
        int32_t code = 0;
        bool hasFailed = false;
        {
            const FailingAllocation failing(spared);
            code = tested.call(dst.Get(), src.Get());
            hasFailed = FailingAllocation::HasFailed();
        }
        if (!hasFailed) {
            EXPECT_EQ(code, 0);
            EXPECT_THAT(ReadResults(tested, dst), ElementsAre(tested.ofFirst, tested.ofSecond));
            break;
        }
        EXPECT_TRUE(code != 0 || log.Count(1) != 0) << "untold after " << spared;
        const Handle again;
        ASSERT_EQ(tested.call(again.Get(), src.Get()), 0) << "after " << spared;
    }
}

/// Applies a reduction to a table.
template <template <ContainerID> class Reduction>
ErrorCode Apply(DataFrameRef& dst, const DataFrameRef& src)
{
    return dst.ApplyInplace(Func::FunctorFactory<Reduction, Func::UnaryBase>{}, src);
}

TEST(TableReductions, GiveEachColumnItsOwnType)
{
    const DataFrame src = TableOf(Column<bool>("flag", {true, true}), Column<std::int8_t>("small", {100, 100}),
        Column<float>("single", {0.5F, 1.0F}), Column<DateTime>("time", {DateTime(3), DateTime(4)}));
    DataFrame dst;
    ASSERT_EQ(Apply<Func::Sum>(dst, src), 0);
    EXPECT_EQ(dst.RowCount(), 1U);
    EXPECT_THAT(dst.GetColumnName(), ElementsAre("flag", "small", "single", "time"));
    EXPECT_EQ(GetValueFromIterator<std::int64_t>(dst.GetColumn(0)->GetIterator(), 0), 2);
    EXPECT_EQ(GetValueFromIterator<double>(dst.GetColumn(1)->GetIterator(), 0), 200.0);
    EXPECT_EQ(GetValueFromIterator<float>(dst.GetColumn(2)->GetIterator(), 0), 1.5F);
    EXPECT_EQ(GetValueFromIterator<DateTime>(dst.GetColumn(3)->GetIterator(), 0).TimeStamp(), 7);
}

struct FailureCase {
    const char* name;
    ErrorCode (*apply)(DataFrameRef& dst, const DataFrameRef& src);
    ErrorCode code;
    const char* message;
};

const FailureCase STRING_FAILURES[] = {
    {"Sum", &Apply<Func::Sum>, 5, "nullptr error in unary functorSum"},
    {"Mean", &Apply<Func::Mean>, 5, "nullptr error in unary functorMean"},
    {"Min", &Apply<Func::Min>, 1, "Error on calling functor: Min"},
    {"Ptp", &Apply<Func::Ptp>, 1, "Error on calling functor: Ptp"},
};

TEST(TableReductions, EndAtTheFirstColumnThatFails)
{
    for (const FailureCase& wanted : STRING_FAILURES) {
        const DataFrame src =
            TableOf(Column<double>("a", {7.0}), Column<std::string>("b", {"x"}), Column<double>("c", {8.0}));
        DataFrame dst;
        EXPECT_EQ(wanted.apply(dst, src), wanted.code) << wanted.name;
        EXPECT_EQ(dst.GetError().code, wanted.code) << wanted.name;
        EXPECT_EQ(dst.GetError().message, wanted.message);
        EXPECT_EQ(src.GetError().code, 0);
    }
}

TEST(TableReductions, RefuseATableWithoutRows)
{
    const DataFrame src = TableOf(Column<double>("a", {}));
    DataFrame sum;
    EXPECT_EQ(Apply<Func::Sum>(sum, src), 0);
    EXPECT_THAT(sum.To1DVector<double>(), ElementsAre(0.0));
    for (const auto apply : {&Apply<Func::Max>, &Apply<Func::Min>, &Apply<Func::Ptp>, &Apply<Func::IdxMax>}) {
        DataFrame dst;
        EXPECT_EQ(apply(dst, src), 21);
        EXPECT_EQ(dst.GetError().code, 21);
    }
}

TEST(TableReductions, ServeArraysOnly)
{
    const DataFrame src = TableOf(Column<double>("a", {1.0}, CONTAINER_LIST));
    DataFrame dst;
    const LogCapture log;
    EXPECT_NE(Apply<Func::Sum>(dst, src), 0);
    EXPECT_TRUE(log.Has(1, "Trying to get an error functor's attribute"));
}

TEST(TableReductions, FillAWindowOfOneRow)
{
    DataFrame table = TableOf(Column<double>("a", {0.0, 0.0}), Column<double>("b", {0.0, 0.0}));
    DataFrameRef window = table.Slice({1, 2}, {0, 2});
    ASSERT_EQ(Apply<Func::Max>(window, DoubleTable()), 0);
    EXPECT_THAT(table.To1DVector<double>(), ElementsAre(0.0, 0.0, 4.0, -1.0));
    EXPECT_EQ(Apply<Func::IdxMax>(window, DoubleTable()), 21); // a window keeps its value type
}

} // namespace
} // namespace MERVO::Tessera
