#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {

SeriesAttr GetResultAttr(const Cursor& src, const ResultTypes& types)
{
    const SeriesAttr attr = src->GetAttr();
    const auto number = static_cast<std::size_t>(attr.typeId);
    return WithType(WithLength(attr, 1), number < types.size() ? types[number] : TESSERA_INVALID);
}

bool IsResultAttr(const Cursor& src, const Cursor& dst, const ResultTypes& types)
{
    const MERVO_TESSERA_TYPEID wanted = GetResultAttr(src, types).typeId;
    return wanted != TESSERA_INVALID && dst->GetAttr().typeId == wanted && dst->Length() == 1;
}

} // namespace MERVO::Tessera::Func
