// Finding, filling, replacing and interpolating what is missing.

#include <gmock/gmock.h>

#include "tests/numeric/statistics.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using IsNan = Func::IsNan<CONTAINER_ARRAY>;
using IsNanInt = Func::IsNanInt<CONTAINER_ARRAY>;
using Interpolate = Func::Interpolate<CONTAINER_ARRAY>;
using FillNan = Func::FillNan<CONTAINER_ARRAY, const char*>;
using ReplaceNan = Func::ReplaceNan<CONTAINER_ARRAY, std::string_view>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

// ---- Numbers with gaps

/// Per mille by which the next element is missing, after a present and after a missing one. The third makes gaps that
/// go on for several blocks of a kernel.
constexpr std::uint32_t GAP_SHARES[][2] = {{0, 0}, {50, 50}, {50, 500}, {2, 998}, {950, 950}, {1000, 1000}};

template <std::floating_point T>
std::vector<T> CellsWithGaps(std::mt19937_64& random, const std::uint32_t (&shares)[2], std::size_t count)
{
    std::vector<T> cells;
    const auto flavour = std::array{PLAIN, EXTREME, WITH_INFINITY, SIGNED_ZEROS}[random() % 4];
    for (bool isMissing = random() % 2 == 0; cells.size() < count;) {
        isMissing = random() % 1000 < shares[isMissing ? 1 : 0];
        cells.push_back(isMissing ? RandomNan<T>(random) : RandomCell<T>(random, flavour));
    }
    return cells;
}

/// Looks from each missing element for the present ones on either side.
template <std::floating_point T>
struct GapModel {
    explicit GapModel(const std::vector<T>& cells) : marks(cells.size()), ints(cells.size()), forward(cells)
    {
        backward = replaced = interpolated = cells;
        const auto n = static_cast<std::int64_t>(cells.size());
        for (std::int64_t i = 0; i < n; ++i) {
            const auto at = static_cast<std::size_t>(i);
            if (!std::isnan(cells[at])) {
                continue;
            }
            marks[at] = true;
            ints[at] = 1;
            std::int64_t left = i;
            std::int64_t right = i;
            for (; left >= 0 && std::isnan(cells[static_cast<std::size_t>(left)]); --left) {
            }
            for (; right < n && std::isnan(cells[static_cast<std::size_t>(right)]); ++right) {
            }
            const T before = cells[static_cast<std::size_t>(std::max<std::int64_t>(left, 0))];
            const T after = cells[static_cast<std::size_t>(std::min(right, n - 1))];
            forward[at] = before; // the first NaN where none is present, and below the last
            backward[at] = after;
            replaced[at] = T{-2.5};
            const T line = static_cast<T>(i - left) * (after - before) / (static_cast<T>(right - left - 1) + T{1});
            interpolated[at] = Plain(left < 0 || right < n ? line + before : before);
        }
    }

    std::vector<bool> marks;
    std::vector<std::int32_t> ints;
    std::vector<T> forward;
    std::vector<T> backward;
    std::vector<T> replaced;
    std::vector<T> interpolated;
};

template <typename T>
class GapsOf : public testing::Test {
};
using RealTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(GapsOf, RealTypes);

TYPED_TEST(GapsOf, AreMendedAsTheModelDoesIt)
{
    std::mt19937_64 random(23);
    for (const auto& shares : GAP_SHARES) {
        for (const std::size_t count : {1U, 2U, 3U, 40U, 63U, 512U, 513U, 1700U}) {
            const auto cells = CellsWithGaps<TypeParam>(random, shares, count);
            const GapModel<TypeParam> model(cells);
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto window = WindowOf(cells, container, 3);
                const auto told = testing::Message() << count << " with " << shares[0] << ", " << shares[1];
                ASSERT_TRUE(Gives(IsNan(), window.Range(), model.marks)) << told;
                ASSERT_TRUE(Gives(IsNanInt(), window.Range(), model.ints)) << told;
                ASSERT_TRUE(Gives(FillNan("ffill"), window.Range(), model.forward)) << told;
                ASSERT_TRUE(Gives(FillNan("bfill"), window.Range(), model.backward)) << told;
                ASSERT_TRUE(Gives(ReplaceNan("-2.5"), window.Range(), model.replaced)) << told;
                ASSERT_TRUE(Gives(Interpolate(), window.Range(), model.interpolated)) << told;
            }
        }
    }
}

