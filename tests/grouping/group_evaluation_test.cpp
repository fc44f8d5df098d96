// What functors make of groups: of reordered rows, of rows where they lie, and by flat call.

#include <gmock/gmock.h>

#include <iostream>
#include <numeric>

#include "tests/functors/pairing.h"
#include "tests/functors/scripted_functors.h"
#include "tests/support/handle.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Positions = std::vector<std::uint32_t>;
using Creators = std::vector<UnaryFactory>;

template <template <ContainerID, typename...> class F, typename... Arguments>
UnaryFactory Make(Arguments... arguments)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Arguments...>{arguments...};
}

/// One column of a type for each number; cells come from few values where they are to be keys.
template <typename T>
SeriesPtr RandomColumn(Random& random, std::uint32_t rows, bool isKey)
{
    std::vector<T> cells = RandomCells<T>(random, isKey ? 1 + random.Below(5) : rows);
    if (isKey) {
        const std::vector<T> values = cells;
        cells.resize(rows);
        std::generate(cells.begin(), cells.end(), [&] { return static_cast<T>(values[random.Below(values.size())]); });
    }
    return Column<T>(isKey ? "key" : "value", cells);
}

constexpr auto RANDOM_COLUMNS = ForEachValueType([](auto number) { return &RandomColumn<ValueTypes::At<number()>>; });

/// Columns 0 to 1 are keys of two types, column 2 a value of a third one.
DataFrame RandomTable(Random& random, std::uint32_t rows, const std::array<unsigned int, 3>& types)
{
    return TableOf(RANDOM_COLUMNS[types[0]](random, rows, true), RANDOM_COLUMNS[types[1]](random, rows, true),
        RANDOM_COLUMNS[types[2]](random, rows, false));
}

const Creators& Reducers()
{
    using namespace Func;
    static const Creators reducers{Make<Sum>(), Make<Mean>(), Make<Max>(), Make<Min>(), Make<Std>(), Make<Ptp>(),
        Make<Std, std::uint32_t>(0U), Make<Var, std::uint32_t>(1U), Make<Var, std::uint32_t>(2U), Make<IdxMax>(),
        Make<Kurt, bool, bool>(true, true)};
    return reducers;
}

/// A run on each group's rows alone, one below the other; a failed table where one fails.
DataFrame RunsOneByOne(const DataFrame& table, std::uint32_t column, const Groups& groups, const UnaryFactory& make)
{
    DataFrame all;
    for (std::uint32_t g = 0; g < groups.GetGroupNum(); ++g) {
        const auto begin = groups.GetRowOrder().begin();
        const Positions rows(begin + groups.GetGroupBegins()[g], begin + groups.GetGroupBegins()[g + 1]);
        DataFrame result;
        if (result.ApplyInplace(make, table.SelectCol(Positions{column}).SelectRow(rows)) != 0) {
            return FailedTable(result.GetError().code);
        }
        DataFrame next;
        const Func::FunctorFactory<Func::InsertRow, Func::BinaryBase, std::uint32_t> append{all.RowCount()};
        if (g != 0 && next.ApplyInplace(append, result, all) != 0) {
            return FailedTable(next.GetError().code);
        }
        all = g == 0 ? std::move(result) : std::move(next);
    }
    return all;
}

