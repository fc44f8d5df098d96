#include <algorithm>
#include <new>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/assign_index.h"
#include "tessera/grouping/fill_key.h"

namespace MERVO::Tessera {
namespace {

using Keys = std::vector<std::uint32_t>;

Keys InOrderWithoutRepeats(Keys keys)
{
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

/// Whether a table's window has only columns that are there, and rows that they all have.
bool HasWholeWindow(const DataFrame& table)
{
    bool isWhole = table.ColumnCount() != 0 || table.RowCount() == 0;
    for (unsigned int k = 0; isWhole && k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        isWhole = column != nullptr && table.GetRowIndex()[1] <= column->Size();
    }
    return isWhole;
}

long CountOf(std::size_t count) { return static_cast<long>(count); }
int NumberOf(std::uint32_t position) { return static_cast<int>(position); }

Error Refused(const char* message) { return {ERROR_BAD_VALUE, message}; }

Error RefusalOfPair(const DataFrame& left, std::uint32_t leftKey, const DataFrame& right, std::uint32_t rightKey)
{
    if (leftKey >= left.ColumnCount()) {
        LogError("Left index %d out of range %ld", NumberOf(leftKey), CountOf(left.ColumnCount()));
        return Refused("Invalid join left shape.");
    }
    if (rightKey >= right.ColumnCount()) {
        LogError("Right index %d out of range %ld", NumberOf(rightKey), CountOf(right.ColumnCount()));
        return Refused("Invalid join right shape.");
    }
    const SeriesAttr leftAttr = left.GetColumn(leftKey)->GetAttr();
    const SeriesAttr rightAttr = right.GetColumn(rightKey)->GetAttr();
    if (leftAttr.typeId != rightAttr.typeId) {
        LogError("Left %d typeID  %d must equal right %d typeID %d", NumberOf(leftKey),
            static_cast<int>(leftAttr.typeId), NumberOf(rightKey), static_cast<int>(rightAttr.typeId));
        return Refused("Invalid join left type.");
    }
    if (leftAttr.typeId == TESSERA_DATAFRAME) {
        LogError("The merge key cannot be an DataFrame %d", NumberOf(leftKey));
        return Refused("Invalid join right type.");
    }
    if (leftAttr.containerId != CONTAINER_ARRAY || rightAttr.containerId != CONTAINER_ARRAY) {
        LogError("The merge key cannot be in a list, left %d, right %d", NumberOf(leftKey), NumberOf(rightKey));
        return {ERROR_PARAMETERS_REFUSED, "Merge keys in a list"};
    }
    return {};
}

/// What speaks against a merge; code 0 where nothing does.
Error RefusalOf(const DataFrame& left, const Keys& leftOn, const DataFrame& right, const Keys& rightOn,
    MERVO_TESSERA_MERGE_JOINTYPE type)
{
    if (left.GetError().code != ERROR_NONE || right.GetError().code != ERROR_NONE) {
        LogError("Invalid dataFrame, error %d, rDF error %d", left.GetError().code, right.GetError().code);
        return Refused("Invalid dataFrame.");
    }
    if (!HasWholeWindow(left) || !HasWholeWindow(right)) {
        LogError("Can't merge a table whose window is beyond the columns");
        return Refused("Invalid dataFrame.");
    }
    if (type < TESSERA_JOIN_INNER || type > TESSERA_JOIN_OUTER) {
        LogError("Invalid join type %d", static_cast<int>(type));
        return Refused("Invalid join type.");
    }
    if (leftOn.size() != rightOn.size()) {
        LogError(
            "Left set length  %ld must equal rightOn set size %ld", CountOf(leftOn.size()), CountOf(rightOn.size()));
        return Refused("Invalid join length.");
    }
    Error refusal;
    for (std::size_t k = 0; k < leftOn.size() && refusal.code == ERROR_NONE; ++k) {
        refusal = RefusalOfPair(left, leftOn[k], right, rightOn[k]);
    }
    return refusal;
}

/// A key column of the result on its way, as ComputeColumn wants it.
struct KeyRun {
    KeyRun(const Func::BinaryBase& fillKey, const DataFrame& left, const SeriesPtr& leftColumn, const DataFrame& right,
        const SeriesPtr& rightColumn)
        : functor(fillKey), name(leftColumn->GetName()), leftKeys(left.GetSlicedIterator(leftColumn)),
          rightKeys(right.GetSlicedIterator(rightColumn))
    {
    }
    std::string Name() const { return functor.GetName(); }
    std::string ColumnName() const { return name; }
    Error Process(const Cursor& dst) const { return functor.ProcessSeries(leftKeys, rightKeys, dst); }

    const Func::BinaryBase& functor;
    std::string name;
    Cursor leftKeys;
    Cursor rightKeys;
};

} // namespace

void DataFrame::InsertMergeKey(const DataFrame& left, const DataFrame& right, const BinaryFactory& fillKeyFactory,
    unsigned int length, const std::tuple<MergeRows, MergeRows>& keys)
{
    const auto& [leftOn, rightOn] = keys;
    Func::FunctorSlots<Func::BinaryBase> slots(fillKeyFactory);
    for (std::size_t k = 0; k < leftOn.size(); ++k) {
        const SeriesPtr& column = left.GetColumn(leftOn[k]);
        const KeyRun run(slots.For(Func::ContainerOf(column)), left, column, right, right.GetColumn(rightOn[k]));
        SeriesPtr merged;
        const Error outcome = Func::ComputeColumn(run, WithLength(column->GetAttr(), length), merged);
        if (outcome.code != ERROR_NONE) {
            SetError(outcome);
            return;
        }
        series->push_back(std::move(merged));
    }
}

void DataFrame::InsertMergeValue(const DataFrame& source, const MergeRows& rows, unsigned int length,
    const MergeRows& keys, const std::string& suffix)
{
    const UnaryFactory make = Func::FunctorFactory<Func::AssignIndex, Func::UnaryBase, const MergeRows&>{rows};
    Func::UnaryRun run(make, source);
    for (unsigned int k = 0; k < source.ColumnCount(); ++k) {
        if (std::binary_search(keys.begin(), keys.end(), k)) {
            continue;
        }
        run.Open(k, run.SourceContainer(k));
        SeriesPtr merged;
        const SeriesPtr& column = source.GetColumn(k);
        const Error outcome = run.HasCursors() ? Func::ComputeColumn(run, WithLength(column->GetAttr(), length), merged)
                                               : run.Process(nullptr);
        if (outcome.code != ERROR_NONE) {
            SetError(outcome);
            return;
        }
        merged->SetName(run.ColumnName() + suffix);
        series->push_back(std::move(merged));
    }
}

DataFrame DataFrame::MergeInternal(const DataFrame& right, MergeRows& leftOn, MergeRows& rightOn,
    MERVO_TESSERA_MERGE_JOINTYPE type, const std::array<std::string, 2>& suffixes) const
{
    MergeRows leftRows;
    MergeRows rightRows;
    const Error paired = PairMergeRows(right, leftOn, rightOn, type, leftRows, rightRows);
    if (paired.code != ERROR_NONE) {
        return Func::FailedTable(paired.code, paired.message);
    }
    DataFrame result;
    if (leftRows.empty()) {
        return result;
    }
    const auto length = static_cast<unsigned int>(leftRows.size());
    using KeyFilling = Func::FunctorFactory<Func::FillKey, Func::BinaryBase, MergeRows&, MergeRows&>;
    result.InsertMergeKey(*this, right, KeyFilling{leftRows, rightRows}, length, {leftOn, rightOn});
    if (result.error.code == ERROR_NONE) {
        result.InsertMergeValue(*this, leftRows, length, leftOn, suffixes[0]);
    }
    leftRows = MergeRows(); // its memory is there for the other side's columns
    if (result.error.code == ERROR_NONE) {
        result.InsertMergeValue(right, rightRows, length, rightOn, suffixes[1]);
    }
    if (result.error.code != ERROR_NONE || result.RefreshView() != ERROR_NONE) {
        return Func::FailedTable(result.error.code, result.error.message);
    }
    return result;
}

DataFrame DataFrame::Merge(const DataFrame& right, const std::vector<std::uint32_t>& leftOn,
    const std::vector<std::uint32_t>& rightOn, MERVO_TESSERA_MERGE_JOINTYPE type,
    const std::array<std::string, 2>& suffixes) const
{
    return Func::GuardedTable("Merge", [&] {
        MergeRows leftKeys = InOrderWithoutRepeats(leftOn);
        MergeRows rightKeys = InOrderWithoutRepeats(rightOn);
        const Error refusal = RefusalOf(*this, leftKeys, right, rightKeys, type);
        return refusal.code != ERROR_NONE ? Func::FailedTable(refusal.code, refusal.message)
                                          : MergeInternal(right, leftKeys, rightKeys, type, suffixes);
    });
}

ErrorCode DataFrame::MergeInplace(const DataFrame& right, const std::vector<std::uint32_t>& leftOn,
    const std::vector<std::uint32_t>& rightOn, MERVO_TESSERA_MERGE_JOINTYPE type)
{
    DataFrame merged = Merge(right, leftOn, rightOn, type, {"_x", "_y"});
    const ErrorCode code = merged.error.code;
    if (code == ERROR_NONE && merged.ColumnCount() != 0) {
        *this = std::move(merged);
    }
    return code;
}

} // namespace MERVO::Tessera
