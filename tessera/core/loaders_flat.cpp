#include <algorithm>
#include <limits>

#include "tessera/core/column_loader.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t NO_ROWS = 0xFFFFFFFFU;
constexpr std::uint32_t MOST_COLUMNS = 1024;

bool IsShapeValid(const MERVO_TSR_SHAPE& shape)
{
    const std::uint64_t cells = std::uint64_t{shape.rows} * shape.cols;
    return shape.rows != NO_ROWS && shape.cols <= MOST_COLUMNS && cells <= std::numeric_limits<std::uint32_t>::max();
}

/// Loads cells from a buffer into a handle's table, by a visit that knows the buffer; `call` opens the messages.
ErrorCode LoadBuffer(
    const char* call, MERVO_TSR_CONTEXT* handle, bool hasData, const MERVO_TSR_SHAPE* shape, const CellVisit& fill)
{
    if (!CheckDataFrame(handle) || !hasData || shape == nullptr || shape->types == nullptr) {
        LogError("[%s] Invalid input", call);
        return ERROR_BAD_BUFFER;
    }
    if (!IsShapeValid(*shape)) {
        LogError("[%s] input shape is invalid", call);
        return ERROR_GENERAL;
    }
    const DataFrame::Types types(shape->types, shape->types + shape->cols);
    const std::uint64_t cells = std::uint64_t{shape->rows} * shape->cols;
    if (ColumnLoader::Load(*handle->dataFrame, cells, {shape->rows, shape->cols}, types, {}, fill) != ERROR_NONE) {
        LogError("[ReadData] Failed to read vector");
        return ERROR_LOAD_FAILED;
    }
    return ERROR_NONE;
}

/// A whole loader: cells of type T from a row-major buffer.
template <typename T, typename Buffer>
int32_t ReadCells(const char* call, MERVO_TSR_CONTEXT* handle, const Buffer* data, const MERVO_TSR_SHAPE* shape)
{
    const std::size_t columns = shape == nullptr ? 0 : shape->cols;
    const auto copy = [data, columns](
                          auto&& cell, std::size_t row, std::size_t column) { cell = data[column + columns * row]; };
    const CellVisit fill = CellVisit::Of<T>(copy);
    return Guarded(call, [&] { return LoadBuffer(call, handle, data != nullptr, shape, fill); });
}

template <typename T>
int32_t ReadNumbers(MERVO_TSR_CONTEXT* handle, const T* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadCells<T>("ReadData", handle, data, shape);
}

/// False when a text is null, which nobody could copy.
bool AreTextsThere(const char* const* data, const MERVO_TSR_SHAPE* shape)
{
    if (data == nullptr || shape == nullptr || !IsShapeValid(*shape)) {
        return true; // refused on the common way
    }
    const std::size_t cells = std::size_t{shape->rows} * shape->cols;
    return std::find(data, data + cells, nullptr) == data + cells;
}

} // namespace
} // namespace MERVO::Tessera

using namespace MERVO::Tessera;

int32_t ReadDataBool(MERVO_TSR_CONTEXT* handle, const bool* data, const MERVO_TSR_SHAPE* shape)
{
    // Any non-zero byte is true, and only as a byte may it be looked at.
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    return ReadCells<bool>("ReadData", handle, bytes, shape);
}

int32_t ReadDataInt8(MERVO_TSR_CONTEXT* handle, const int8_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataUint8(MERVO_TSR_CONTEXT* handle, const uint8_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataInt16(MERVO_TSR_CONTEXT* handle, const int16_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataUint16(MERVO_TSR_CONTEXT* handle, const uint16_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataInt32(MERVO_TSR_CONTEXT* handle, const int32_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataUint32(MERVO_TSR_CONTEXT* handle, const uint32_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataInt64(MERVO_TSR_CONTEXT* handle, const int64_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataUint64(MERVO_TSR_CONTEXT* handle, const uint64_t* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataFloat(MERVO_TSR_CONTEXT* handle, const float* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataDouble(MERVO_TSR_CONTEXT* handle, const double* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadNumbers(handle, data, shape);
}

int32_t ReadDataString(MERVO_TSR_CONTEXT* handle, const char* const* data, const MERVO_TSR_SHAPE* shape)
{
    return ReadCells<std::string>("ReadDataString", handle, AreTextsThere(data, shape) ? data : nullptr, shape);
}
