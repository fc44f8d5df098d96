#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/functors/pairing.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

enum Relation { EQUAL, GREATER, LESS, GREATER_EQUAL, LESS_EQUAL };
constexpr Relation ALL_RELATIONS[] = {EQUAL, GREATER, LESS, GREATER_EQUAL, LESS_EQUAL};

FunctorPtr<Func::BinaryBase> MakeFunctor(Relation relation)
{
    using Func::BinaryBase;
    using Func::FunctorFactory;
    const BinaryFactory makers[] = {FunctorFactory<Func::Equal, BinaryBase>{},
        FunctorFactory<Func::Greater, BinaryBase>{}, FunctorFactory<Func::Less, BinaryBase>{},
        FunctorFactory<Func::GreaterEqual, BinaryBase>{}, FunctorFactory<Func::LessEqual, BinaryBase>{}};
    return makers[relation](CONTAINER_ARRAY);
}

// ---- A model: -1, 0 or 1 for what has an order, and anything else for what has none.

constexpr int UNORDERED = 2;

template <typename T>
int Order(const T& left, const T& right)
{
    if constexpr (std::is_same_v<T, std::string>) {
        const int bytes = std::memcmp(left.data(), right.data(), std::min(left.size(), right.size()));
        return bytes != 0 ? (bytes < 0 ? -1 : 1) : Order(left.size(), right.size());
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return Order(left.TimeStamp(), right.TimeStamp());
    } else {
        return left < right ? -1 : left > right ? 1 : left == right ? 0 : UNORDERED;
    }
}

template <typename T>
bool Model(Relation relation, const T& left, const T& right)
{
    const int order = Order(left, right);
    switch (relation) {
    case EQUAL:
        if constexpr (std::is_same_v<T, double>) {
            return left - right < 0x1p-52 && right - left < 0x1p-52;
        } else if constexpr (std::is_same_v<T, float>) {
            return left - right < 0x1p-23F && right - left < 0x1p-23F;
        } else {
            return order == 0;
        }
    case GREATER:
        return order == 1;
    case LESS:
        return order == -1;
    case GREATER_EQUAL:
        return order == 1 || order == 0;
    default:
        return order == -1 || order == 0;
    }
}

// ---- Cells

template <typename T>
class ComparisonOf : public testing::Test {
};
using ComparableTypes = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string, DateTime>;
TYPED_TEST_SUITE(ComparisonOf, ComparableTypes);

template <typename T>
void CompareAgainstModel(
    Relation relation, Lengths lengths, const Containers& containers, std::uint32_t lead, Random& random)
{
    CheckAgainstModel<T, bool>(*MakeFunctor(relation), lengths, containers, {lead / 2, 3, lead}, random,
        [relation](const T& left, const T& right) { return Model<T>(relation, left, right); });
}

TYPED_TEST(ComparisonOf, IsThatOfTheModelInAllContainersAndLengths)
{
    Random random(TYPE_ID_OF<TypeParam>);
    for (const Relation relation : ALL_RELATIONS) {
        for (const Lengths lengths : LENGTHS_THAT_MEET) {
            for (const Containers& containers : AllContainers()) {
                ASSERT_NO_FATAL_FAILURE(
                    CompareAgainstModel<TypeParam>(relation, lengths, containers, random.Below(9), random));
            }
        }
    }
}

TEST(Comparison, WritesBitsFromAnyOffset)
{
    Random random(1);
    for (std::uint32_t lead = 0; lead < 9; ++lead) {
        for (std::uint32_t length = 1; length < 20; ++length) {
            ASSERT_NO_FATAL_FAILURE(CompareAgainstModel<double>(GREATER, {length, length}, ARRAYS, lead, random));
        }
    }
}

template <typename T>
struct PairCase {
    const char* name;
    T left;
    T right;
    const char* relations; ///< those of "= > < >= <=" that hold
};

template <typename T>
void CheckPairs(const std::vector<PairCase<T>>& cases)
{
    for (const PairCase<T>& wanted : cases) {
        const DataFrame left = TableOf(Column<T>("", {wanted.left}));
        const DataFrame right = TableOf(Column<T>("", {wanted.right}));
        std::string holding;
        const std::pair<const char*, DataFrame> results[] = {{"=", left == right}, {">", left > right},
            {"<", left < right}, {">=", left >= right}, {"<=", left <= right}};
        for (const auto& [sign, result] : results) {
            ASSERT_EQ(result.Type(), TESSERA_BOOL);
            holding += result.All() ? sign + std::string(" ") : "";
        }
        EXPECT_EQ(holding, wanted.relations) << wanted.name;
        EXPECT_EQ((left != right).All(), holding.empty() || holding[0] != '=') << wanted.name;
    }
}

