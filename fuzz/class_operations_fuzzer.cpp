// Operations of the classes in random order, on tables, on windows that may have lost their columns, and on lists.
//
// Whatever comes in: a result is in one piece; it is the same when it is made again, with other bytes in fresh memory;
// a window gives what a copy of it gives, an operation in place what the one that makes a new table gives; and nothing
// changes that was only read. A table that failed keeps its code. Input: tables, operations and their arguments.

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <sstream>

#include "fuzz/support/functors.h"
#include "fuzz/support/play.h"
#include "fuzz/support/require.h"
#include "fuzz/support/silence.h"
#include "fuzz/support/table_operations.h"

namespace MERVO::Tessera::Fuzz {
namespace {

// ---- Functors and operators

/// What a functor makes of sources; or a table with its code, also where an apply only tells that to the log, and
/// leaves a table with a part of its columns.
template <typename Factory, typename... Source>
DataFrame Applied(const Factory& functor, const Source&... sources)
{
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(functor, sources...);
    Require(IsDocumented(code), "an apply's code is documented");
    if (code != result.GetError().code) {
        result = DataFrame();
        result.SetError({code, "told by the log"});
    }
    return result;
}

/// A copy to compare with; nothing where a window can't be copied any more, or lists can't.
std::unique_ptr<DataFrame> CopyOf(const DataFrameRef& table)
{
    auto copy = std::make_unique<DataFrame>();
    copy->DeepCopy(table);
    const bool hasLostRows =
        table.ColumnCount() == 0 && table.RowCount() != 0; // a window may have rows without columns
    return copy->GetError().code == ERROR_NONE && !hasLostRows ? std::move(copy) : nullptr;
}

void ApplyUnary(Play& play)
{
    const UnaryFactory functor = DrawUnary(play.inputs);
    const DataFrameRef& source = play.View();
    DataFrame result = Twice([&] { return Applied(functor, source); });
    if (const auto copy = CopyOf(source)) {
        RequireSame(Applied(functor, *copy), result, "a functor sees a window as it sees a copy of it");
        const ErrorCode code = copy->ApplyInplace(functor, *copy);
        if (code == ERROR_NONE) {
            RequireSame(*copy, result, "a functor may write over its source");
        }
    }
    play.Keep(std::move(result));
}

void ApplyBinary(Play& play)
{
    const BinaryFactory functor = DrawBinary(play.inputs);
    const DataFrameRef& left = play.View();
    const DataFrameRef& right = play.View();
    DataFrame result = Twice([&] { return Applied(functor, left, right); });
    const auto leftCopy = CopyOf(left);
    const auto rightCopy = CopyOf(right);
    if (leftCopy != nullptr && rightCopy != nullptr) {
        RequireSame(
            Applied(functor, *leftCopy, *rightCopy), result, "a functor sees windows as it sees copies of them");
    }
    play.Keep(std::move(result));
}

/// Runs a functor with a window or table as destination; its sources may lie in it.
void ApplyInto(Play& play)
{
    DataFrameRef& target = play.WrittenView();
    const ErrorCode before = target.GetError().code;
    const bool isUnary = play.inputs.ConsumeBool();
    const UnaryFactory unary = DrawUnary(play.inputs);
    const BinaryFactory binary = DrawBinary(play.inputs);
    const DataFrameRef& left = play.View();
    const DataFrameRef& right = play.View();
    const DataFrame wanted = isUnary ? Applied(unary, left) : Applied(binary, left, right);
    const ErrorCode code = isUnary ? target.ApplyInplace(unary, left) : target.ApplyInplace(binary, left, right);
    Require(IsDocumented(code), "an apply's code is documented");
    Require(before == ERROR_NONE || target.GetError().code == before, "a table keeps its first failure");
    play.NoteApplied(target, code);
    // Into no columns goes nothing; and lists are converted for a destination of arrays only.
    if (code == ERROR_NONE && target.ColumnCount() != 0 && wanted.GetError().code == ERROR_NONE) {
        RequireSameCells(target, wanted, "a functor computes all before it writes");
    }
}

using Operator = DataFrame (*)(const DataFrameRef&, const DataFrameRef&);
using Assigner = DataFrameRef& (DataFrameRef::*)(const DataFrameRef&);
constexpr Operator OPERATORS[] = {operator+, operator-, operator*, operator/, operator%, operator==, operator!=
    ,
    operator<, operator>, operator<=, operator>=, operator&&, operator||,
    [](const DataFrameRef& left, const DataFrameRef&) { return !left; }};
constexpr Assigner ASSIGNERS[] = {&DataFrameRef::operator+=, &DataFrameRef::operator-=, &DataFrameRef::operator*=,
    &DataFrameRef::operator/=, &DataFrameRef::operator%=, &DataFrameRef::operator&=, &DataFrameRef::operator|=,
    &DataFrameRef::operator= };

void Operate(Play& play)
{
    const Operator combine = OPERATORS[play.inputs.Below(std::size(OPERATORS))];
    const DataFrameRef& left = play.View();
    const DataFrameRef& right = play.View();
    play.Keep(Twice([&] { return combine(left, right); }));
}

void OperateAndAssign(Play& play)
{
    const Assigner assign = ASSIGNERS[play.inputs.Below(std::size(ASSIGNERS))];
    DataFrameRef& target = play.WrittenView();
    const ErrorCode before = target.GetError().code;
    (target.*assign)(play.View());
    Require(before == ERROR_NONE || assign == ASSIGNERS[std::size(ASSIGNERS) - 1] || target.GetError().code == before,
        "a table keeps its first failure");
}

template <typename T>
ErrorCode ApplyRowsOf(DataFrame& target, const UnaryFactory& functor, const DataFrame& source)
{
    return target.ApplyRowInplace<T>(functor, source);
}

void ApplyRows(Play& play)
{
    constexpr auto APPLY = ForEachValueType([](auto number) { return &ApplyRowsOf<ValueTypes::At<number()>>; });
    const UnaryFactory functor = DrawUnary(play.inputs);
    const DataFrame& source = play.Table();
    const MERVO_TESSERA_TYPEID type = source.Type();
    const auto apply = APPLY[static_cast<std::size_t>(IsValueType(type) ? type : play.inputs.ValueType())];
    play.Keep(Twice([&] {
        DataFrame result;
        const ErrorCode code = apply(result, functor, source);
        Require(IsDocumented(code), "an apply's code is documented");
        return code == result.GetError().code ? result : DataFrame();
    }));
    DataFrame& target = play.WrittenTable();
    play.NoteApplied(target, apply(target, functor, play.Table()));
}

// ---- Operations that make a new table, and their forms in place

void RunOnTable(Play& play)
{
    DataFrame& table = play.AnyTable();
    const ErrorCode before = table.GetError().code;
    const Operation operation = DrawTableOperation(play, table);
    DataFrame result = Twice([&] { return operation.make(table); });
    Require(before == ERROR_NONE || result.GetError().code != ERROR_NONE || result.ColumnCount() == 0,
        "a failed table gives no result");
    const auto copy = play.IsTorn(table) ? nullptr : CopyOf(table);
    if (copy != nullptr) {
        RequireSame(operation.make(*copy), result, "a copy gives what the table gives");
    }
    if (copy != nullptr && operation.inPlace != nullptr) {
        const ErrorCode code = operation.inPlace(*copy);
        Require(code == copy->GetError().code, "an operation in place returns the table's code");
        RequireSame(*copy, result, "an operation in place gives what the other form gives");
        if (play.inputs.Below(4) == 0) {
            play.WillChange(table);
            static_cast<void>(operation.inPlace(table)); // under the windows on it
            Require(before == ERROR_NONE || table.GetError().code == before, "a table keeps its first failure");
        }
    }
    play.Keep(std::move(result));
}

// ---- Changes of one table

void ChangeTable(Play& play)
{
    DataFrame& table = play.WrittenTable();
    const ErrorCode before = table.GetError().code;
    Positions keys = play.DrawColumns(table);
    switch (play.inputs.Below(4)) {
    case 0:
        static_cast<void>(table.InsertColInplace(play.Table(), play.inputs.Index(table.ColumnCount() + 1)));
        break;
    case 1:
        static_cast<void>(table.AppendColInplace(play.Table()));
        break;
    case 2:
        static_cast<void>(table.DropDuplicatesInplace(keys, "last"));
        break;
    default:
        static_cast<void>(table.MergeInplace(
            play.Table(), keys, keys, static_cast<MERVO_TESSERA_MERGE_JOINTYPE>(play.inputs.Index(4))));
        break;
    }
    Require(before == ERROR_NONE || table.GetError().code == before, "a table keeps its first failure");
}

void Assign(Play& play)
{
    DataFrame& table = play.WrittenTable();
    const std::uint32_t kind = play.inputs.Below(5);
    if (kind == 4) { // moves the columns: older windows on the table see none
        table = table.Slice(1, play.DrawRange(table.ColumnCount()));
        return;
    }
    play.NoteAssigned(table);
    switch (kind) {
    case 0:
        table = play.inputs.Table(MOST_ROWS, true);
        break;
    case 1:
        table = play.Table();
        break;
    case 2:
        table = play.View();
        break;
    default:
        table.DeepCopy(play.View());
        break;
    }
}

void SortRows(Play& play)
{
    DataFrameRef& target = play.WrittenView();
    const bool ascending = play.inputs.ConsumeBool();
    const auto copy = CopyOf(target);
    const bool isByName = play.inputs.ConsumeBool();
    const Positions keys = play.DrawColumns(target);
    const Names names = play.DrawNames(target);
    const auto sort = [&](DataFrameRef& table) {
        return isByName ? table.Sort(names, ascending) : table.Sort(keys, ascending);
    };
    const ErrorCode code = sort(target);
    Require(IsDocumented(code), "a sort's code is documented");
    if (copy != nullptr) { // a name outside the window is refused by another code than one that no column has
        Require((sort(*copy) == ERROR_NONE) == (code == ERROR_NONE), "a window is sorted as a copy of it is");
        RequireSame(*copy, target, "a window is sorted as a copy of it is");
    }
}

void Rename(Play& play)
{
    DataFrame& table = play.WrittenTable();
    Names names(play.inputs.Below(8) == 0 ? 1 : table.ColumnCount());
    std::generate(names.begin(), names.end(), [&] { return play.inputs.Name(); });
    Require(IsDocumented(table.SetColumnName(names)), "a code is documented");
}

// ---- Windows

void MakeWindow(Play& play)
{
    const DataFrameRef& source = play.View();
    const Range rows = play.DrawRange(source.RowCount());
    const Range columns = play.DrawRange(source.ColumnCount());
    auto window = std::make_unique<DataFrameRef>();
    switch (play.inputs.Below(8)) {
    case 0:
        window = std::make_unique<DataFrameRef>(source.Slice(play.inputs.Below(3), columns));
        break;
    case 1:
        window = std::make_unique<DataFrameRef>(source.Slice(rows, {play.DrawName(source), play.DrawName(source)}));
        break;
    case 2:
        window = std::make_unique<DataFrameRef>(source[play.inputs.Index(source.ColumnCount())]);
        break;
    case 3:
        window = std::make_unique<DataFrameRef>(source[play.DrawName(source).c_str()]);
        break;
    case 4:
        window = std::make_unique<DataFrameRef>(source);
        break;
    case 5:
        window = std::make_unique<DataFrameRef>(source); // also what no slice can be
        window->SetRowIndex({play.inputs.Below(MOST_ROWS), play.inputs.Below(MOST_ROWS)});
        window->SetColIndex({play.inputs.Below(8), play.inputs.Below(8)});
        break;
    default:
        window = std::make_unique<DataFrameRef>(source.Slice(rows, columns));
        break;
    }
    play.KeepWindow(std::move(window));
}

// ---- Groups

void UseGroups(Play& play, const BaseGroups& groups)
{
    const UnaryFactory functor = DrawUnary(play.inputs);
    const std::uint32_t group = play.inputs.Index(groups.GetGroupNum());
    switch (play.inputs.Below(5)) {
    case 0:
        play.Keep(Twice([&] { return groups.Apply(functor); }));
        break;
    case 1:
        play.Keep(Twice([&] { return groups.CopyGroup(group); }));
        break;
    case 2:
        play.Keep(Twice([&] { return groups.CopyLabel(group); }));
        break;
    case 3:
        play.Keep(groups.Transform(functor));
        break;
    default:
        groups.Show();
        play.KeepWindow(std::make_unique<DataFrame>(groups.GetProcessedDataFrame()));
        break;
    }
    const std::vector<std::uint32_t>& begins = groups.GetGroupBegins();
    Require(std::is_sorted(begins.begin(), begins.end()), "groups begin one behind the other");
}

void GroupRows(Play& play)
{
    DataFrame& table = play.AnyTable();
    const Positions keys = play.DrawColumns(table);
    const bool inPlace = play.inputs.ConsumeBool();
    if (inPlace) {
        play.WillChange(table);
    }
    const bool ascending = play.inputs.ConsumeBool();
    const bool sorted = play.inputs.ConsumeBool();
    const Groups groups = play.inputs.ConsumeBool() ? table.GroupBy(keys, inPlace, ascending, sorted)
                                                    : table.GroupBy(play.DrawNames(table), inPlace, ascending, sorted);
    UseGroups(play, groups);
    if (play.inputs.Below(4) == 0) { // groups share the columns of a table that was grouped in place
        play.WillChange(table);
        play.NoteAssigned(table);
        table = play.inputs.Table(MOST_ROWS, false);
        UseGroups(play, groups);
    }
}

void ResampleRows(Play& play)
{
    const DataFrame& table = play.Table();
    const DateTime gap = play.inputs.ConsumeBool() ? DateTime(play.inputs.Below(90000)) : play.inputs.Cell<DateTime>();
    const bool labelLeft = play.inputs.ConsumeBool();
    const bool closedLeft = play.inputs.ConsumeBool();
    const Samples samples = table.Resample(play.inputs.Index(table.ColumnCount()), gap, labelLeft, closedLeft);
    if (samples.GetGroupNum() <= 1000) {
        UseGroups(play, samples);
        const UnaryFactory functor = DrawUnary(play.inputs);
        play.Keep(Twice([&] { return samples.GlobalApply(functor); }));
    }
}

// ---- Ways out

template <typename T>
void ReadOutAs(const DataFrameRef& table)
{
    const std::vector<T> cells = table.To1DVector<T>();
    const std::vector<std::vector<T>> rows = table.ToVector<T>();
    std::size_t count = 0;
    for (const std::vector<T>& row : rows) {
        count += row.size();
    }
    Require(count == cells.size(), "both vectors have the same cells");
    if (table.RowCount() != 0 && table.ColumnCount() != 0) {
        const auto column = std::make_unique<T[]>(table.RowCount());
        static_cast<void>(table.ColumnToArray(column.get(), TYPE_ID_OF<T>, table.RowCount(), table.ColumnCount() - 1));
    }
}

void ReadOut(Play& play)
{
    constexpr auto READERS = ForEachValueType([](auto number) { return &ReadOutAs<ValueTypes::At<number()>>; });
    const DataFrameRef& table = play.View();
    const MERVO_TESSERA_TYPEID type = play.inputs.Below(8) != 0 ? table.Type() : play.inputs.ValueType();
    if (IsValueType(type)) {
        READERS[static_cast<std::size_t>(type)](table);
    }
    const NdData block = table;
    Require(block.data == nullptr || block.shape == std::vector<std::uint32_t>{table.RowCount(), table.ColumnCount()},
        "an array tells the shape");
    std::ostringstream stream;
    stream << table;
    table.Show("");
    static_cast<void>(table.Any());
    static_cast<void>(table.All());
    const std::uint32_t column = play.inputs.Index(table.ColumnCount());
    play.Keep(Twice([&] { return table.Unique(column); }));
    play.Keep(play.WrittenView().Transpose()); // which stores a mixture of types in its source
}

void ListMoments(Play& play)
{
    const auto drawMoment = [&] {
        return play.inputs.Below(3) == 0 ? DateTime(2147483647) : play.inputs.Cell<DateTime>();
    };
    const DateTime start = drawMoment();
    const DateTime end = drawMoment();
    const std::uint32_t periods = play.inputs.Index(20);
    const DateTime step = drawMoment();
    Require(
        DateRange(start, end, periods, step).size() <= std::max(periods, 1000000U), "moments are as many as asked for");
}

constexpr void (*STEPS[])(Play&) = {ApplyUnary, ApplyUnary, ApplyBinary, ApplyInto, Operate, OperateAndAssign,
    ApplyRows, RunOnTable, RunOnTable, RunOnTable, ChangeTable, Assign, SortRows, Rename, MakeWindow, MakeWindow,
    GroupRows, ResampleRows, ReadOut, ListMoments};

} // namespace
} // namespace MERVO::Tessera::Fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) { return MERVO::Tessera::Fuzz::SilenceOutput() ? 0 : 1; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace MERVO::Tessera::Fuzz;
    const MemoryBudget budget;
    Play play(data, size);
    for (int steps = 0; steps < 30 && play.inputs.remaining_bytes() != 0; ++steps) {
        const std::uint32_t step = play.inputs.Below(std::size(STEPS));
        MERVO::Tessera::LogDump("==== step %u", step); // to be seen where a finding is replayed with the log
        STEPS[step](play);
        play.Check();
    }
    return 0;
}
