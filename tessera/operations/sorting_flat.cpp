#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/operations/reorder.h"
#include "tessera/operations/sort_value.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_SortValue(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool ascending)
{
    return ApplyUnary(__func__, dst, src, Func::FunctorFactory<Func::SortValue, Func::UnaryBase, bool&>{ascending});
}

int32_t MERVO_TSR_Reorder(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* positions, const MERVO_TSR_CONTEXT* src)
{
    return ApplyBinary(__func__, dst, positions, src, Func::FunctorFactory<Func::Reorder, Func::BinaryBase>{});
}

int32_t MERVO_TSR_Unique(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t column)
{
    constexpr const char* CALL = "MERVO_TSR_Unique";
    return Guarded(CALL, [&] {
        const DataFrameRef* source = TableBehind(src);
        if (!CheckDataFrame(dst) || source == nullptr) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = source->Unique(column);
        return dst->dataFrame->GetError().code;
    });
}
