#include <limits>
#include <new>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/to_array.h"

namespace MERVO::Tessera {
namespace {

/// Copies any column to room for `size` elements; lists too, which the factory by itself would refuse.
NullaryFactory ExportTo(void* target, std::uint32_t size)
{
    const Func::FunctorFactory<Func::ToArray, Func::NullaryBase, void*, std::uint32_t> make{target, size};
    return [make](ContainerID) { return make(CONTAINER_ARRAY); };
}

/// What an array record needs to know of a value type.
struct ElementKind {
    std::size_t size;
    std::int32_t tag;
};

constexpr auto ELEMENT_KINDS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    if constexpr (Arithmetic<T>) {
        return ElementKind{sizeof(T), GetDType<T>()};
    } else {
        return ElementKind{0, 0};
    }
});

std::unique_ptr<std::byte[]> MakeBlock(std::uint64_t elements, std::size_t elementSize)
{
    if (elements > std::numeric_limits<std::size_t>::max() / elementSize) {
        return nullptr;
    }
    const auto bytes = static_cast<std::size_t>(elements) * elementSize;
    return std::unique_ptr<std::byte[]>(new (std::nothrow) std::byte[bytes]);
}

} // namespace

ErrorCode DataFrameRef::ColumnToArray(
    void* data, MERVO_TESSERA_TYPEID type, unsigned int size, unsigned int column) const
try {
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        LogError("Invalid dataframe when dumping column to array.");
        return ERROR_BAD_VALUE;
    }
    if (data == nullptr || size == 0) {
        LogError("Pointer is null when dumping column to array.");
        return ERROR_BAD_VALUE;
    }
    if (column >= ColumnCount()) {
        LogError("Index out of range when dumping column to array.");
        return ERROR_BAD_VALUE;
    }
    const SeriesPtr& source = GetColumn(column);
    const MERVO_TESSERA_TYPEID own = source == nullptr ? TESSERA_INVALID : source->GetTypeId();
    if (own != type) {
        LogError("Series Type mismatch (%d vs. %d)when dumping column to array.", static_cast<int>(own),
            static_cast<int>(type));
        return ERROR_BAD_VALUE;
    }
    const Error outcome = ExportTo(data, size)(CONTAINER_ARRAY)->ProcessSeries(GetSlicedIterator(source));
    if (outcome.code != ERROR_NONE) {
        LogError("%s", outcome.message.c_str());
    }
    return outcome.code;
} catch (...) { // no memory
    return TellNoMemory("ColumnToArray");
}

DataFrameRef::operator NdData() const
try {
    const auto type = static_cast<std::uint32_t>(Type()); // no type at all, -1, counts as too high a one
    if (type > TESSERA_DOUBLE) {
        LogError("Unsupport type to NdData.");
        return {};
    }
    const ElementKind kind = ELEMENT_KINDS[type];
    const std::uint32_t rows = RowCount();
    std::unique_ptr<std::byte[]> block = MakeBlock(std::uint64_t{rows} * ColumnCount(), kind.size);
    if (block == nullptr) {
        LogError("Failed to create data pointer for NdData.");
        return {};
    }
    std::byte* target = block.get();
    for (unsigned int k = 0; k < ColumnCount(); ++k, target += rows * kind.size) {
        if (Slice(Range{0, rows}, Range{k, k + 1}).ApplyInplace(ExportTo(target, rows)) != ERROR_NONE) {
            LogError("Failed to transform dataframe to array.");
            return {};
        }
    }
    return {std::move(block), {rows, ColumnCount()}, kind.tag, 1};
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("NdData"));
    return {};
}

} // namespace MERVO::Tessera