struct GapCase {
    std::vector<double> cells;
    std::vector<double> forward;
    std::vector<double> backward;
    std::vector<double> interpolated;
};

const GapCase GAP_CASES[] = {
    {{NO_VALUE, 1, NO_VALUE, NO_VALUE, 2}, {NO_VALUE, 1, 1, 1, 2}, {1, 1, 2, 2, 2},
        {NO_VALUE, 1, 1.0 / 3 + 1, 2.0 / 3 + 1, 2}},
    {{NO_VALUE, 1, NO_VALUE, NO_VALUE, 4, NO_VALUE}, {NO_VALUE, 1, 1, 1, 4, 4}, {1, 1, 4, 4, 4, NO_VALUE},
        {NO_VALUE, 1, 2, 3, 4, 4}},
    {{NO_VALUE, NO_VALUE}, {NO_VALUE, NO_VALUE}, {NO_VALUE, NO_VALUE}, {NO_VALUE, NO_VALUE}},
    // 2 * (7 - 0) / 10 gives another last bit than 2 / 10 * 7, and so does a slope added up.
    {{0, NO_VALUE, NO_VALUE, 0.7}, {0, 0, 0, 0.7}, {0, 0.7, 0.7, 0.7}, {0, 0.7 / 3, 2 * 0.7 / 3, 0.7}},
};

TEST(Gaps, AreMendedAsTold)
{
    for (const GapCase& wanted : GAP_CASES) {
        const auto window = WindowOf(wanted.cells, CONTAINER_ARRAY, 1);
        EXPECT_TRUE(Gives(FillNan("ffill"), window.Range(), wanted.forward));
        EXPECT_TRUE(Gives(FillNan("bfill"), window.Range(), wanted.backward));
        EXPECT_TRUE(Gives(Interpolate(), window.Range(), wanted.interpolated));
    }
}

// A table may be its own destination, but a host may hand one cursor twice.
TEST(Gaps, MayBeMendedInPlace)
{
    std::mt19937_64 random(29);
    const auto cells = CellsWithGaps<double>(random, {100, 600}, 1300);
    const GapModel<double> model(cells);
    const auto runs = [&cells](const Func::UnaryBase& functor, const std::vector<double>& expected) {
        const SeriesPtr column = Column<double>("a", cells);
        EXPECT_EQ(functor.ProcessSeries(column->GetIterator(), column->GetIterator(), true).code, 0);
        const auto got = CellsOf<double>(column->GetIterator());
        for (std::size_t i = 0; i < got.size(); ++i) {
            ASSERT_TRUE(IsBitwise<double>(got[i], expected[i])) << functor.GetName() << " at " << i;
        }
    };
    runs(FillNan("ffill"), model.forward);
    runs(FillNan("bfill"), model.backward);
    runs(ReplaceNan("-2.5"), model.replaced);
    runs(Interpolate(), model.interpolated);
}

TEST(IsNanMarks, LeaveTheBitsAroundThemAndEndWithTheShorterRange)
{
    const SeriesPtr column = Column<double>("a", {1, NO_VALUE, NO_VALUE, 4, NO_VALUE});
    for (std::uint32_t offset = 0; offset < 9; ++offset) {
        for (const std::uint32_t room : {3U, 8U}) {
            std::vector<bool> expected(20, true);
            expected[offset] = false;
            expected[offset + 3] = room == 3;
            const SeriesPtr marks = Column<bool>("b", std::vector<bool>(20, true));
            EXPECT_EQ(
                IsNan().ProcessSeries(column->GetIterator(), marks->GetIterator(offset, offset + room), true).code, 0);
            EXPECT_EQ(CellsOf<bool>(marks->GetIterator()), expected) << offset << ", " << room;
        }
    }
}

