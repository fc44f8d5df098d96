#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/functors/scripted_functors.h"
#include "tests/support/failing_allocation.h"

namespace MERVO::Tessera {
namespace {

using Range = DataFrame::Range;
using testing::ElementsAre;

/// Elements that stand in no column.
template <typename T>
const T UNTOUCHED = SampleValue<T>(1000);

/// What ColumnToArray leaves in an array of `size` elements, the memory behind which a sanitizer watches.
template <typename T>
std::vector<T> Export(const DataFrameRef& table, unsigned int column, std::uint32_t size)
{
    const auto array = std::make_unique<T[]>(size);
    std::fill_n(array.get(), size, UNTOUCHED<T>);
    EXPECT_EQ(table.ColumnToArray(array.get(), TYPE_ID_OF<T>, size, column), 0);
    return std::vector<T>(array.get(), array.get() + size);
}

/// A window of rows 1 to 4 on columns that have only one row by now.
DataFrameRef WindowWithoutRows()
{
    DataFrame table = LetteredTable(2);
    DataFrameRef window = table[Range{1, 5}];
    EXPECT_EQ(table.ApplyInplace(Func::FunctorFactory<Func::Max, Func::UnaryBase>{}, table), 0);
    return window;
}

template <typename T>
class ArrayExport : public testing::Test {
};
TYPED_TEST_SUITE(ArrayExport, AllValueTypes);

TYPED_TEST(ArrayExport, OfAColumnCopiesTheSmallerOfTheTwoLengths)
{
    constexpr std::uint32_t BEGIN = 3; // bits that begin within a byte
    constexpr std::uint32_t ROWS = 40;
    const auto cells = SampleValues<TypeParam>(BEGIN + ROWS + 1);
    for (const ContainerID container : BOTH_CONTAINERS) {
        const DataFrame table = TableOf(Column("a", SampleValues<TypeParam>(BEGIN + ROWS + 1)),
            Column("b", std::vector<TypeParam>(BEGIN + ROWS + 1)), Column("c", cells, container));
        const DataFrameRef window = table.Slice(Range{BEGIN, BEGIN + ROWS}, Range{1, 3});
        for (const std::uint32_t size : {1U, 8U, ROWS - 1, ROWS, ROWS + 9}) {
            std::vector<TypeParam> expected(cells.begin() + BEGIN, cells.begin() + BEGIN + std::min(size, ROWS));
            expected.resize(size, UNTOUCHED<TypeParam>);
            EXPECT_TRUE(AreSame(Export<TypeParam>(window, 1, size), expected)) << size << ", " << container;
        }
    }
}

TYPED_TEST(ArrayExport, OfATableLaysColumnsOneAfterTheOther)
{
    const LogCapture log;
    for (const ContainerID container : BOTH_CONTAINERS) {
        const auto cells = SampleValues<TypeParam>(30);
        const std::vector<TypeParam> backwards(cells.rbegin(), cells.rend());
        const DataFrame table =
            TableOf(Column("a", cells), Column("b", cells), Column("c", backwards, container), Column("d", cells));
        const NdData array = table.Slice(Range{2, 29}, Range{1, 3});
        if constexpr (Arithmetic<TypeParam>) {
            ASSERT_NE(array.data, nullptr);
            EXPECT_THAT(array.shape, ElementsAre(27, 2));
            EXPECT_EQ(array.dtype, TYPE_ID_OF<TypeParam>);
            EXPECT_EQ(array.count, 1U);
            const auto* const elements = reinterpret_cast<const TypeParam*>(array.data.get());
            std::vector<TypeParam> expected(cells.begin() + 2, cells.begin() + 29);
            expected.insert(expected.end(), backwards.begin() + 2, backwards.begin() + 29);
            EXPECT_TRUE(AreSame(std::vector<TypeParam>(elements, elements + 54), expected));
        } else {
            EXPECT_EQ(array.data, nullptr);
        }
    }
    EXPECT_EQ(log.Count(1), Arithmetic<TypeParam> ? 0U : 2U);
}

TEST(ArrayExportOfAColumn, TellsWhyItRefuses)
{
    const DataFrame table = LetteredTable(2);
    DataFrame reshaped = LetteredTable(2);
    const DataFrameRef widowed(reshaped);
    reshaped = reshaped["b"]; // takes the column from under the window
    std::int32_t number = -7;
    const struct {
        const char* name;
        const DataFrameRef& table;
        void* data;
        MERVO_TESSERA_TYPEID type;
        std::uint32_t size, column;
        const char* text;
    } cases[] = {
        {"failed", FailedTable(9), &number, TESSERA_INT32, 1, 0, "Invalid dataframe when dumping column to array."},
        {"empty", DataFrame(), &number, TESSERA_INT32, 1, 0, "Invalid dataframe when dumping column to array."},
        {"null", table, nullptr, TESSERA_INT32, 1, 0, "Pointer is null when dumping column to array."},
        {"no room", table, &number, TESSERA_INT32, 0, 0, "Pointer is null when dumping column to array."},
        {"behind", table, &number, TESSERA_INT32, 1, 2, "Index out of range when dumping column to array."},
        {"no type", table, &number, TESSERA_INVALID, 1, 0,
            "Series Type mismatch (5 vs. -1)when dumping column to array."},
        {"widowed", widowed, &number, TESSERA_INT32, 1, 1,
            "Series Type mismatch (-1 vs. 5)when dumping column to array."},
        {"too long", WindowWithoutRows(), &number, TESSERA_INT32, 1, 1, "nullptr error in binary functorToArray"},
    };
    for (const auto& wanted : cases) {
        const LogCapture log;
        EXPECT_EQ(wanted.table.ColumnToArray(wanted.data, wanted.type, wanted.size, wanted.column), 5) << wanted.name;
        EXPECT_EQ(log.Texts(1), std::vector<std::string>{wanted.text}) << wanted.name;
    }
    EXPECT_EQ(number, -7);
}

TEST(ArrayExportOfATable, GivesTheEmptyRecordWhereItFails)
{
    const DataFrame table = LetteredTable(3);
    const auto expectNone = [](const DataFrameRef& source, const char* text) {
        const LogCapture log;
        const NdData array = source;
        EXPECT_EQ(array.data, nullptr);
        EXPECT_TRUE(array.shape.empty());
        EXPECT_EQ(array.dtype, 1);
        EXPECT_EQ(array.count, 0U);
        EXPECT_TRUE(log.Has(1, text)) << text;
        EXPECT_EQ(source.GetError().code, 0);
    };
    expectNone(TableOf(Column<double>("a", {1}), Column<float>("b", {1})), "Unsupport type to NdData.");
    expectNone(DataFrame(), "Unsupport type to NdData.");
    expectNone(TableOf(Column<double>("a", {})), "Failed to transform dataframe to array.");
    expectNone(WindowWithoutRows(), "Failed to transform dataframe to array.");
    const FailingAllocation block(0, table.RowCount() * 3 * sizeof(std::int32_t));
    expectNone(table, "Failed to create data pointer for NdData.");
    EXPECT_TRUE(FailingAllocation::HasFailed());
}

TEST(ToArray, TakesATypedRoomOnlyOfTheColumnsType)
{
    const LogCapture log;
    std::uint32_t size = 2;
    std::array<double, 2> doubles{};
    std::array<std::int32_t, 2> integers{};
    DataFrame table = LetteredTable(1);
    using Func::NullaryBase;
    const Func::FunctorFactory<Func::ToArray, NullaryBase, std::int32_t*, std::uint32_t&> fitting{
        integers.data(), size};
    EXPECT_EQ(table.ApplyInplace(fitting), 0);
    EXPECT_THAT(integers, ElementsAre(0, 1));
    const Func::FunctorFactory<Func::ToArray, NullaryBase, double*, std::uint32_t> unfit{doubles.data(), size};
    EXPECT_EQ(table.ApplyInplace(unfit), 21);
    EXPECT_EQ(table.GetError().message, "Check param failed in functor: ToArray");
    const Func::FunctorFactory<Func::ToArray, NullaryBase, void*, const std::uint32_t&> absent{nullptr, size};
    EXPECT_EQ(LetteredTable(1).ApplyInplace(absent), 21);
}

} // namespace
} // namespace MERVO::Tessera
