// Merges by table and by flat call, held against nested loops over sorted rows.

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <numeric>

#include "tests/functors/pairing.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;
using Suffixes = std::array<std::string, 2>;

constexpr std::array JOIN_TYPES{TESSERA_JOIN_INNER, TESSERA_JOIN_RIGHT, TESSERA_JOIN_LEFT, TESSERA_JOIN_OUTER};
constexpr std::uint32_t NONE = 0xFFFFFFFF;
const Suffixes SUFFIXES{"_x", "_y"};

template <typename T>
std::vector<T> CellsOfColumn(const DataFrame& table, unsigned int k)
{
    return CellsOf<T>(table.GetColumn(k)->GetIterator());
}

// ---- A model of the order and the pairs of rows

/// A key of the rows of both tables, those of the left one first.
struct ModelKey {
    std::function<bool(std::uint32_t, std::uint32_t)> isGreater;
    std::function<bool(std::uint32_t, std::uint32_t)> isDifferent;
};

template <typename T>
ModelKey KeyOf(const std::vector<T>& left, const std::vector<T>& right)
{
    auto both = std::make_shared<std::vector<T>>(left);
    both->insert(both->end(), right.begin(), right.end());
    const auto cell = [both](std::uint32_t row) -> T { return (*both)[row]; };
    return {[cell](std::uint32_t a, std::uint32_t b) { return cell(b) < cell(a); },
        [cell](std::uint32_t a, std::uint32_t b) {
            if constexpr (std::is_floating_point_v<T>) {
                return !(std::abs(cell(a) - cell(b)) <= std::numeric_limits<T>::epsilon());
            } else {
                return !(cell(a) == cell(b));
            }
        }};
}

using RowPair = std::pair<std::uint32_t, std::uint32_t>;

std::vector<RowPair> ModelPairs(
    const std::vector<ModelKey>& keys, std::uint32_t leftRows, std::uint32_t rightRows, std::int32_t type)
{
    Positions index(leftRows + rightRows);
    std::iota(index.begin(), index.end(), 0U);
    for (const ModelKey& key : keys) {
        std::stable_sort(index.begin(), index.end(), key.isGreater);
    }
    std::vector<RowPair> pairs;
    for (std::size_t begin = 0, end = 0; begin < index.size(); begin = end) {
        Positions left;
        Positions right;
        for (end = begin; end == begin ||
             (end < index.size() &&
                 std::none_of(
                     keys.begin(), keys.end(), [&](auto& key) { return key.isDifferent(index[end], index[end - 1]); }));
             ++end) {
            index[end] < leftRows ? left.push_back(index[end]) : right.push_back(index[end] - leftRows);
        }
        left = left.empty() && (type == 1 || type == 3) ? Positions{NONE} : left;
        right = right.empty() && (type == 2 || type == 3) ? Positions{NONE} : right;
        for (const std::uint32_t leftRow : left) {
            for (const std::uint32_t rightRow : right) {
                pairs.emplace_back(leftRow, rightRow);
            }
        }
    }
    return pairs;
}

/// The cells of the rows on one side of the pairs; of the other side where they are missing and `other` is given.
template <typename T>
std::vector<T> ModelColumn(const std::vector<RowPair>& pairs, const std::vector<T>& left, const std::vector<T>* right)
{
    std::vector<T> cells;
    for (const auto& [leftRow, rightRow] : pairs) {
        if (leftRow != NONE) {
            cells.push_back(left[leftRow]);
        } else if (right != nullptr) {
            cells.push_back((*right)[rightRow]);
        } else if constexpr (std::is_floating_point_v<T>) {
            cells.push_back(std::numeric_limits<T>::quiet_NaN());
        } else {
            cells.push_back(T{});
        }
    }
    return cells;
}

std::vector<RowPair> Swapped(std::vector<RowPair> pairs)
{
    for (auto& [left, right] : pairs) {
        std::swap(left, right);
    }
    return pairs;
}

