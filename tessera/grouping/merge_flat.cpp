#include <utility>
#include <vector>

#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

using namespace MERVO::Tessera;

uint32_t MERVO_TSR_Merge(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* left, const MERVO_TSR_CONTEXT* right,
    const MERVO_TSR_MERGE_KEYS* keys, int32_t type)
{
    if (!CheckDataFrame(right) || !CheckDataFrame(left) || keys == nullptr || keys->left == nullptr ||
        keys->right == nullptr || !CheckDataFrame(dst)) {
        LogError("[MERVO_TSR_Merge] Input is nullptr or Input is Invalid");
        return ERROR_NULL_HANDLE;
    }
    const int32_t code = Guarded(__func__, [&] {
        const std::vector<uint32_t> leftOn(keys->left, keys->left + keys->count);
        const std::vector<uint32_t> rightOn(keys->right, keys->right + keys->count);
        *dst->dataFrame = left->dataFrame->Merge(
            *right->dataFrame, leftOn, rightOn, static_cast<MERVO_TESSERA_MERGE_JOINTYPE>(type), {"_x", "_y"});
        return dst->dataFrame->GetError().code;
    });
    return static_cast<uint32_t>(code);
}
