#pragma once

#include <algorithm>
#include <functional>
#include <numeric>

#include "tessera/functors/element_walk.h"
#include "tessera/functors/functor.h"
#include "tessera/functors/functor_factory.h"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {

/// What the functors below are to do, beside their arithmetic on int32.
struct Script {
    std::function<SeriesAttr(SeriesAttr)> shape = [](SeriesAttr attr) { return attr; };
    bool isAccepting = true;
    ErrorCode code = 0;
    int runsBeforeCode = 0; ///< how many columns succeed before `code` comes
    int runs = 0;

    ErrorCode NextCode() { return runs++ < runsBeforeCode ? 0 : code; }
};

/// Doubles each cell, with zeros behind the last; a destination of one cell gets their sum.
template <ContainerID CID, typename... SCRIPT>
class Scripted final : public Func::Unary<Scripted<CID, SCRIPT...>, Func::MutableArgs::SOURCE> {
public:
    explicit Scripted(Script& wanted) : script(wanted) {}
    std::string GetName() const override { return "Scripted"; }
    SeriesAttr GetDstAttr(const Cursor& src) const override { return script.shape(src->GetAttr()); }
    bool CheckParams(const Cursor&, const Cursor&) const override { return script.isAccepting; }

    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const
    {
        const ErrorCode code = script.NextCode();
        if constexpr (std::is_same_v<T, std::int32_t>) {
            if (code == 0 && dst->GetAttr().typeId == TESSERA_INT32) {
                const std::vector<T> cells = CellsOf<T>(src);
                const T sum = std::accumulate(cells.begin(), cells.end(), T{0});
                for (std::uint32_t i = 0; i < dst->Length(); ++i) {
                    SetValueToIterator<T>(dst, dst->Length() == 1 ? sum : i < cells.size() ? 2 * cells[i] : 0, i);
                }
            }
        }
        return code;
    }

private:
    Script& script;
};

/// Subtracts cell by cell, in int32: order matters.
template <ContainerID CID, typename... SCRIPT>
class ScriptedMinus final : public Func::Binary<ScriptedMinus<CID, SCRIPT...>, Func::MutableArgs::SOURCE> {
public:
    explicit ScriptedMinus(Script& wanted) : script(wanted) {}
    std::string GetName() const override { return "Minus"; }
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor&) const override { return script.shape(lhs->GetAttr()); }
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor&) const override
    {
        return script.isAccepting && lhs->Length() == rhs->Length();
    }

    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
    {
        const ErrorCode code = script.NextCode();
        if constexpr (std::is_same_v<T, std::int32_t>) {
            const bool isServed = code == 0 && dst->GetAttr().typeId == TESSERA_INT32;
            for (std::uint32_t i = 0; isServed && i < lhs->Length(); ++i) {
                SetValueToIterator<T>(dst, GetValueFromIterator<T>(lhs, i) - GetValueFromIterator<T>(rhs, i), i);
            }
        }
        return code;
    }

private:
    Script& script;
};

/// Adds 1000 to each cell in place.
template <ContainerID CID, typename... SCRIPT>
class ScriptedRaise final : public Func::Nullary<ScriptedRaise<CID, SCRIPT...>, Func::MutableArgs::SOURCE> {
public:
    explicit ScriptedRaise(Script& wanted) : script(wanted) {}
    std::string GetName() const override { return "Raise"; }
    SeriesAttr GetDstAttr(const Cursor& cursor) const override { return script.shape(cursor->GetAttr()); }
    bool CheckParams(const Cursor&) const override { return script.isAccepting; }

    template <typename T>
    ErrorCode OnExecute(const Cursor& cursor) const
    {
        const ErrorCode code = script.NextCode();
        if constexpr (std::is_same_v<T, std::int32_t>) {
            for (std::uint32_t i = 0; code == 0 && i < cursor->Length(); ++i) {
                SetValueToIterator<T>(cursor, GetValueFromIterator<T>(cursor, i) + 1000, i);
            }
        }
        return code;
    }

private:
    Script& script;
};

using ScriptedFactory = Func::FunctorFactory<Scripted, Func::UnaryBase, Script&>;
using MinusFactory = Func::FunctorFactory<ScriptedMinus, Func::BinaryBase, Script&>;
using RaiseFactory = Func::FunctorFactory<ScriptedRaise, Func::NullaryBase, Script&>;

