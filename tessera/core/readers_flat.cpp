#include <algorithm>

#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/core/table_reader.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {
namespace {

bool AreBuffersThere(const MERVO_TSR_RESULT& result, std::size_t rows)
{
    return rows == 0 ||
        (result.rows != nullptr && std::find(result.rows, result.rows + rows, nullptr) == result.rows + rows);
}

ErrorCode ReadRows(const DataFrameRef& table, MERVO_TSR_RESULT& result, const CellVisit& copy)
{
    TableReader reader(table);
    if (reader.CanRead(copy.Type(), "2d", "Type mismatch on exporting 2d vector")) {
        const ErrorCode code = reader.Open();
        if (code != ERROR_NONE) {
            return code;
        }
        if (!AreBuffersThere(result, table.RowCount())) {
            return RefuseHandle("MERVO_TSR_GetResult");
        }
        reader.Read(copy);
    }
    result.rowCount = table.RowCount();
    result.colCount = table.ColumnCount();
    return ERROR_NONE;
}

int32_t ReadBehind(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result, const CellVisit& copy) noexcept
{
    constexpr const char* CALL = "MERVO_TSR_GetResult";
    return Guarded(CALL, [&] {
        const DataFrameRef* table = TableBehind(handle);
        return table == nullptr || result == nullptr ? RefuseHandle(CALL) : ReadRows(*table, *result, copy);
    });
}

template <typename T>
int32_t GetResult(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result) noexcept
{
    return ReadBehind(handle, result, CellVisit::Of<T>([result](auto&& cell, std::size_t row, std::size_t column) {
        static_cast<T*>(result->rows[row])[column] = cell;
    }));
}

} // namespace
} // namespace MERVO::Tessera

using namespace MERVO::Tessera;

int32_t MERVO_TSR_GetResultBool(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<bool>(handle, result);
}

int32_t MERVO_TSR_GetResultInt8(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<int8_t>(handle, result);
}

int32_t MERVO_TSR_GetResultUint8(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<uint8_t>(handle, result);
}

int32_t MERVO_TSR_GetResultInt16(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<int16_t>(handle, result);
}

int32_t MERVO_TSR_GetResultUint16(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<uint16_t>(handle, result);
}

int32_t MERVO_TSR_GetResultInt32(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<int32_t>(handle, result);
}

int32_t MERVO_TSR_GetResultUint32(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<uint32_t>(handle, result);
}

int32_t MERVO_TSR_GetResultInt64(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<int64_t>(handle, result);
}

int32_t MERVO_TSR_GetResultUint64(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<uint64_t>(handle, result);
}

int32_t MERVO_TSR_GetResultFloat(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<float>(handle, result);
}

int32_t MERVO_TSR_GetResultDouble(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<double>(handle, result);
}

int32_t MERVO_TSR_GetResultString(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<std::string>(handle, result);
}

int32_t MERVO_TSR_GetResultDateTime(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<DateTime>(handle, result);
}

int32_t MERVO_TSR_GetResultDataFrame(MERVO_TSR_CONTEXT* handle, MERVO_TSR_RESULT* result)
{
    return GetResult<DataFrame>(handle, result);
}
