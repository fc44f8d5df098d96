#include <algorithm>
#include <string>
#include <vector>

#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/operations/bool_filter.h"

using namespace MERVO::Tessera;

namespace {

/// Copies names out of a host's array; false for no array, no names, or a null among them.
bool ReadNames(const char* const* names, std::uint32_t count, std::vector<std::string>& texts)
{
    if (names == nullptr || count == 0 || std::find(names, names + count, nullptr) != names + count) {
        return false;
    }
    texts.assign(names, names + count);
    return true;
}

} // namespace

int32_t MERVO_TSR_DropColByBool(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* filter)
{
    constexpr const char* CALL = "MERVO_TSR_DropColByBool";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src) || TableBehind(filter) == nullptr) {
            return RefuseHandle(CALL);
        }
        DataFrame copy;
        *dst->dataFrame = src->dataFrame->DropCol(FilterBehind(filter, copy));
        return dst->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_DropColByIndex(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const uint32_t* indices, uint32_t count)
{
    constexpr const char* CALL = "MERVO_TSR_DropColByIndex";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src) || indices == nullptr || count == 0) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = src->dataFrame->DropCol(std::vector<std::uint32_t>(indices, indices + count));
        return dst->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_DropColByName(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* const* names, uint32_t count)
{
    constexpr const char* CALL = "MERVO_TSR_DropColByName";
    return Guarded(CALL, [&] {
        std::vector<std::string> texts;
        if (!CheckDataFrame(dst) || !CheckDataFrame(src) || !ReadNames(names, count, texts)) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = src->dataFrame->DropCol(texts);
        return dst->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_InsertColInplace(MERVO_TSR_CONTEXT* table, const MERVO_TSR_CONTEXT* other, uint32_t position)
{
    constexpr const char* CALL = "MERVO_TSR_InsertColInplace";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(table) || !CheckDataFrame(other)) {
            return RefuseHandle(CALL);
        }
        static_cast<void>(table->dataFrame->InsertColInplace(*other->dataFrame, position)); // what counts is stored
        return table->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_SetColumnName(MERVO_TSR_CONTEXT* table, const char* const* names, uint32_t count)
{
    constexpr const char* CALL = "MERVO_TSR_SetColumnName";
    return Guarded(CALL, [&]() -> std::int32_t {
        std::vector<std::string> texts;
        if (!ReadNames(names, count, texts)) {
            return RefuseHandle(CALL);
        }
        if (!CheckDataFrame(table)) {
            LogError("[%s] MERVO_TSR_CONTEXT is null", CALL);
            return ERROR_NULL_HANDLE;
        }
        return table->dataFrame->SetColumnName(texts);
    });
}