/// A host's own factory, whose functors serve lists as well.
template <template <ContainerID, typename...> class F, typename Base>
std::function<FunctorPtr<Base>(ContainerID)> ForBothContainers(Script& script)
{
    return [&script](ContainerID) { return FunctorPtr<Base>(new F<CONTAINER_ARRAY, Script&>(script)); };
}

/// Five rows of int32 columns a, b, c, ...; the cell of row r in column k is 100 * k * k + r, so that no two columns
/// differ by the same.
inline DataFrame LetteredTable(int columnCount, ContainerID container = CONTAINER_ARRAY)
{
    DataFrame::Columns columns;
    for (int k = 0; k < columnCount; ++k) {
        std::vector<std::int32_t> cells;
        for (int r = 0; r < 5; ++r) {
            cells.push_back(100 * k * k + r);
        }
        columns.push_back(Column<std::int32_t>(std::string(1, static_cast<char>('a' + k)), cells, container));
    }
    return DataFrame(std::move(columns));
}

/// The cells of each column.
inline std::vector<std::vector<std::int32_t>> ColumnsOf(const DataFrameRef& table)
{
    std::vector<std::vector<std::int32_t>> columns;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        columns.push_back(CellsOf<std::int32_t>(table.GetSlicedIterator(table.GetColumn(k))));
    }
    return columns;
}

/// What ScriptedMinus makes of two tables; a single column meets each of the other side.
inline std::vector<std::vector<std::int32_t>> DifferenceOf(const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    const auto left = ColumnsOf(lhs);
    const auto right = ColumnsOf(rhs);
    std::vector<std::vector<std::int32_t>> columns(std::max(left.size(), right.size()));
    for (std::size_t k = 0; k < columns.size(); ++k) {
        for (std::size_t r = 0; r < left[0].size(); ++r) {
            columns[k].push_back(left[left.size() == 1 ? 0 : k][r] - right[right.size() == 1 ? 0 : k][r]);
        }
    }
    return columns;
}

/// Unfolds a number into choices, for tests that go through all of them.
class Choices {
public:
    explicit Choices(unsigned int number) : rest(number) {}
    unsigned int Next(unsigned int count)
    {
        const unsigned int choice = rest % count;
        rest /= count;
        return choice;
    }

private:
    unsigned int rest;
};

inline DataFrame FailedTable(ErrorCode code)
{
    DataFrame table = LetteredTable(2);
    table.SetError({code, "it failed"});
    return table;
}

inline SeriesAttr AsList(SeriesAttr attr)
{
    attr.containerId = CONTAINER_LIST;
    return attr;
}
inline SeriesAttr AsOneCell(SeriesAttr attr) { return WithLength(attr, 1); }
inline SeriesAttr AsDouble(SeriesAttr attr) { return WithType(attr, TESSERA_DOUBLE); }
inline SeriesAttr AsNoType(SeriesAttr attr) { return WithType(attr, TESSERA_INVALID); }

inline Script Shaped(SeriesAttr (*shape)(SeriesAttr))
{
    Script script;
    script.shape = shape;
    return script;
}

inline Script FailingAfter(int runs)
{
    Script script;
    script.code = 12;
    script.runsBeforeCode = runs;
    return script;
}

/// What an apply is expected to answer, to store and to log. An empty message stands for a destination that stays
/// healthy.
struct Outcome {
    ErrorCode code;
    const char* stored;
    int logLevel; ///< 0: no message at all
    const char* log;
};
inline constexpr int UNTOLD = -1; ///< a level for any messages

inline void ExpectOutcome(const Outcome& wanted, ErrorCode code, const DataFrameRef& target, const LogCapture& log)
{
    EXPECT_EQ(code, wanted.code);
    const bool isStored = *wanted.stored != '\0';
    EXPECT_EQ(target.GetError().code, isStored ? wanted.code : 0);
    EXPECT_EQ(target.GetError().message, isStored ? wanted.stored : "healthy dataframe");
    if (wanted.logLevel == UNTOLD) {
        return;
    }
    if (wanted.logLevel == 0) {
        EXPECT_EQ(log.Count(), isStored ? 1U : 0U) << "only the notice of the stored error";
    } else {
        EXPECT_TRUE(log.Has(wanted.logLevel, wanted.log)) << wanted.log;
    }
}

} // namespace MERVO::Tessera
