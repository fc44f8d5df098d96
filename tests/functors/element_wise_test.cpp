// What the functors and operators from two columns to a third have in common; what each does to two cells is tested
// with its family.

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using FreeOperator = DataFrame (*)(const DataFrameRef&, const DataFrameRef&);
using AssigningOperator = DataFrameRef& (DataFrameRef::*)(const DataFrameRef&);

struct Operation {
    std::string name;
    std::shared_ptr<Func::BinaryBase> functor;
    MERVO_TESSERA_TYPEID operand; ///< a value type that it serves
    MERVO_TESSERA_TYPEID result;
    FreeOperator combine;
    AssigningOperator assign;
    const char* failure; ///< the text of the operator that assigns
    ErrorCode ofTexts;   ///< what it says to strings
};

template <typename F>
Operation Of(MERVO_TESSERA_TYPEID operand, MERVO_TESSERA_TYPEID result, FreeOperator combine, ErrorCode ofTexts,
    AssigningOperator assign = nullptr, const char* failure = "")
{
    const auto functor = std::make_shared<F>();
    return {functor->GetName(), functor, operand, result, combine, assign, failure, ofTexts};
}

std::vector<Operation> Operations()
{
    constexpr ContainerID ARRAY = CONTAINER_ARRAY;
    constexpr MERVO_TESSERA_TYPEID INT = TESSERA_INT32;
    constexpr MERVO_TESSERA_TYPEID BOOL = TESSERA_BOOL;
    using Ref = DataFrameRef;
    return {Of<Func::Add<ARRAY>>(INT, INT, &operator+, 0, &Ref::operator+=, "operator+= failed"),
        Of<Func::Sub<ARRAY>>(INT, INT, &operator-, 1, &Ref::operator-=, "operator-= failed"),
        Of<Func::Mul<ARRAY>>(INT, INT, &operator*, 1, &Ref::operator*=, "operator*= failed"),
        Of<Func::Div<ARRAY>>(INT, INT, &operator/, 1, &Ref::operator/=, "operator/= failed"),
        Of<Func::Mod<ARRAY>>(INT, INT, &operator%, 1, &Ref::operator%=, "operator%= failed"),
        Of<Func::Equal<ARRAY>>(INT, BOOL, &operator==, 0), Of<Func::Equal<ARRAY>>(INT, BOOL, &operator!=, 0),
        Of<Func::Less<ARRAY>>(INT, BOOL, &operator<, 0), Of<Func::Greater<ARRAY>>(INT, BOOL, &operator>, 0),
        Of<Func::LessEqual<ARRAY>>(INT, BOOL, &operator<=, 0), Of<Func::GreaterEqual<ARRAY>>(INT, BOOL, &operator>=, 0),
        Of<Func::And<ARRAY>>(BOOL, BOOL, &operator&&, 21, &Ref::operator&=, "operator&= failed"),
        Of<Func::Or<ARRAY>>(BOOL, BOOL, &operator||, 21, &Ref::operator|=, "operator|= failed")};
}

struct ShapeCase {
    std::uint32_t left;
    std::uint32_t right;
    std::uint32_t result; ///< the length that the functor asks for
    bool isServed;
};

const ShapeCase SHAPE_CASES[] = {
    {3, 3, 3, true}, {1, 3, 3, true}, {3, 1, 3, true}, {0, 0, 0, true}, {2, 3, 0, false}, {0, 3, 0, false}};

TEST(ElementWise, PairsEqualLengthsAndOneRowOfOneValueType)
{
    for (const Operation& operation : Operations()) {
        for (const ShapeCase& wanted : SHAPE_CASES) {
            SCOPED_TRACE(operation.name + std::to_string(wanted.left) + std::to_string(wanted.right));
            const SeriesPtr left = BuildSeries({wanted.left, CONTAINER_LIST, operation.operand}, "");
            const SeriesPtr right = BuildSeries({wanted.right, CONTAINER_ARRAY, operation.operand}, "");
            const SeriesPtr other = BuildSeries({wanted.right, CONTAINER_ARRAY, TESSERA_INT8}, "");
            const SeriesAttr attr = operation.functor->GetDstAttr(left->GetIterator(), right->GetIterator());
            EXPECT_EQ(attr.length, wanted.result);
            EXPECT_EQ(attr.typeId, operation.result);
            EXPECT_EQ(attr.containerId, CONTAINER_LIST);
            const auto isAccepted = [&](const SeriesPtr& first, const SeriesPtr& second, const SeriesAttr& result) {
                return operation.functor->CheckParams(
                    first->GetIterator(), second->GetIterator(), BuildSeries(result, "")->GetIterator());
            };
            EXPECT_EQ(isAccepted(left, right, attr), wanted.isServed);
            EXPECT_FALSE(isAccepted(left, other, attr));
            EXPECT_FALSE(isAccepted(left, right, WithType(attr, TESSERA_INT8)));
            EXPECT_FALSE(isAccepted(left, right, WithLength(attr, wanted.result + 1)));
        }
    }
}