/// Cells of which many are equal, or as good as equal; or any.
template <typename T>
std::vector<T> KeyCells(Random& random, std::uint32_t rows, bool areFew)
{
    std::vector<T> cells = RandomCells<T>(random, rows);
    for (std::uint32_t i = 0; areFew && i < rows; ++i) {
        cells[i] = SampleValue<T>(random.Below(12));
        if constexpr (std::is_floating_point_v<T>) { // neighbours are equal, the ends of a chain are not
            cells[i] = static_cast<T>(random.Below(5)) * std::numeric_limits<T>::epsilon() * T(0.75);
        } else if constexpr (std::is_same_v<T, std::string>) { // all begin alike, and one ends there
            cells[i] = "key " + (random.Below(9) == 0 ? "" : std::to_string(100000 + random.Below(12) * 7919));
        }
    }
    return cells;
}

template <typename T>
class MergeByKeyOf : public testing::Test {
};
TYPED_TEST_SUITE(MergeByKeyOf, AllValueTypes);

TYPED_TEST(MergeByKeyOf, GivesTheRowsOfNestedLoops)
{
    using T = TypeParam;
    if constexpr (!std::is_same_v<T, DataFrame>) {
        constexpr std::pair<std::uint32_t, std::uint32_t> SIZES[] = {
            {1, 1}, {2, 1}, {5, 9}, {40, 37}, {0, 6}, {6, 0}, {0, 0}, {120, 90}};
        Random random(TYPE_ID_OF<T> + 5);
        for (const auto& [leftRows, rightRows] : SIZES) {
            for (const int form : {0, 1, 2}) { // any keys; few; few and a second key
                const auto leftKeys = KeyCells<T>(random, leftRows, form != 0);
                const auto rightKeys = KeyCells<T>(random, rightRows, form != 0);
                const auto leftSeconds = KeyCells<std::int8_t>(random, leftRows, true);
                const auto rightSeconds = KeyCells<std::int8_t>(random, rightRows, true);
                const auto leftValues = RandomCells<T>(random, leftRows);
                const auto rightValues = RandomCells<DataFrame>(random, rightRows);
                const DataFrame left = TableOf(Column<T>("value", leftValues), Column<T>("key", leftKeys),
                    Column<std::int8_t>("second", leftSeconds));
                const DataFrame right = TableOf(Column<T>("other", rightKeys),
                    Column<std::int8_t>("second", rightSeconds), Column<DataFrame>("value", rightValues));
                std::vector<ModelKey> keys{KeyOf(leftKeys, rightKeys)};
                if (form == 2) {
                    keys.push_back(KeyOf(leftSeconds, rightSeconds));
                }
                for (const auto type : JOIN_TYPES) {
                    const auto pairs = ModelPairs(keys, leftRows, rightRows, type);
                    const auto back = Swapped(pairs);
                    DataFrame expected;
                    if (!pairs.empty() && form == 2) {
                        expected = TableOf(Column<T>("key", ModelColumn(pairs, leftKeys, &rightKeys)),
                            Column<std::int8_t>("second", ModelColumn(pairs, leftSeconds, &rightSeconds)),
                            Column<T>("value_l", ModelColumn<T>(pairs, leftValues, nullptr)),
                            Column<DataFrame>("value_r", ModelColumn<DataFrame>(back, rightValues, nullptr)));
                    } else if (!pairs.empty()) {
                        expected = TableOf(Column<T>("key", ModelColumn(pairs, leftKeys, &rightKeys)),
                            Column<T>("value_l", ModelColumn<T>(pairs, leftValues, nullptr)),
                            Column<std::int8_t>("second_l", ModelColumn<std::int8_t>(pairs, leftSeconds, nullptr)),
                            Column<std::int8_t>("second_r", ModelColumn<std::int8_t>(back, rightSeconds, nullptr)),
                            Column<DataFrame>("value_r", ModelColumn<DataFrame>(back, rightValues, nullptr)));
                    }
                    const DataFrame merged = left.Merge(right, form == 2 ? Positions{1, 2} : Positions{1},
                        form == 2 ? Positions{0, 1} : Positions{0}, type, {"_l", "_r"});
                    ASSERT_TRUE(IsSameTable(merged, expected))
                        << leftRows << " and " << rightRows << " rows, form " << form << ", type " << type;
                }
            }
        }
    }
}

/// Even keys in no order, each as many times as it repeats.
Positions ShuffledKeys(Random& random, std::uint32_t count, std::uint32_t repeats)
{
    Positions keys(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        keys[i] = 2 * (i / repeats);
        std::swap(keys[i], keys[random.Below(i + 1)]);
    }
    return keys;
}

