#include "tessera/operations/bool_filter.h"

#include "tessera/core/handles.h"

namespace MERVO::Tessera {

Error FilterRefusal(
    const DataFrame& table, const DataFrame& filter, bool fits, ErrorCode toldCode, const FilterTexts& texts)
{
    if (table.GetError().code != ERROR_NONE) {
        LogError(texts.invalidTable, table.GetError().code);
        return table.GetError();
    }
    if (filter.GetError().code != ERROR_NONE) {
        LogError(texts.invalidFilter, toldCode);
        return filter.GetError();
    }
    if (fits) {
        return {};
    }
    if (texts.mismatch != nullptr) {
        LogError(texts.mismatch, static_cast<int>(filter.RowCount()), static_cast<int>(filter.ColumnCount()),
            static_cast<int>(table.RowCount()), static_cast<int>(table.ColumnCount()));
    }
    return {ERROR_NOT_BOOLEAN, texts.refusal};
}

const DataFrame& FilterBehind(const MERVO_TSR_CONTEXT* handle, DataFrame& copy)
{
    if (CheckDataFrame(handle)) {
        return *handle->dataFrame;
    }
    copy.DeepCopy(*handle->dataFrameRef);
    return copy;
}

} // namespace MERVO::Tessera
