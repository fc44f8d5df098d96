#include "tessera/core/series.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "tessera/core/dynamic_array.h"
#include "tessera/core/value_types.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

template <typename T>
class ColumnOf : public testing::Test {
};
TYPED_TEST_SUITE(ColumnOf, AllValueTypes);

TYPED_TEST(ColumnOf, IsBuiltAsItsAttributeSays)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        for (const std::uint32_t length : {0U, 1U, 21U}) {
            const SeriesPtr column = BuildSeries({length, container, TYPE_ID_OF<TypeParam>}, "first");
            EXPECT_EQ(column->Size(), length);
            EXPECT_EQ(column->GetTypeId(), TYPE_ID_OF<TypeParam>);
            EXPECT_EQ(column->GetAttr().length, length);
            EXPECT_EQ(column->GetAttr().containerId, container);
            EXPECT_EQ(column->GetAttr().typeId, TYPE_ID_OF<TypeParam>);
            EXPECT_EQ(column->GetName(), "first");
            const std::string second = "second";
            column->SetName(second);
            EXPECT_EQ(column->GetName(), "second");
            column->SetName(std::string("third"));
            EXPECT_EQ(column->GetName(), "third");

            const Cursor cursor = column->GetIterator();
            ASSERT_NE(cursor, nullptr);
            EXPECT_EQ(cursor->Length(), length);
            // Only numbers in an array start with whatever was there.
            if (container == CONTAINER_LIST || !Arithmetic<TypeParam> || std::is_same_v<TypeParam, bool>) {
                EXPECT_TRUE(AreSame(CellsOf<TypeParam>(cursor), std::vector<TypeParam>(length)));
            }
        }
    }
}

TYPED_TEST(ColumnOf, IsReadThroughEveryRange)
{
    constexpr std::uint32_t COUNT = 19;
    const std::vector<TypeParam> values = SampleValues<TypeParam>(COUNT);
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr column = Column<TypeParam>("c", values, container);
        for (std::uint32_t begin = 0; begin <= COUNT; ++begin) {
            for (std::uint32_t end = begin; end <= COUNT; ++end) {
                const Cursor cursor = column->GetIterator(begin, end);
                ASSERT_EQ(cursor->Length(), end - begin);
                ASSERT_EQ(cursor->GetAttr().length, end - begin);
                ASSERT_EQ(cursor->IsMemoryContiguous(), container == CONTAINER_ARRAY);
                ASSERT_TRUE(AreSame(
                    CellsOf<TypeParam>(cursor), std::vector<TypeParam>(values.begin() + begin, values.begin() + end)));
            }
        }
        EXPECT_EQ(column->GetAttr().length, COUNT);
    }
}

TYPED_TEST(ColumnOf, IsWrittenThroughARangeAndNowhereElse)
{
    constexpr std::uint32_t COUNT = 18;
    for (const ContainerID container : BOTH_CONTAINERS) {
        std::vector<TypeParam> expected = SampleValues<TypeParam>(COUNT);
        const SeriesPtr column = Column<TypeParam>("c", expected, container);
        for (std::uint32_t begin = 0; begin < COUNT; ++begin) {
            const Cursor cursor = column->GetIterator(begin, COUNT);
            const std::uint32_t index = (COUNT - begin) / 2;
            const TypeParam value = SampleValue<TypeParam>(100 + begin);
            ASSERT_TRUE(SetValueToIterator<TypeParam>(cursor, value, index));
            expected[begin + index] = value;
            ASSERT_TRUE(AreSame(CellsOf<TypeParam>(column->GetIterator()), expected));
        }
    }
}

TYPED_TEST(ColumnOf, ShiftMovesBothEndsOfACursor)
{
    constexpr std::uint32_t COUNT = 30;
    const std::vector<TypeParam> values = SampleValues<TypeParam>(COUNT);
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr column = Column<TypeParam>("c", values, container);
        const Cursor cursor = column->GetIterator(9, 14);
        std::ptrdiff_t begin = 9;
        for (const int step : {0, 1, -1, 7, -3, -10, 16, 5, -24}) {
            cursor->Shift(step);
            begin += step;
            ASSERT_EQ(cursor->Length(), 5U);
            ASSERT_EQ(cursor->GetAttr().length, 5U);
            ASSERT_TRUE(AreSame(
                CellsOf<TypeParam>(cursor), std::vector<TypeParam>(values.begin() + begin, values.begin() + begin + 5)))
                << "at " << begin;
        }
    }
}

