#include <algorithm>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/functors/pairing.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

/// A binary functor on bools, and what it does to two of them.
struct Operation {
    std::shared_ptr<Func::BinaryBase> functor;
    bool (*model)(bool left, bool right);
};

std::vector<Operation> Operations()
{
    return {{std::make_shared<Func::And<CONTAINER_ARRAY>>(), [](bool left, bool right) { return left && right; }},
        {std::make_shared<Func::Or<CONTAINER_ARRAY>>(), [](bool left, bool right) { return left || right; }}};
}

// ---- And, Or, Not

TEST(Logic, CombinesBitsOfAllOffsets)
{
    Random random(3);
    for (const Operation& operation : Operations()) {
        for (std::uint32_t offsets = 0; offsets < 512; ++offsets) {
            const Leads leads{offsets & 7, (offsets >> 3) & 7, offsets >> 6};
            for (const std::uint32_t length : {2U, 5U, 9U, 64U, 70U, 129U, 200U}) {
                ASSERT_NO_FATAL_FAILURE((CheckAgainstModel<bool, bool>(
                    *operation.functor, {length, length}, ARRAYS, leads, random, operation.model)));
            }
        }
    }
}

TEST(Logic, CombinesInAllContainersAndLengths)
{
    Random random(4);
    for (const Operation& operation : Operations()) {
        for (const Lengths lengths : LENGTHS_THAT_MEET) {
            for (const Containers& containers : AllContainers()) {
                for (int run = 0; run < 4; ++run) { // so that the one row is true and false
                    ASSERT_NO_FATAL_FAILURE((CheckAgainstModel<bool, bool>(
                        *operation.functor, lengths, containers, {5, 0, 3}, random, operation.model)));
                }
            }
        }
    }
}

TEST(Logic, InvertsBitsOfAllOffsets)
{
    Random random(5);
    const Func::Not<CONTAINER_ARRAY> invert;
    for (const ContainerID from : BOTH_CONTAINERS) {
        for (const ContainerID to : BOTH_CONTAINERS) {
            for (std::uint32_t offsets = 0; offsets < 64; ++offsets) {
                for (const std::uint32_t length : {0U, 1U, 8U, 71U, 130U}) {
                    const Surrounded<bool> source(random, offsets & 7, length, from);
                    const Surrounded<bool> result(random, offsets >> 3, length, to);
                    ASSERT_EQ(invert.ProcessSeries(source.Window(), result.Window(), true).code, 0);
                    std::vector<bool> expected = result.CellsBefore();
                    for (std::uint32_t i = 0; i < length; ++i) {
                        expected[(offsets >> 3) + i] = !source.Cell(i);
                    }
                    ASSERT_TRUE(AreSame(result.CellsNow(), expected)) << offsets << ", " << length;
                }
            }
        }
    }
}

TEST(Logic, MayWriteOverAnOperand)
{
    Random random(6);
    const Surrounded<bool> bits(random, 3, 150, CONTAINER_ARRAY);
    const Surrounded<bool> others(random, 6, 150, CONTAINER_ARRAY);
    ASSERT_EQ(Func::Not<CONTAINER_ARRAY>().ProcessSeries(bits.Window(), bits.Window(), true).code, 0);
    ASSERT_EQ(Func::And<CONTAINER_ARRAY>().ProcessSeries(others.Window(), bits.Window(), bits.Window()).code, 0);
    std::vector<bool> expected = bits.CellsBefore();
    for (std::uint32_t i = 0; i < 150; ++i) {
        expected[3 + i] = !bits.Cell(i) && others.Cell(i);
    }
    EXPECT_TRUE(AreSame(bits.CellsNow(), expected));
}

TEST(Logic, InvertsBoolsOnly)
{
    const SeriesPtr bools = Column<bool>("", {true, false});
    const SeriesPtr three = Column<bool>("", {true, false, true});
    const SeriesPtr numbers = Column<std::int8_t>("", {1, 0});
    const Func::Not<CONTAINER_ARRAY> invert;
    EXPECT_EQ(invert.GetDstAttr(numbers->GetIterator()).typeId, TESSERA_BOOL);
    using Ends = std::pair<const SeriesPtr*, const SeriesPtr*>;
    for (const auto& [source, result] : {Ends{&numbers, &bools}, Ends{&bools, &numbers}, Ends{&bools, &three}}) {
        const Error outcome = invert.ProcessSeries((*source)->GetIterator(), (*result)->GetIterator(), true);
        EXPECT_EQ(outcome.code, 21);
        EXPECT_EQ(outcome.message, "Check param failed in functor: Not");
    }
}

