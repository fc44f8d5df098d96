#include "tessera/functors/array_form.h"

#include <new>

#include "tessera/functors/copy_series.h"

namespace MERVO::Tessera::Func {

namespace {

/// An array as long as a range, of its value type.
Cursor BuildArrayFor(const Cursor& column, SeriesPtr& array)
{
    SeriesAttr attr = WithLength(column->GetAttr(), column->Length());
    attr.containerId = CONTAINER_ARRAY;
    array = BuildSeries(attr, {});
    return array->GetIterator();
}

void CopyOrThrow(const Cursor& from, const Cursor& to)
{
    if (CopySeries<CONTAINER_ARRAY>().ProcessSeries(from, to, true).code != ERROR_NONE) {
        throw std::bad_alloc();
    }
}

} // namespace

ArrayForm::ArrayForm(const Cursor& column) : original(column)
{
    if (!column->IsMemoryContiguous()) {
        cursor = BuildArrayFor(column, copy);
        CopyOrThrow(column, cursor);
    }
}

ArrayRoom::ArrayRoom(const Cursor& destination) : original(destination)
{
    if (!destination->IsMemoryContiguous()) {
        cursor = BuildArrayFor(destination, room);
        if (cursor == nullptr) {
            throw std::bad_alloc();
        }
    }
}

void ArrayRoom::Deliver()
{
    if (room != nullptr) {
        CopyOrThrow(cursor, original);
    }
}

} // namespace MERVO::Tessera::Func
