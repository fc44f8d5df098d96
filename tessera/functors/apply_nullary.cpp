#include "tessera/functors/apply_nullary.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/column_runs.h"

namespace MERVO::Tessera {

ErrorCode Func::ApplyNullaryCommon(const NullaryFactory& factory, DataFrameView& view, const AttributeCheck& check)
{
    FunctorSlots<NullaryBase> slots(factory);
    if (view.GetError().code != ERROR_NONE) {
        return view.GetError().code;
    }
    if (view.ColumnCount() == 0) {
        LogNotice("Input dataFrame is zero-column on applying unary functor: %s.", slots.Name().c_str());
        return ERROR_NONE;
    }
    for (unsigned int k = 0; k < view.ColumnCount(); ++k) {
        const SeriesPtr& column = view.GetColumn(k);
        const NullaryBase& functor = slots.For(ContainerOf(column));
        const Cursor cursor = view.GetSlicedIterator(column);
        if (cursor != nullptr) {
            SeriesAttr attr = functor.GetDstAttr(cursor);
            const ErrorCode code = check(attr, cursor);
            if (code != ERROR_NONE) {
                return code;
            }
        }
        const Error outcome = functor.ProcessSeries(cursor);
        if (outcome.code != ERROR_NONE) {
            view.SetError(outcome);
            return outcome.code;
        }
    }
    return ERROR_NONE;
}

ErrorCode DataFrame::ApplyInplace(const NullaryFactory& factory)
try {
    const auto check = [this](SeriesAttr& attr, const Cursor& cursor) -> ErrorCode {
        if (attr.containerId == cursor->GetAttr().containerId) {
            return ERROR_NONE;
        }
        SetError({ERROR_MIXED_CONTAINERS, "dst container type cannot be determinated"});
        return ERROR_MIXED_CONTAINERS;
    };
    const ErrorCode code = Func::ApplyNullaryCommon(factory, *this, check);
    return code != ERROR_NONE ? code : RefreshView();
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

} // namespace MERVO::Tessera