/// A cursor on bits that do not exist.
Cursor Adrift(std::uint32_t length)
{
    const BitPosition nowhere;
    return std::make_unique<Iterator<CONTAINER_ARRAY, bool>>(
        nowhere, nowhere + length, SeriesAttr{length, CONTAINER_ARRAY, TESSERA_BOOL});
}

TEST(Logic, ReportsCursorsWithoutBits)
{
    const SeriesPtr nine = Column<bool>("", std::vector<bool>(9, true));
    const SeriesPtr one = Column<bool>("", {true});
    for (const Operation& operation : Operations()) {
        const LogCapture log;
        const Error outcome = operation.functor->ProcessSeries(nine->GetIterator(), Adrift(9), nine->GetIterator());
        EXPECT_EQ(outcome.code, 1);
        EXPECT_THAT(log.Texts(1), ElementsAre("Input is nullptr while executing BoolCalcution."));

        const LogCapture logOfOne;
        EXPECT_EQ(operation.functor->ProcessSeries(one->GetIterator(), nine->GetIterator(), Adrift(9)).code, 0);
        EXPECT_EQ(logOfOne.Texts(1), std::vector<std::string>(9, "mHead is invalid"));
    }
}

// ---- Any, All

/// Folds a window; the result's cell stands between others, and holds the opposite before.
void CheckFolds(const Cursor& window, bool any, bool all, ContainerID container)
{
    const auto fold = [&window, container](const Func::UnaryBase& functor, bool before) {
        const SeriesPtr result = Column<bool>("", {before, before, before}, container);
        EXPECT_EQ(functor.ProcessSeries(window, result->GetIterator(1, 2), true).code, 0);
        const std::vector<bool> cells = CellsOf<bool>(result->GetIterator());
        EXPECT_EQ(cells[0], before);
        EXPECT_EQ(cells[2], before);
        return static_cast<bool>(cells[1]);
    };
    ASSERT_EQ(fold(Func::Any<CONTAINER_ARRAY>(), !any), any);
    ASSERT_EQ(fold(Func::All<CONTAINER_ARRAY>(), !all), all);
}

TEST(Logic, FoldsAColumn)
{
    for (std::uint32_t offsets = 0; offsets < 8; ++offsets) {
        for (const std::uint32_t length : {1U, 6U, 64U, 90U}) {
            for (std::uint32_t odd = 0; odd <= length; ++odd) { // its place; at the end behind the window
                for (const bool isOddTrue : {true, false}) {
                    std::vector<bool> cells(offsets + length + 5, !isOddTrue);
                    cells[offsets + odd] = isOddTrue;
                    const auto trues = static_cast<std::uint32_t>(
                        std::count(cells.begin() + offsets, cells.begin() + offsets + length, true));
                    for (const ContainerID container : BOTH_CONTAINERS) {
                        const SeriesPtr column = Column<bool>("", cells, container);
                        CheckFolds(
                            column->GetIterator(offsets, offsets + length), trues != 0, trues == length, container);
                        ASSERT_FALSE(HasFatalFailure()) << offsets << ", " << length << ", " << odd;
                    }
                }
            }
        }
    }
}

TEST(Logic, FoldsBoolsOnlyIntoOneBool)
{
    const SeriesPtr bools = Column<bool>("", {true, false});
    const SeriesPtr one = Column<bool>("", {true});
    const SeriesPtr number = Column<std::int8_t>("", {1});
    const Func::Any<CONTAINER_ARRAY> any;
    const Func::All<CONTAINER_ARRAY> all;
    for (const Func::UnaryBase* functor : std::initializer_list<const Func::UnaryBase*>{&any, &all}) {
        const SeriesAttr attr = functor->GetDstAttr(number->GetIterator());
        EXPECT_EQ(attr.typeId, TESSERA_BOOL);
        EXPECT_EQ(attr.length, 1U);
        using Ends = std::pair<const SeriesPtr*, const SeriesPtr*>;
        for (const auto& [source, result] : {Ends{&number, &one}, Ends{&bools, &number}, Ends{&bools, &bools}}) {
            EXPECT_EQ(functor->ProcessSeries((*source)->GetIterator(), (*result)->GetIterator(), true).code, 21);
        }
        // Behind the check stands one silent entry for each other type.
        const LogCapture log;
        const auto& table = functor == &any ? any.transformTable : all.transformTable;
        EXPECT_EQ(table[TESSERA_INT8](functor, number->GetIterator(), one->GetIterator()), 1);
        EXPECT_EQ(log.Count(), 0U);
    }
}