// ---- All types

template <typename T>
constexpr bool IS_NUMBER = Arithmetic<T> && !std::is_same_v<T, bool>;

template <typename T>
class MissingOf : public testing::Test {
protected:
    static constexpr bool IS_TABLE = std::is_same_v<T, DataFrame>;

    /// Runs a functor, and compares with the cells that are expected where it succeeds.
    template <typename Result>
    void Expect(const Func::UnaryBase& functor, ErrorCode code, const std::vector<Result>& expected,
        const std::vector<std::string>& messages = {})
    {
        for (const ContainerID container : BOTH_CONTAINERS) {
            Error error;
            const LogCapture log;
            const SeriesPtr column = RunOn(functor, source->GetIterator(2, 19), container, error);
            EXPECT_EQ(error.code, code) << functor.GetName();
            EXPECT_EQ(log.Texts(1), messages);
            if (code == 0) {
                EXPECT_EQ(column->GetTypeId(), TYPE_ID_OF<Result>);
                EXPECT_TRUE(AreSame(CellsOf<Result>(column->GetIterator()), expected)) << functor.GetName();
            }
        }
    }

    void ExpectAll(ContainerID container)
    {
        source = Column<T>("a", SampleValues<T>(20), container);
        const std::vector<T> cells = CellsOf<T>(source->GetIterator(2, 19));
        const auto refusal = [](const char* text) {
            return IS_TABLE ? std::vector<std::string>{text} : std::vector<std::string>{};
        };
        Expect(IsNan(), IS_TABLE, std::vector<bool>(17), refusal("IsNan not support Type DataFrame"));
        Expect(IsNanInt(), IS_TABLE, std::vector<std::int32_t>(17), refusal("IsNanInt not support Type DataFrame"));
        Expect(ReplaceNan("0"), 0, cells);
        for (const std::string fillType : {"ffill", "bfill"}) {
            constexpr bool IS_SERVED = !IS_TABLE && !std::is_same_v<T, bool>;
            const std::string type =
                std::string(IS_TABLE ? "DataFrame" : "bool") + (container == CONTAINER_ARRAY ? " type" : "");
            const std::string text = "dataframe " + fillType + " does not support " + type;
            Expect(FillNan(fillType.c_str()), IS_SERVED ? 0 : 1, cells,
                IS_SERVED ? std::vector<std::string>{} : std::vector<std::string>{text});
        }
        if constexpr (IS_NUMBER<T>) {
            Expect(Interpolate(), 0, std::vector<StatisticOf<T>>(cells.begin(), cells.end()));
        }
    }

    SeriesPtr source;
};
TYPED_TEST_SUITE(MissingOf, AllValueTypes);

TYPED_TEST(MissingOf, IsNothingInArrays) { this->ExpectAll(CONTAINER_ARRAY); }

TYPED_TEST(MissingOf, IsNothingInLists) { this->ExpectAll(CONTAINER_LIST); }

TYPED_TEST(MissingOf, IsSoughtOnlyForFittingDestinations)
{
    constexpr bool IS_FLOAT = std::is_same_v<TypeParam, float>;
    const SeriesPtr column = Column<TypeParam>("a", SampleValues<TypeParam>(3));
    const Cursor src = column->GetIterator();
    for (std::int32_t type = TESSERA_BOOL; type < TESSERA_TYPE_END; ++type) {
        const auto target = static_cast<MERVO_TESSERA_TYPEID>(type);
        const SeriesPtr result = BuildSeries({3, CONTAINER_ARRAY, target}, "b");
        const bool isServed = (IS_FLOAT && type == TESSERA_FLOAT) || (IS_NUMBER<TypeParam> && type == TESSERA_DOUBLE);
        EXPECT_EQ(Interpolate().CheckParams(src, result->GetIterator()), isServed);
        EXPECT_EQ(IsNan().CheckParams(src, result->GetIterator()), type == TESSERA_BOOL);
        EXPECT_EQ(IsNanInt().CheckParams(src, result->GetIterator()), type == TESSERA_INT32);
        EXPECT_EQ(FillNan("ffill").CheckParams(src, result->GetIterator()), type == TYPE_ID_OF<TypeParam>);
        const LogCapture log;
        EXPECT_EQ(ReplaceNan("0").ProcessSeries(src, result->GetIterator(), true).code,
            type == TYPE_ID_OF<TypeParam> ? 0 : 1);
    }
    const SeriesPtr doubles = BuildSeries({3, CONTAINER_ARRAY, TESSERA_DOUBLE}, "b");
    const LogCapture log;
    const Interpolate interpolate;
    const Func::UnaryBase* const functor = &interpolate;
    const auto kernel = Interpolate::transformTable[TYPE_ID_OF<TypeParam>];
    constexpr bool MAKES_DOUBLES = IS_NUMBER<TypeParam> && !IS_FLOAT;
    EXPECT_EQ(kernel(functor, src, doubles->GetIterator()), MAKES_DOUBLES ? 0 : 1);
    EXPECT_EQ(log.Has(1, "Interpolate does not support this Type"), !IS_NUMBER<TypeParam>);
}

