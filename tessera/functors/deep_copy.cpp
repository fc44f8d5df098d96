#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"

namespace MERVO::Tessera {

void DataFrame::DeepCopy(const DataFrameRef& other)
try {
    if (other.GetError().code != ERROR_NONE) {
        SetError({other.GetError().code, "this is from deepcopy"});
        return;
    }
    const DataFrameRef source(other); // keeps the columns, should they be this table's own
    *this = DataFrame();
    if (source.ColumnCount() == 0) {
        return;
    }
    const ErrorCode code = ApplyInplace(Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{}, source);
    if (code != ERROR_NONE) {
        SetError({code, "Copy failed"});
    }
} catch (...) { // no memory
    KeepNoMemory(*this);
}

} // namespace MERVO::Tessera
