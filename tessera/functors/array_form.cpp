#include "tessera/functors/array_form.h"

#include <new>

#include "tessera/functors/copy_series.h"

namespace MERVO::Tessera::Func {

ArrayForm::ArrayForm(const Cursor& column) : original(column)
{
    if (column->IsMemoryContiguous()) {
        return;
    }
    SeriesAttr attr = WithLength(column->GetAttr(), column->Length());
    attr.containerId = CONTAINER_ARRAY;
    copy = BuildSeries(attr, {});
    cursor = copy->GetIterator();
    if (cursor == nullptr || CopySeries<CONTAINER_ARRAY>().ProcessSeries(column, cursor, true).code != ERROR_NONE) {
        throw std::bad_alloc();
    }
}

} // namespace MERVO::Tessera::Func