// Every key type alone and with another one, and every value type. Rows reach over several blocks now and then.
TEST(GroupEvaluation, GivesTheBitsOfARunOnEachGroupAlone)
{
    const LogCapture log;
    Random random(42);
    for (unsigned int round = 0; round < 2 * 14 * 13; ++round) {
        const std::uint32_t rows = round % 29 == 7 ? 1200 : 1 + random.Below(60);
        const unsigned int type = round / 14 % 13;
        DataFrame table = RandomTable(random, rows, {type, random.Below(13), round % 14});
        const Positions keys = random.Below(2) == 0 ? Positions{0}
            : random.Below(2) == 0                  ? Positions{0, 1}
                                                    : Positions{1, 0};
        Positions all = keys;
        all.push_back(2);
        DataFrame selected = table.SelectCol(all);
        Positions first(keys.size());
        std::iota(first.begin(), first.end(), 0U);
        const Groups groups = selected.GroupBy(first, false, false, false);
        const std::uint32_t value = static_cast<std::uint32_t>(keys.size());
        for (std::size_t f = 0; f < Reducers().size(); ++f) {
            SCOPED_TRACE("round " + std::to_string(round) + ", functor " + std::to_string(f));
            const UnaryFactory& make = Reducers()[f];
            const DataFrame applied = groups.Apply(make);
            const DataFrame expected = RunsOneByOne(selected, value, groups, make);
            ASSERT_EQ(applied.GetError().code, expected.GetError().code);
            if (expected.GetError().code == 0) {
                ASSERT_TRUE(IsSameTable(applied.SelectCol(Positions{value}), expected));
            }
            ASSERT_TRUE(IsSameTable(table.Aggregate(keys, Positions{2}, make), applied));

            const DataFrame spread = table.TransformGroups(keys, Positions{2}, make);
            const DataFrame transformed = groups.Transform(make);
            ASSERT_EQ(spread.GetError().message, transformed.GetError().message);
            ASSERT_TRUE(
                transformed.GetError().code != 0 || IsSameTable(spread.SelectRow(groups.GetRowOrder()), transformed));
        }
    }
}

/// Keys b, a, b and a column of numbers.
DataFrame Lettered()
{
    return TableOf(Column<std::int32_t>("value", {1, 2, 3}), Column<std::string>("key", {"b", "a", "b"}));
}

TEST(GroupEvaluation, KeepsColumnsInPlaceAndRepeatsKeys)
{
    DataFrame table = Lettered();
    const Groups groups = table.GroupBy({"key"}, false, false, true);
    const auto expected = [](const std::vector<double>& values, const std::vector<std::string>& keys) {
        return TableOf(Column<double>("value", values), Column<std::string>("key", keys));
    };
    EXPECT_TRUE(IsSameTable(groups.Apply(Make<Func::Sum>()), expected({4, 2}, {"b", "a"})));
    EXPECT_TRUE(IsSameTable(groups.Transform(Make<Func::Mean>()), expected({2, 2, 2}, {"b", "b", "a"})));
    EXPECT_EQ(groups.GetProcessedDataFrame().ColumnCount(), 0U) << "which Transform has handed out";

    // As many rows as the group has, and one more.
    const DataFrame same = groups.Apply(Make<Func::CopySeries>());
    EXPECT_TRUE(IsSameTable(same, table.SelectRow({0, 2, 1})));
    const Groups fresh = table.GroupBy({"key"}, false, false, true);
    EXPECT_TRUE(IsSameTable(fresh.GetProcessedDataFrame(), same));
    EXPECT_EQ(fresh.GetProcessedDataFrame().ColumnCount(), 0U);
    Script longer;
    longer.shape = [](SeriesAttr attr) { return WithLength(attr, attr.length + 1); };
    EXPECT_TRUE(IsSameTable(groups.Apply(ScriptedFactory{longer}),
        TableOf(
            Column<std::int32_t>("value", {2, 6, 0, 4, 0}), Column<std::string>("key", {"b", "b", "b", "a", "a"}))));

    // A key behind a higher one in the list is not known as one.
    DataFrame pairs = TableOf(Column<std::int32_t>("a", {1, 1, 1}), Column<std::int32_t>("b", {7, 7, 8}));
    EXPECT_TRUE(IsSameTable(pairs.GroupBy({1, 0}, false, true, true).Apply(Make<Func::Sum>()),
        TableOf(Column<double>("a", {2, 1}), Column<std::int32_t>("b", {7, 8}))));
}

