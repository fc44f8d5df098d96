#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "tessera/core/data_frame_ref.h"
#include "tessera/functors/functor_slots.h"

namespace MERVO::Tessera::Func {

/// One unary operation on its way over the columns of a source table.
class UnaryRun {
public:
    UnaryRun(const UnaryFactory& factory, const DataFrameRef& src) : slots(factory), source(src) {}

    const std::string& Name() const { return slots.Name(); }
    /// The container of source column k.
    ContainerID SourceContainer(unsigned int k) const;
    /// Stands the run on source column k, with the functor of a container.
    void Open(unsigned int k, ContainerID container);
    bool HasCursors() const { return cursor != nullptr; }
    SeriesAttr DstAttr() const { return functor->GetDstAttr(cursor); }
    std::string ColumnName() const { return name; }
    Error Process(const Cursor& dst) const { return functor->ProcessSeries(cursor, dst, true); }
    /// Whether the functor can make the texts of its result without them having been empty before.
    bool MakesTexts() const { return cursor->Length() != 0 && functor->MakeTexts(cursor, nullptr); }
    /// The column of those texts; null without memory.
    SeriesPtr MakeTexts() const;
    /// Reduces all columns at once, where the functor has a form for that. Gives the results, named as the columns;
    /// none where it has no such form, or without memory: then the columns are reduced one by one.
    std::vector<SeriesPtr> ReduceTogether();

private:
    FunctorSlots<UnaryBase> slots;
    const DataFrameRef& source;
    const UnaryBase* functor = nullptr;
    Cursor cursor;
    std::string name;
};

/// One binary operation on its way over the columns of two tables; a table of one column gives it every time.
class BinaryRun {
public:
    BinaryRun(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
        : slots(factory), left(lhs), right(rhs)
    {
    }

    const std::string& Name() const { return slots.Name(); }
    ContainerID SourceContainer(unsigned int k) const;
    void Open(unsigned int k, ContainerID container);
    /// Puts copies in the given container in place of source columns in another one; 3 without memory for them.
    ErrorCode Convert(ContainerID container);
    bool HasCursors() const { return leftCursor != nullptr && rightCursor != nullptr; }
    SeriesAttr DstAttr() const { return functor->GetDstAttr(leftCursor, rightCursor); }
    std::string ColumnName() const { return name; }
    Error Process(const Cursor& dst) const { return functor->ProcessSeries(leftCursor, rightCursor, dst); }

private:
    FunctorSlots<BinaryBase> slots;
    const DataFrameRef& left;
    const DataFrameRef& right;
    const BinaryBase* functor = nullptr;
    SeriesPtr leftConverted; // before the cursors, which must go first
    SeriesPtr rightConverted;
    Cursor leftCursor;
    Cursor rightCursor;
    std::string name;
};

/// The container of a column, an array where there is no column.
ContainerID ContainerOf(const SeriesPtr& column);

/**
 * Builds the column that a run asks for and has it filled.
 * @return the run's outcome; 3 where the column's block could not be had.
 */
template <typename Run>
Error ComputeColumn(const Run& run, const SeriesAttr& attr, SeriesPtr& result)
{
    const auto noMemory = [&run]() -> Error {
        return {ERROR_OUT_OF_MEMORY, "out of memory on building series for functor: " + run.Name()};
    };
    if constexpr (std::is_same_v<Run, UnaryRun>) {
        if (run.MakesTexts()) {
            result = run.MakeTexts();
            return result != nullptr ? Error{} : noMemory();
        }
    }
    result = BuildSeries(attr, run.ColumnName());
    const Cursor cursor = result->GetIterator();
    if (cursor == nullptr && IsValueType(attr.typeId) && IsContainer(attr.containerId)) {
        return noMemory();
    }
    return run.Process(cursor);
}

} // namespace MERVO::Tessera::Func