DataFrame Table(MERVO_TESSERA_TYPEID type, unsigned int rows, unsigned int columns)
{
    DataFrame table;
    const std::vector<std::int32_t> ones(std::size_t{rows} * columns, 1);
    EXPECT_EQ(table.ReadVector<std::int32_t>(ones, {rows, columns}, DataFrame::Types(columns, type)), 0);
    return table;
}

DataFrame Failed(DataFrame table)
{
    table.SetError({15, "an earlier failure"});
    return table;
}

TEST(TableOperators, KeepTheCodeOfAFailureAndHaveTheirOwnText)
{
    for (const Operation& operation : Operations()) {
        const MERVO_TESSERA_TYPEID type = operation.operand;
        const DataFrame good = Table(type, 2, 1);
        const DataFrame texts = Table(TESSERA_STRING, 2, 1);
        const DataFrame nested = Table(TESSERA_DATAFRAME, 2, 1);
        const DataFrame lists = type == TESSERA_BOOL ? TableOf(Column<bool>("", {true, true}, CONTAINER_LIST))
                                                     : TableOf(Column<std::int32_t>("", {1, 1}, CONTAINER_LIST));
        const bool isArithmetic = operation.result != TESSERA_BOOL;
        const struct {
            DataFrameRef left;
            DataFrameRef right;
            ErrorCode code;
        } cases[] = {
            {good, Table(type, 3, 1), 21},
            {good, texts, 21},
            {texts, texts, operation.ofTexts},
            {nested, nested,
                isArithmetic               ? 0
                    : type == TESSERA_BOOL ? 21
                                           : 1},
            {Table(TESSERA_BOOL, 2, 1), Table(TESSERA_BOOL, 2, 1), isArithmetic ? 1 : 0},
            {Table(type, 1, 2), Table(type, 1, 3), 19},
            {DataFrame(), good, 7},
            {good, DataFrame(), 7},
            {Failed(good), good, 15},
            {good, Failed(good), 15},
            {lists, lists, 2},
        };
        for (const auto& [left, right, code] : cases) {
            SCOPED_TRACE(operation.name + ", " + std::to_string(code));
            const DataFrame result = operation.combine(left, right);
            EXPECT_EQ(result.GetError().code, code);
            EXPECT_EQ(result.GetError().message, code == 0 ? "healthy dataframe" : "Error on executing operator");
            EXPECT_EQ(result.ColumnCount(), code == 0 ? 1U : 0U);
            if (operation.assign != nullptr && code != 0) {
                DataFrame table;
                table.ShallowCopy(left);
                EXPECT_EQ(&(table.*operation.assign)(right), &table);
                EXPECT_EQ(table.GetError().code, code);
                EXPECT_EQ(table.GetError().message, operation.failure) << "in place of any other text";
            }
        }
        if (operation.assign != nullptr) { // the first code stays, the last text counts
            DataFrame table = good;
            table += Table(type, 3, 1);
            (table.*operation.assign)(DataFrame());
            EXPECT_EQ(table.GetError().code, 21);
            EXPECT_EQ(table.GetError().message, operation.failure);
        }
    }
}

TEST(TableOperators, NameColumnsAfterTheWiderSide)
{
    for (const Operation& operation : Operations()) {
        DataFrame wide = Table(operation.operand, 2, 2);
        ASSERT_EQ(wide.SetColumnName({"a", "b"}), 0);
        const DataFrame one = Table(operation.operand, 2, 1);
        EXPECT_THAT(operation.combine(wide, one).GetColumnName(), testing::ElementsAre("a", "b")) << operation.name;
        EXPECT_THAT(operation.combine(one, wide).GetColumnName(), testing::ElementsAre("a", "b")) << operation.name;
    }
}

} // namespace
} // namespace MERVO::Tessera
