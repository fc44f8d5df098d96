#include "tessera/functors/table_operators.h"

#include "tessera/core/flat_call.h"
#include "tessera/functors/apply_func.h"
#include "tessera/functors/arithmetic.h"
#include "tessera/functors/comparison.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/logic.h"
#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera {
namespace {

using Func::CombineTables;
using Func::FailedTable;

template <template <ContainerID> class Functor>
using BinaryMaker = Func::FunctorFactory<Functor, Func::BinaryBase>;
template <template <ContainerID> class Functor>
using UnaryMaker = Func::FunctorFactory<Functor, Func::UnaryBase>;

DataFrame Opposite(const DataFrameRef& table)
try {
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(UnaryMaker<Func::Not>{}, table);
    return code == ERROR_NONE ? std::move(result) : FailedTable(code, "Error on executing operator");
} catch (...) { // no memory
    return Func::TableWithoutMemory("a table operator");
}

/// Whether a fold over columns of bools makes sense; `word` is that of the caller, for its messages.
bool HasBools(const DataFrameRef& table, const char* word)
{
    if (table.GetError().code != ERROR_NONE) {
        LogError("invalid dataframe while calling %s %d", word, table.GetError().code);
    } else if (table.ColumnCount() == 0) {
        LogError("there is no cols in dataframe while calling %s", word);
    } else if (table.RowCount() == 0) {
        LogError("there is no rows in dataframe while calling %s", word);
    } else if (table.Type() != TESSERA_BOOL) {
        LogError("%s is only available for bool dataframe", word);
    } else {
        return true;
    }
    return false;
}

/// Folds each column by a functor, then all columns: `decisive` in one of them is the answer.
bool FoldBools(const DataFrameRef& table, const UnaryFactory& fold, bool decisive)
try {
    DataFrame columns;
    if (columns.ApplyInplace(fold, table) != ERROR_NONE) {
        return false;
    }
    bool answer = !decisive;
    Func::BoolStep step = [&answer, decisive](bool&, const bool& value) -> ErrorCode {
        answer = value == decisive ? decisive : answer;
        return ERROR_NONE;
    };
    const Func::FunctorFactory<Func::ApplyFunc, Func::UnaryBase, Func::BoolStep&> across(step);
    return columns.ApplyInplace(UnaryFactory(across), columns) == ERROR_NONE && answer;
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("Any or All"));
    return false;
}

} // namespace

DataFrame operator+(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Add>{}, lhs, rhs);
}

DataFrame operator-(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Sub>{}, lhs, rhs);
}

DataFrame operator*(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Mul>{}, lhs, rhs);
}

DataFrame operator/(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Div>{}, lhs, rhs);
}

DataFrame operator%(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Mod>{}, lhs, rhs);
}

DataFrame operator==(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Equal>{}, lhs, rhs);
}

DataFrame operator!=(const DataFrameRef& lhs, const DataFrameRef& rhs) { return Opposite(lhs == rhs); }

DataFrame operator<(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Less>{}, lhs, rhs);
}

DataFrame operator>(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Greater>{}, lhs, rhs);
}

DataFrame operator<=(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::LessEqual>{}, lhs, rhs);
}

DataFrame operator>=(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::GreaterEqual>{}, lhs, rhs);
}

DataFrame operator&&(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::And>{}, lhs, rhs);
}

DataFrame operator||(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    return CombineTables(BinaryMaker<Func::Or>{}, lhs, rhs);
}

DataFrame operator!(const DataFrameRef& table)
{
    if (table.Type() != TESSERA_BOOL) { // nor is it that of a failed or empty table
        return FailedTable(ERROR_NOT_BOOLEAN, "Trying to exec operator ! from non-bool dataframe");
    }
    return Opposite(table);
}

DataFrameRef& DataFrameRef::AssignCombined(const BinaryFactory& factory, const DataFrameRef& rhs, const char* failure)
{
    return FinishOperator(ApplyInplace(factory, *this, rhs), failure);
}

DataFrameRef& DataFrameRef::operator+=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Add>{}, rhs, "operator+= failed");
}

DataFrameRef& DataFrameRef::operator-=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Sub>{}, rhs, "operator-= failed");
}

DataFrameRef& DataFrameRef::operator*=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Mul>{}, rhs, "operator*= failed");
}

DataFrameRef& DataFrameRef::operator/=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Div>{}, rhs, "operator/= failed");
}

DataFrameRef& DataFrameRef::operator%=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Mod>{}, rhs, "operator%= failed");
}

DataFrameRef& DataFrameRef::operator&=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::And>{}, rhs, "operator&= failed");
}

DataFrameRef& DataFrameRef::operator|=(const DataFrameRef& rhs)
{
    return AssignCombined(BinaryMaker<Func::Or>{}, rhs, "operator|= failed");
}

bool DataFrameRef::Any() const { return HasBools(*this, "Any") && FoldBools(*this, UnaryMaker<Func::Any>{}, true); }

bool DataFrameRef::All() const { return HasBools(*this, "All") && FoldBools(*this, UnaryMaker<Func::All>{}, false); }

} // namespace MERVO::Tessera