// ---- Tables

DataFrame Bools(const std::vector<std::vector<bool>>& columns)
{
    DataFrame table;
    EXPECT_EQ(table.ReadVectorByCol<bool>(columns), 0);
    return table;
}

TEST(LogicOperator, CombinesTables)
{
    const DataFrame left = Bools({{false, false, true, true}});
    const DataFrame right = Bools({{false, true, false, true}});
    EXPECT_THAT((left && right).To1DVector<bool>(), ElementsAre(false, false, false, true));
    EXPECT_THAT((left || right).To1DVector<bool>(), ElementsAre(false, true, true, true));
    EXPECT_THAT((!left).To1DVector<bool>(), ElementsAre(true, true, false, false));
    // De Morgan, over windows that begin at other bits
    const DataFrameRef upper = left.Slice(0U, {1, 4});
    const DataFrameRef lower = right.Slice(0U, {0, 3});
    EXPECT_TRUE(((!(upper && lower)) == (!upper || !lower)).All());

    DataFrame table = left;
    EXPECT_EQ(&(table &= right), &table);
    EXPECT_THAT(table.To1DVector<bool>(), ElementsAre(false, false, false, true));
    DataFrameRef window = table.Slice(0U, {1, 3});
    window |= right.Slice(0U, {1, 3});
    EXPECT_EQ(window.GetError().code, 0);
    EXPECT_THAT(table.To1DVector<bool>(), ElementsAre(false, true, false, true));
}

DataFrame FailedTable()
{
    DataFrame failed = Bools({{true}});
    failed.SetError({15, "an earlier failure"});
    return failed;
}

TEST(LogicOperator, InvertsTablesOfBoolsOnly)
{
    const DataFrame mixed = TableOf(Column<bool>("a", {true}), Column<std::int8_t>("b", {1}));
    for (const DataFrame& table : {TableOf(Column<std::int32_t>("", {1})), mixed, DataFrame(), FailedTable()}) {
        const DataFrame result = !table;
        EXPECT_EQ(result.GetError().code, 17);
        EXPECT_EQ(result.GetError().message, "Trying to exec operator ! from non-bool dataframe");
    }
    const DataFrame lists = !TableOf(Column<bool>("", {true}, CONTAINER_LIST));
    EXPECT_NE(lists.GetError().code, 0);
    EXPECT_EQ(lists.GetError().message, "Error on executing operator");
}

TEST(TableFold, LooksAtAllColumns)
{
    struct Case {
        std::vector<std::vector<bool>> columns;
        bool any;
        bool all;
    };
    const Case cases[] = {{{{false, false}, {false, false}}, false, false}, {{{true, true}, {true, true}}, true, true},
        {{{false, true}, {false, false}}, true, false}, {{{false, false}, {false, true}}, true, false},
        {{{true, false}, {true, true}}, true, false}, {{{true, true}, {true, false}}, true, false}};
    for (const Case& wanted : cases) {
        const DataFrame table = Bools(wanted.columns);
        const LogCapture log;
        EXPECT_EQ(table.Any(), wanted.any);
        EXPECT_EQ(table.All(), wanted.all);
        EXPECT_EQ(log.Count(), 0U);
    }
}

TEST(TableFold, RefusesWithAWord)
{
    struct Case {
        DataFrame table;
        const char* any;
        const char* all;
    };
    const Case cases[] = {
        {FailedTable(), "invalid dataframe while calling Any 15", "invalid dataframe while calling All 15"},
        {DataFrame(), "there is no cols in dataframe while calling Any",
            "there is no cols in dataframe while calling All"},
        {GetEmptyDataFrame({0, 2}, TESSERA_BOOL), "there is no rows in dataframe while calling Any",
            "there is no rows in dataframe while calling All"},
        {TableOf(Column<std::int8_t>("", {1})), "Any is only available for bool dataframe",
            "All is only available for bool dataframe"}};
    for (const Case& wanted : cases) {
        const LogCapture log;
        EXPECT_FALSE(wanted.table.Any());
        EXPECT_FALSE(wanted.table.All());
        EXPECT_THAT(log.Texts(1), ElementsAre(wanted.any, wanted.all));
    }
    EXPECT_FALSE(TableOf(Column<bool>("", {true}, CONTAINER_LIST)).Any()); // no functor serves a table of lists
}

} // namespace
} // namespace MERVO::Tessera