// Keys that lie close together are looked up, others sorted; the rows are the same.
TEST(Merge, PairsRowsAlikeHoweverKeysAreFound)
{
    const auto numbered = [](auto number) {
        return [number](const Positions& keys) {
            std::vector<decltype(number(0U))> cells;
            std::transform(keys.begin(), keys.end(), std::back_inserter(cells), number);
            return Column("key", cells);
        };
    };
    const auto digits = [](std::uint32_t key) { return std::to_string(1000 + key); };
    const std::function<SeriesPtr(const Positions&)> forms[] = {
        numbered([](std::uint32_t key) { return static_cast<std::int16_t>(static_cast<int>(key) - 300); }),
        numbered([](std::uint32_t key) { return DateTime(static_cast<long>(key)); }),
        numbered([](std::uint32_t key) { return std::int64_t{key} * 1000003 - 400000000; }),
        numbered([digits](std::uint32_t key) { return digits(key); }),
        numbered([digits](std::uint32_t key) { return "no. " + digits(key) + "-a"; }),
        numbered([digits](std::uint32_t key) { return "a text of more bytes " + digits(key); })};
    Random random(17);
    for (const auto& [leftRepeats, rightRepeats] :
        {std::pair(1U, 1U), std::pair(3U, 1U), std::pair(1U, 3U), std::pair(2U, 3U)}) {
        const Positions leftKeys = ShuffledKeys(random, 1100, leftRepeats);
        Positions rightKeys = ShuffledKeys(random, 1000, rightRepeats);
        std::for_each(rightKeys.begin(), rightKeys.end(), [](std::uint32_t& key) { key += 200; });
        Positions rows(1100);
        std::iota(rows.begin(), rows.end(), 1U); // no row is 0, which stands for a missing one
        for (const auto type : JOIN_TYPES) {
            const auto pairs = ModelPairs({KeyOf(leftKeys, rightKeys)}, 1100, 1000, type);
            const auto expected = std::pair(ModelColumn<std::uint32_t>(pairs, rows, nullptr),
                ModelColumn<std::uint32_t>(Swapped(pairs), rows, nullptr));
            for (const auto& form : forms) {
                const DataFrame left = TableOf(form(leftKeys), Column("row", rows));
                const DataFrame right =
                    TableOf(form(rightKeys), Column("row", Positions(rows.begin(), rows.begin() + 1000)));
                const DataFrame merged = left.Merge(right, {0}, {0}, type, SUFFIXES);
                EXPECT_EQ(std::pair(CellsOfColumn<std::uint32_t>(merged, 1), CellsOfColumn<std::uint32_t>(merged, 2)),
                    expected)
                    << leftRepeats << ' ' << rightRepeats << ' ' << type << ' ' << &form - forms;
            }
        }
    }
}

// ---- The steps of a merge, each by what only it does

TEST(Merge, PairsKeysByRankOnce)
{
    const DataFrame left = TableOf(
        Column<std::int32_t>("a", {7, 8}), Column<std::int32_t>("b", {1, 2}), Column<std::string>("c", {"p", "q"}));
    const DataFrame right = TableOf(Column<std::int32_t>("d", {2, 1}), Column<std::string>("e", {"q", "z"}));
    const DataFrame merged = left.Merge(right, {2, 1, 2}, {0, 1, 1}, TESSERA_JOIN_INNER, SUFFIXES);
    EXPECT_TRUE(IsSameTable(merged,
        TableOf(Column<std::int32_t>("b", {2}), Column<std::string>("c", {"q"}), Column<std::int32_t>("a_x", {8}))));
    EXPECT_EQ(left.Merge(right, {0, 0}, {0}, TESSERA_JOIN_OUTER, SUFFIXES).RowCount(), 4U);
}

TEST(Merge, MatchesEachRowWithEachOtherWithoutKeys)
{
    const DataFrame left = TableOf(Column<std::int32_t>("a", {1, 2}));
    const DataFrame right = TableOf(Column<std::int32_t>("a", {3, 4, 5}));
    EXPECT_TRUE(IsSameTable(left.Merge(right, {}, {}, TESSERA_JOIN_INNER, {"", ""}),
        TableOf(Column<std::int32_t>("a", {1, 1, 1, 2, 2, 2}), Column<std::int32_t>("a_1", {3, 4, 5, 3, 4, 5}))));
    EXPECT_TRUE(IsSameTable(
        left.Merge(DataFrame(), {}, {}, TESSERA_JOIN_LEFT, SUFFIXES), TableOf(Column<std::int32_t>("a_x", {1, 2}))));
    EXPECT_TRUE(IsSameTable(DataFrame().Merge(DataFrame(), {}, {}, TESSERA_JOIN_OUTER, SUFFIXES), DataFrame()));
}