TEST(MissingValues, CheckTheirLengthsAndTheFillType)
{
    const SeriesPtr column = Column<double>("a", {1, 2, 3});
    const Cursor three = column->GetIterator();
    const Cursor two = column->GetIterator(1, 3);
    const Cursor none = column->GetIterator(1, 1);
    std::string fillType = "bfill";
    const Func::FillNan<CONTAINER_ARRAY, std::string&> fill(fillType);
    const Interpolate interpolate;
    for (const Func::UnaryBase* functor : std::array<const Func::UnaryBase*, 2>{&fill, &interpolate}) {
        EXPECT_TRUE(functor->CheckParams(three, three));
        EXPECT_FALSE(functor->CheckParams(three, two));
        EXPECT_FALSE(functor->CheckParams(none, none));
    }
    EXPECT_FALSE(FillNan("xfill").CheckParams(three, three));
    EXPECT_FALSE(FillNan("ffill ").CheckParams(three, three));
    EXPECT_FALSE(ReplaceNan("0").CheckParams(three, two));
    EXPECT_TRUE(ReplaceNan("0").CheckParams(none, none));
}

// ---- Texts of replacements

struct TextCase {
    std::string_view text;
    ErrorCode ofNumbers; ///< of all integers too
    double value;
    ErrorCode ofTimes;
};

using namespace std::string_view_literals;

const TextCase TEXT_CASES[] = {
    {"-7.25", 0, -7.25, 0},
    {"12abc", 0, 12, 0},
    {"abc", 0, 0, 0},
    {"", 0, NO_VALUE, 0},
    {"3\0005"sv, 0, 3, 0},
    {"1e400", 1, 0, 0},
    {"1e-310", 1, 0, 0},
    {" ", 0, 0, 2},
    {"2024-01-15", 0, 2024, 0},
};

template <typename T>
void ExpectReplacement(const TextCase& wanted, ErrorCode code)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        std::vector<T> cells = SampleValues<T>(2);
        std::vector<T> expected = cells;
        if constexpr (std::is_floating_point_v<T>) {
            cells[1] = std::numeric_limits<T>::quiet_NaN();
            expected[1] = static_cast<T>(wanted.value);
        }
        const SeriesPtr source = Column<T>("a", cells, container);
        const SeriesPtr result = BuildSeries(source->GetAttr(), "b");
        const LogCapture log;
        const Error error = ReplaceNan(wanted.text).ProcessSeries(source->GetIterator(), result->GetIterator(), true);
        const auto told = testing::Message() << GetTypeNameById(TYPE_ID_OF<T>) << " by \"" << wanted.text << '"';
        EXPECT_EQ(error.code, code) << told;
        if (code == 0) {
            const std::vector<T> got = CellsOf<T>(result->GetIterator());
            EXPECT_TRUE(IsBitwise<T>(got[0], expected[0]) && IsBitwise<T>(got[1], expected[1])) << told;
        } else if (code == 1) { // each of the two forms of an array tells it
            const std::vector<std::string> refusals(
                container == CONTAINER_ARRAY ? 2 : 1, "typecast from string to arithmetic int has error: 34");
            EXPECT_EQ(log.Texts(1), refusals) << told;
        } else {
            EXPECT_THAT(log.Texts(2), ElementsAre("Failed to cast time " + std::string(wanted.text))) << told;
        }
    }
}

