#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Cells = std::vector<std::vector<std::int32_t>>;

TEST(ApplyRow, RunsOverRowsInsteadOfColumns)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        DataFrame rows = LetteredTable(1);
        Script script;
        const UnaryFactory make = ForBothContainers<Scripted, Func::UnaryBase>(script);
        ASSERT_EQ(rows.ApplyRowInplace<std::int32_t>(make, LetteredTable(3, container)), 0);
        EXPECT_EQ(ColumnsOf(rows), (Cells{{0, 2, 4, 6, 8}, {200, 202, 204, 206, 208}, {800, 802, 804, 806, 808}}));
        EXPECT_THAT(rows.GetColumnName(), ElementsAre("col_0", "col_1", "col_2"));
        script.shape = AsOneCell;
        ASSERT_EQ(rows.ApplyRowInplace<std::int32_t>(make, LetteredTable(3, container)), 0);
        EXPECT_EQ(ColumnsOf(rows), (Cells{{500, 503, 506, 509, 512}})) << "each row's sum";
        EXPECT_THAT(rows.GetColumnName(), ElementsAre("col_0"));
    }
}

TEST(ApplyRow, AnswersEachFailureWithItsCode)
{
    const DataFrame source = LetteredTable(3);
    Script refusing;
    refusing.isAccepting = false;
    const auto shallow = [](const DataFrameRef& table) {
        DataFrame copy;
        copy.ShallowCopy(table);
        return copy;
    };
    const DataFrame mixed = TableOf(Column<std::int32_t>("a", {1}), Column<double>("b", {1}));
    const DataFrame mixedContainers =
        TableOf(Column<std::int32_t>("a", {1}), Column<std::int32_t>("b", {1}, CONTAINER_LIST));
    const char* const mixText = "Cannot apply row on MIX_TYPE dataframe with: Scripted";
    const struct {
        const char* name;
        DataFrame target;
        DataFrame source;
        Script script;
        Outcome outcome;
    } cases[] = {
        {"a failed source", LetteredTable(1), shallow(FailedTable(9)), Script(),
            {9, "", 1, "Invalid input dataFrame 9 in apply row on functor: Scripted."}},
        {"mixed containers", LetteredTable(1), shallow(mixedContainers), Script(),
            {2, "", 1, "Container -1 should be in range of [CONTAINER_BEGIN, CONTAINER_END)"}},
        {"a source of mixed types", LetteredTable(1), shallow(mixed), Script(), {22, mixText, 1, "set df error 22"}},
        {"a table of mixed types", shallow(mixed), shallow(source), Script(), {22, mixText, 1, "set df error 22"}},
        {"a table without columns", DataFrame(), shallow(source), Script(), {22, mixText, 1, "set df error 22"}},
        {"another type than the call's", LetteredTable(1), TableOf(Column<double>("a", {1})), Script(),
            {22, mixText, 1, "set df error 22"}},
        {"parameters refused", LetteredTable(1), shallow(source), refusing,
            {21, "Check param failed in functor: Scripted", 1, "Functor Scripted check param error"}},
        {"a kernel that fails in the third row", LetteredTable(1), shallow(source), FailingAfter(2),
            {12, "Error on calling functor: Scripted", 1, "set df error 12"}},
        {"no value type", LetteredTable(1), shallow(source), Shaped(AsNoType),
            {5, "nullptr error in unary functorScripted", 1, "TypeID should be in range"}},
    };
    for (const auto& [name, target, src, script, outcome] : cases) {
        SCOPED_TRACE(name);
        DataFrame table;
        table.ShallowCopy(target);
        const unsigned int columns = table.ColumnCount();
        Script copy = script;
        const LogCapture log;
        const ErrorCode code = table.ApplyRowInplace<std::int32_t>(ScriptedFactory(copy), src);
        ExpectOutcome(outcome, code, table, log);
        EXPECT_EQ(table.ColumnCount(), columns) << "what it held stays";
    }
    DataFrame failed = FailedTable(8);
    Script script;
    const LogCapture log;
    EXPECT_EQ(failed.ApplyRowInplace<std::int32_t>(ScriptedFactory(script), source), 8);
    EXPECT_TRUE(log.Has(1, "DataFrame is invalid 8, shape:[5,2], column size 2, functor Scripted"));
    DataFrame table = LetteredTable(1);
    EXPECT_EQ(table.ApplyRowInplace<std::int32_t>(ScriptedFactory(script), DataFrame()), 7);
    EXPECT_EQ(table.GetError().code, 0);
}

} // namespace
} // namespace MERVO::Tessera
