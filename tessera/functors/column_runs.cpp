#include "tessera/functors/column_runs.h"

#include <new>

#include "tessera/core/raw_texts.h"
#include "tessera/core/window_bounds.h"

namespace MERVO::Tessera::Func {

namespace {

/// A cursor on the window's rows of a column; null where they are not there (any more). Throws std::bad_alloc.
Cursor CursorOn(const DataFrameRef& window, const SeriesPtr& column)
{
    Cursor cursor = window.GetSlicedIterator(column);
    if (cursor == nullptr && HasRows(window, column) && IsValueType(column->GetTypeId())) {
        throw std::bad_alloc();
    }
    return cursor;
}

} // namespace

ContainerID ContainerOf(const SeriesPtr& column)
{
    return column == nullptr ? CONTAINER_ARRAY : column->GetAttr().containerId;
}

ContainerID UnaryRun::SourceContainer(unsigned int k) const { return ContainerOf(source.GetColumn(k)); }

void UnaryRun::Open(unsigned int k, ContainerID container)
{
    const SeriesPtr& column = source.GetColumn(k);
    functor = &slots.For(container);
    cursor = CursorOn(source, column);
    name = column == nullptr ? std::string() : column->GetName();
}

std::vector<SeriesPtr> UnaryRun::ReduceTogether()
{
    const UnaryBase& reducer = slots.For(CONTAINER_ARRAY);
    if (!reducer.ReducesColumns() || source.ColumnCount() < 2) {
        return {};
    }
    std::vector<SeriesPtr> columns;
    std::vector<Cursor> cells;
    std::vector<Cursor> results;
    for (unsigned int k = 0; k < source.ColumnCount(); ++k) {
        const SeriesPtr& column = source.GetColumn(k);
        cells.push_back(SourceContainer(k) == CONTAINER_ARRAY ? source.GetSlicedIterator(column) : nullptr);
        if (cells.back() == nullptr || cells.back()->GetAttr().typeId != TESSERA_DOUBLE) {
            return {};
        }
        columns.push_back(BuildSeries(reducer.GetDstAttr(cells.back()), column->GetName()));
        results.push_back(columns.back()->GetIterator());
    }
    return reducer.ReduceColumns(cells, results) ? std::move(columns) : std::vector<SeriesPtr>();
}

SeriesPtr UnaryRun::MakeTexts() const
{
    RawTexts texts = BuildRawTexts(cursor->Length(), name);
    if (texts.column != nullptr) {
        functor->MakeTexts(cursor, texts.cells);
    }
    return std::move(texts.column);
}

ContainerID BinaryRun::SourceContainer(unsigned int k) const
{
    const DataFrameRef& wider = left.ColumnCount() >= right.ColumnCount() ? left : right;
    return ContainerOf(wider.GetColumn(k));
}

void BinaryRun::Open(unsigned int k, ContainerID container)
{
    functor = &slots.For(container);
    const SeriesPtr& leftColumn = left.GetColumn(left.ColumnCount() == 1 ? 0 : k);
    const SeriesPtr& rightColumn = right.GetColumn(right.ColumnCount() == 1 ? 0 : k);
    const SeriesPtr& named = left.ColumnCount() >= right.ColumnCount() ? leftColumn : rightColumn;
    name = named == nullptr ? std::string() : named->GetName();
    leftCursor = CursorOn(left, leftColumn);
    rightCursor = CursorOn(right, rightColumn);
}

ErrorCode BinaryRun::Convert(ContainerID container)
{
    const auto convert = [container](Cursor& cursor, SeriesPtr& converted) -> ErrorCode {
        if (cursor == nullptr || cursor->GetAttr().containerId == container) {
            return ERROR_NONE;
        }
        SeriesAttr attr = cursor->GetAttr();
        attr.containerId = container;
        converted = BuildSeries(attr, {});
        if (!Copy2Series(cursor, converted->GetIterator())) {
            return ERROR_OUT_OF_MEMORY;
        }
        cursor = converted->GetIterator();
        return ERROR_NONE;
    };
    const ErrorCode code = convert(leftCursor, leftConverted);
    return code != ERROR_NONE ? code : convert(rightCursor, rightConverted);
}

} // namespace MERVO::Tessera::Func