TEST(Comparison, FollowsTheRulesOfItsTypes)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
    CheckPairs<double>({{"equal", 2.0, 2.0, "= >= <= "}, {"less", 1.0, 2.0, "< <= "},
        {"zeros of both signs", 0.0, -0.0, "= >= <= "}, {"below the bound", 0.5, 0.5 + 0x1p-53, "= < <= "},
        {"small and near", 0x1p-54, 0x1p-53, "= < <= "}, {"at the bound", 1.0, 1.0 + 0x1p-52, "< <= "},
        {"at the bound, the other way", 0x1p-52, 0.0, "> >= "}, {"infinities", INFINITE, INFINITE, ">= <= "},
        {"opposite infinities", INFINITE, -INFINITE, "> >= "}, {"NaN", NOT_A_NUMBER, NOT_A_NUMBER, ""},
        {"NaN on the right", 1.0, NOT_A_NUMBER, ""}, {"NaN on the left", NOT_A_NUMBER, 1.0, ""}});
    CheckPairs<float>({{"small and near", 0x1p-25F, 0x1p-24F, "= < <= "}, {"at the bound", 0.0F, 0x1p-23F, "< <= "},
        {"far for a double", 1.0F, 1.0F + 0x1p-23F, "< <= "},
        {"infinities", std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(), ">= <= "}});
    CheckPairs<std::int8_t>({{"signs", -1, 1, "< <= "}});
    CheckPairs<std::uint64_t>({{"the top bit", 0x8000000000000000U, 1, "> >= "}});
    CheckPairs<std::int64_t>({{"the top bit", std::numeric_limits<std::int64_t>::min(), 1, "< <= "}});
    CheckPairs<std::string>({{"a prefix", "ab", "abc", "< <= "}, {"high bytes", "\xe9", "z", "> >= "},
        {"behind a NUL", std::string("a\0b", 3), std::string("a\0c", 3), "< <= "}, {"empty", "", "", "= >= <= "}});
    CheckPairs<bool>({{"false and true", false, true, "< <= "}, {"true", true, true, "= >= <= "}});
    CheckPairs<DateTime>({{"before the epoch", DateTime(-5), DateTime(3), "< <= "}});
}

TEST(Comparison, DoesNotServeNestedTables)
{
    const SeriesPtr operand = Column<DataFrame>("", SampleValues<DataFrame>(2));
    const SeriesPtr result = BuildSeries({2, CONTAINER_ARRAY, TESSERA_BOOL}, "");
    for (const Relation relation : ALL_RELATIONS) {
        const auto functor = MakeFunctor(relation);
        const LogCapture log;
        const Error outcome =
            functor->ProcessSeries(operand->GetIterator(), operand->GetIterator(), result->GetIterator());
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.message, "Error on calling functor: " + functor->GetName());
        EXPECT_EQ(log.Count(), 0U);
    }
}

// ---- Tables

TEST(ComparisonOperator, MeetsColumnByColumnAndRowByRow)
{
    DataFrame many;
    ASSERT_EQ(many.ReadVectorByCol<std::int32_t>({{1, 2, 3}, {3, 2, 1}}), 0);
    ASSERT_EQ(many.SetColumnName({"up", "down"}), 0);
    DataFrame one;
    ASSERT_EQ(one.ReadVectorByCol<std::int32_t>({{2}}), 0);
    const DataFrame less = one < many; // one row meets every row, also in arrays
    EXPECT_THAT(less.ToVector<bool>(),
        ElementsAre(ElementsAre(false, true), ElementsAre(false, false), ElementsAre(true, false)));
    EXPECT_THAT(less.GetColumnName(), ElementsAre("up", "down"));
    EXPECT_THAT((many >= one).To1DVector<bool>(), ElementsAre(false, true, true, true, true, false));
    EXPECT_THAT(
        (many != many.Slice(1, {0, 1})).To1DVector<bool>(), ElementsAre(false, true, false, false, false, true));
}

} // namespace
} // namespace MERVO::Tessera