TEST(Merge, SeesOnlyTheRowsAndColumnsOfAWindow)
{
    const DataFrame whole = TableOf(Column<bool>("out", {true, true, true, true}),
        Column<std::int32_t>("k", {4, 3, 2, 1}), Column<std::string>("v", {"a", "b", "c", "d"}));
    DataFrame window;
    window.ShallowCopy(whole.Slice({1, 3}, {1, 3}));
    const DataFrame right = TableOf(Column<std::int32_t>("k", {4, 2, 3}), Column<double>("w", {0.5, 1.5, 2.5}));
    const DataFrame expected = TableOf(
        Column<std::int32_t>("k", {3, 2}), Column<std::string>("v_x", {"b", "c"}), Column<double>("w_y", {2.5, 1.5}));
    EXPECT_TRUE(IsSameTable(window.Merge(right, {0}, {0}, TESSERA_JOIN_INNER, SUFFIXES), expected));
    EXPECT_TRUE(IsSameTable(right.Merge(window, {0}, {0}, TESSERA_JOIN_INNER, SUFFIXES),
        TableOf(Column<std::int32_t>("k", {3, 2}), Column<double>("w_x", {2.5, 1.5}),
            Column<std::string>("v_y", {"b", "c"}))));
}

// Joined with itself on a key without repeats, a table is itself in descending order; on any key, counts multiply.
TEST(Merge, ObeysItsLaws)
{
    constexpr std::uint32_t ROWS = 5000;
    Random random(3);
    Positions unique(ROWS);
    std::iota(unique.begin(), unique.end(), 0U);
    for (std::uint32_t i = ROWS; i > 1; --i) {
        std::swap(unique[i - 1], unique[random.Below(i)]);
    }
    std::vector<std::string> texts;
    std::array<std::uint64_t, 50> counts{};
    for (const std::uint32_t number : unique) {
        texts.push_back("text number " + std::to_string(number % counts.size()));
        ++counts[number % counts.size()];
    }
    DataFrame table = TableOf(Column<std::uint32_t>("unique", unique), Column<std::string>("text", texts));
    const DataFrame byUnique = table.Merge(table, {0}, {0}, TESSERA_JOIN_INNER, SUFFIXES);
    std::uint64_t products = 0;
    for (const std::uint64_t count : counts) {
        products += count * count;
    }
    for (const auto type : JOIN_TYPES) {
        EXPECT_EQ(table.Merge(table, {1}, {1}, type, SUFFIXES).RowCount(), products);
    }
    ASSERT_EQ(table.Sort({0}, false), 0);
    EXPECT_EQ(CellsOfColumn<std::uint32_t>(byUnique, 0), CellsOfColumn<std::uint32_t>(table, 0));
    for (const unsigned int k : {1U, 2U}) {
        EXPECT_EQ(CellsOfColumn<std::string>(byUnique, k), CellsOfColumn<std::string>(table, 1));
    }
}

DataFrame NumbersAndTables()
{
    return TableOf(Column<std::int32_t>("number", {1, 2}), Column<DataFrame>("table", SampleValues<DataFrame>(2)),
        Column<double>("real", {1.0, 2.0}));
}

