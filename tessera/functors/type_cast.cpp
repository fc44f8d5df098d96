#include "tessera/functors/type_cast.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/series_cast.h"
#include "tessera/functors/cast_kernels.h"
#include "tessera/functors/cell_runs.h"

namespace MERVO::Tessera {
namespace Func {
namespace {

ErrorCode RefusePair(MERVO_TESSERA_TYPEID from, MERVO_TESSERA_TYPEID to)
{
    if (from == TESSERA_BOOL) {
        LogError("cannot cast bool to datetime");
    } else if (to == TESSERA_BOOL) {
        LogError("Type dataframe cannot cast to Type bool.");
    } else {
        LogError("cannot cast dataframe to other types except dataframe");
    }
    return ERROR_GENERAL;
}

ErrorCode CastCells(const Cursor& src, const Cursor& dst)
{
    if (src->Length() == 0) {
        return ERROR_NONE; // even for pairs that are refused
    }
    const MERVO_TESSERA_TYPEID source = src->GetAttr().typeId;
    const MERVO_TESSERA_TYPEID target = dst->GetAttr().typeId;
    const CastKernel cast = CastKernelFor(source, target);
    if (cast == nullptr) {
        return RefusePair(source, target);
    }
    return ForEachRun(src, dst, cast);
}

} // namespace

template <ContainerID CID>
std::string TypeCastBase<CID>::GetName() const
{
    return "TypeCast";
}

template <ContainerID CID>
SeriesAttr TypeCastBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithType(src->GetAttr(), target);
}

template <ContainerID CID>
bool TypeCastBase<CID>::CheckParams(const Cursor&, const Cursor& dst) const
{
    return dst->GetAttr().typeId == target;
}

template <ContainerID CID>
bool TypeCastBase<CID>::MakeTexts(const Cursor& src, std::string* texts) const
{
    const TextMaker make = src->IsMemoryContiguous() ? TextMakerFor(src->GetAttr().typeId) : nullptr;
    if (make == nullptr || target != TESSERA_STRING) {
        return false;
    }
    if (texts != nullptr) {
        make(CellRuns(src).Read(src->Length()), texts, src->Length());
    }
    return true;
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode TypeCastBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return CastCells(src, dst);
}

template class TypeCastBase<CONTAINER_ARRAY>;
template const UnaryTable<2>
    Unary<TypeCastBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;

} // namespace Func

Error CastSeries(const SeriesPtr& source, const SeriesPtr& target)
{
    const Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID> cast(target->GetTypeId());
    return cast.ProcessSeries(source->GetIterator(), target->GetIterator(), true);
}

} // namespace MERVO::Tessera