TYPED_TEST(ColumnOf, IsCopiedBetweenContainers)
{
    const std::vector<TypeParam> values = SampleValues<TypeParam>(23);
    for (const ContainerID from : BOTH_CONTAINERS) {
        for (const ContainerID to : BOTH_CONTAINERS) {
            const SeriesPtr source = Column<TypeParam>("source", values, from);
            const SeriesPtr target = BuildSeries({23, to, TYPE_ID_OF<TypeParam>}, "target");
            const Cursor src = source->GetIterator(3, 20);
            const Cursor dst = target->GetIterator(6, 23);
            ASSERT_TRUE(Copy2Series(src, dst));
            EXPECT_EQ(src->Length(), 0U) << "the source cursor is spent";
            EXPECT_EQ(dst->Length(), 0U) << "the destination cursor is spent";
            // What was copied stands on its own.
            ASSERT_TRUE(SetValueToIterator<TypeParam>(source->GetIterator(), SampleValue<TypeParam>(99), 3));
            EXPECT_TRUE(AreSame(CellsOf<TypeParam>(target->GetIterator(6, 23)),
                std::vector<TypeParam>(values.begin() + 3, values.begin() + 20)));

            // A destination that is too short is filled, and no more.
            ASSERT_TRUE(Copy2Series(source->GetIterator(4, 23), target->GetIterator(0, 6)));
            EXPECT_TRUE(IsSame(GetValueFromIterator<TypeParam>(target->GetIterator(), 5), values[9]));
            EXPECT_TRUE(IsSame(GetValueFromIterator<TypeParam>(target->GetIterator(), 6), values[3]));
        }
    }
}

/// All but bool, whose bits don't come from operator new.
template <typename T>
class BlockOf : public testing::Test {
};
template <typename Tuple>
struct AllButTheFirst;
template <typename First, typename... T>
struct AllButTheFirst<std::tuple<First, T...>> {
    using Type = testing::Types<T...>;
};
TYPED_TEST_SUITE(BlockOf, AllButTheFirst<ValueTypes::Tuple>::Type);

TYPED_TEST(BlockOf, AColumnThatCouldNotBeHadGivesNoCursor)
{
    constexpr std::uint32_t COUNT = 70000;
    const LogCapture log;
    SeriesPtr column;
    {
        const FailingAllocation failing(0, COUNT);
        column = BuildSeries({COUNT, CONTAINER_ARRAY, TYPE_ID_OF<TypeParam>}, "c");
        EXPECT_TRUE(FailingAllocation::HasFailed());
    }
    EXPECT_TRUE(log.Has(1, "Failed to create dynamic array, size 70000"));
    EXPECT_EQ(column->GetTypeId(), TYPE_ID_OF<TypeParam>) << "the column itself is not marked";
    EXPECT_EQ(column->Size(), COUNT);
    EXPECT_EQ(column->GetIterator(), nullptr);
    EXPECT_EQ(column->GetIterator(5, 6), nullptr);
    testing::internal::CaptureStdout();
    column->Print(0, COUNT);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n");
}

TEST(Series, WithoutMemoryForTheColumnOrACursor)
{
    SeriesPtr column;
    {
        const FailingAllocation failing(0);
        column = BuildSeries({3, CONTAINER_ARRAY, TESSERA_INT32}, {});
    }
    const LogCapture log;
    EXPECT_EQ(column->GetTypeId(), TESSERA_INVALID);

    column = Column<std::int32_t>("c", {1, 2, 3});
    const FailingAllocation failing(0);
    EXPECT_EQ(column->GetIterator(), nullptr);
}

TEST(BitCursor, AddressesBitsLowestFirst)
{
    const SeriesPtr column = BuildSeries({20, CONTAINER_ARRAY, TESSERA_BOOL}, {});
    const Cursor cursor = column->GetIterator(5, 13);
    EXPECT_EQ(cursor->Length(), 8U);
    ASSERT_TRUE(SetValueToIterator<bool>(cursor, true, 3));
    const std::uint8_t* bytes = CursorAs<CONTAINER_ARRAY, bool>(column->GetIterator()).mHead.byte;
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 1) << "element 3 is bit 0 of the second byte";
    ASSERT_TRUE(SetValueToIterator<bool>(cursor, false, 3));
    EXPECT_EQ(bytes[1], 0);
}

