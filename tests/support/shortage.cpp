#include "tests/support/shortage.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <new>

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t ROWS = 15;

template <typename T, typename ValueOf>
SeriesPtr ColumnOf(const std::string& name, ValueOf&& valueOf)
{
    std::vector<T> cells;
    for (std::uint32_t i = 0; i < ROWS; ++i) {
        cells.push_back(static_cast<T>(valueOf(i)));
    }
    return Column<T>(name, cells);
}

SeriesPtr Doubles(const std::string& name)
{
    return ColumnOf<double>(
        name, [](auto i) { return i % 7 == 3 ? std::numeric_limits<double>::quiet_NaN() : (i * 11 % 17) * 0.5 - 2; });
}

std::string NumberText(std::uint32_t i) { return std::string(30, '0') + std::to_string(i * 7 % 20); }

DataFrame Numbers() { return TableOf(Doubles("a column of doubles"), Doubles("b"), Doubles("c")); }

DataFrame Mixed()
{
    return TableOf(ColumnOf<std::int32_t>("key", [](auto i) { return i * 5 % 4; }),
        ColumnOf<std::string>(
            "the texts, with a long name", [](auto i) { return "a text that is long: " + NumberText(i); }),
        ColumnOf<DateTime>("moments", [](auto i) { return DateTime(static_cast<long>(i) * static_cast<long>(i)); }),
        Doubles("doubles"), Column("tables", SampleValues<DataFrame>(ROWS)));
}

bool IsSameButForError(const DataFrameRef& table, const DataFrame& expected)
{
    DataFrame healthy;
    healthy.ShallowCopy(table);
    DataFrame wanted;
    wanted.ShallowCopy(expected);
    wanted.SetError(healthy.GetError());
    return static_cast<bool>(IsSameTable(healthy, wanted));
}

testing::AssertionResult HaveSameOutcome(const Scene& scene, const std::vector<DataFrame>& expected)
{
    const std::vector<DataFrame> outcome = scene.Outcome();
    if (outcome.size() != expected.size()) {
        return testing::AssertionFailure() << outcome.size() << " tables, not " << expected.size();
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (const auto same = IsSameTable(outcome[i], expected[i]); !same) {
            return testing::AssertionFailure() << "table " << i << ": " << same.message();
        }
    }
    return testing::AssertionSuccess();
}

/// A scene on which an operation can be run, and is run again.
class Run {
public:
    explicit Run(const Operation& operation) : tested(operation)
    {
        if (tested.prepare) {
            tested.prepare(scene);
        }
        before = scene.dst.Table();
    }
    /// The code; or none for std::bad_alloc.
    std::optional<ErrorCode> Try(unsigned int spared, Shortage shortage)
    {
        const FailingAllocation failing(spared, 0, shortage);
        try {
            return tested.run(scene);
        } catch (const std::bad_alloc&) {
            return std::nullopt;
        }
    }
    /// What a failure must leave.
    void ExpectUnharmed(const std::vector<DataFrame>& expected) const
    {
        const Scene untouched;
        for (std::size_t i = 0; i < scene.Sources().size(); ++i) {
            EXPECT_TRUE(IsSameButForError(scene.Sources()[i]->Table(), untouched.Sources()[i]->Table()))
                << "source " << i;
        }
        const DataFrame& held = scene.dst.Table();
        const bool isHeld = held.RowCount() == before.RowCount() && held.GetColumnName() == before.GetColumnName();
        EXPECT_TRUE((tested.writesThrough && isHeld) || held.GetError().code != 0 || IsSameButForError(held, before) ||
            IsSameButForError(held, expected[0]));
        EXPECT_EQ(scene.made, nullptr);
        EXPECT_EQ(scene.array, nullptr);
    }

    const Operation& tested;
    Scene scene;
    DataFrame before; ///< in dst
};

} // namespace

Scene::Scene()
    : numbers(Numbers()), mixed(Mixed()), texts(TableOf(ColumnOf<std::string>("texts", NumberText))),
      rowMarks(TableOf(ColumnOf<bool>("marks", [](auto i) { return i % 3 == 0; }))),
      columnMarks(TableOf(Column<bool>("0", {true}), Column<bool>("1", {false}), Column<bool>("2", {true}),
          Column<bool>("3", {false}), Column<bool>("4", {true}))),
      places(TableOf(ColumnOf<std::uint32_t>("places", [](auto i) { return i * 7 % ROWS; }))),
      dst(TableOf(Column<std::string>("old", {"what it held before the call", "x"})))
{
}

Scene::~Scene()
{
    if (made != nullptr) {
        MERVO_TSR_Release(&made);
    }
    if (array != nullptr) {
        MERVO_TSR_ReleaseGroupArray(&array);
    }
}

std::vector<DataFrame> Scene::Outcome() const
{
    std::vector<DataFrame> tables{dst.Table()};
    if (made != nullptr) {
        tables.emplace_back(*TableBehind(made));
    }
    for (std::uint32_t i = 0; array != nullptr && i < array->count; ++i) {
        tables.push_back(*array->entries[i].dataFrame);
    }
    if (result) {
        tables.push_back(*result);
    }
    if (tell) {
        tables.push_back(tell());
    }
    return tables;
}

void PutMixedIntoDst(Scene& scene) { scene.dst.Table() = scene.mixed.Table(); }

std::string ShortageCaseName(const testing::TestParamInfo<std::tuple<Operation, Shortage>>& tested)
{
    const auto& [operation, shortage] = tested.param;
    std::string name = operation.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name + (shortage == Shortage::PASSING ? "_Passing" : "_Lasting");
}

void FailEachAllocation(const Operation& operation, Shortage shortage, bool mayThrow)
{
    SCOPED_TRACE(operation.name);
    std::vector<DataFrame> expected;
    {
        Run clean(operation);
        ASSERT_EQ(operation.run(clean.scene), 0);
        expected = clean.scene.Outcome();
    }
    for (AllocationRounds rounds; rounds.Next();) {
        SCOPED_TRACE("allocation " + std::to_string(rounds.Spared()));
        const std::size_t blocks = BlocksInUse();
        {
            Run run(operation);
            const std::optional<ErrorCode> code = run.Try(rounds.Spared(), shortage);
            const bool hasFailed = FailingAllocation::HasFailed();
            ASSERT_TRUE(code.has_value() || mayThrow) << "thrown";
            if (code == 0) {
                ASSERT_TRUE(HaveSameOutcome(run.scene, expected));
            } else {
                ASSERT_TRUE(hasFailed) << "code " << *code;
                run.ExpectUnharmed(expected);
            }
            Run again(operation);
            ASSERT_EQ(operation.run(again.scene), 0);
            ASSERT_TRUE(HaveSameOutcome(again.scene, expected));
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        ASSERT_EQ(BlocksInUse(), blocks) << "left behind";
    }
}

} // namespace MERVO::Tessera
