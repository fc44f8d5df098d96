#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

std::string GetTypeNameById(MERVO_TESSERA_TYPEID id)
{
    if (id == TESSERA_INVALID) {
        return TypeTraitsImpl<InvalidType>::name;
    }
    if (id < TESSERA_TYPE_BEGIN || id >= TESSERA_TYPE_END) {
        return "The Type ID is out of range";
    }
    return VALUE_TYPE_NAMES[static_cast<std::size_t>(id)];
}

} // namespace MERVO::Tessera