TEST(Merge, RefusesWithACodeAndAMessage)
{
    DataFrame failed;
    failed.SetError({9, "an earlier failure"});
    DataFrame shortened = NumbersAndTables();
    shortened.SetRowIndex({0, 3});
    const DataFrame list = TableOf(Column<std::int32_t>("list", {1}, CONTAINER_LIST));
    const DataFrame equal = TableOf(Column<std::int32_t>("k", std::vector<std::int32_t>(100000, 7)));
    const DataFrame good = NumbersAndTables();
    struct Refusal {
        int line;
        const DataFrame& left;
        const DataFrame& right;
        Positions leftOn;
        Positions rightOn;
        std::int32_t type;
        ErrorCode code;
        const char* text;
        const char* told;
    };
    const Refusal cases[] = {
        {__LINE__, failed, good, {0}, {0}, 0, 5, "Invalid dataFrame.", "Invalid dataFrame, error 9, rDF error 0"},
        {__LINE__, good, failed, {0}, {0}, 7, 5, "Invalid dataFrame.", "Invalid dataFrame, error 0, rDF error 9"},
        {__LINE__, good, good, {0}, {}, 4, 5, "Invalid join type.", "Invalid join type 4"},
        {__LINE__, good, good, {0}, {0}, -1, 5, "Invalid join type.", "Invalid join type -1"},
        {__LINE__, good, good, {0, 2, 2}, {9, 8, 7}, 0, 5, "Invalid join length.",
            "Left set length  2 must equal rightOn set size 3"},
        {__LINE__, good, good, {3}, {3}, 0, 5, "Invalid join left shape.", "Left index 3 out of range 3"},
        {__LINE__, good, good, {0, 3}, {0, NONE}, 0, 5, "Invalid join left shape.", "Left index 3 out of range 3"},
        {__LINE__, good, good, {0}, {NONE}, 0, 5, "Invalid join right shape.", "Right index -1 out of range 3"},
        {__LINE__, good, good, {0}, {2}, 0, 5, "Invalid join left type.",
            "Left 0 typeID  5 must equal right 2 typeID 10"},
        {__LINE__, good, good, {0, 1}, {0, 1}, 0, 5, "Invalid join right type.",
            "The merge key cannot be an DataFrame 1"},
        {__LINE__, shortened, good, {0}, {0}, 0, 5, "Invalid dataFrame.", "whose window is beyond the columns"},
        {__LINE__, good, shortened, {}, {}, 0, 5, "Invalid dataFrame.", "whose window is beyond the columns"},
        {__LINE__, list, list, {0}, {0}, 0, 21, "Merge keys in a list",
            "The merge key cannot be in a list, left 0, right 0"},
        {__LINE__, equal, equal, {0}, {0}, 0, 3, "too many rows for Merge", "merged table of 10000000000 rows"},
    };
    for (const Refusal& refused : cases) {
        SCOPED_TRACE(refused.line);
        const auto type = static_cast<MERVO_TESSERA_MERGE_JOINTYPE>(refused.type);
        const LogCapture log;
        const DataFrame merged = refused.left.Merge(refused.right, refused.leftOn, refused.rightOn, type, SUFFIXES);
        EXPECT_EQ(merged.GetError().code, refused.code);
        EXPECT_EQ(merged.GetError().message, refused.text);
        EXPECT_EQ(merged.ColumnCount(), 0U);
        EXPECT_TRUE(log.Has(1, refused.told));
        DataFrame inPlace;
        inPlace.ShallowCopy(refused.left);
        EXPECT_EQ(inPlace.MergeInplace(refused.right, refused.leftOn, refused.rightOn, type), refused.code);
        EXPECT_TRUE(IsSameTable(inPlace, refused.left));
    }
}

TEST(Merge, CountsMoreRowsThanAListCanHave)
{
    const DataFrame many = GetEmptyDataFrame({3000000000U, 1}, TESSERA_BOOL);
    if (many.GetColumn(0)->Size() == 0) {
        GTEST_SKIP() << "no room for so many bits";
    }
    const LogCapture log;
    EXPECT_EQ(many.Merge(many, {0}, {0}, TESSERA_JOIN_INNER, SUFFIXES).GetError().code, 3);
    EXPECT_TRUE(log.Has(1, "Can't merge tables of 6000000000 rows"));
}

TEST(Merge, ReplacesTheTableOnlyByColumns)
{
    const DataFrame right = TableOf(Column<std::int32_t>("k", {2, 3}), Column<bool>("v", {true, false}));
    DataFrame table = TableOf(Column<std::int32_t>("k", {1, 2}), Column<std::string>("v", {"one", "two"}));
    const DataFrame before = table;
    EXPECT_EQ(table.MergeInplace(TableOf(Column<std::int32_t>("k", {8})), {0}, {0}, TESSERA_JOIN_INNER), 0);
    EXPECT_TRUE(IsSameTable(table, before));
    EXPECT_EQ(table.MergeInplace(right, {0}, {0}, TESSERA_JOIN_OUTER), 0);
    EXPECT_TRUE(IsSameTable(table,
        TableOf(Column<std::int32_t>("k", {3, 2, 1}), Column<std::string>("v_x", {"", "two", "one"}),
            Column<bool>("v_y", {false, true, false}))));
}

