// Statistics, rolling windows and transforms of single columns by flat call.

#include <gmock/gmock.h>

#include <functional>

#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using Context = MERVO_TSR_CONTEXT;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

struct FlatCase {
    const char* name;
    const char* refusal;
    std::function<int32_t(Context* dst, const Context* src)> call;
    std::vector<double> ofFirst;
    std::vector<double> ofSecond;
    ErrorCode ofBools;
    ErrorCode ofTexts;
};

/// The results for the columns of DoubleTable(). Each argument differs from what another order of arguments would give.
const FlatCase FLAT_CASES[] = {
    {"Var", "[MERVO_TSR_Var] Input is nullptr", [](auto dst, auto src) { return MERVO_TSR_Var(dst, src, 2); }, {7.0},
        {NO_VALUE}, 0, 5},
    {"Std", "[MERVO_TSR_Std] Input is nullptr", [](auto dst, auto src) { return MERVO_TSR_Std(dst, src, 0); },
        {std::sqrt(3.5)}, {NO_VALUE}, 0, 5},
    {"Moment", "[MERVO_TSR_Moment] Invalid input", [](auto dst, auto src) { return MERVO_TSR_Moment(dst, src, 3); },
        {4.5}, {NO_VALUE}, 0, 5},
    {"Kstat", "[MERVO_TSR_Kstat] Input is nullptr", [](auto dst, auto src) { return MERVO_TSR_Kstat(dst, src, 3); },
        {12.0}, {NO_VALUE}, 1, 5},
    {"Skew", "[MERVO_TSR_Skew] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_Skew(dst, src, true, false); },
        {std::sqrt(12.0) * 4.5 / (2.0 * 3.5 * std::sqrt(3.5))}, {0.0}, 1, 5},
    {"SkewWithoutSkipping", "[MERVO_TSR_Skew] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_Skew(dst, src, false, true); }, {4.5 / (3.5 * std::sqrt(3.5))},
        {NO_VALUE}, 1, 5},
    {"Kurt", "[MERVO_TSR_Kurt] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_Kurt(dst, src, true, true); }, {-1.0}, {-1.5}, 1, 5},
    {"KurtWithoutSkipping", "[MERVO_TSR_Kurt] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_Kurt(dst, src, false, true); }, {-1.0}, {NO_VALUE}, 1, 5},
    {"RollingSum", "[MERVO_TSR_RollingSum] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_RollingSum(dst, src, 3, true, 2); }, {3.0, 6.0, 11.0, 9.0},
        {-1.0, 0.0, 1.0, NO_VALUE}, 21, 1},
    {"RollingMean", "[MERVO_TSR_RollingMean] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_RollingMean(dst, src, 2, false, 1); }, {1.0, 1.5, 2.5, 4.5},
        {-1.0, -0.5, 0.5, 1.0}, 21, 1},
    {"Round", "[MERVO_TSR_Round] Input is nullptr", [](auto dst, auto src) { return MERVO_TSR_Round(dst, src, 10); },
        {1.0, 2.0, 3.0, 6.0}, {-1.0, 0.0, 1.0, 0.0}, 1, 1},
    {"Diff", "[MERVO_TSR_Diff] Input is nullptr", [](auto dst, auto src) { return MERVO_TSR_Diff(dst, src, -1); },
        {1.0, 1.0, 3.0, NO_VALUE}, {1.0, 1.0, NO_VALUE, NO_VALUE}, 1, 1},
    {"ReplaceDouble", "[MERVO_TSR_Replace] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_ReplaceDouble(dst, src, 1.0, 9.0); }, {9.0, 2.0, 3.0, 6.0},
        {-1.0, 0.0, 9.0, NO_VALUE}, 0, 0},
    {"ReplaceString", "[MERVO_TSR_ReplaceString] Input is nullptr",
        [](auto dst, auto src) { return MERVO_TSR_ReplaceString(dst, src, "1e0", "9"); }, {9.0, 2.0, 3.0, 6.0},
        {-1.0, 0.0, 9.0, NO_VALUE}, 0, 0},
};

DataFrame DoubleTable()
{
    return TableOf(Column<double>("a", {1.0, 2.0, 3.0, 6.0}), Column<double>("b", {-1.0, 0.0, 1.0, NO_VALUE}));
}

class FlatStatistics : public testing::TestWithParam<FlatCase> {
protected:
    static void ExpectResults(const DataFrame& table)
    {
        ASSERT_EQ(table.ColumnCount(), 2U);
        const auto near = [](const std::vector<double>& cells) {
            std::vector<testing::Matcher<double>> matchers;
            for (const double cell : cells) {
                matchers.push_back(testing::NanSensitiveDoubleEq(cell));
            }
            return ElementsAreArray(matchers);
        };
        EXPECT_THAT(CellsOf<double>(table.GetColumn(0)->GetIterator()), near(GetParam().ofFirst));
        EXPECT_THAT(CellsOf<double>(table.GetColumn(1)->GetIterator()), near(GetParam().ofSecond));
    }
};

INSTANTIATE_TEST_SUITE_P(Calls, FlatStatistics, testing::ValuesIn(FLAT_CASES),
    [](const auto& flat) { return std::string(flat.param.name); });

TEST_P(FlatStatistics, FillTheFirstHandleFromTheSecond)
{
    const Handle src(DoubleTable());
    const Handle dst(TableOf(Column<std::string>("old", {"x", "y"})));
    ASSERT_EQ(GetParam().call(dst.Get(), src.Get()), 0);
    ExpectResults(dst.Table());
    EXPECT_THAT(dst.Table().GetColumnName(), ElementsAre("a", "b"));
    EXPECT_EQ(src.Table().RowCount(), 4U);
}

TEST_P(FlatStatistics, ReadAWindowOnly)
{
    const DataFrame around = TableOf(Column<double>("c", {1e9, 1e9, 1e9, 1e9, 1e9, 1e9}),
        Column<double>("a", {1e9, 1.0, 2.0, 3.0, 6.0, 1e9}), Column<double>("b", {1e9, -1.0, 0.0, 1.0, NO_VALUE, 1e9}));
    const Handle src(around.Slice({1, 5}, {1, 3}));
    const Handle dst;
    ASSERT_EQ(GetParam().call(dst.Get(), src.Get()), 0);
    ExpectResults(dst.Table());
}

TEST_P(FlatStatistics, WorkOnATableItself)
{
    const Handle both(DoubleTable());
    ASSERT_EQ(GetParam().call(both.Get(), both.Get()), 0);
    ExpectResults(both.Table());
}

TEST_P(FlatStatistics, RefuseHandlesThatHoldNothingOrBoth)
{
    const Handle good(DoubleTable());
    DataFrame table;
    DataFrameRef window;
    Context neither{nullptr, nullptr};
    Context both{&table, &window};
    for (Context* const bad : {static_cast<Context*>(nullptr), &neither, &both}) {
        for (const bool isSource : {false, true}) {
            const LogCapture log;
            EXPECT_EQ(isSource ? GetParam().call(good.Get(), bad) : GetParam().call(bad, good.Get()), 33);
            EXPECT_THAT(log.Texts(1), ElementsAre(GetParam().refusal));
        }
    }
    EXPECT_EQ(good.Table().RowCount(), 4U);
}

TEST_P(FlatStatistics, TellOfTypesThatTheyDontServe)
{
    const LogCapture log;
    const Handle bools(TableOf(Column<bool>("a", {true, false, true, true, false})));
    const Handle texts(TableOf(Column<std::string>("a", {"1", "2", "3", "4"})));
    const Handle ofBools;
    const Handle ofTexts;
    EXPECT_EQ(GetParam().call(ofBools.Get(), bools.Get()), GetParam().ofBools);
    EXPECT_EQ(GetParam().call(ofTexts.Get(), texts.Get()), GetParam().ofTexts);
    EXPECT_EQ(GetParam().call(ofTexts.Get(), bools.Get()), GetParam().ofTexts) << "the first failure stays";
}

TEST_P(FlatStatistics, SurviveWantOfMemory)
{
    const Handle src(DoubleTable());
    for (unsigned int spared = 0;; ++spared) {
        ASSERT_LT(spared, 1000U);
        const LogCapture log;
        const Handle dst;
        int32_t code = 0;
        bool hasFailed = false;
        {
            const FailingAllocation failing(spared);
            code = GetParam().call(dst.Get(), src.Get());
            hasFailed = FailingAllocation::HasFailed();
        }
        if (!hasFailed) {
            EXPECT_EQ(code, 0);
            ExpectResults(dst.Table());
            break;
        }
        const Handle again;
        ASSERT_EQ(GetParam().call(again.Get(), src.Get()), 0) << "after " << spared;
        ExpectResults(again.Table());
    }
}

TEST(FlatStatistics, KstatOfAnotherDegreeGivesFive)
{
    const Handle src(DoubleTable());
    const Handle dst;
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_Kstat(dst.Get(), src.Get(), 5), 5);
    EXPECT_EQ(dst.Table().GetError().message, "Error on calling functor: Kstat");
}

} // namespace
} // namespace MERVO::Tessera
