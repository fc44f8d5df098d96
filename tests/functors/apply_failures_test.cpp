// What the apply paths of tables and windows answer, store and log when they fail or have nothing to do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"

namespace MERVO::Tessera {
namespace {

using Range = DataFrame::Range;

/// Sides that a functor does not have are left out.
struct ApplyCase {
    const char* name;
    DataFrameRef target;
    std::vector<DataFrameRef> sources;
    Script script;
    Outcome outcome;
};

ErrorCode Apply(DataFrameRef& target, const std::vector<DataFrameRef>& sources, Script& script)
{
    switch (sources.size()) {
    case 0:
        return target.ApplyInplace(RaiseFactory(script));
    case 1:
        return target.ApplyInplace(ScriptedFactory(script), sources[0]);
    default:
        return target.ApplyInplace(MinusFactory(script), sources[0], sources[1]);
    }
}

/// The targets are tables, or windows; their cells stay.
void ExpectOutcomes(bool areTables, const std::vector<ApplyCase>& cases)
{
    for (const ApplyCase& wanted : cases) {
        SCOPED_TRACE(wanted.name);
        DataFrame table;
        table.ShallowCopy(wanted.target);
        DataFrameRef window(wanted.target);
        DataFrameRef& target = areTables ? table : window;
        const auto before = ColumnsOf(target);
        Script script = wanted.script;
        const LogCapture log;
        const ErrorCode code = Apply(target, wanted.sources, script);
        ExpectOutcome(wanted.outcome, code, target, log);
        EXPECT_EQ(ColumnsOf(target), before);
    }
}

Script Refusing()
{
    Script script;
    script.isAccepting = false;
    return script;
}

const Script PLAIN;
const char* const NO_COLUMNS = "input of binary apply inplace is zero-column Dataframe with functor: Minus";

DataFrame Two() { return LetteredTable(2); }
DataFrame Three() { return LetteredTable(3); }
DataFrame Lists() { return LetteredTable(2, CONTAINER_LIST); }
DataFrame Column() { return LetteredTable(1); }

TEST(TableApply, AnswersEachFailureWithItsCode)
{
    const DataFrame none;
    ExpectOutcomes(true,
        {{"a failed table", FailedTable(8), {FailedTable(9)}, PLAIN,
             {8, "it failed", 4, "Apply unary functor: Scripted on invalid dataframe"}},
            {"a failed source", Three(), {FailedTable(9)}, PLAIN,
                {9, "", 4, "Input dataFrame is invalid on applying unary functor: Scripted."}},
            {"a source without columns", Three(), {none}, PLAIN,
                {7, "", 3, "Input dataFrame is zero-column when applying unary functor: Scripted."}},
            {"another container", Three(), {Two().Slice(1, {1, 2})}, Shaped(AsList),
                {2, "", 1, "Functor Scripted can not change the container type 0 to 1"}},
            {"a list, for which there is no functor", Three(), {Lists()}, PLAIN,
                {2, "", 1, "Functor Scripted can not change the container type 1 to -1"}},
            {"no value type", Three(), {Two()}, Shaped(AsNoType),
                {5, "nullptr error in unary functorScripted", 1, "Getting Iterator from error Series"}},
            {"parameters refused", Three(), {Two()}, Refusing(),
                {21, "Check param failed in functor: Scripted", 1, "Functor Scripted check param error, src [size 5"}},
            {"a failing kernel", Three(), {Two()}, FailingAfter(0),
                {12, "Error on calling functor: Scripted", 1, "set df error 12"}},

            {"two: a failed table", FailedTable(8), {FailedTable(9), Two()}, PLAIN, {8, "it failed", UNTOLD, ""}},
            {"two: a failed left side", Three(), {FailedTable(9), FailedTable(8)}, PLAIN, {9, "", 0, ""}},
            {"two: a failed right side", Three(), {Two(), FailedTable(8)}, PLAIN, {8, "", 0, ""}},
            {"two: a left side without columns", Three(), {none, Two()}, PLAIN, {7, "", 1, NO_COLUMNS}},
            {"two: a right side without columns", Three(), {Two(), none}, PLAIN, {7, "", 1, NO_COLUMNS}},
            {"two: counts that can't broadcast", Three(), {Three(), Two()}, PLAIN,
                {19, "Cannot broadcast between two inputs, lhs.shape[1] = 3, rhs.shape[1] = 2", 1, "set df error 19"}},
            {"two: another container, N vs N", Three(), {Two(), Two()}, Shaped(AsList),
                {2, "", 1, "Functor Minus should not change the container type from 0 to 1"}},
            {"two: another container, 1 vs N", Three(), {Column(), Two()}, Shaped(AsList),
                {2, "", 1, "Functor Minus should not change the container type 0 to 1"}},
            {"two: another container, N vs 1", Three(), {Two(), Column()}, Shaped(AsList),
                {2, "", 1, "Functor Minus should not change the container type 0 to 1"}},
            {"two: other rows", Three(), {Two(), Two()[Range{0, 3}]}, PLAIN,
                {21, "Check param failed in binary functorMinus", 1, "Functor Minus check param error, lhs [size 5"}},
            {"two: no value type", Three(), {Two(), Two()}, Shaped(AsNoType),
                {5, "nullptr error in binary functorMinus", 1, "Getting Iterator from error Series"}},
            {"two: a failing kernel", Three(), {Column(), Two()}, FailingAfter(0),
                {12, "Error on calling functor: Minus", 1, "set df error 12"}},

            {"none: a failed table", FailedTable(8), {}, PLAIN, {8, "it failed", UNTOLD, ""}},
            {"none: no columns", none, {}, PLAIN,
                {0, "", 3, "Input dataFrame is zero-column on applying unary functor: Raise."}},
            {"none: another container", Column(), {}, Shaped(AsList),
                {18, "dst container type cannot be determinated", 1, "set df error 18"}},
            {"none: a list", Lists(), {}, PLAIN,
                {18, "dst container type cannot be determinated", 1, "Trying to get attribute of an error functor"}},
            {"none: parameters refused", Column(), {}, Refusing(),
                {21, "Check param failed in functor: Raise", 1, "Functor Raise check param error"}},
            {"none: a failing kernel", Column(), {}, FailingAfter(0),
                {12, "Error on calling functor: Raise", 1, "set df error 12"}}});
}

TEST(WindowApply, AnswersEachFailureWithItsCode)
{
    const DataFrameRef none;
    ExpectOutcomes(false,
        {{"a failed window", FailedTable(9), {Two()}, PLAIN, {9, "it failed", UNTOLD, ""}},
            {"a window without columns", none, {Two()}, PLAIN, {0, "", 0, ""}},
            {"a failed source", Two(), {FailedTable(9)}, PLAIN,
                {9, "", 4, "Invalid input dataFrame with functor: Scripted"}},
            {"a source without columns", Two(), {none}, PLAIN, {7, "", 0, ""}},
            {"other column counts", Two(), {Three()}, PLAIN,
                {20, "Cannot use sliced dataframe with differenct size as destination of operation", 0, ""}},
            {"another container", Two(), {Two()}, Shaped(AsList),
                {18, "", 1, "Functor requires different container type to dataframe (1 vs. 0)"}},
            {"another length, as a reduction's", Two(), {Two()}, Shaped(AsOneCell),
                {20, "", 1, "Functor can't change the row size of sliced dataframe (1 vs. 5)"}},
            {"a source of other rows", Two()[Range{0, 2}], {Two()}, PLAIN,
                {20, "", 1, "Functor can't change the row size of sliced dataframe (5 vs. 2)"}},
            {"another value type", Two(), {Two()}, Shaped(AsDouble),
                {21, "Check param failed in functor: CopySeries", 1,
                    "Functor CopySeries check param error, src [size 5, type double], dst [size 5, type int32]"}},
            {"no value type", Two(), {Two()}, Shaped(AsNoType),
                {5, "nullptr error in unary functorScripted", 1, "TypeID should be in range"}},
            {"parameters refused", Two(), {Two()}, Refusing(),
                {21, "Check param failed in functor: Scripted", 1, "Functor Scripted check param error"}},
            {"a failing kernel", Two(), {Two()}, FailingAfter(0), {12, "Error on calling functor: Scripted", 0, ""}},
            {"a list, for which there is no functor", Lists(), {Two()}, PLAIN,
                {18, "", 1, "Functor requires different container type to dataframe (-1 vs. 1)"}},

            {"two: a failed window", FailedTable(9), {FailedTable(8), FailedTable(7)}, PLAIN,
                {9, "it failed", UNTOLD, ""}},
            {"two: a failed left side", Two(), {FailedTable(9), FailedTable(8)}, PLAIN, {9, "", 0, ""}},
            {"two: a failed right side", Two(), {Two(), FailedTable(8)}, PLAIN, {8, "", 0, ""}},
            {"two: a left side without columns", Two(), {none, Two()}, PLAIN, {7, "", 1, NO_COLUMNS}},
            {"two: a right side without columns", Two(), {Two(), none}, PLAIN, {7, "", 1, NO_COLUMNS}},
            {"two: counts that can't broadcast", none, {Two(), Three()}, PLAIN,
                {19, "Cannot broadcast between two inputs, lhs.shape[1] = 2, rhs.shape[1] = 3", 0, ""}},
            {"two: a window without columns", none, {Two(), Two()}, PLAIN, {0, "", 0, ""}},
            {"two: a window that is too narrow", Two(), {Three(), Three()}, PLAIN,
                {20, "Cannot use sliced dataframe with different size as destination", 0, ""}},
            {"two: a window that is too wide", Three(), {Two(), Column()}, PLAIN,
                {20, "Cannot use sliced dataframe with different size as destination", 0, ""}},
            {"two: another length", Two(), {Two(), Two()}, Shaped(AsOneCell),
                {20, "", 1, "Functor can't change the row size of sliced dataframe (1 vs. 5)"}},
            {"two: another value type", Two(), {Two(), Two()}, Shaped(AsDouble),
                {21, "Check param failed in functor: CopySeries", 1, "Functor CopySeries check param error"}},
            {"two: other rows on one side", Two(), {Two(), Two()[Range{0, 4}]}, PLAIN,
                {21, "Check param failed in binary functorMinus", 1,
                    "Functor Minus check param error, lhs [size 5, type int32], rhs [size 4, type int32], dst [size 5, "
                    "type int32]"}},
            {"two: a failing kernel", Two(), {Two(), Two()}, FailingAfter(0),
                {12, "Error on calling functor: Minus", 0, ""}},

            {"none: a failed window", FailedTable(9), {}, PLAIN, {9, "it failed", UNTOLD, ""}},
            {"none: no columns", none, {}, PLAIN,
                {0, "", 3, "Input dataFrame is zero-column on applying unary functor: Raise."}},
            {"none: another container", Two(), {}, Shaped(AsList),
                {18, "", 1, "Functor requires different container type to dataframe (1 vs. 0)"}},
            {"none: another length", Two(), {}, Shaped(AsOneCell),
                {20, "", 1, "Functor can't change the row size of sliced dataframe (1 vs. 5)"}},
            {"none: a list", Lists(), {}, PLAIN,
                {18, "", 1, "Functor requires different container type to dataframe (-1 vs. 1)"}},
            {"none: parameters refused", Two(), {}, Refusing(),
                {21, "Check param failed in functor: Raise", 1, "Functor Raise check param error"}},
            {"none: a failing kernel", Two(), {}, FailingAfter(0), {12, "Error on calling functor: Raise", 0, ""}}});
}

} // namespace
} // namespace MERVO::Tessera