TEST(DynamicArrayOfBool, HasTheRoomOfItsFormula)
{
    // The product is taken in float: in double, 1572939 bits would have a byte less.
    const struct {
        std::uint32_t bits;
        std::uint32_t bytes;
    } cases[] = {{0, 0}, {1, 1}, {7, 1}, {8, 1}, {9, 2}, {72, 10}, {80, 11}, {81, 12}, {1000, 138}, {1000000, 137500},
        {1572939, 216280}, {16777217, 2306868}};
    for (const auto& [bits, bytes] : cases) {
        const DynamicArray<bool> array(bits);
        EXPECT_EQ(array.size, bits);
        EXPECT_EQ(array.capacity, bytes) << bits;
        EXPECT_EQ(array.data == nullptr, bits == 0);
        EXPECT_EQ(array.end() - array.begin(), bits);
        EXPECT_TRUE(std::all_of(array.data, array.data + bytes, [](std::uint8_t byte) { return byte == 0; }));
    }
    EXPECT_EQ(DynamicArray<bool>(3).growthFactor, 1.1F);
    const DynamicArray<bool> array(21);
    EXPECT_EQ(array.end().byte, array.data + 2);
    EXPECT_EQ(array.end().offset, 5U);
}

TEST(DynamicArrayOfBool, TakesBitsFromListsAndVectors)
{
    const DynamicArray<bool> fromList{true, false, false, true, true, false, true, false, false, true};
    EXPECT_EQ(fromList.data[0], 0x59);
    EXPECT_EQ(fromList.data[1], 0x02);
    std::vector<bool> bits(77);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = SampleValue<bool>(static_cast<std::uint32_t>(i));
    }
    const DynamicArray<bool> fromVector(bits);
    ASSERT_EQ(fromVector.size, 77U);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        EXPECT_EQ(static_cast<bool>(*(fromVector.begin() + static_cast<std::int64_t>(i))), bits[i]) << i;
    }
    EXPECT_EQ(DynamicArray<bool>(std::vector<bool>()).data, nullptr);
}

TEST(BuildSeries, RefusesWhatIsNoTypeOrContainer)
{
    const char* const typeText = "TypeID should be in range of [TESSERA_TYPE_BEGIN, TESSERA_TYPE_END) ";
    const char* const containerText = "Container Type should be in range of [CONTAINER_BEGIN, CONTAINER_END) ";
    const struct {
        int type;
        int container;
        const char* text;
    } cases[] = {{14, 0, typeText}, {-1, 0, typeText}, {15, 1, typeText}, {0x7FFFFFFF, 9, typeText},
        {5, 2, containerText}, {13, -1, containerText}, {0, 256, containerText}};
    for (const auto& [type, container, text] : cases) {
        const LogCapture log;
        const SeriesPtr column =
            BuildSeries({4, static_cast<ContainerID>(container), static_cast<MERVO_TESSERA_TYPEID>(type)}, "name");
        EXPECT_THAT(log.Texts(1), testing::ElementsAre(text));
        EXPECT_EQ(column.get(), GetErrorSeries().get());
        EXPECT_EQ(column->GetTypeId(), TESSERA_INVALID);
        EXPECT_EQ(column->GetIterator(), nullptr);
    }
}

TEST(ErrorColumn, LogsEachUseAndAnswersWithNothing)
{
    const SeriesPtr column = GetErrorSeries();
    const std::string name = "other";
    const struct {
        const char* text;
        std::function<bool()> isEmpty;
    } cases[] = {
        {"Getting Size from error Series", [&] { return column->Size() == 0; }},
        {"Getting type id from error Series", [&] { return column->GetTypeId() == TESSERA_INVALID; }},
        {"Setting Name to error Series", [&] { return column->SetName(name), true; }},
        {"Setting Name to error Series for setting name", [&] { return column->SetName(std::string(name)), true; }},
        {"Getting Name from error Series", [&] { return column->GetName() == "ErrorSeries"; }},
        {"Getting Attr from error Series",
            [&] {
                const SeriesAttr attr = column->GetAttr();
                return attr.length == 0 && attr.containerId == CONTAINER_ARRAY && attr.typeId == TESSERA_INVALID;
            }},
        {"Printing contents from error Series",
            [&] {
                testing::internal::CaptureStdout();
                column->Print(0, 3);
                return testing::internal::GetCapturedStdout().empty();
            }},
        {"Getting Iterator from error Series", [&] { return column->GetIterator() == nullptr; }},
        {"Getting Ranged Iterator from error Series", [&] { return column->GetIterator(0, 1) == nullptr; }},
    };
    for (const auto& [text, isEmpty] : cases) {
        const LogCapture log;
        EXPECT_TRUE(isEmpty()) << text;
        EXPECT_THAT(log.Texts(1), testing::ElementsAre(text));
    }
    SeriesPtr other = GetErrorSeries();
    other.reset(); // owns nothing
    EXPECT_EQ(GetErrorSeries().get(), column.get());
}