TEST(GroupEvaluation, TakesAFunctorForEachValueColumn)
{
    const DataFrame table = TableOf(Column<std::int8_t>("a", {5, -6, 7}), Column<bool>("key", {true, false, true}),
        Column<float>("b", {1, 2, 4}), Column<std::int8_t>("b", {9, 8, 7}));
    const Creators creators{Make<Func::Max>(), Make<Func::Sum>(), Make<Func::IdxMax>()};
    const DataFrame expected = TableOf(Column<bool>("key", {true, false}), Column<std::int8_t>("a", {7, -6}),
        Column<float>("b", {5, 2}), Column<std::uint32_t>("b_1", {0, 0}));
    EXPECT_TRUE(IsSameTable(table.Aggregate({1}, {0, 2, 3}, creators), expected));
    DataFrame selected = table.SelectCol(Positions{1, 0, 2, 3});
    EXPECT_TRUE(IsSameTable(selected.GroupBy({0}, false, false, false).Apply(creators), expected));
    EXPECT_TRUE(IsSameTable(table.Aggregate({"key"}, {"a", "a"}, Make<Func::Min>()),
        TableOf(Column<bool>("key", {true, false}), Column<std::int8_t>("a", {5, -6}),
            Column<std::int8_t>("a_1", {5, -6}))));
    EXPECT_TRUE(
        IsSameTable(table.Aggregate({"key"}, {}, Make<Func::Min>()), TableOf(Column<bool>("key", {true, false}))));
    // What is no reduction goes by reordered rows.
    EXPECT_TRUE(IsSameTable(table.Aggregate({"key"}, {"a"}, Make<Func::CopySeries>()),
        TableOf(Column<bool>("key", {true, true, false}), Column<std::int8_t>("a", {5, 7, -6}))));
    EXPECT_TRUE(
        IsSameTable(table.TransformGroups({"a"}, {"key"}, Make<Func::CopySeries>()), table.SelectCol(Positions{0, 1})));
}

// The sums of groups add up to the sum of the whole; whole numbers are added without rounding.
TEST(GroupEvaluation, AddsUpToTheWhole)
{
    Random random(7);
    for (const std::uint32_t keyCount : {1U, 3U, 400U, 100000U}) {
        std::vector<std::uint64_t> keys(5000);
        std::vector<std::int32_t> values(keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i] = random.Below(keyCount) * 0x123456789ABCULL;
            values[i] = static_cast<std::int32_t>(random.Next());
        }
        const DataFrame table = TableOf(Column<std::uint64_t>("k", keys), Column<std::int32_t>("v", values));
        const DataFrame sums = table.Aggregate({0}, {1}, Make<Func::Sum>());
        DataFrame whole;
        ASSERT_EQ(whole.ApplyInplace(Make<Func::Sum>(), sums.SelectCol(Positions{1})), 0);
        EXPECT_EQ(whole.To1DVector<double>()[0],
            static_cast<double>(std::accumulate(values.begin(), values.end(), std::int64_t{0})));
    }
}