// ---- Flat call

TEST(FlatMerge, JoinsAndRefuses)
{
    const Handle left(TableOf(Column<double>("k", {1, 3, 2}), Column<float>("v", {1.5F, 2.5F, 3.5F})));
    const Handle right(TableOf(Column<double>("k", {2, 9}), Column<float>("v", {4.5F, 5.5F})));
    const uint32_t first[] = {0};
    const MERVO_TSR_MERGE_KEYS keys{first, first, 1};
    EXPECT_EQ(MERVO_TSR_Merge(left.Get(), left.Get(), right.Get(), &keys, TESSERA_JOIN_INNER), 0U);
    EXPECT_TRUE(IsSameTable(
        left.Table(), TableOf(Column<double>("k", {2}), Column<float>("v_x", {3.5F}), Column<float>("v_y", {4.5F}))));

    const DataFrame before = left.Table();
    const Handle window{DataFrameRef(right.Table())};
    const Handle result;
    const MERVO_TSR_MERGE_KEYS noLeft{nullptr, first, 0};
    const MERVO_TSR_MERGE_KEYS noRight{first, nullptr, 0};
    struct Refusal {
        int line;
        MERVO_TSR_CONTEXT* result;
        MERVO_TSR_CONTEXT* left;
        MERVO_TSR_CONTEXT* right;
        const MERVO_TSR_MERGE_KEYS* keys;
    };
    for (const Refusal& refused : {Refusal{__LINE__, nullptr, left.Get(), right.Get(), &keys},
             Refusal{__LINE__, window.Get(), left.Get(), right.Get(), &keys},
             Refusal{__LINE__, result.Get(), nullptr, right.Get(), &keys},
             Refusal{__LINE__, result.Get(), window.Get(), right.Get(), &keys},
             Refusal{__LINE__, result.Get(), left.Get(), nullptr, &keys},
             Refusal{__LINE__, result.Get(), left.Get(), window.Get(), &keys},
             Refusal{__LINE__, result.Get(), left.Get(), right.Get(), nullptr},
             Refusal{__LINE__, result.Get(), left.Get(), right.Get(), &noLeft},
             Refusal{__LINE__, result.Get(), left.Get(), right.Get(), &noRight}}) {
        const LogCapture log;
        EXPECT_EQ(MERVO_TSR_Merge(refused.result, refused.left, refused.right, refused.keys, 0), 33U) << refused.line;
        EXPECT_THAT(log.Texts(1), ElementsAre("[MERVO_TSR_Merge] Input is nullptr or Input is Invalid"));
    }
    for (const int32_t type : {-1, 4}) {
        EXPECT_EQ(MERVO_TSR_Merge(result.Get(), left.Get(), right.Get(), &keys, type), 5U);
        EXPECT_EQ(result.Table().GetError().message, "Invalid join type.");
    }
    EXPECT_TRUE(IsSameTable(left.Table(), before));
}

// ---- The functors

template <typename T>
class MergeFunctorsOf : public testing::Test {
};
TYPED_TEST_SUITE(MergeFunctorsOf, AllValueTypes);

