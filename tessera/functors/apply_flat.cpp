#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

namespace MERVO::Tessera {

std::int32_t ApplyUnaryTo(
    const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const UnaryFactory& make)
{
    DataFrameRef* target = TableBehind(dst);
    const DataFrameRef* source = TableBehind(src);
    if (target == nullptr || source == nullptr) {
        return RefuseHandle(call);
    }
    static_cast<void>(target->ApplyInplace(make, *source)); // the table keeps the code, and an earlier one wins
    return target->GetError().code;
}

std::int32_t ApplyBinaryTo(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* lhs,
    const MERVO_TSR_CONTEXT* rhs, const BinaryFactory& make)
{
    DataFrameRef* target = TableBehind(dst);
    const DataFrameRef* left = TableBehind(lhs);
    const DataFrameRef* right = TableBehind(rhs);
    if (target == nullptr || left == nullptr || right == nullptr) {
        return RefuseHandle(call);
    }
    static_cast<void>(target->ApplyInplace(make, *left, *right));
    return target->GetError().code;
}

} // namespace MERVO::Tessera