TEST(GroupEvaluation, RefusesWithATextAndNoTable)
{
    struct Refusal {
        int line;
        DataFrame result;
        ErrorCode code;
        const char* stored;
        const char* log;
    };
    const LogCapture log;
    DataFrame table = TableOf(Column<bool>("key", {true, false, true}), Column<std::int32_t>("a", {1, 2, 3}),
        Column<std::string>("b", {"x", "y", "z"}), Column<std::int32_t>("c", {4, 5, 6}));
    const Groups groups = table.GroupBy({0}, false, true, true);
    const Groups crossed = table.GroupBy({3, 0}, false, true, true);
    const UnaryFactory sum = Make<Func::Sum>();
    const UnaryFactory max = Make<Func::Max>();
    const UnaryFactory copy = Make<Func::CopySeries>();
    Script list = Shaped(&AsList);
    Script failing = FailingAfter(1);
    const auto failingMaker = [&failing](ContainerID) {
        failing.shape = &AsOneCell;
        return FunctorPtr<Func::UnaryBase>(new Scripted<CONTAINER_ARRAY, Script&>(failing));
    };
    DataFrame shrunk = Lettered();
    const Groups orphans = shrunk.GroupBy({"key"}, true, true, true);
    EXPECT_EQ(shrunk.ApplyInplace(max, shrunk), 0);
    const DataFrame nothing = GetEmptyDataFrame({0, 2}, TESSERA_INT32);
    const char* const noGroups = "Empty groups do not support apply operation";
    const char* const forbidden =
        "Transform with the input functor is forbbiden, since the dst series size is not equal to sample number";
    const Refusal cases[] = {
        {__LINE__, Groups().Apply(sum), 2, noGroups, "Empty groups do not support apply"},
        {__LINE__, Groups().Transform(sum), 2, noGroups, noGroups},
        {__LINE__, nothing.Aggregate({0}, {1}, sum), 2, noGroups, "there is no rows in dataframe"},
        {__LINE__, groups.Apply(Creators{sum, max}), 2, "Invalid creators number", "Invalid creators number"},
        {__LINE__, groups.Apply(Creators{}), 2, "Invalid creators number", "Invalid creators number"},
        {__LINE__, crossed.Apply(Creators{max, max}), 2, "Invalid creators number", "Invalid creators number"},
        {__LINE__, groups.Apply(Creators{max, copy, max}), 2, "Invalid creators", "Invalid creators"},
        {__LINE__, groups.Transform(copy), 2, forbidden, forbidden},
        {__LINE__, groups.Apply(ScriptedFactory{list}), 2, "container type is changed",
            "Functor Scripted should not change the container type 0 to 1"},
        {__LINE__, groups.Apply(UnaryFactory(failingMaker)), 12, "Failed to execute functor",
            "Execute functor Scripted on index 1 failed"},
        {__LINE__, groups.Apply(Creators{max, sum, max}), 5, "Failed to execute functor",
            "Execute functor Sum on index 2 failed"},
        {__LINE__, groups.Transform(Make<Func::Min>()), 1, "Failed to execute functor",
            "Failed to execute functor Min on index 2"},
        {__LINE__, table.Aggregate({"key"}, {"b"}, sum), 5, "Failed to execute functor",
            "Execute functor Sum on index 1 failed"},
        {__LINE__, table.Aggregate({"key"}, {"nobody"}, sum), 5, "there is no column of such a name", "nobody"},
        {__LINE__, table.Aggregate({0}, {4}, sum), 4, "Index out of max columns number", ""},
        {__LINE__, table.TransformGroups({}, {1}, sum), 2, noGroups, "Group index is zero"},
        {__LINE__, FailedTable(9).Aggregate({0}, {1}, sum), 9, "it failed", ""},
        {__LINE__, orphans.Apply(max), 5, "a column is short of rows of the groups",
            "Column 0 is short of rows of the groups"},
    };
    EXPECT_EQ(failing.runs, 2) << "a failure ends it all";
    for (const Refusal& refused : cases) {
        EXPECT_EQ(refused.result.GetError().code, refused.code) << refused.line;
        EXPECT_EQ(refused.result.GetError().message, refused.stored) << refused.line;
        EXPECT_EQ(refused.result.ColumnCount(), 0U) << refused.line;
        EXPECT_TRUE(log.Has(1, refused.log)) << refused.line;
    }
}

// A host's functor that overrides the whole run, and walks its cursors away, is run as it stands on each group.
class Stepping final : public Func::UnaryBase {
public:
    std::string GetName() const override { return "Stepping"; }
    SeriesAttr GetDstAttr(const Cursor& src) const override { return WithLength(src->GetAttr(), 1); }
    bool CheckParams(const Cursor&, const Cursor&) const override { return false; }
    Error ProcessSeries(const Cursor& src, const Cursor& dst, bool) const override
    {
        std::int32_t last = 0;
        for (auto& walk = CursorAs<CONTAINER_LIST, std::int32_t>(src); walk.Length() != 0; ++walk.mHead) {
            last = *walk.mHead;
        }
        SetValueToIterator<std::int32_t>(dst, last, 0);
        dst->Shift(1);
        return {};
    }
};

TEST(GroupEvaluation, RunsAHostsOwnFunctorAlsoOverLists)
{
    const std::vector<std::uint8_t> flags{1, 0, 0, 1, 0};
    auto shared = std::make_shared<DataFrame::Columns>();
    shared->push_back(Column<std::int32_t>("v", {3, 1, 4, 1, 5}, CONTAINER_LIST));
    const Groups groups(flags, std::move(shared), {});
    const DataFrame result = groups.Apply([](ContainerID) { return FunctorPtr<Func::UnaryBase>(new Stepping); });
    EXPECT_THAT(CellsOf<std::int32_t>(result.GetColumn(0)->GetIterator()), ElementsAre(4, 5));
}

