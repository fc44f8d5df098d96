#include <algorithm>
#include <new>
#include <numeric>
#include <utility>

#include "tessera/core/cursor_part.h"
#include "tessera/core/element_text.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/group_results.h"
#include "tessera/grouping/group_runs.h"
#include "tessera/grouping/group_transform.h"
#include "tessera/grouping/groups.h"

namespace MERVO::Tessera {
namespace {

using Func::FailedTable;
using Positions = std::vector<std::uint32_t>;
using Functors = Func::FunctorSlots<Func::UnaryBase>;

DataFrame TableOf(const Error& failure) { return FailedTable(failure.code, failure.message); }

/// Tells key columns from the others, in the columns' order.
class KeyWalk {
public:
    explicit KeyWalk(const Positions& keyColumns) : keys(keyColumns) {}
    bool IsKey(std::uint32_t column)
    {
        const bool isKey = next < keys.size() && keys[next] == column;
        next += isKey ? 1 : 0;
        return isKey;
    }

private:
    const Positions& keys;
    std::size_t next = 0;
};

Error LostRows(std::uint32_t position)
{
    LogError("Column %d is short of rows of the groups", static_cast<int>(position));
    return {ERROR_BAD_VALUE, "a column is short of rows of the groups"};
}

} // namespace

Cursor BaseGroups::RowsOf(const SeriesPtr& column) const
{
    if (column == nullptr || groupBegins.empty() || groupBegins.back() > column->Size()) {
        return nullptr;
    }
    Cursor rows = column->GetIterator(0, groupBegins.back());
    if (rows == nullptr) {
        throw std::bad_alloc();
    }
    return rows;
}

Cursor BaseGroups::RowsToAsk(const SeriesPtr& column) const { return RowsOf(column); }

ErrorCode BaseGroups::ApplyToRuns(
    const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst, const Positions& dstBegin) const
{
    return Guarded("ApplyValue", [&] {
        return ProcessRuns(functor, RowsOf(src), groupBegins, dst == nullptr ? nullptr : AllOf(dst), dstBegin).code;
    });
}

Positions BaseGroups::GetDstBeginIndex(const UnaryFactory& creator, unsigned int& total) const
{
    Positions begins;
    if (Guarded("GetDstBeginIndex", [&]() -> ErrorCode {
            begins = FindDstBegins(creator, total);
            return ERROR_NONE;
        }) != ERROR_NONE) {
        total = 0;
    }
    return begins;
}

Positions BaseGroups::FindDstBegins(const UnaryFactory& creator, unsigned int& total) const
{
    total = 0;
    Positions begins(groupCount + std::size_t{1});
    if (columns == nullptr || columns->empty()) {
        return begins;
    }
    const SeriesPtr& first = columns->front();
    const Cursor asked = RowsToAsk(first);
    if (asked == nullptr) {
        return begins;
    }
    Functors functors(creator);
    const Func::UnaryBase& functor = functors.For(Func::ContainerOf(first));
    if (functor.GetDstAttr(asked).length == 1) {
        std::iota(begins.begin(), begins.end(), 0U);
        total = groupCount;
        return begins;
    }
    const Cursor rows = RowsOf(first);
    if (rows == nullptr) {
        return begins;
    }
    MovingPart group(rows);
    for (std::uint32_t g = 0; g < groupCount; ++g) {
        const SeriesAttr attr = functor.GetDstAttr(group.At(groupBegins[g], groupBegins[g + 1] - groupBegins[g]));
        if (__builtin_add_overflow(total, attr.length, &total)) {
            throw std::bad_alloc(); // more rows than can be counted
        }
        begins[g + 1] = total;
    }
    return begins;
}

DataFrame BaseGroups::Apply(const UnaryFactory& creator) const
{
    return Func::GuardedTable("Apply", [&] { return Apply(Creators{creator}); });
}

DataFrame BaseGroups::Apply(const Creators& creators) const
{
    return Func::GuardedTable("Apply", [&] {
        if (groupCount == 0) {
            LogError("Empty groups do not support apply");
            return FailedTable(ERROR_BAD_KIND, "Empty groups do not support apply operation");
        }
        if (creators.size() != 1 && (creators.empty() || creators.size() + keyColumns.size() != columns->size())) {
            return RefuseGroups("Invalid creators number");
        }
        unsigned int total = 0;
        Positions dstBegin = FindDstBegins(creators.front(), total);
        for (std::size_t i = 1; i < creators.size(); ++i) {
            unsigned int other = 0;
            dstBegin = FindDstBegins(creators[i], other);
            if (other != total) {
                return RefuseGroups("Invalid creators");
            }
        }
        return ApplyInner(creators, dstBegin, total);
    });
}

Error BaseGroups::ApplyColumn(
    const UnaryFactory& creator, std::uint32_t position, const Positions& dstBegin, SeriesPtr& result) const
{
    const SeriesPtr& column = (*columns)[position];
    const Cursor rows = RowsOf(column);
    if (rows == nullptr) {
        return LostRows(position);
    }
    const auto run = [&](const Func::UnaryBase& functor, const SeriesPtr& results) {
        return ApplyValue(functor, column, results, dstBegin);
    };
    return EvaluateColumn(creator, {rows, column->GetName(), position}, dstBegin.back(), APPLY_TEXTS, run, result);
}

Error BaseGroups::RepeatKey(
    const UnaryFactory& creator, std::uint32_t position, const Positions& dstBegin, SeriesPtr& result) const
{
    const SeriesPtr& column = (*columns)[position];
    const Cursor rows = RowsToAsk(column);
    if (rows == nullptr) {
        return LostRows(position);
    }
    const bool isSingle = Functors(creator).For(Func::ContainerOf(column)).GetDstAttr(rows).length == 1;
    result = NewColumn(WithLength(column->GetAttr(), dstBegin.back()), column->GetName());
    const ErrorCode code = ApplyKey(column, result, dstBegin, isSingle);
    if (code != ERROR_NONE) {
        LogError("Apply key value failed, column index is %d, column name is %s", static_cast<int>(position),
            column->GetName().c_str());
        return {code, "Apply key column's value failed"};
    }
    return {};
}

DataFrame BaseGroups::ApplyInner(const Creators& creators, const Positions& dstBegin, unsigned int total) const
{
    return Func::GuardedTable("Apply", [&] {
        const bool fits = dstBegin.size() == groupCount + std::size_t{1} && dstBegin.back() == total;
        if (creators.empty() || columns == nullptr || !fits) {
            return RefuseGroups("Invalid creators");
        }
        Columns results(columns->size());
        KeyWalk keys(keyColumns);
        std::size_t creator = 0;
        for (std::uint32_t c = 0; c < results.size(); ++c) {
            const bool isKey = keys.IsKey(c);
            if (creator == creators.size() && !isKey) {
                return RefuseGroups("Invalid creators number"); // a key that counts as a value has none
            }
            const UnaryFactory& present = creators[std::min(creator, creators.size() - 1)];
            const Error outcome =
                isKey ? RepeatKey(present, c, dstBegin, results[c]) : ApplyColumn(present, c, dstBegin, results[c]);
            if (outcome.code != ERROR_NONE) {
                return TableOf(outcome);
            }
            creator += isKey || creators.size() == 1 ? 0 : 1;
        }
        DataFrame table(std::move(results));
        static_cast<void>(table.RefreshView()); // a failure is in the table
        return table;
    });
}

Error BaseGroups::TransformColumn(const UnaryFactory& creator, std::uint32_t position, SeriesPtr& result) const
{
    const SeriesPtr& column = (*columns)[position];
    const Cursor rows = RowsOf(column);
    if (rows == nullptr) {
        return LostRows(position);
    }
    Positions each(groupBegins.size());
    std::iota(each.begin(), each.end(), 0U);
    const auto run = [&](const Func::UnaryBase& functor, const SeriesPtr& results) {
        return ApplyValue(functor, column, results, each);
    };
    SeriesPtr values;
    Error outcome =
        EvaluateColumn(creator, {rows, column->GetName(), position}, groupCount, TRANSFORM_TEXTS, run, values);
    if (outcome.code != ERROR_NONE) {
        return outcome;
    }
    result = NewColumn(WithLength(values->GetAttr(), groupBegins.back()), column->GetName());
    const Func::GroupTransformBase<CONTAINER_ARRAY> spreading(groupBegins);
    const ErrorCode code = spreading.ProcessSeries(AllOf(values), AllOf(result), true).code;
    if (code != ERROR_NONE) {
        LogError("Transform column with applied value failed, column index is %d, column name is %s",
            static_cast<int>(position), column->GetName().c_str());
        return {code, "Transform with applied value failed."};
    }
    return {};
}

DataFrame BaseGroups::Transform(const UnaryFactory& creator) const
{
    return Func::GuardedTable("Transform", [&] {
        if (groupCount == 0) {
            return RefuseGroups("Empty groups do not support apply operation");
        }
        unsigned int total = 0;
        static_cast<void>(FindDstBegins(creator, total));
        if (total != groupCount) {
            return RefuseGroups(TRANSFORM_REFUSAL);
        }
        auto results = std::make_shared<Columns>(columns->size());
        KeyWalk keys(keyColumns);
        for (std::uint32_t c = 0; c < results->size(); ++c) {
            SeriesPtr& result = (*results)[c];
            if (keys.IsKey(c)) {
                result = CopyBaseSeriesP((*columns)[c]);
                if (result->GetTypeId() == TESSERA_INVALID) {
                    return FailedTable(ERROR_OUT_OF_MEMORY, "out of memory on Transform");
                }
                continue;
            }
            const Error outcome = TransformColumn(creator, c, result);
            if (outcome.code != ERROR_NONE) {
                return TableOf(outcome);
            }
        }
        processedColumns = std::move(results);
        return GetProcessedDataFrame();
    });
}

DataFrame BaseGroups::GetProcessedDataFrame() const
{
    return Func::GuardedTable("GetProcessedDataFrame", [&] {
        DataFrame table;
        if (processedColumns != nullptr) {
            table.series = std::exchange(processedColumns, nullptr);
            static_cast<void>(table.RefreshView()); // a failure is in the table
        }
        return table;
    });
}

SeriesPtr BaseGroups::CopyBaseSeriesP(const SeriesPtr& column) const
{
    SeriesPtr copy;
    const ErrorCode code = column == nullptr ? ERROR_BAD_VALUE : Guarded("CopyBaseSeriesP", [&] {
        copy = NewColumn(column->GetAttr(), column->GetName());
        return Func::CopySeries<CONTAINER_ARRAY>().ProcessSeries(AllOf(column), AllOf(copy), true).code;
    });
    return code == ERROR_NONE ? std::move(copy) : GetErrorSeries();
}

void BaseGroups::ShowGroups() const
{
    static_cast<void>(Guarded("Show", [this]() -> ErrorCode {
        for (std::uint32_t group = 0; group < groupCount; ++group) {
            PrintText("num " + std::to_string(group));
            EndPrintedLine();
            CopyLabel(group).Show("Show DataFrame");
            CopyGroup(group).Show("Show DataFrame");
        }
        return ERROR_NONE;
    }));
}

} // namespace MERVO::Tessera