TYPED_TEST(MergeFunctorsOf, TakeRowsFromAndToBothContainers)
{
    using T = TypeParam;
    Random random(11);
    const std::vector<T> left = RandomCells<T>(random, 30);
    const std::vector<T> right = RandomCells<T>(random, 20);
    const std::vector<T> blank = ModelColumn<T>({{NONE, 0}}, left, nullptr);
    for (const bool isMissing : {false, true}) {
        Positions leftRows;
        Positions rightRows;
        std::vector<T> ofLeft;
        std::vector<T> ofEither;
        for (std::uint32_t i = 0; i < 1100; ++i) { // more than a block of bits
            leftRows.push_back(isMissing && random.Below(2) == 0 ? NONE : random.Below(left.size()));
            rightRows.push_back(random.Below(right.size()));
            const bool hasLeft = leftRows.back() != NONE;
            ofLeft.push_back(hasLeft ? left[leftRows.back()] : blank[0]);
            ofEither.push_back(hasLeft ? left[leftRows.back()] : right[rightRows.back()]);
        }
        const Func::FillKey<CONTAINER_ARRAY, Positions&, Positions&> fill(leftRows, rightRows);
        const Func::AssignIndex<CONTAINER_ARRAY, const Positions&> assign(leftRows);
        for (const ContainerID container : BOTH_CONTAINERS) {
            const SeriesPtr lhs = Column<T>("", left, container);
            const SeriesPtr rhs = Column<T>("", right, container);
            const SeriesPtr filled = BuildSeries({1100, container, TYPE_ID_OF<T>}, "");
            const SeriesPtr assigned = BuildSeries({1100, container, TYPE_ID_OF<T>}, "");
            EXPECT_EQ(fill.ProcessSeries(lhs->GetIterator(), rhs->GetIterator(), filled->GetIterator()).code, 0);
            EXPECT_EQ(assign.ProcessSeries(lhs->GetIterator(), assigned->GetIterator(), true).code, 0);
            const auto cells = [](const SeriesPtr& column) {
                std::vector<T> all;
                Func::ForEachElement<T>(column->GetIterator(), [&all](const auto& cell) { all.push_back(cell); });
                return all;
            };
            const auto areSame = [](const std::vector<T>& one, const std::vector<T>& other) {
                return std::equal(one.begin(), one.end(), other.begin(), other.end(), HasSameBits<T>);
            };
            EXPECT_TRUE(areSame(cells(filled), ofEither));
            EXPECT_TRUE(areSame(cells(assigned), ofLeft));
        }
    }
}

TEST(MergeFunctors, RefuseWhatDoesNotFit)
{
    const SeriesPtr three = Column<float>("", {1, 2, 3});
    const SeriesPtr two = Column<float>("", {4, 5});
    const SeriesPtr other = Column<double>("", {1, 2, 3});
    struct Refusal {
        int line;
        Positions left;
        Positions right;
        const SeriesPtr& lhs;
        const SeriesPtr& rhs;
        const SeriesPtr& result;
        ErrorCode fill;
        ErrorCode assign;
    };
    const Refusal cases[] = {
        {__LINE__, {2, NONE, 0}, {9, 1, NONE}, three, two, three, 0, 0},
        {__LINE__, {2, NONE, 0}, {9, 2, NONE}, three, two, three, 21, 0},
        {__LINE__, {2, NONE, 3}, {0, 0, 0}, three, two, three, 21, 21},
        {__LINE__, {2, NONE, 0}, {0, NONE, 0}, three, two, three, 21, 0},
        {__LINE__, {2, 1}, {0, 0}, three, two, three, 21, 21},
        {__LINE__, {2, 1, 0}, {0, 0}, three, two, three, 21, 0},
        {__LINE__, {2, 1, 0}, {0, 0, 0}, three, other, three, 21, 0},
        {__LINE__, {2, 1, 0}, {0, 0, 0}, three, two, other, 21, 21},
    };
    for (const Refusal& refused : cases) {
        Positions left = refused.left;
        Positions right = refused.right;
        const SeriesPtr lhs = Column<float>("", CellsOf<float>(refused.lhs->GetIterator()));
        const Func::FillKey<CONTAINER_ARRAY, Positions&, Positions&> fill(left, right);
        const Func::AssignIndex<CONTAINER_ARRAY, const Positions&> assign(left);
        const auto run = [&](const auto& functor, const auto&... sources) {
            return functor.ProcessSeries(sources->GetIterator()..., refused.result->GetIterator()).code;
        };
        EXPECT_EQ(run(fill, lhs, refused.rhs), refused.fill) << refused.line;
        EXPECT_EQ(assign.ProcessSeries(lhs->GetIterator(), refused.result->GetIterator(), true).code, refused.assign)
            << refused.line;
        EXPECT_EQ(fill.GetDstAttr(lhs->GetIterator(), refused.rhs->GetIterator()).length, left.size());
        EXPECT_EQ(assign.GetDstAttr(lhs->GetIterator()).length, left.size());
        EXPECT_EQ(fill.GetName() + assign.GetName(), "FillKeyAssignIndex");
    }
}

} // namespace
} // namespace MERVO::Tessera