TEST(GroupEvaluation, ShowsEachGroup)
{
    DataFrame table = Lettered();
    testing::internal::CaptureStdout();
    table.GroupBy({"key"}, false, true, true).Show();
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_THAT(shown, testing::StartsWith("num 0\n"));
    EXPECT_THAT(shown, HasSubstr("\nnum 1\n"));
}

TEST(GroupEvaluation, PassesOnWhatAHostsFunctorThrows)
{
    const UnaryFactory thrower = [](ContainerID) -> FunctorPtr<Func::UnaryBase> { throw std::runtime_error("mine"); };
    DataFrame table = Lettered();
    const Groups groups = table.GroupBy({"key"}, true, true, true);
    const std::function<void()> calls[] = {
        [&] { groups.Apply(thrower); },
        [&] { groups.Transform(thrower); },
        [&] { table.Aggregate({1}, {0}, thrower); },
        [&] {
            table.PivotTable({{0}, {1}, {}}, thrower, 0.0);
        },
        [&] { static_cast<void>(DataFrame().ApplyInplace(thrower, table)); },
    };
    for (const auto& call : calls) {
        EXPECT_THROW(call(), std::runtime_error) << &call - calls;
    }
}

// ---- Flat call

TEST(FlatGroupByTransform, PicksTheFunctorByItsNumber)
{
    const UnaryFactory makers[] = {
        Make<Func::Max>(), Make<Func::Min>(), Make<Func::Std>(), Make<Func::Sum>(), Make<Func::Mean>()};
    const uint32_t keys[] = {0};
    for (std::uint32_t functor = 0; functor < 5; ++functor) {
        Random random(3);
        const DataFrame source = RandomTable(random, 30, {TESSERA_INT16, TESSERA_INT8, TESSERA_FLOAT});
        const Handle handle(source);
        DataFrame table = source;
        const DataFrame expected = table.GroupBy({0}, true, false, true).Transform(makers[functor]);
        MERVO_TSR_GROUP_ARRAY* array = MERVO_TSR_GroupBy_Transform(handle.Get(), keys, 1, functor);
        ASSERT_NE(array, nullptr);
        ASSERT_EQ(array->count, 1U);
        EXPECT_TRUE(IsSameTable(*array->entries[0].dataFrame, expected)) << functor;
        EXPECT_TRUE(IsSameTable(handle.Table(), table)) << "reordered itself";
        MERVO_TSR_ReleaseGroupArray(&array);
    }
}

TEST(FlatGroupByTransform, RefusesWithAMessage)
{
    const Handle table(Lettered());
    const uint32_t keys[] = {1, 9};
    struct Refusal {
        int line;
        MERVO_TSR_CONTEXT* table;
        const uint32_t* keys;
        uint32_t count;
        uint32_t functor;
        std::vector<const char*> texts;
    };
    for (const Refusal& refused : {Refusal{__LINE__, table.Get(), nullptr, 1, 0, {"Input is nullptr"}},
             Refusal{__LINE__, table.Get(), keys, 0, 0, {"Input is nullptr"}},
             Refusal{__LINE__, nullptr, keys, 1, 0, {"Input is nullptr after checking dataframe"}},
             Refusal{__LINE__, table.Get(), keys, 1, 5, {"Invalid Functor", "Transform operation failed"}},
             Refusal{__LINE__, table.Get(), keys, 2, 0, {"Transform operation failed"}}}) {
        const LogCapture log;
        EXPECT_EQ(MERVO_TSR_GroupBy_Transform(refused.table, refused.keys, refused.count, refused.functor), nullptr);
        for (const char* text : refused.texts) {
            EXPECT_TRUE(log.Has(1, std::string("[MERVO_TSR_GroupBy_Transform] ") + text)) << refused.line;
        }
    }
    EXPECT_EQ(table.Table().GetError().code, 0);
}

} // namespace
} // namespace MERVO::Tessera