TEST(ValueTypes, HaveTheirNames)
{
    const std::vector<std::string> names = {"invalid_type", "bool", "int8", "uint8", "int16", "uint16", "int32",
        "uint32", "int64", "uint64", "float", "double", "string", "datetime", "dataframe"};
    for (int id = -1; id < 14; ++id) {
        EXPECT_EQ(GetTypeNameById(static_cast<MERVO_TESSERA_TYPEID>(id)), names[static_cast<std::size_t>(id + 1)]);
    }
    for (const int id : {14, 15, -2, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_EQ(GetTypeNameById(static_cast<MERVO_TESSERA_TYPEID>(id)), "The Type ID is out of range");
    }
    EXPECT_STREQ(TypeTraitsImpl<InvalidType>::name, "invalid_type");
    EXPECT_STREQ(TypeTraitsImpl<DateTime>::name, "datetime");
}

/// A host's own cursor, whose attribute may be anything.
class HostCursor final : public IteratorInterface {
public:
    explicit HostCursor(const SeriesAttr& wanted) : attr(wanted) {}
    SeriesAttr GetAttr() const override { return attr; }
    std::uint32_t Length() const override { return attr.length; }
    bool IsMemoryContiguous() const override { return false; }
    void Shift(long long) override {}

private:
    SeriesAttr attr;
};

TYPED_TEST(ColumnOf, AnswersWithNothingThroughACursorOfNoContainer)
{
    for (const int container : {2, -1}) {
        const Cursor cursor =
            std::make_unique<HostCursor>(SeriesAttr{3, static_cast<ContainerID>(container), TYPE_ID_OF<TypeParam>});
        const LogCapture log;
        EXPECT_TRUE(IsSame(GetValueFromIterator<TypeParam>(cursor, 1), TypeParam{}));
        EXPECT_FALSE(SetValueToIterator<TypeParam>(cursor, TypeParam{}, 1));
        EXPECT_THAT(log.Texts(1),
            testing::ElementsAre("Failed to get value, invalid cid " + std::to_string(container),
                "Failed to set value, invalid cid " + std::to_string(container)));
    }
    const LogCapture log;
    EXPECT_FALSE(SetValueToIterator<TypeParam>(nullptr, TypeParam{}, 0));
    EXPECT_THAT(log.Texts(1), testing::ElementsAre("Error on set value to Iterator"));
}

TEST(Copy2Series, RefusesCursorsThatAreNone)
{
    const SeriesPtr column = Column<double>("c", {1.5});
    {
        const LogCapture log;
        EXPECT_FALSE(Copy2Series(nullptr, column->GetIterator()));
        EXPECT_FALSE(Copy2Series(column->GetIterator(), nullptr));
        EXPECT_EQ(log.Count(1), 2U);
        EXPECT_TRUE(log.Has(1, "input of copy to another series with different container type is null"));
    }
    const SeriesAttr odd[] = {{1, CONTAINER_END, TESSERA_DOUBLE}, {1, NO_CONTAINER, TESSERA_DOUBLE},
        {1, CONTAINER_ARRAY, TESSERA_TYPE_END}, {1, CONTAINER_ARRAY, TESSERA_INVALID}};
    for (const SeriesAttr& attr : odd) {
        EXPECT_FALSE(Copy2Series(std::make_unique<HostCursor>(attr), column->GetIterator()));
    }
    EXPECT_FALSE(Copy2Series(column->GetIterator(), std::make_unique<HostCursor>(odd[0])));
    EXPECT_EQ(GetValueFromIterator<double>(column->GetIterator(), 0), 1.5);
}

TEST(ListCursor, ReadsBeforeItsHead)
{
    const SeriesPtr column = Column<std::int32_t>("c", {10, 11, 12, 13}, CONTAINER_LIST);
    const Cursor cursor = column->GetIterator(2, 4);
    EXPECT_EQ(GetValueFromIterator<std::int32_t>(cursor, static_cast<std::uint32_t>(-2)), 10);
    ASSERT_TRUE(SetValueToIterator<std::int32_t>(cursor, 7, static_cast<std::uint32_t>(-1)));
    EXPECT_EQ(GetValueFromIterator<std::int32_t>(column->GetIterator(), 1), 7);
}

} // namespace
} // namespace MERVO::Tessera