TEST(Replacements, AreParsedForTheTypeOfTheColumn)
{
    for (const TextCase& wanted : TEXT_CASES) {
        ExpectReplacement<double>(wanted, wanted.ofNumbers);
        ExpectReplacement<float>(wanted, wanted.ofNumbers);
        ExpectReplacement<std::int8_t>(wanted, 0);
        ExpectReplacement<std::string>(wanted, 0);
        ExpectReplacement<DateTime>(wanted, wanted.ofTimes);
    }
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    ExpectReplacement<float>({"1e300", 0, INFINITE, 0}, 0); // narrowed after it was parsed
    const TextCase beyondSigned{"9223372036854775808", 0, 0, 0};
    ExpectReplacement<std::int8_t>(beyondSigned, 1);
    ExpectReplacement<std::uint64_t>(beyondSigned, 0);
    ExpectReplacement<std::uint16_t>({"18446744073709551616", 0, 0, 0}, 1);
    ExpectReplacement<bool>({"18446744073709551616", 0, 0, 0}, 0);
}

TEST(Replacements, OfNoTextsOrTimesAreTold)
{
    for (const MERVO_TESSERA_TYPEID type : {TESSERA_STRING, TESSERA_DATETIME, TESSERA_DOUBLE}) {
        const SeriesPtr none = BuildSeries({0, CONTAINER_ARRAY, type}, "a");
        const LogCapture log;
        EXPECT_EQ(ReplaceNan("0").ProcessSeries(none->GetIterator(), none->GetIterator(), true).code, 0);
        EXPECT_EQ(log.Has(1, "nothing in lhs or dst"), type != TESSERA_DOUBLE);
    }
}

// ---- Flat calls; what they share with others is tested beside those of the statistics

TEST(FlatMissingValues, CheckTheirTextsBeforeTheHandles)
{
    const auto expect = [](ErrorCode code, const char* text, auto call) {
        const LogCapture log;
        EXPECT_EQ(call(), code);
        EXPECT_THAT(log.Texts(1), ElementsAre(text));
    };
    const char* const wrongLength = "[MERVO_TSR_FillNan] Length should be 6 (bfill/ ffill)";
    const char* const noNumber = "[MERVO_TSR_ReplaceNan] replaceNum should not be nullptr";
    expect(5, wrongLength, [] { return MERVO_TSR_FillNan(nullptr, nullptr, "bfill", 5); });
    expect(5, wrongLength, [] { return MERVO_TSR_FillNan(nullptr, nullptr, nullptr, 7); });
    expect(
        5, "[MERVO_TSR_FillNan] fillType is nullptr", [] { return MERVO_TSR_FillNan(nullptr, nullptr, nullptr, 6); });
    expect(5, noNumber, [] { return MERVO_TSR_ReplaceNan(nullptr, nullptr, nullptr, 1); });
    expect(5, noNumber, [] { return MERVO_TSR_ReplaceNan(nullptr, nullptr, "1", 0); });
}

TEST(FlatMissingValues, ReadOnlyTheTextThatTheyAreHanded)
{
    const Handle src(TableOf(Column<double>("a", {1, NO_VALUE})));
    const Handle filled;
    const std::array<char, 5> bare{'f', 'f', 'i', 'l', 'l'};
    EXPECT_EQ(MERVO_TSR_FillNan(filled.Get(), src.Get(), bare.data(), 6), 0);
    EXPECT_THAT(filled.Table().To1DVector<double>(), ElementsAre(1.0, 1.0));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_FillNan(filled.Get(), src.Get(), "xfill", 6), 21);
    EXPECT_EQ(filled.Table().GetError().message, "Check param failed in functor: FillNan");
}

} // namespace
} // namespace MERVO::Tessera
