#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

std::string GetTypeNameById(MERVO_TESSERA_TYPEID id)
{
    if (id == TESSERA_INVALID) {
        return TypeTraitsImpl<InvalidType>::name;
    }
    return IsValueType(id) ? VALUE_TYPE_NAMES[static_cast<std::size_t>(id)] : "The Type ID is out of range";
}

} // namespace MERVO::Tessera
